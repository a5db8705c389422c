#include "host/filing/olddrawing.h"

#include <algorithm>
#include <set>

#include "base/text.h"
#include "host/database/layouts.h"
#include "host/database/objectaccess.h"
#include "host/filing/drawingfile.h"

namespace tarn::host {

namespace {

constexpr char kVersion[] = "AC1015";
constexpr int kFirstExtended = 1000;

/// Variables of R12 that R2000 has no longer.
constexpr std::string_view kGoneVariables[] = {
    "$ATTDIA",   "$ATTREQ",    "$BLIPMODE", "$COORDS",  "$DRAGMODE", "$FASTZOOM", "$FLATLAND",
    "$GRIDMODE", "$GRIDUNIT",  "$HANDLING", "$OSMODE",  "$SNAPANG",  "$SNAPBASE", "$SNAPISOPAIR",
    "$SNAPMODE", "$SNAPSTYLE", "$SNAPUNIT", "$VIEWCTR", "$VIEWDIR",  "$VIEWSIZE", "$VIEWTWIST"};

struct TableKind {
  std::string_view name;
  const char* mark;
};
constexpr TableKind kTableKinds[] = {
    {"VPORT", "AcDbViewportTableRecord"}, {"LTYPE", "AcDbLinetypeTableRecord"},
    {"LAYER", "AcDbLayerTableRecord"},    {"STYLE", "AcDbTextStyleTableRecord"},
    {"VIEW", "AcDbViewTableRecord"},      {"UCS", "AcDbUCSTableRecord"},
    {"APPID", "AcDbRegAppTableRecord"},   {"DIMSTYLE", "AcDbDimStyleTableRecord"}};

bool isHandleCode(int code) {
  return code == 5 || code == 105 || (code >= 320 && code < 370) || code == 390;
}

bool isCommon(int code) {
  return code == 6 || code == 8 || code == 62 || code == 67;
}

/// Objects of a table in a file: the records, without TABLE and ENDTAB.
std::vector<std::uint32_t> recordsOf(const TagDocument& document, std::string_view table) {
  std::vector<std::uint32_t> records;
  const DrawingSection* section = document.section("TABLES");
  for (std::uint32_t i = section != nullptr ? section->firstObject : 0;
       section != nullptr && i < section->endObject; ++i) {
    if (document.typeOf(i) == table) records.push_back(i);
  }
  return records;
}

class Modernizer {
 public:
  explicit Modernizer(const DrawingBinding& binding)
      : old_(binding),
        document_(binding.document),
        lineEnd_(document_.lineEnd()),
        template_(DrawingFile::fromBytes(newDrawingBytes(kVersion), "new drawing").take()) {
    const auto parsed = TagDocument::parse(newDrawingBytes(kVersion), "new drawing");
    model_ = parsed.value();
    for (const BoundObject& bound : old_.bound) idOf_.emplace(bound.first, bound.id);
    for (const auto& [handle, slot] : ObjectAccess::state(*old_.database).stubs) {
      used_.insert(handle);
    }
    matchTemplate();
  }

  ModernDrawing make() {
    const std::string tables = section("TABLES", tablesBody());
    const std::string blocks = section("BLOCKS", blocksBody());
    std::string entities;
    for (const DrawingSection& own : document_.sectionsNamed("ENTITIES")) {
      entities += entitiesOf(own.firstObject + 1, own.endObject, 0);
    }
    const std::string objects = section("OBJECTS", templateSection("OBJECTS"));
    // The header names the first free handle, so it comes last.
    const std::string body = section("CLASSES", "") + tables + blocks +
                             section("ENTITIES", entities) + objects + otherSections();
    made_.bytes = beginning() + section("HEADER", headerBody()) + body + tag(0, "EOF");
    return std::move(made_);
  }

 private:
  // What the new drawing begins with.

  void match(AcDbObjectId inTemplate, AcDbObjectId own) {
    if (!inTemplate.isNull() && !own.isNull()) {
      handles_[inTemplate.handle().value()] = own.handle().value();
    }
  }

  /// Objects of the template that the drawing's database has already.
  void matchTemplate() {
    AcDbDatabase& other = template_->database();
    AcDbDatabase& own = *old_.database;
    match(other.blockTableId(), own.blockTableId());
    match(other.layerTableId(), own.layerTableId());
    match(other.linetypeTableId(), own.linetypeTableId());
    match(other.textStyleTableId(), own.textStyleTableId());
    match(other.namedObjectsDictionaryId(), own.namedObjectsDictionaryId());
    const auto layouts = layoutsOf(own);
    for (const LayoutEntry& entry : layoutsOf(other)) {
      const AcDbObjectId space = entry.isModel ? old_.modelSpace : old_.paperSpace;
      match(entry.block, space);
      const auto mine = std::find_if(layouts.begin(), layouts.end(),
                                     [&](const LayoutEntry& one) { return one.block == space; });
      if (mine == layouts.end()) continue;
      match(entry.id, mine->id);
      match(peek(entry.id)->ownerId(), peek(mine->id)->ownerId());
    }
  }

