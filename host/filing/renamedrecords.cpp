#include "host/filing/renamedrecords.h"

#include <algorithm>
#include <array>
#include <optional>

#include "base/text.h"
#include "host/database/objectaccess.h"
#include "host/filing/entitycodec.h"

namespace tarn::host {

namespace {

constexpr int kLayerInData = 1003;

enum class Place { kHeader, kTables, kEntities, kObjects };

Place placeOf(const TagDocument& document, std::uint32_t object) {
  const auto isIn = [&](const char* name) {
    const DrawingSection* section = document.section(name);
    return section != nullptr && object >= section->firstObject && object < section->endObject;
  };
  if (isIn("HEADER")) return Place::kHeader;
  if (isIn("TABLES")) return Place::kTables;
  return isIn("OBJECTS") ? Place::kObjects : Place::kEntities;
}

template <size_t count>
bool isOneOf(std::string_view word, const std::array<std::string_view, count>& words) {
  return std::find(words.begin(), words.end(), word) != words.end();
}

using Found = std::optional<NamedKind>;

Found inHeader(std::string_view variable, int code) {
  static constexpr std::array<std::string_view, 4> kBlocks = {"$DIMBLK", "$DIMBLK1", "$DIMBLK2",
                                                              "$DIMLDRBLK"};
  if (variable == "$CELTYPE" && code == 6) return NamedKind::kLinetype;
  if ((variable == "$TEXTSTYLE" || variable == "$DIMTXSTY") && code == 7)
    return NamedKind::kTextStyle;
  if (isOneOf(variable, kBlocks) && code == 1) return NamedKind::kBlock;
  return std::nullopt;
}

/// Styles of dimensions name blocks as arrows before R2000, and by handles from then on.
Found inTables(std::string_view type, int code, bool namesArrows) {
  if (type == "LAYER" && code == 6) return NamedKind::kLinetype;
  if (type == "LTYPE" && code == 2) return NamedKind::kLinetype;
  if (type == "STYLE" && code == 2) return NamedKind::kTextStyle;
  if (type == "BLOCK_RECORD" && code == 2) return NamedKind::kBlock;
  if (type == "DIMSTYLE" && code >= 5 && code <= 7 && namesArrows) return NamedKind::kBlock;
  return std::nullopt;
}

Found inObjects(std::string_view type, int code) {
  if (code == 8 && type != "XRECORD") return NamedKind::kLayer;
  if (code == 6 && type == "MLINESTYLE") return NamedKind::kLinetype;
  if (code == 7 && type == "TABLESTYLE") return NamedKind::kTextStyle;
  return std::nullopt;
}

Found inEntities(std::string_view type, std::string_view mark, int code) {
  static constexpr std::array<std::string_view, 7> kTexts = {
      "TEXT", "MTEXT", "ATTRIB", "ATTDEF", "ACAD_TABLE", "RTEXT", "ARCALIGNEDTEXT"};
  static constexpr std::array<std::string_view, 6> kBlocks = {
      "INSERT", "DIMENSION", "ARC_DIMENSION", "LARGE_RADIAL_DIMENSION", "ACAD_TABLE", "BLOCK"};
  if (type == "SECTION") return std::nullopt;
  if (code == 8) return NamedKind::kLayer;
  if (code == 6 && (mark.empty() || mark == "AcDbEntity")) return NamedKind::kLinetype;
  if (code == 7 && isOneOf(type, kTexts)) return NamedKind::kTextStyle;
  if (code == 2 && isOneOf(type, kBlocks)) return NamedKind::kBlock;
  if (code == 3 && type == "BLOCK") return NamedKind::kBlock;
  return std::nullopt;
}

/// Follows the tags of an object and tells what each names.
class NameWatch {
 public:
  NameWatch(const TagDocument& document, std::uint32_t object)
      : place_(placeOf(document, object)), namesArrows_(document.version() < "AC1015") {}

