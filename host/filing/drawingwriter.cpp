#include "host/filing/drawingwriter.h"

#include <algorithm>
#include <map>
#include <memory>
#include <set>

#include "dbdict.h"
#include "dblayout.h"
#include "dbproxy.h"
#include "dbxrecrd.h"
#include "host/database/objectaccess.h"
#include "host/filing/drawingbinding.h"
#include "host/filing/drawingfile.h"
#include "host/filing/entitycodec.h"
#include "host/filing/objectcodec.h"
#include "host/filing/tagvalues.h"
#include "rxclass.h"
#include "sorttab.h"

namespace tarn::host {

void DrawingEdits::replace(std::uint32_t first, std::uint32_t count, std::string bytes) {
  edits_.push_back({first, count, std::move(bytes)});
}

std::string DrawingEdits::apply(const TagDocument& document) const {
  std::vector<const Edit*> sorted;
  sorted.reserve(edits_.size());
  size_t added = 0;
  for (const Edit& edit : edits_) {
    sorted.push_back(&edit);
    added += edit.bytes.size();
  }
  // What is inserted comes before what stands there.
  std::stable_sort(sorted.begin(), sorted.end(), [](const Edit* a, const Edit* b) {
    return a->first != b->first ? a->first < b->first : a->count == 0 && b->count != 0;
  });
  const std::string& bytes = document.bytes();
  const auto allTags = static_cast<std::uint32_t>(document.tags().size());
  const auto startOf = [&](std::uint32_t object) {
    return document.startOf(object < document.objectCount() ? document.tagsOf(object).begin
                                                            : allTags);
  };
  // Behind the last whole tag of a file that was cut off stand only the rests of one.
  const size_t end = document.isComplete() ? bytes.size() : startOf(document.objectCount());
  std::string out;
  out.reserve(bytes.size() + added);
  size_t at = 0;
  for (const Edit* edit : sorted) {
    const size_t start = startOf(edit->first);
    if (start > at) out.append(bytes, at, start - at);
    out += edit->bytes;
    at = std::max(at, std::max(start, startOf(edit->first + edit->count)));
  }
  if (end > at) out.append(bytes, at, end - at);
  return out;
}

namespace {

class DrawingWriter {
 public:
  explicit DrawingWriter(DrawingBinding& binding)
      : binding_(binding), document_(binding.document), lineEnd_(document_.lineEnd()) {}

  std::string write(const std::optional<OpeningState>& state) {
    for (const BoundObject& bound : binding_.bound) {
      known_.emplace(bound.id, &bound);
      anyErased_ = anyErased_ || bound.id.isErased();
    }
    markNeeded();
    for (const BoundObject& bound : binding_.bound) writeBound(bound);
    writeNew();
    addClasses();
    if (state && state->view) editActiveView(binding_, *state->view, edits_);
    editHeader(state);
    closeCutOff();
    return edits_.apply(document_);
  }

 private:
  std::string tag(int code, std::string_view value) const {
    std::string digits = std::to_string(code);
    digits.insert(0, digits.size() < 3 ? 3 - digits.size() : 0, ' ');
    return digits + lineEnd_ + std::string(value) + lineEnd_;
  }

  void writeBound(const BoundObject& bound) {
    AcDbObject* object = peek(bound.id);
    if (object == nullptr || object->isKindOf(AcDbSymbolTable::desc())) return;
    if (object->isErased()) {
      edits_.replace(bound.first, bound.count, {});
      if (object->isKindOf(AcDbBlockTableRecord::desc())) removeDefinition(bound.id);
      return;
    }
    const bool isDictionary = object->isKindOf(AcDbDictionary::desc());
    if (!ObjectAccess::isChanged(bound.id) && !(isDictionary && anyErased_)) return;
    const ObjectAccess::Look look(*object);
    std::string bytes;
    if (const auto* entity = AcDbEntity::cast(object)) {
      bytes = entityBytes(*entity, &bound);
    } else if (const auto* layer = AcDbLayerTableRecord::cast(object)) {
      bytes = writeLayerRecord(binding_, *layer, &bound, 0);
    } else if (const auto* view = AcDbViewTableRecord::cast(object)) {
      bytes = writeViewRecord(binding_, *view, &bound, 0);
    } else if (isDictionary) {
      bytes = writeDictionary(binding_, *AcDbDictionary::cast(object), &bound);
    } else if (const auto* record = AcDbXrecord::cast(object)) {
      bytes = writeRecord(binding_, *record, &bound);
    } else if (const auto* layout = AcDbLayout::cast(object)) {
      bytes = writeLayout(binding_, *layout, &bound);
    } else if (const auto* order = AcDbSortentsTable::cast(object)) {
      bytes = writeSortTable(binding_, *order, &bound);
    } else {
      if (bound.count != 1) return;
      TagEditor editor(document_, binding_.encoding, document_.tagsOf(bound.first));
      writeExtension(binding_, *object, &bound, editor);
      writeFrameMode(*binding_.database, document_.typeOf(bound.first), editor);
      bytes = editor.bytes();
    }
    edits_.replace(bound.first, bound.count, std::move(bytes));
  }

