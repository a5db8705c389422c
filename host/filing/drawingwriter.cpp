#include "host/filing/drawingwriter.h"

#include <algorithm>
#include <map>
#include <memory>
#include <set>

#include "base/text.h"
#include "dbblockref.h"
#include "dbdict.h"
#include "dblayout.h"
#include "dbproxy.h"
#include "dbxrecrd.h"
#include "host/database/objectaccess.h"
#include "host/filing/drawingadditions.h"
#include "host/filing/drawingbinding.h"
#include "host/filing/drawingfile.h"
#include "host/filing/entitycodec.h"
#include "host/filing/erasedmembers.h"
#include "host/filing/framevariables.h"
#include "host/filing/objectcodec.h"
#include "host/filing/renamedrecords.h"
#include "host/filing/tagvalues.h"
#include "rxclass.h"
#include "sorttab.h"

namespace tarn::host {

namespace {

class DrawingWriter {
 public:
  explicit DrawingWriter(DrawingBinding& binding)
      : binding_(binding),
        document_(binding.document),
        renamed_(std::make_shared<RenamedRecords>(binding)),
        additions_(document_, binding.encoding, edits_) {
    binding_.renamed = renamed_;
  }

  /// Finds out what differs. Objects that stand in the file are written when they go out.
  void prepare(const std::optional<OpeningState>& state) {
    known_.reserve(binding_.bound.size());
    for (std::uint32_t i = 0; i < binding_.bound.size(); ++i) {
      const AcDbObjectId id = binding_.bound[i].id;
      known_.emplace_back(id, i);
      anyErased_ = anyErased_ || id.isErased();
    }
    std::sort(known_.begin(), known_.end());
    addFrameObjects();
    markNeeded();
    followRenamed();
    for (std::uint32_t i = 0; i < binding_.bound.size(); ++i) editBound(i);
    if (anyErased_) followErased(binding_, edits_);
    writeNew();
    addClasses();
    if (state && state->view) editActiveView(binding_, *state->view, edits_);
    editHeader(state);
    additions_.closeCutOff();
  }

  Status give(const PieceTaker& take) {
    return edits_.give(document_, take,
                       [this](std::uint32_t i) { return bytesOf(binding_.bound[i]); });
  }

 private:
  std::string bytesOf(const BoundObject& bound) {
    const ObjectAccess::Look look(*peek(bound.id));
    return boundBytes(*peek(bound.id), bound);
  }

  void addFrameObjects() {
    added_ = missingFrameObjects(binding_);
    AcDbObject* root = peek(binding_.database->namedObjectsDictionaryId());
    if (!added_.empty() && root != nullptr) ObjectAccess::setChanged(*root);
  }

  std::vector<AddedObject> addedTo(const AcDbDictionary& dictionary) const {
    const bool isRoot = dictionary.objectId() == binding_.database->namedObjectsDictionaryId();
    return isRoot ? added_ : std::vector<AddedObject>();
  }

  /// What names a renamed record is written anew, whether it is an object here or not.
  void followRenamed() {
    if (renamed_->isEmpty()) return;
    std::vector<bool> isDone(document_.objectCount());
    // The header is written with the rest of what changes there.
    const DrawingSection* header = document_.section("HEADER");
    if (header != nullptr) isDone[header->firstObject] = true;
    for (const BoundObject& bound : binding_.bound) {
      bool isNamed = false;
      for (std::uint32_t i = bound.first; i < bound.first + bound.count; ++i) {
        isDone[i] = true;
        isNamed = isNamed || renamed_->isNamedIn(i);
      }
      AcDbObject* object = peek(bound.id);
      if (isNamed && object != nullptr) ObjectAccess::setChanged(*object);
    }
    for (std::uint32_t i = 0; i < document_.objectCount(); ++i) {
      if (isDone[i] || !renamed_->isNamedIn(i)) continue;
      edits_.replace(i, 1, editorOf(binding_, i).bytes());
    }
  }

  void editBound(std::uint32_t number) {
    const BoundObject& bound = binding_.bound[number];
    AcDbObject* object = peek(bound.id);
    if (object == nullptr || object->isKindOf(AcDbSymbolTable::desc())) return;
    // What a viewport of the model shows is written with the view.
    if (object->isKindOf(AcDbViewportTableRecord::desc())) return;
    if (object->isErased()) {
      edits_.replace(bound.first, bound.count, {});
      if (object->isKindOf(AcDbBlockTableRecord::desc())) removeDefinition(bound.id);
      return;
    }
    const bool isDictionary = object->isKindOf(AcDbDictionary::desc());
    if (!ObjectAccess::isChanged(bound.id) && !(isDictionary && anyErased_)) return;
    if (bound.count != 1 && !object->isKindOf(AcDbEntity::desc())) return;
    // Parts take handles, which the header has to know of.
    const bool mayHaveParts =
        object->isKindOf(AcDbBlockReference::desc()) || document_.typeOf(bound.first) == "POLYLINE";
    if (bound.count == 1 && !mayHaveParts) {
      edits_.replaceLater(bound.first, bound.count, number);
    } else {
      edits_.replace(bound.first, bound.count, bytesOf(bound));
    }
  }