  std::uint64_t newHandle() {
    std::uint64_t handle = 0;
    do {
      handle = ObjectAccess::takeHandle(*old_.database);
    } while (!used_.insert(handle).second);
    return handle;
  }

  std::uint64_t mapped(std::uint64_t handle) {
    if (handle == 0) return 0;
    const auto known = handles_.find(handle);
    if (known != handles_.end()) return known->second;
    return handles_[handle] = newHandle();
  }

  /// Objects of the template with the handles of this drawing.
  std::string templateObject(std::uint32_t object) {
    std::string out;
    const TagRange range = model_.tagsOf(object);
    for (std::uint32_t i = range.begin; i < range.end; ++i) {
      const Tag& each = model_.tag(i);
      const std::string_view word = model_.word(each);
      out += isHandleCode(each.code) ? tag(each.code, formatHandle(mapped(parseHandle(word))))
                                     : tag(each.code, word);
    }
    return out;
  }

  std::string templateSection(std::string_view name) {
    std::string out;
    const DrawingSection* section = model_.section(name);
    for (std::uint32_t i = section->firstObject + 1; i < section->endObject; ++i) {
      out += templateObject(i);
    }
    return out;
  }

  // Pieces of text.

  std::string tag(int code, std::string_view value) const {
    std::string digits = std::to_string(code);
    digits.insert(0, digits.size() < 3 ? 3 - digits.size() : 0, ' ');
    return digits + lineEnd_ + std::string(value) + lineEnd_;
  }

  std::string section(std::string_view name, const std::string& body) const {
    return tag(0, "SECTION") + tag(2, name) + body + tag(0, "ENDSEC");
  }

  /// The bytes of a tag, and the comments behind it.
  std::string raw(std::uint32_t index) const {
    const size_t begin = document_.startOf(index);
    std::string bytes = document_.bytes().substr(begin, document_.startOf(index + 1) - begin);
    // The last line of a file that was cut off.
    if (!bytes.empty() && bytes.back() != '\n' && bytes.back() != '\r') bytes += lineEnd_;
    return bytes;
  }

  std::string beginning() const {
    if (document_.objectCount() == 0) return {};
    const size_t end = document_.startOf(document_.tagsOf(0).begin);
    return document_.bytes().substr(0, end);
  }

  std::string otherSections() const {
    static constexpr std::string_view kKnown[] = {"HEADER", "CLASSES",  "TABLES",
                                                  "BLOCKS", "ENTITIES", "OBJECTS"};
    std::string out;
    for (const DrawingSection& each : document_.sections()) {
      if (std::find(std::begin(kKnown), std::end(kKnown), each.name) != std::end(kKnown)) continue;
      const size_t begin = document_.startOf(document_.tagsOf(each.firstObject).begin);
      const size_t end = document_.startOf(document_.tagsOf(each.endObject - 1).end);
      out += document_.bytes().substr(begin, end - begin) + tag(0, "ENDSEC");
    }
    return out;
  }

  std::string headerBody() {
    std::string out = tag(9, "$ACADVER") + tag(1, kVersion);
    out +=
        tag(9, "$HANDSEED") + tag(5, formatHandle(ObjectAccess::state(*old_.database).nextHandle));
    const DrawingSection* header = document_.section("HEADER");
    if (header == nullptr) return out;
    const TagRange range = document_.tagsOf(header->firstObject);
    bool isKept = false;
    for (std::uint32_t i = range.begin + 1; i < range.end; ++i) {
      const Tag& each = document_.tag(i);
      const std::string_view word = document_.word(each);
      if (each.code == 9) {
        isKept = word != "$ACADVER" && word != "$HANDSEED" &&
                 std::find(std::begin(kGoneVariables), std::end(kGoneVariables), word) ==
                     std::end(kGoneVariables);
      }
      if (isKept) out += raw(i);
    }
    return out;
  }

  // Objects of the old drawing.

  /// Its handle in the database, else its own one, else a new one.
  std::uint64_t handleFor(std::uint32_t object) {
    const auto bound = idOf_.find(object);
    std::uint64_t handle = document_.handleOf(object);
    if (bound != idOf_.end()) {
      handle = bound->second.handle().value();
    } else if (handle == 0 || !used_.insert(handle).second) {
      handle = newHandle();
    }
    made_.handles[object] = handle;
    return handle;
  }

  std::uint64_t spaceHandle(bool onPaper) const {
    return (onPaper ? old_.paperSpace : old_.modelSpace).handle().value();
  }