  /// What stood in an erased block goes with it, also what nobody here understands.
  void removeDefinition(AcDbObjectId block) {
    const auto end = binding_.blockEnds.find(block);
    if (end != binding_.blockEnds.end()) {
      std::uint32_t begin = end->second;
      while (begin > 0 && document_.typeOf(begin) != "BLOCK") --begin;
      edits_.replace(begin, end->second - begin + 1, {});
    }
    if (block != binding_.paperSpace) return;
    for (const std::uint32_t object : frontSheetObjects(document_, binding_.encoding)) {
      edits_.replace(object, 1, {});
    }
  }

  /// What an entity that began as a copy was made from, when that stands in the file in the same
  /// way; else null.
  const BoundObject* modelOf(const AcDbEntity& entity) const {
    const AcDbObject* at = &entity;
    while (at != nullptr) {
      const AcDbObjectId source = ObjectAccess::copiedFrom(*at);
      if (source.isNull() || source.database() != binding_.database.get()) return nullptr;
      const auto found = known_.find(source);
      if (found != known_.end()) {
        const std::string_view type = document_.typeOf(found->second->first);
        return codecOf(type, entity) != nullptr ? found->second : nullptr;
      }
      at = peek(source);
    }
    return nullptr;
  }

  TagEditor editorFor(const AcDbEntity& entity, const BoundObject* from, bool isCopy,
                      const std::string& type) const {
    TagEditor editor = from != nullptr
                           ? TagEditor(document_, binding_.encoding, document_.tagsOf(from->first))
                           : TagEditor(document_, binding_.encoding, type);
    const std::uint64_t owner = ownerHandle(entity.blockId());
    const std::uint64_t handle = binding_.hasHandles ? entity.handle().value() : 0;
    if (isCopy) {
      editor.renew(handle, owner);
    } else if (from == nullptr && handle != 0) {
      editor.setHandle(5, handle);
      if (!document_.isOld() && owner != 0) editor.setHandle(330, owner);
    }
    return editor;
  }

  std::string entityBytes(const AcDbEntity& entity, const BoundObject* old) {
    const BoundObject* model = old == nullptr ? modelOf(entity) : nullptr;
    const BoundObject* from = old != nullptr ? old : model;
    const EntityCodec* codec = from != nullptr ? codecOf(document_.typeOf(from->first), entity)
                                               : codecFor(entity, document_.isOld());
    const AcRxClass* description = entity.isA();
    const std::wstring dxfName = description->dxfName() != nullptr ? description->dxfName() : L"";
    const std::string type =
        codec != nullptr ? codec->type : std::string(dxfName.begin(), dxfName.end());
    if (type.empty() && from == nullptr) return {};
    TagEditor editor = editorFor(entity, from, model != nullptr, type);
    writeCommon(binding_, entity, editor);
    writeProperties(binding_, entity, from, editor);
    if (old == nullptr && (codec == nullptr || codec->isOwn)) classes_.insert(description);
    if (codec == nullptr) {
      writeExtendedData(binding_, entity, from, editor);
      return editor.bytes();
    }
    if (codec->subclass != nullptr) editor.enter(codec->subclass);
    if (codec->hasThickness) writeThickness(binding_, entity, from, editor);
    std::unique_ptr<EntityTags> tags;
    if (from != nullptr) {
      tags = std::make_unique<EntityTags>(
          EntityTags{binding_, binding_.view(from->first), from->first, from->count});
    }
    EntityOutput output{binding_, editor, tags.get(), {}, model != nullptr};
    codec->write(entity, output);
    writeExtendedData(binding_, entity, from, editor);
    return editor.bytes() + output.parts;
  }

