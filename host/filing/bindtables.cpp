// Symbol tables and the blocks that they name.
#include <map>

#include "base/text.h"
#include "host/database/objectaccess.h"
#include "host/filing/drawingbinding.h"
#include "host/filing/entitycodec.h"
#include "host/filing/objectcodec.h"
#include "host/filing/tagvalues.h"

namespace tarn::host {

AcDbObjectId DrawingBinding::add(AcDbObject* object, std::uint32_t first, std::uint32_t count) {
  readExtendedData(*this, view(first), *object);
  const AcDbObjectId id = ObjectAccess::adopt(*database, object, document.handleOf(first));
  ObjectAccess::finishReading(*object);
  bound.push_back({id, first, count});
  return id;
}

AcDbObjectId DrawingBinding::addImplied(AcDbObject* object) {
  const AcDbObjectId id = ObjectAccess::adopt(*database, object);
  ObjectAccess::finishReading(*object);
  implied.insert(id);
  return id;
}

AcDbObjectId DrawingBinding::find(std::uint64_t handle) const {
  AcDbObjectId id;
  if (handle != 0) database->getAcDbObjectId(id, false, AcDbHandle(handle));
  return id;
}

std::uint64_t DrawingBinding::partHandle(AcDbObjectId owner, std::uint32_t number) {
  if (!hasHandles) return 0;
  const auto [known, isNew] = partHandles.try_emplace({owner, number});
  if (isNew) known->second = ObjectAccess::takeHandle(*database);
  return known->second;
}

AcDbObjectId DrawingBinding::layerOf(std::string_view name) {
  const auto known = layers.find(std::string(name));
  if (known != layers.end()) return known->second;
  const std::wstring text = encoding.decode(name);
  auto& table = *static_cast<AcDbLayerTable*>(peek(database->layerTableId()));
  AcDbObjectId id;
  if (text.empty()) {
    id = database->layerZero();
  } else if (table.getIdAt(text.c_str(), id) != Acad::eOk) {
    auto* record = new AcDbLayerTableRecord;
    record->setName(text.c_str());
    id = addImplied(record);
    ObjectAccess::addRecordRead(table, id);
  }
  layers.emplace(name, id);
  return id;
}

AcDbObjectId DrawingBinding::linetypeOf(std::string_view name) {
  const auto known = linetypes.find(std::string(name));
  if (known != linetypes.end()) return known->second;
  const std::wstring text = encoding.decode(name);
  AcDbObjectId id;
  if (!text.empty() && !equalsIgnoreCase(std::wstring_view(text), L"ByLayer")) {
    auto& table = *static_cast<AcDbLinetypeTable*>(peek(database->linetypeTableId()));
    if (table.getIdAt(text.c_str(), id) != Acad::eOk) {
      auto* record = new AcDbLinetypeTableRecord;
      record->setName(text.c_str());
      id = addImplied(record);
      ObjectAccess::addRecordRead(table, id);
    }
  }
  linetypes.emplace(name, id);
  return id;
}

AcDbObjectId DrawingBinding::styleOf(const std::wstring& name) const {
  const auto& table = *static_cast<const AcDbTextStyleTable*>(peek(database->textStyleTableId()));
  AcDbObjectId id;
  if (!name.empty()) table.getIdAt(name.c_str(), id);
  return id;
}

AcDbObjectId DrawingBinding::blockOf(const std::wstring& name) const {
  const auto found = blocks.find(toLower(name));
  return found != blocks.end() ? found->second : AcDbObjectId();
}

namespace {

constexpr int kFrozenFlag = 1;
constexpr int kLockedFlag = 4;

AcDbSymbolTableRecord* readLayer(const TagView& tags) {
  auto* layer = new AcDbLayerTableRecord;
  const int color = tags.integer(62, 7);
  layer->setColorIndex(layerColor(color));
  layer->setIsOff(color < 0);
  const int flags = tags.integer(70);
  layer->setIsFrozen((flags & kFrozenFlag) != 0);
  layer->setIsLocked((flags & kLockedFlag) != 0);
  layer->setIsPlottable(tags.integer(290, 1) != 0);
  // One that is none stays the standard one here, and in the file.
  layer->setLineWeight(static_cast<AcDb::LineWeight>(tags.integer(370, AcDb::kLnWtByLwDefault)));
  return layer;
}

struct TableKind {
  const char* name;  ///< of the table
  AcDbObjectId DatabaseState::*table;
  AcDbSymbolTable* (*makeTable)();
  AcDbSymbolTableRecord* (*read)(const TagView& tags);
  const char* mark = nullptr;  ///< of records that are written back
};

template <class Table>
AcDbSymbolTable* made() {
  return new Table;
}
/// A record that is known by its name.
template <class Record>
AcDbSymbolTableRecord* named(const TagView&) {
  return new Record;
}

const TableKind kTables[] = {
    {"LAYER", &DatabaseState::layerTable, &made<AcDbLayerTable>, readLayer, kLayerMark},
    {"LTYPE", &DatabaseState::linetypeTable, &made<AcDbLinetypeTable>, readLinetypeRecord},
    {"STYLE", &DatabaseState::textStyleTable, &made<AcDbTextStyleTable>, readStyleRecord},
    {"APPID", &DatabaseState::regAppTable, &made<AcDbRegAppTable>, &named<AcDbRegAppTableRecord>},
    {"VIEW", &DatabaseState::viewTable, &made<AcDbViewTable>, readViewRecord, kViewMark},
    {"DIMSTYLE", &DatabaseState::dimStyleTable, &made<AcDbDimStyleTable>,
     &named<AcDbDimStyleTableRecord>},
    {"UCS", &DatabaseState::ucsTable, &made<AcDbUCSTable>, &named<AcDbUCSTableRecord>},
    {"VPORT", &DatabaseState::viewportTable, &made<AcDbViewportTable>,
     &named<AcDbViewportTableRecord>},
    {"BLOCK_RECORD", &DatabaseState::blockTable, &made<AcDbBlockTable>,
     &named<AcDbBlockTableRecord>},
};

/// The table object of a kind, bound to the TABLE at `object`, or implied when that is 0.
AcDbSymbolTable& tableOf(DrawingBinding& binding, const TableKind& kind, std::uint32_t object) {
  AcDbObjectId& id = ObjectAccess::state(*binding.database).*(kind.table);
  if (id.isNull()) {
    AcDbSymbolTable* table = kind.makeTable();
    id = object != 0 ? binding.add(table, object) : binding.addImplied(table);
  }
  return *static_cast<AcDbSymbolTable*>(peek(id));
}

void readRecord(DrawingBinding& binding, const TableKind& kind, AcDbSymbolTable& table,
                std::uint32_t object) {
  const TagView tags = binding.view(object).own(kind.mark);
  const std::wstring name = tags.text(2);
  // A second record of a name stays in the file; the first counts.
  AcDbObjectId other;
  if (name.empty() || table.getIdAt(name.c_str(), other) == Acad::eOk) return;
  AcDbSymbolTableRecord* record = kind.read(tags);
  record->setName(name.c_str());
  const AcDbObjectId id = binding.add(record, object);
  ObjectAccess::addRecordRead(table, id);
  if (record->isKindOf(AcDbBlockTableRecord::desc())) binding.blocks[toLower(name)] = id;
}

const TableKind* kindOf(std::string_view name) {
  for (const TableKind& kind : kTables) {
    if (name == kind.name) return &kind;
  }
  return nullptr;
}

/// What layers say about lines and true colours; the patterns are all there now.
void bindLayers(DrawingBinding& binding) {
  const size_t count = binding.bound.size();
  for (size_t i = 0; i < count; ++i) {
    auto* layer = AcDbLayerTableRecord::cast(peek(binding.bound[i].id));
    if (layer == nullptr) continue;
    const TagView tags = binding.view(binding.bound[i].first).own(kLayerMark);
    const Tag* linetype = tags.find(6);
    const int rgb = tags.integer(420, -1);
    ObjectAccess::beginRestore(*layer);
    if (linetype != nullptr) {
      layer->setLinetypeObjectId(binding.linetypeOf(binding.document.text(*linetype)));
    }
    AcCmColor color = layer->color();
    if (rgb >= 0) {
      color.setRGB(static_cast<Adesk::UInt8>(rgb >> 16 & 255),
                   static_cast<Adesk::UInt8>(rgb >> 8 & 255), static_cast<Adesk::UInt8>(rgb & 255));
      layer->setColor(color);
    }
    ObjectAccess::finishReading(*layer);
  }
}

AcDbObjectId addBlock(DrawingBinding& binding, const std::wstring& name, AcDbObjectId id) {
  auto& table = *static_cast<AcDbSymbolTable*>(peek(binding.database->blockTableId()));
  ObjectAccess::addRecordRead(table, id);
  binding.blocks[toLower(name)] = id;
  return id;
}

AcDbObjectId spaceOf(DrawingBinding& binding, const wchar_t* name, const wchar_t* oldName) {
  AcDbObjectId id = binding.blockOf(name);
  if (id.isNull()) id = binding.blockOf(oldName);
  if (!id.isNull()) return id;
  auto* record = new AcDbBlockTableRecord;
  record->setName(name);
  return addBlock(binding, name, binding.addImplied(record));
}

/// R12 has other names for the blocks of model and paper.
std::wstring modernName(const std::wstring& name) {
  if (equalsIgnoreCase(std::wstring_view(name), L"$MODEL_SPACE")) return ACDB_MODEL_SPACE;
  if (equalsIgnoreCase(std::wstring_view(name), L"$PAPER_SPACE")) return ACDB_PAPER_SPACE;
  return name.empty() ? L"?" : name;
}

/// The block of a BLOCK, which a drawing of R13 and later has named in its table before.
AcDbObjectId readBlock(DrawingBinding& binding, std::uint32_t object) {
  const TagView tags = binding.view(object);
  const std::wstring name = tags.text(2);
  AcDbObjectId id = binding.blockOf(name);
  if (id.isNull()) {
    auto* record = new AcDbBlockTableRecord;
    record->setName(modernName(name).c_str());
    id = addBlock(binding, name, binding.add(record, object));
  }
  ObjectAccess::setOriginRead(*static_cast<AcDbBlockTableRecord*>(peek(id)), tags.point(10));
  return id;
}

}  // namespace

void bindTables(DrawingBinding& binding) {
  const TagDocument& document = binding.document;
  const DrawingSection* section = document.section("TABLES");
  const TableKind* kind = nullptr;
  for (std::uint32_t i = section != nullptr ? section->firstObject + 1 : 0;
       section != nullptr && i < section->endObject; ++i) {
    const std::string_view type = document.typeOf(i);
    if (type == "TABLE") {
      const Tag* name = binding.view(i).find(2);
      kind = name != nullptr ? kindOf(document.word(*name)) : nullptr;
      if (kind != nullptr) tableOf(binding, *kind, i);
    } else if (kind != nullptr && type == kind->name) {
      readRecord(binding, *kind, tableOf(binding, *kind, 0), i);
    }
  }
  for (const TableKind& each : kTables) tableOf(binding, each, 0);
  readDefinitions(binding);
  DatabaseState& state = ObjectAccess::state(*binding.database);
  state.layerZero = binding.layerOf("0");
  bindLayers(binding);
  state.header = headerVariablesOf(document);
  state.header.currentLayer = state.layerZero;
  const TagRange current = document.headerVariable("$CLAYER");
  if (current.begin < current.end) {
    state.header.currentLayer = binding.layerOf(document.text(document.tag(current.begin)));
  }
}

void bindBlocks(DrawingBinding& binding) {
  const TagDocument& document = binding.document;
  const DrawingSection* section = document.section("BLOCKS");
  // A block may insert one that stands further down.
  std::map<std::uint32_t, AcDbObjectId> blocks;
  for (std::uint32_t i = section != nullptr ? section->firstObject + 1 : 0;
       section != nullptr && i < section->endObject; ++i) {
    if (document.typeOf(i) == "BLOCK") blocks[i] = readBlock(binding, i);
  }
  AcDbObjectId block;
  for (std::uint32_t i = section != nullptr ? section->firstObject + 1 : 0;
       section != nullptr && i < section->endObject;) {
    const std::string_view type = document.typeOf(i);
    if (type == "BLOCK") {
      block = blocks[i++];
    } else if (type == "ENDBLK") {
      if (!block.isNull()) binding.blockEnds[block] = i;
      block.setNull();
      ++i;
    } else {
      i += readEntity(binding, i, section->endObject, block);
    }
  }
  binding.modelSpace = spaceOf(binding, ACDB_MODEL_SPACE, L"$MODEL_SPACE");
  binding.paperSpace = spaceOf(binding, ACDB_PAPER_SPACE, L"$PAPER_SPACE");
}

void bindEntities(DrawingBinding& binding, const std::function<void(double)>& progress) {
  constexpr std::uint32_t kOften = 8192;
  std::uint32_t count = 0;
  for (const DrawingSection& section : binding.document.sectionsNamed("ENTITIES")) {
    for (std::uint32_t i = section.firstObject + 1; i < section.endObject;) {
      if (++count % kOften == 0) {
        progress(double(i - section.firstObject) / (section.endObject - section.firstObject));
      }
      const bool onPaper = binding.view(i).integer(67) == 1;
      i += readEntity(binding, i, section.endObject,
                      onPaper ? binding.paperSpace : binding.modelSpace);
    }
  }
}

}  // namespace tarn::host
