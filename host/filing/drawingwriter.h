// The pieces in which a drawing that is saved differs from the file that was read.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/filing/tagdocument.h"

class AcDbDatabase;

namespace tarn::host {

struct DrawingBinding;
struct OpeningState;
struct DrawingView;
class TagEditor;
class TextEncoding;

/// What stands on the sheet in front, among the entities of the model: entities and their parts.
std::vector<std::uint32_t> frontSheetObjects(const TagDocument& document,
                                             const TextEncoding& encoding);

class DrawingEdits {
 public:
  /// `count` objects from `first` on become these bytes.
  void replace(std::uint32_t first, std::uint32_t count, std::string bytes);
  void insertBefore(std::uint32_t object, std::string bytes) {
    replace(object, 0, std::move(bytes));
  }
  bool isEmpty() const { return edits_.empty(); }
  /// The whole file with all edits. What stands in no edit goes out byte for byte.
  std::string apply(const TagDocument& document) const;

 private:
  struct Edit {
    std::uint32_t first;
    std::uint32_t count;
    std::string bytes;
  };
  std::vector<Edit> edits_;
};

// `header` is the editor of the header section.
void writeDisplayVariables(const AcDbDatabase& database, const TagDocument& document,
                           TagEditor& header);
/// What of them stands in an object of its own, of this kind.
void writeFrameMode(const AcDbDatabase& database, std::string_view kind, TagEditor& object);
void writeHeaderState(const TagDocument& document, const OpeningState& state, TagEditor& header);
void editActiveView(const DrawingBinding& binding, const DrawingView& view, DrawingEdits& edits);

}  // namespace tarn::host