  std::string boundBytes(const AcDbObject& object, const BoundObject& bound) {
    if (const auto* entity = AcDbEntity::cast(&object)) return entityBytes(*entity, &bound);
    if (const auto* layer = AcDbLayerTableRecord::cast(&object)) {
      return writeLayerRecord(binding_, *layer, &bound, 0);
    }
    if (const auto* view = AcDbViewTableRecord::cast(&object)) {
      return writeViewRecord(binding_, *view, &bound, 0);
    }
    if (const auto* dictionary = AcDbDictionary::cast(&object)) {
      return writeDictionary(binding_, *dictionary, &bound, addedTo(*dictionary));
    }
    if (const auto* record = AcDbXrecord::cast(&object)) {
      return writeRecord(binding_, *record, &bound);
    }
    if (const auto* layout = AcDbLayout::cast(&object)) {
      return writeLayout(binding_, *layout, &bound);
    }
    if (const auto* order = AcDbSortentsTable::cast(&object)) {
      return writeSortTable(binding_, *order, &bound);
    }
    TagEditor editor = editorOf(binding_, bound.first);
    writeExtension(binding_, object, &bound, editor);
    writeFrameMode(*binding_.database, document_.typeOf(bound.first), editor);
    return editor.bytes();
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
      if (const BoundObject* found = known(source)) {
        const std::string_view type = document_.typeOf(found->first);
        return codecOf(type, entity) != nullptr ? found : nullptr;
      }
      at = peek(source);
    }
    return nullptr;
  }

  TagEditor editorFor(const AcDbEntity& entity, const BoundObject* from, bool isCopy,
                      const std::string& type) const {
    TagEditor editor = from != nullptr ? editorOf(binding_, from->first)
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
    editor.enterOwn(codec->subclass);
    if (codec->hasThickness) writeThickness(binding_, entity, from, editor);
    std::unique_ptr<EntityTags> tags;
    if (from != nullptr) {
      const TagView head = binding_.view(from->first).own(codec->subclass);
      tags = std::make_unique<EntityTags>(EntityTags{binding_, head, from->first, from->count});
    }
    EntityOutput output{binding_, editor, tags.get(), {}, model != nullptr};
    codec->write(entity, output);
    hasNewParts_ = hasNewParts_ || output.newParts > 0;
    writeExtendedData(binding_, entity, from, editor);
    return editor.bytes() + output.parts;
  }

  /// What stands in the file for an object; null for a new one.
  const BoundObject* known(AcDbStub* slot) const {
    const auto found = std::lower_bound(
        known_.begin(), known_.end(), slot,
        [](const auto& entry, const AcDbStub* wanted) { return entry.first < wanted; });
    const bool isKnown = found != known_.end() && found->first == slot;
    return isKnown ? &binding_.bound[found->second] : nullptr;
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
        if (!slot->changed || object->isErased() || known(slot) != nullptr) continue;
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
      if (known(slot) != nullptr || object->isErased() || !slot->changed) continue;
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
      if (!bytes.empty()) additions_.insertRecords(table.c_str(), bytes);
    }
    if (!layers.empty()) additions_.insertRecords("LAYER", layers);
    if (!views.empty()) additions_.insertRecords("VIEW", views);
    if (!blockRecords.empty() && !document_.isOld())
      additions_.insertRecords("BLOCK_RECORD", blockRecords);
    std::string definitions;
    for (const AcDbBlockTableRecord* block : blocks) {
      const ObjectAccess::Look look(const_cast<AcDbBlockTableRecord&>(*block));
      definitions += writeBlock(binding_, *block, byBlock[block->objectId()]);
      byBlock.erase(block->objectId());
    }
    if (!definitions.empty()) additions_.insertSection("BLOCKS", definitions);
    for (auto& [block, bytes] : byBlock) insertEntities(AcDbObjectId(block), std::move(bytes));
    for (const AddedObject& object : added_) objects += object.bytes;
    if (!objects.empty()) additions_.insertSection("OBJECTS", objects);
  }

