// Points of an uncompressed LAS file, any run of them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "adesk.h"
#include "base/file.h"
#include "base/result.h"
#include "host/pointcloud/lasheader.h"

namespace tarn::host {

struct LasPoint {
  std::int32_t x = 0;
  std::int32_t y = 0;
  std::int32_t z = 0;
  std::uint16_t rgb[3] = {0, 0, 0};
  bool isWithheld = false;  ///< marked as deleted
};

class ACADHOST_EXPORT LasReader {
 public:
  /// Refused, in a sentence without the file's name, when it cannot be opened or is no LAS file.
  /// Compressed files open, so that their header can be asked; their points cannot be read.
  Status open(const std::string& path);

  const LasHeader& header() const { return header_; }
  /// Decodes the records from `first` on into `out`, in place of what is there. False on a read
  /// error, also when the file has become shorter meanwhile.
  bool read(std::uint64_t first, size_t count, std::vector<LasPoint>& out);

 private:
  LasHeader header_;
  RandomFile file_;
  std::vector<unsigned char> bytes_;
};

}  // namespace tarn::host