  /// 0 for a block that has no handle in the file.
  std::uint64_t ownerHandle(AcDbObjectId block) const {
    return binding_.implied.count(block) == 0 ? block.handle().value() : 0;
  }

  /// What is new drags its owners and, in a dictionary, what it names into the file.
  void markNeeded() {
    auto& stubs = ObjectAccess::state(*binding_.database).stubs;
    for (bool again = true; again;) {
      again = false;
      const auto need = [&](AcDbObjectId id) {
        AcDbObject* object = peek(id);
        if (object == nullptr || ObjectAccess::isChanged(id) || object->isErased()) return;
        ObjectAccess::setChanged(*object);
        again = true;
      };
      for (const auto& [handle, slot] : stubs) {
        AcDbObject* object = slot->object.get();
        if (!slot->changed || object->isErased() || known_.count(slot) > 0) continue;
        const auto* dictionary = AcDbDictionary::cast(object);
        if (dictionary == nullptr && !object->isKindOf(AcDbXrecord::desc()) &&
            !object->isKindOf(AcDbLayout::desc()) && !object->isKindOf(AcDbSortentsTable::desc())) {
          continue;
        }
        need(object->ownerId());
        if (dictionary == nullptr) continue;
        const ObjectAccess::Look look(*object);
        const std::unique_ptr<AcDbDictionaryIterator> entries(dictionary->newIterator());
        for (; !entries->done(); entries->next()) need(entries->objectId());
      }
    }
  }

  void writeNew() {
    std::string layers;
    std::string views;
    std::string blockRecords;
    std::string objects;
    std::map<std::string, std::string> defined;  // by table
    std::vector<const AcDbBlockTableRecord*> blocks;
    std::map<AcDbStub*, std::string> byBlock;
    for (const auto& [handle, slot] : ObjectAccess::state(*binding_.database).stubs) {
      AcDbObject* object = slot->object.get();
      if (known_.count(slot) > 0 || object->isErased() || !slot->changed) continue;
      const ObjectAccess::Look look(*object);
      if (const auto* entity = AcDbEntity::cast(object)) {
        byBlock[entity->blockId()] += entityBytes(*entity, nullptr);
      } else if (const auto* layer = AcDbLayerTableRecord::cast(object)) {
        layers += writeLayerRecord(binding_, *layer, nullptr,
                                   handleInFile(binding_.database->layerTableId()));
      } else if (const auto* view = AcDbViewTableRecord::cast(object)) {
        views += writeViewRecord(binding_, *view, nullptr,
                                 handleInFile(binding_.database->viewTableId()));
      } else if (const char* table = definedTableOf(*object)) {
        defined[table] += writeDefinedRecord(binding_, *AcDbSymbolTableRecord::cast(object),
                                             handleInFile(object->ownerId()));
      } else if (const auto* block = AcDbBlockTableRecord::cast(object)) {
        if (binding_.implied.count(slot) > 0) continue;
        blocks.push_back(block);
        blockRecords +=
            writeBlockRecord(binding_, *block, handleInFile(binding_.database->blockTableId()));
      } else {
        objects += objectBytes(*object);
        if (object->isKindOf(AcDbSortentsTable::desc())) classes_.insert(object->isA());
      }
    }
    for (const auto& [table, bytes] : defined) {
      if (!bytes.empty()) insertRecords(table.c_str(), bytes);
    }
    if (!layers.empty()) insertRecords("LAYER", layers);
    if (!views.empty()) insertRecords("VIEW", views);
    if (!blockRecords.empty() && !document_.isOld()) insertRecords("BLOCK_RECORD", blockRecords);
    std::string definitions;
    for (const AcDbBlockTableRecord* block : blocks) {
      const ObjectAccess::Look look(const_cast<AcDbBlockTableRecord&>(*block));
      definitions += writeBlock(binding_, *block, byBlock[block->objectId()]);
      byBlock.erase(block->objectId());
    }
    if (!definitions.empty()) insertSection("BLOCKS", definitions);
    for (auto& [block, bytes] : byBlock) insertEntities(AcDbObjectId(block), std::move(bytes));
    if (!objects.empty()) insertSection("OBJECTS", objects);
  }