  std::string tablesBody() {
    std::string out;
    for (const TableKind& kind : kTableKinds) out += table(kind);
    return out + blockRecords();
  }

  /// The TABLE of the template, with the number of records that this drawing has.
  std::string tableHead(std::string_view name, size_t count) {
    const DrawingSection* section = model_.section("TABLES");
    for (std::uint32_t i = section->firstObject + 1; i < section->endObject; ++i) {
      const TagRange range = model_.tagsOf(i);
      if (model_.typeOf(i) != "TABLE" || model_.word(model_.tag(range.begin + 1)) != name) continue;
      tableHandle_ = mapped(model_.handleOf(i));
      return replaceAll(templateObject(i), tag(100, "AcDbSymbolTable") + tag(70, numberOf(i)),
                        tag(100, "AcDbSymbolTable") + tag(70, std::to_string(count)));
    }
    return {};
  }
  std::string numberOf(std::uint32_t object) const {
    return std::to_string(TagView(model_, encoding_, object).integer(70));
  }

  std::string table(const TableKind& kind) {
    const std::vector<std::uint32_t> own = recordsOf(document_, kind.name);
    std::set<std::wstring> names;
    for (const std::uint32_t record : own) names.insert(toLower(old_.view(record).text(2)));
    std::string records;
    size_t count = own.size();
    for (const std::uint32_t record : recordsOf(model_, kind.name)) {
      if (names.count(toLower(TagView(model_, encoding_, record).text(2))) > 0) continue;
      records += templateObject(record);
      ++count;
    }
    const std::string head = tableHead(kind.name, count);
    for (const std::uint32_t record : own) records += tableRecord(kind, record);
    return head + records + tag(0, "ENDTAB");
  }

  std::string tableRecord(const TableKind& kind, std::uint32_t record) {
    const bool isDimension = kind.name == "DIMSTYLE";
    std::string out = tag(0, kind.name);
    out += tag(isDimension ? 105 : 5, formatHandle(handleFor(record)));
    out += tag(330, formatHandle(tableHandle_)) + tag(100, "AcDbSymbolTableRecord") +
           tag(100, kind.mark);
    const TagRange range = document_.tagsOf(record);
    for (std::uint32_t i = range.begin + 1; i < range.end; ++i) {
      const Tag& each = document_.tag(i);
      if (each.code == 100 || each.code == 330 || each.code == 105) continue;
      if (each.code == 5 && !isDimension) continue;
      if (isDimension && each.code >= 5 && each.code <= 7) {
        out += arrowBlock(each);
        continue;
      }
      out += raw(i);
      // Every dash has a kind since R13.
      if (kind.name == "LTYPE" && each.code == 49) out += tag(74, "0");
    }
    return out;
  }

  /// The blocks of arrows, by name in R12 and by handle since.
  std::string arrowBlock(const Tag& name) const {
    const AcDbObjectId block = old_.blockOf(old_.encoding.decode(document_.text(name)));
    return block.isNull() ? std::string()
                          : tag(337 + name.code, formatHandle(block.handle().value()));
  }

  bool isSpace(AcDbObjectId block) const {
    return block == old_.modelSpace || block == old_.paperSpace;
  }

  AcDbObjectId blockAt(std::uint32_t object) const {
    return old_.blockOf(old_.view(object).text(2));
  }

  std::string blockRecords() {
    std::string out;
    size_t count = 0;
    for (const std::uint32_t record : recordsOf(model_, "BLOCK_RECORD")) {
      out += templateObject(record);
      ++count;
    }
    const std::string head = tableHead("BLOCK_RECORD", 0);
    const DrawingSection* section = document_.section("BLOCKS");
    std::set<AcDbStub*> done;
    for (std::uint32_t i = section != nullptr ? section->firstObject : 0;
         section != nullptr && i < section->endObject; ++i) {
      if (document_.typeOf(i) != "BLOCK") continue;
      const AcDbObjectId id = blockAt(i);
      if (id.isNull() || isSpace(id) || !done.insert(id).second) continue;
      ++count;
      const Tag* name = old_.view(i).find(2);
      out += tag(0, "BLOCK_RECORD") + tag(5, formatHandle(id.handle().value())) +
             tag(330, formatHandle(tableHandle_)) + tag(100, "AcDbSymbolTableRecord") +
             tag(100, "AcDbBlockTableRecord") +
             tag(2, name != nullptr ? document_.text(*name) : "?");
    }
    return replaceAll(head, tag(70, "0"), tag(70, std::to_string(count))) + out + tag(0, "ENDTAB");
  }