  std::string objectBytes(const AcDbObject& object) const {
    // In R12 reasonAgainstOld() has seen that there is nothing to be lost.
    if (document_.isOld()) return {};
    if (const auto* dictionary = AcDbDictionary::cast(&object)) {
      const bool isRoot = object.objectId() == binding_.database->namedObjectsDictionaryId();
      if (isRoot && dictionary->numEntries() == 0 && added_.empty()) return {};
      return writeDictionary(binding_, *dictionary, nullptr, addedTo(*dictionary));
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
    return known(table) != nullptr ? table.handle().value() : 0;
  }

  void insertEntities(AcDbObjectId block, std::string bytes) {
    const auto end = binding_.blockEnds.find(block);
    const bool isSpace = block == binding_.modelSpace || block == binding_.paperSpace;
    if (isSpace) {
      additions_.insertSection("ENTITIES", bytes);
    } else if (end != binding_.blockEnds.end()) {
      additions_.insertBefore(end->second, std::move(bytes));
    }
  }

  void addClasses() {
    const DrawingSection* section = document_.section("CLASSES");
    const auto stands = [&](std::wstring_view name) {
      for (std::uint32_t i = section != nullptr ? section->firstObject + 1 : 0;
           section != nullptr && i < section->endObject; ++i) {
        if (binding_.view(i).text(1) == name) return true;
      }
      return false;
    };
    std::string bytes;
    for (const AcRxClass* description : classes_) {
      if (!stands(description->dxfName())) bytes += writeClass(binding_, *description);
    }
    for (const AddedObject& object : added_) {
      if (!stands(toWide(object.type))) bytes += object.classBytes;
    }
    if (!bytes.empty()) additions_.insertSection("CLASSES", bytes);
  }

  void editHeader(const std::optional<OpeningState>& state) {
    const DrawingSection* header = document_.section("HEADER");
    if (header == nullptr) return addHeader();
    TagEditor editor = editorOf(binding_, header->firstObject);
    const std::uint32_t begin = document_.tagsOf(header->firstObject).begin;
    const TagRange seed = document_.headerVariable("$HANDSEED");
    const bool hasNewHandles = !additions_.isEmpty() || hasNewParts_;
    if (hasNewHandles && seed.begin < seed.end) {
      const std::uint64_t next = ObjectAccess::state(*binding_.database).nextHandle;
      if (parseHandle(document_.word(document_.tag(seed.begin))) < next) {
        editor.replaceAt(seed.begin - begin, formatHandle(next));
      }
    }
    const TagRange layer = document_.headerVariable("$CLAYER");
    const AcDbObjectId current = binding_.database->clayer();
    if (layer.begin < layer.end) {
      const std::string_view inFile = document_.text(document_.tag(layer.begin));
      const std::wstring before = binding_.encoding.decode(inFile);
      const std::wstring now = recordName(current);
      const bool isRenamed =
          !before.empty() && !equalsIgnoreCase(std::wstring_view(before), std::wstring_view(now));
      if (isRenamed || binding_.layerOf(inFile) != current) {
        editor.replaceAt(layer.begin - begin, binding_.encoding.encode(now));
      }
    }
    writeHeaderVariables(*binding_.database, document_, editor);
    if (state) writeHeaderState(document_, *state, editor);
    if (editor.isChanged()) edits_.replace(header->firstObject, 1, editor.bytes());
  }

  /// A file of entities alone gets a header when there is something to say in it.
  void addHeader() {
    TagEditor editor(document_, binding_.encoding, "SECTION");
    editor.addWord(2, "HEADER");
    const size_t beginning = editor.bytes().size();
    writeHeaderVariables(*binding_.database, document_, editor);
    const std::string variables = editor.bytes().substr(beginning);
    if (!variables.empty()) additions_.insertSection("HEADER", variables);
  }

  DrawingBinding& binding_;
  const TagDocument& document_;
  std::shared_ptr<const RenamedRecords> renamed_;
  DrawingEdits edits_;
  DrawingAdditions additions_;
  std::vector<std::pair<AcDbStub*, std::uint32_t>> known_;  ///< sorted; places among the bound
  std::set<const AcRxClass*> classes_;
  std::vector<AddedObject> added_;
  bool anyErased_ = false;
  bool hasNewParts_ = false;
};

}  // namespace

DrawingPieces writeDrawing(DrawingBinding& binding, const std::optional<OpeningState>& state) {
  const auto writer = std::make_shared<DrawingWriter>(binding);
  writer->prepare(state);
  return [writer](const PieceTaker& take) { return writer->give(take); };
}

}  // namespace tarn::host