  std::string objectBytes(const AcDbObject& object) const {
    // In R12 reasonAgainstOld() has seen that there is nothing to be lost.
    if (document_.isOld()) return {};
    if (const auto* dictionary = AcDbDictionary::cast(&object)) {
      const bool isRoot = object.objectId() == binding_.database->namedObjectsDictionaryId();
      if (isRoot && dictionary->numEntries() == 0) return {};
      return writeDictionary(binding_, *dictionary, nullptr);
    }
    if (const auto* record = AcDbXrecord::cast(&object)) {
      return writeRecord(binding_, *record, nullptr);
    }
    if (const auto* layout = AcDbLayout::cast(&object)) {
      return writeLayout(binding_, *layout, nullptr);
    }
    if (const auto* order = AcDbSortentsTable::cast(&object)) {
      return writeSortTable(binding_, *order, nullptr);
    }
    return {};
  }

  /// 0 for a table that the file does not have.
  std::uint64_t handleInFile(AcDbObjectId table) const {
    return known_.count(table) > 0 ? table.handle().value() : 0;
  }

  void insertRecords(const char* table, const std::string& bytes) {
    hasNew_ = true;
    const DrawingSection* tables = document_.section("TABLES");
    bool inTable = false;
    for (std::uint32_t i = tables != nullptr ? tables->firstObject + 1 : 0;
         tables != nullptr && i < tables->endObject; ++i) {
      if (document_.typeOf(i) == "TABLE") {
        const Tag* name = binding_.view(i).find(2);
        inTable = name != nullptr && document_.word(*name) == table;
      }
      if (inTable && document_.typeOf(i) == "ENDTAB") return edits_.insertBefore(i, bytes);
    }
    insertSection("TABLES",
                  tag(0, "TABLE") + tag(2, table) + tag(70, "1") + bytes + tag(0, "ENDTAB"));
  }

  void insertEntities(AcDbObjectId block, std::string bytes) {
    hasNew_ = true;
    const auto end = binding_.blockEnds.find(block);
    const bool isSpace = block == binding_.modelSpace || block == binding_.paperSpace;
    if (isSpace) {
      insertSection("ENTITIES", bytes);
    } else if (end != binding_.blockEnds.end()) {
      edits_.insertBefore(end->second, std::move(bytes));
    }
  }

  /// At the end of a section, which is made when it is missing.
  void insertSection(std::string_view name, const std::string& bytes) {
    hasNew_ = true;
    if (const DrawingSection* section = document_.section(name)) {
      return edits_.insertBefore(section->endObject, bytes);
    }
    const std::string whole = tag(0, "SECTION") + tag(2, name) + bytes + tag(0, "ENDSEC");
    edits_.insertBefore(placeOf(name), whole);
  }

  /// Before the first section that comes after one of this name; else before the end mark.
  std::uint32_t placeOf(std::string_view name) const {
    static constexpr std::string_view kOrder[] = {"HEADER", "CLASSES",  "TABLES",
                                                  "BLOCKS", "ENTITIES", "OBJECTS"};
    bool behind = false;
    for (const std::string_view other : kOrder) {
      const DrawingSection* section = document_.section(other);
      if (behind && section != nullptr) return section->firstObject;
      behind = behind || other == name;
    }
    const std::uint32_t count = document_.objectCount();
    return document_.isComplete() ? count - 1 : count;
  }

  void addClasses() {
    const DrawingSection* section = document_.section("CLASSES");
    std::string bytes;
    for (const AcRxClass* description : classes_) {
      bool stands = false;
      for (std::uint32_t i = section != nullptr ? section->firstObject + 1 : 0;
           section != nullptr && i < section->endObject; ++i) {
        stands = stands || binding_.view(i).text(1) == description->dxfName();
      }
      if (!stands) bytes += writeClass(binding_, *description);
    }
    if (!bytes.empty()) insertSection("CLASSES", bytes);
  }