  std::string blocksBody() {
    std::string spaces[2];  // what stands in the old definitions of model and paper
    std::string others;
    const DrawingSection* section = document_.section("BLOCKS");
    for (std::uint32_t i = section != nullptr ? section->firstObject + 1 : 0;
         section != nullptr && i < section->endObject;) {
      std::uint32_t end = i;
      while (end < section->endObject && document_.typeOf(end) != "ENDBLK") ++end;
      const bool isWhole = document_.typeOf(i) == "BLOCK" && end < section->endObject;
      const AcDbObjectId id = isWhole ? blockAt(i) : AcDbObjectId();
      const std::uint64_t owner = id.isNull() ? 0 : id.handle().value();
      if (isSpace(id)) {
        spaces[id == old_.paperSpace ? 1 : 0] += entitiesOf(i + 1, end, owner);
      } else if (isWhole) {
        // The handle of a BLOCK in the database is that of its record.
        others += entity(i, newHandle(), owner, nullptr) + entitiesOf(i + 1, end, owner) +
                  entity(end, handleFor(end), owner, nullptr);
      } else {
        others += entitiesOf(i, end, 0);
      }
      i = end + 1;
    }
    std::string out;
    const DrawingSection* own = model_.section("BLOCKS");
    for (std::uint32_t i = own->firstObject + 1, block = 0; i < own->endObject; ++i) {
      const bool isEnd = model_.typeOf(i) == "ENDBLK";
      if (isEnd) out += spaces[block++];
      out += templateObject(i);
    }
    return out + others;
  }

  /// A run of entities; `owner` 0 for those of model and paper.
  std::string entitiesOf(std::uint32_t begin, std::uint32_t end, std::uint64_t owner) {
    std::string out;
    std::uint64_t headHandle = 0;
    std::optional<TagView> head;
    for (std::uint32_t i = begin; i < end; ++i) {
      const std::string_view type = document_.typeOf(i);
      const TagView tags = old_.view(i);
      const bool isPart = type == "VERTEX" || type == "ATTRIB" || type == "SEQEND";
      const std::uint64_t handle = handleFor(i);
      const std::uint64_t space = owner != 0 ? owner : spaceHandle(tags.integer(67) == 1);
      out += entity(i, handle, isPart && headHandle != 0 ? headHandle : space,
                    isPart && head ? &*head : nullptr);
      if (type == "POLYLINE" || type == "INSERT") {
        headHandle = handle;
        head = tags;
      } else if (!isPart || type == "SEQEND") {
        headHandle = 0;
        head.reset();
      }
    }
    return out;
  }

  std::string entity(std::uint32_t object, std::uint64_t handle, std::uint64_t owner,
                     const TagView* head) {
    const TagRange range = document_.tagsOf(object);
    const TagView tags = old_.view(object);
    std::string out = raw(range.begin);
    out += tag(5, formatHandle(handle));
    if (owner != 0) out += tag(330, formatHandle(owner));
    const std::vector<SubclassPart> parts = subclassesOf(tags, head);
    const bool hasMarks = tags.has(100) || (parts.empty() && tags.type() != "SEQEND");
    if (!hasMarks) out += tag(100, "AcDbEntity");
    std::vector<std::string> bodies(parts.size());
    std::string extended;
    for (std::uint32_t i = range.begin + 1; i < range.end; ++i) {
      const int code = document_.tag(i).code;
      if (code == 5 || (code == 330 && hasMarks)) continue;
      if (!extended.empty() || code >= kFirstExtended) {
        extended += raw(i);
      } else if (hasMarks || isCommon(code) || parts.empty()) {
        out += raw(i);
      } else {
        bodies[partFor(parts, code)] += raw(i);
      }
    }
    for (size_t i = 0; i < parts.size() && !hasMarks; ++i) {
      out += tag(100, parts[i].mark) + bodies[i];
    }
    return out + extended;
  }

  static size_t partFor(const std::vector<SubclassPart>& parts, int code) {
    size_t standard = 0;
    for (size_t i = 0; i < parts.size(); ++i) {
      const std::vector<int>& codes = parts[i].codes;
      if (std::find(codes.begin(), codes.end(), code) != codes.end()) return i;
      if (codes.empty()) standard = i;
    }
    return standard;
  }

  const DrawingBinding& old_;
  const TagDocument& document_;
  std::string lineEnd_;
  std::unique_ptr<DrawingFile> template_;
  TagDocument model_;
  TextEncoding encoding_{model_};
  std::map<std::uint64_t, std::uint64_t> handles_;  ///< of the template, and here
  std::map<std::uint32_t, AcDbObjectId> idOf_;
  std::set<std::uint64_t> used_;
  std::uint64_t tableHandle_ = 0;
  ModernDrawing made_;
};

}  // namespace

ModernDrawing modernDrawing(const DrawingBinding& binding) {
  return Modernizer(binding).make();
}

}  // namespace tarn::host
