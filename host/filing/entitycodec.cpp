#include "host/filing/entitycodec.h"

#include <algorithm>
#include <unordered_map>

#include "dbpl.h"
#include "host/database/objectaccess.h"
#include "host/filing/renamedrecords.h"
#include "rxclass.h"

namespace tarn::host {

namespace {

constexpr long long kByLayer = 256;

const std::vector<const EntityCodec*>& allCodecs() {
  static const std::vector<const EntityCodec*> all = [] {
    std::vector<const EntityCodec*> list;
    for (const auto* some :
         {&cloudCodecs(), &curveCodecs(), &textCodecs(), &traceCodecs(), &hatchCodecs(),
          &imageCodecs(), &annotationCodecs(), &multiLeaderCodecs(), &endlessLineCodecs(),
          &compoundCodecs(), &netCodecs()}) {
      for (const EntityCodec& codec : *some) list.push_back(&codec);
    }
    return list;
  }();
  return all;
}

/// Marks of a vertex that a curve has made.
constexpr int kOfCurves = 1 | 2 | 8 | 16;

/// Points in space, and those of a curve and its frame, are objects of their own.
bool needsVertices(const AcDbPolyline& line) {
  const auto& vertices = line.vertices();
  return line.isInSpace() || std::any_of(vertices.begin(), vertices.end(), [](const auto& vertex) {
           return (vertex.flags & kOfCurves) != 0;
         });
}

}  // namespace

const EntityCodec* codecOf(std::string_view type) {
  static const std::unordered_map<std::string_view, const EntityCodec*> byType = [] {
    std::unordered_map<std::string_view, const EntityCodec*> map;
    for (const EntityCodec* codec : allCodecs()) map.emplace(codec->type, codec);
    return map;
  }();
  const auto found = byType.find(type);
  return found != byType.end() ? found->second : nullptr;
}

const EntityCodec* codecOf(std::string_view type, const AcDbEntity& entity) {
  for (const EntityCodec* codec : allCodecs()) {
    if (codec->type == type && codec->description() == entity.isA()) return codec;
  }
  return nullptr;
}

bool isBoundToDrawing(const AcRxClass& description) {
  bool known = false;
  for (const EntityCodec* codec : allCodecs()) {
    if (codec->description() != &description) continue;
    if (codec->inOld || codec->inNew) return false;
    known = true;
  }
  return known;
}

const EntityCodec* codecFor(const AcDbEntity& entity, bool old) {
  const AcDbPolyline* line = AcDbPolyline::cast(&entity);
  if (line != nullptr && needsVertices(*line)) return codecOf("POLYLINE");
  for (const EntityCodec* codec : allCodecs()) {
    if (codec->description() == entity.isA() && (old ? codec->inOld : codec->inNew)) return codec;
  }
  return nullptr;
}

std::uint64_t EntityOutput::nextHandle(const AcDbEntity& entity) {
  return binding.partHandle(entity.objectId(), newParts++);
}

TagEditor EntityOutput::part(std::uint32_t index, const AcDbEntity& entity) {
  TagEditor editor = editorOf(binding, old->first + 1 + index);
  if (isCopy) {
    editor.renew(nextHandle(entity), entity.handle().value());
  }
  return editor;
}

std::wstring recordName(AcDbObjectId record) {
  const auto* found = AcDbSymbolTableRecord::cast(peek(record));
  const ACHAR* name = nullptr;
  return found != nullptr && found->getName(name) == Acad::eOk ? std::wstring(name)
                                                               : std::wstring();
}

void writeCommon(const DrawingBinding& binding, const AcDbEntity& entity, TagEditor& editor) {
  // Some programs put the colour behind the mark of the entity's own class.
  editor.enter("AcDbEntity");
  editor.leave();
  const bool onFrontSheet = entity.blockId() == binding.paperSpace;
  const auto* block = AcDbBlockTableRecord::cast(peek(entity.blockId()));
  const bool onOtherSheet = !onFrontSheet && block != nullptr && block->isLayout() &&
                            entity.blockId() != binding.modelSpace;
  // Entities in the blocks of the other sheets say it or not, both is usual.
  if (editor.isNew() || !onOtherSheet) {
    editor.setInteger(67, onFrontSheet || onOtherSheet ? 1 : 0, 0);
  }
  const std::wstring layer = recordName(entity.layerId());
  editor.setText(8, layer.empty() ? L"0" : layer,
                 editor.isNew() ? std::nullopt : std::optional<std::wstring_view>(L"0"));
  const auto sameColor = [&](long long inFile) {
    return entityColor(static_cast<int>(inFile)) == entity.colorIndex();
  };
  editor.setIntegerUnless(62, entity.colorIndex(), kByLayer, sameColor);
  editor.setInteger(60, entity.visibility() == AcDb::kInvisible ? 1 : 0, 0);
}

}  // namespace tarn::host