  Found pass(int code, std::string_view value) {
    if (code == 0) type_ = trim(value);
    if (code == 100 || (code == 9 && place_ == Place::kHeader)) mark_ = trim(value);
    if (code == kLayerInData) return NamedKind::kLayer;
    switch (place_) {
      case Place::kHeader:
        return inHeader(mark_, code);
      case Place::kTables:
        return inTables(type_, code, namesArrows_);
      case Place::kObjects:
        return inObjects(type_, code);
      default:
        return inEntities(type_, mark_, code);
    }
  }

 private:
  Place place_;
  bool namesArrows_;
  std::string type_;
  std::string mark_;  ///< in the header the name of the variable
};

Found kindOf(const AcDbObject& record) {
  if (record.isKindOf(AcDbLayerTableRecord::desc())) return NamedKind::kLayer;
  if (record.isKindOf(AcDbLinetypeTableRecord::desc())) return NamedKind::kLinetype;
  if (record.isKindOf(AcDbTextStyleTableRecord::desc())) return NamedKind::kTextStyle;
  return std::nullopt;
}

}  // namespace

/// What the file does not define is known by what names it.
RenamedRecords::RenamedRecords(const DrawingBinding& binding)
    : document_(binding.document), encoding_(binding.encoding) {
  const auto text = [&](std::string_view bytes) { return encoding_.decode(bytes); };
  for (const auto& [name, id] : binding.layers) {
    compare(binding, NamedKind::kLayer, text(name), id);
  }
  for (const auto& [name, id] : binding.linetypes) {
    compare(binding, NamedKind::kLinetype, text(name), id);
  }
  for (const auto& [name, id] : binding.blocks) compare(binding, NamedKind::kBlock, name, id);
  for (const BoundObject& bound : binding.bound) {
    const AcDbObject* object = peek(bound.id);
    const Found kind = object != nullptr ? kindOf(*object) : std::nullopt;
    if (!kind) continue;
    const bool isLayer = *kind == NamedKind::kLayer;
    const TagView record =
        binding.view(bound.first).own(isLayer ? "AcDbLayerTableRecord" : nullptr);
    compare(binding, *kind, record.text(2), bound.id);
  }
}

void RenamedRecords::compare(const DrawingBinding& binding, NamedKind kind,
                             const std::wstring& before, AcDbObjectId id) {
  const auto* record = AcDbSymbolTableRecord::cast(peek(id));
  if (before.empty() || record == nullptr || record->isErased() || !ObjectAccess::isChanged(id)) {
    return;
  }
  // The spaces have names of their own in old drawings.
  const auto* block = AcDbBlockTableRecord::cast(record);
  if (block != nullptr && (block->isLayout() || id == binding.modelSpace)) return;
  const std::wstring now = recordName(id);
  if (equalsIgnoreCase(std::wstring_view(before), std::wstring_view(now))) return;
  names_.emplace(std::pair(kind, toLower(before)), encoding_.encode(now));
}

const std::string* RenamedRecords::newName(NamedKind kind, std::string_view inFile) const {
  const auto found = names_.find({kind, toLower(encoding_.decode(inFile))});
  return found != names_.end() ? &found->second : nullptr;
}

bool RenamedRecords::isNamedIn(std::uint32_t object) const {
  const TagRange tags = document_.tagsOf(object);
  NameWatch watch(document_, object);
  for (std::uint32_t i = tags.begin; i < tags.end; ++i) {
    const Tag& tag = document_.tag(i);
    const Found kind = watch.pass(tag.code, document_.text(tag));
    if (kind && newName(*kind, document_.text(tag)) != nullptr) return true;
  }
  return false;
}

void RenamedRecords::apply(std::uint32_t object, TagEditor& editor) const {
  NameWatch watch(document_, object);
  editor.replaceEach([&](int code, std::string_view value) {
    const Found kind = watch.pass(code, value);
    return kind ? newName(*kind, value) : nullptr;
  });
}

TagEditor editorOf(const DrawingBinding& binding, std::uint32_t object) {
  TagEditor editor(binding.document, binding.encoding, binding.document.tagsOf(object));
  if (binding.renamed != nullptr && !binding.renamed->isEmpty()) {
    binding.renamed->apply(object, editor);
  }
  return editor;
}

}  // namespace tarn::host
