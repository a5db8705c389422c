// What a drawing that is saved has more than the file that was read, put into its sections.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "host/filing/drawingedits.h"
#include "host/filing/encoding.h"
#include "host/filing/tagdocument.h"

namespace tarn::host {

/// Puts bytes of whole objects into edits of a document, in the order of the calls. Both have to
/// outlive it.
class DrawingAdditions {
 public:
  DrawingAdditions(const TagDocument& document, const TextEncoding& encoding, DrawingEdits& edits)
      : document_(document), encoding_(encoding), edits_(edits) {}

  bool isEmpty() const { return isEmpty_; }
  /// At the end of a table, which is made when it is missing.
  void insertRecords(const char* table, const std::string& bytes);
  /// The same of a section.
  void insertSection(std::string_view name, const std::string& bytes);
  void insertBefore(std::uint32_t object, std::string bytes);
  /// Ends what a file that was cut off has left open. To be called last.
  void closeCutOff();

 private:
  std::string tag(int code, std::string_view value) const;
  std::uint32_t placeOf(std::string_view name) const;

  const TagDocument& document_;
  const TextEncoding& encoding_;
  DrawingEdits& edits_;
  bool isEmpty_ = true;
};

}  // namespace tarn::host
