// Which of the sheets a drawing file has in front.
#include <optional>
#include <vector>

#include "base/text.h"
#include "host/filing/drawingfile.h"
#include "host/filing/drawingwriter.h"
#include "host/filing/encoding.h"
#include "host/filing/tageditor.h"
#include "host/filing/tagview.h"

namespace tarn::host {

namespace {

constexpr const wchar_t* kFront = L"*Paper_Space";

bool isFrontName(const std::wstring& name) {
  return equalsIgnoreCase(std::wstring_view(name), kFront);
}

/// A sheet in the file: its record, and its definition from BLOCK to ENDBLK.
struct SheetBlock {
  std::uint32_t record = 0;
  std::uint32_t begin = 0;
  std::uint32_t end = 0;
  std::wstring name;
};

class FrontSheet {
 public:
  explicit FrontSheet(const TagDocument& document) : document_(document), encoding_(document) {}

  std::optional<std::string> bring(std::uint64_t block) {
    const auto wanted =
        find([&](const SheetBlock& sheet) { return document_.handleOf(sheet.record) == block; });
    const auto front = find([](const SheetBlock& sheet) { return isFrontName(sheet.name); });
    const DrawingSection* entities = document_.section("ENTITIES");
    if (!wanted || isFrontName(wanted->name) || entities == nullptr) return std::nullopt;
    const std::string onPaper = front ? takePaperEntities() : std::string();
    if (front) {
      rename(*front, wanted->name);
      edits_.insertBefore(front->end, onPaper);
    }
    rename(*wanted, kFront);
    edits_.insertBefore(entities->endObject, takeEntities(*wanted));
    return edits_.apply(document_);
  }

 private:
  TagView view(std::uint32_t object) const { return {document_, encoding_, object}; }

  std::string bytesOf(std::uint32_t object) const {
    const TagRange tags = document_.tagsOf(object);
    const size_t begin = document_.startOf(tags.begin);
    return document_.bytes().substr(begin, document_.startOf(tags.end) - begin);
  }

  template <typename Test>
  std::optional<SheetBlock> find(Test test) const {
    const DrawingSection* tables = document_.section("TABLES");
    for (std::uint32_t i = tables != nullptr ? tables->firstObject + 1 : 0;
         tables != nullptr && i < tables->endObject; ++i) {
      if (document_.typeOf(i) != "BLOCK_RECORD") continue;
      SheetBlock sheet{i, 0, 0, view(i).behind("AcDbBlockTableRecord").text(2)};
      if (test(sheet) && findDefinition(sheet)) return sheet;
    }
    return std::nullopt;
  }

  bool findDefinition(SheetBlock& sheet) const {
    const DrawingSection* blocks = document_.section("BLOCKS");
    bool inside = false;
    for (std::uint32_t i = blocks != nullptr ? blocks->firstObject + 1 : 0;
         blocks != nullptr && i < blocks->endObject; ++i) {
      const std::string_view type = document_.typeOf(i);
      if (type == "BLOCK") {
        inside = equalsIgnoreCase(std::wstring_view(view(i).text(2)), sheet.name);
        if (inside) sheet.begin = i;
      } else if (type == "ENDBLK" && inside) {
        sheet.end = i;
        return true;
      }
    }
    return false;
  }

  /// Takes the entities of a block out of it; among those of the model they must say where they
  /// belong.
  std::string takeEntities(const SheetBlock& sheet) {
    std::string bytes;
    for (std::uint32_t i = sheet.begin + 1; i < sheet.end; ++i) {
      TagEditor entity(document_, encoding_, document_.tagsOf(i));
      entity.enter("AcDbEntity");
      entity.setInteger(67, 1);
      bytes += entity.bytes();
      edits_.replace(i, 1, {});
    }
    return bytes;
  }

  /// Takes the entities of the sheet out of those of the model, with their parts.
  std::string takePaperEntities() {
    std::string bytes;
    for (const std::uint32_t object : frontSheetObjects(document_, encoding_)) {
      bytes += bytesOf(object);
      edits_.replace(object, 1, {});
    }
    return bytes;
  }

  void rename(const SheetBlock& sheet, const std::wstring& name) {
    TagEditor record(document_, encoding_, document_.tagsOf(sheet.record));
    record.enter("AcDbBlockTableRecord");
    record.setText(2, name);
    edits_.replace(sheet.record, 1, record.bytes());
    TagEditor head(document_, encoding_, document_.tagsOf(sheet.begin));
    head.enter("AcDbBlockBegin");
    head.setText(2, name);
    head.setText(3, name);
    edits_.replace(sheet.begin, 1, head.bytes());
  }

  const TagDocument& document_;
  TextEncoding encoding_;
  DrawingEdits edits_;
};

}  // namespace

std::vector<std::uint32_t> frontSheetObjects(const TagDocument& document,
                                             const TextEncoding& encoding) {
  std::vector<std::uint32_t> found;
  bool onPaper = false;
  for (const DrawingSection& entities : document.sectionsNamed("ENTITIES")) {
    for (std::uint32_t i = entities.firstObject + 1; i < entities.endObject; ++i) {
      const std::string_view type = document.typeOf(i);
      // Parts go with their entity, whether they say so or not.
      const bool isPart = type == "VERTEX" || type == "ATTRIB" || type == "SEQEND";
      if (!isPart) onPaper = TagView(document, encoding, i).integer(67) == 1;
      if (onPaper) found.push_back(i);
    }
  }
  return found;
}

std::string withFrontSheet(std::string bytes, std::uint64_t block) {
  auto document = TagDocument::parse(bytes, "drawing");
  if (!document || document.value().isOld()) return bytes;
  const TagDocument tags = document.take();
  auto changed = FrontSheet(tags).bring(block);
  return changed ? std::move(*changed) : std::move(bytes);
}

}  // namespace tarn::host