  void editHeader(const std::optional<OpeningState>& state) {
    const DrawingSection* header = document_.section("HEADER");
    if (header == nullptr) return;
    TagEditor editor(document_, binding_.encoding, document_.tagsOf(header->firstObject));
    const std::uint32_t begin = document_.tagsOf(header->firstObject).begin;
    const TagRange seed = document_.headerVariable("$HANDSEED");
    if (hasNew_ && seed.begin < seed.end) {
      const std::uint64_t next = ObjectAccess::state(*binding_.database).nextHandle;
      if (parseHandle(document_.word(document_.tag(seed.begin))) < next) {
        editor.replaceAt(seed.begin - begin, formatHandle(next));
      }
    }
    const TagRange layer = document_.headerVariable("$CLAYER");
    const AcDbObjectId current = binding_.database->clayer();
    if (layer.begin < layer.end) {
      const std::string_view inFile = document_.text(document_.tag(layer.begin));
      if (binding_.layerOf(inFile) != current) {
        editor.replaceAt(layer.begin - begin, binding_.encoding.encode(recordName(current)));
      }
    }
    writeDisplayVariables(*binding_.database, document_, editor);
    if (state) writeHeaderState(document_, *state, editor);
    if (editor.isChanged()) edits_.replace(header->firstObject, 1, editor.bytes());
  }

  /// Ends what a file that was cut off has left open.
  void closeCutOff() {
    if (document_.isComplete()) return;
    const std::uint32_t count = document_.objectCount();
    const DrawingSection& last = document_.sections().back();
    std::string bytes;
    if (last.endObject == count) {
      const std::string_view open = last.name == "TABLES"   ? "TABLE"
                                    : last.name == "BLOCKS" ? "BLOCK"
                                                            : "";
      bool isOpen = false;
      for (std::uint32_t i = last.firstObject; !open.empty() && i < count; ++i) {
        const std::string_view type = document_.typeOf(i);
        if (type == open) isOpen = true;
        if (type == "ENDTAB" || type == "ENDBLK") isOpen = false;
      }
      if (isOpen) bytes += tag(0, open == "TABLE" ? "ENDTAB" : "ENDBLK");
      bytes += tag(0, "ENDSEC");
    }
    edits_.insertBefore(count, bytes + tag(0, "EOF"));
  }

  DrawingBinding& binding_;
  const TagDocument& document_;
  std::string lineEnd_;
  DrawingEdits edits_;
  std::map<AcDbStub*, const BoundObject*> known_;
  std::set<const AcRxClass*> classes_;
  bool anyErased_ = false;
  bool hasNew_ = false;
};

}  // namespace

namespace {

/// A copy of something that stands in the file is written as that is.
bool isCopyOfKnown(const AcDbObject& object, const std::set<AcDbStub*>& known) {
  for (const AcDbObject* at = &object; at != nullptr;) {
    const AcDbObjectId source = ObjectAccess::copiedFrom(*at);
    if (known.count(source) > 0) return true;
    at = peek(source);
  }
  return false;
}

}  // namespace

std::string reasonAgainstOld(const DrawingBinding& binding) {
  std::set<AcDbStub*> known;
  for (const BoundObject& bound : binding.bound) known.insert(bound.id);
  for (const auto& [handle, slot] : ObjectAccess::state(*binding.database).stubs) {
    AcDbObject* object = slot->object.get();
    if (known.count(slot) > 0 || object->isErased() || !slot->changed) continue;
    const auto* entity = AcDbEntity::cast(object);
    if (object->isKindOf(AcDbSymbolTable::desc()) ||
        object->isKindOf(AcDbBlockTableRecord::desc())) {
      continue;
    }
    const ObjectAccess::Look look(*object);
    const auto* dictionary = AcDbDictionary::cast(object);
    if (dictionary != nullptr && dictionary->numEntries() == 0) continue;
    const bool fits = entity != nullptr ? codecFor(*entity, true) != nullptr
                                        : object->isKindOf(AcDbLayerTableRecord::desc()) ||
                                              definedTableOf(*object) != nullptr;
    if (fits || isCopyOfKnown(*object, known)) continue;
    const EntityCodec* newer = entity != nullptr ? codecFor(*entity, false) : nullptr;
    if (newer == nullptr || newer->isOwn)
      return "A drawing of R12 cannot keep images and settings.";
    return "A drawing of R12 cannot keep objects of kind " + std::string(newer->type) + ".";
  }
  return {};
}

std::string writeDrawing(DrawingBinding& binding, const std::optional<OpeningState>& state) {
  return DrawingWriter(binding).write(state);
}

}  // namespace tarn::host
