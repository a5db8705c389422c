// The header of a LAS point file, checked against the file that it stands in.
#pragma once

#include <cstdint>
#include <string>

#include "adesk.h"
#include "base/result.h"

namespace tarn::host {

/// Layout of a file of versions 1.0 to 1.4. A coordinate is its whole number x scale + offset.
struct LasHeader {
  int minorVersion = 0;
  int format = 0;  ///< of the point records, 0 to 10
  bool isCompressed = false;
  std::uint64_t pointsAt = 0;       ///< byte of the first record
  std::uint32_t recordLength = 0;   ///< bytes
  std::uint64_t claimedPoints = 0;  ///< what the header says
  std::uint64_t points = 0;         ///< how many of them are there
  int colorAt = -1;                 ///< byte of red in a record, -1 when it has no colours
  double scale[3] = {1, 1, 1};
  double offset[3] = {0, 0, 0};
  double minimum[3] = {0, 0, 0};  ///< as the file says; may be wrong
  double maximum[3] = {0, 0, 0};

  /// False when the box of the header is not one.
  bool hasBox() const;
};

/// Bytes of the longest header.
constexpr size_t kLasHeaderBytes = 375;

/// Takes the first bytes of a file, at most kLasHeaderBytes. Refused, in a sentence without the
/// file's name, when it is no LAS file or a value cannot be.
ACADHOST_EXPORT Result<LasHeader> parseLasHeader(const std::string& bytes, std::uint64_t fileSize);

}  // namespace tarn::host
