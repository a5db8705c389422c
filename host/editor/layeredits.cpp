#include "host/editor/layeredits.h"

#include "acgi.h"
#include "base/text.h"
#include "dbents.h"
#include "dbobjptr.h"
#include "dbsymtb.h"
#include "host/editor/documents.h"
#include "host/editor/hostapp.h"

namespace tarn::host {

namespace {

constexpr const char* kNotInNames = "<>/\\\":;?*|,=`";

AcDbDatabase& current(HostApp& app) {
  return *app.documents().current().database();
}

std::string nameOf(const AcDbLayerTableRecord& layer) {
  const ACHAR* name = nullptr;
  return layer.getName(name) == Acad::eOk ? toUtf8(name) : std::string();
}

std::string nameOf(AcDbObjectId id) {
  const AcDbObjectPointer<AcDbLayerTableRecord> layer(id, AcDb::kForRead);
  return layer.openStatus() == Acad::eOk ? nameOf(*layer.object()) : std::string();
}

unsigned colorOf(const AcDbLayerTableRecord& layer) {
  const AcCmColor color = layer.color();
  if (!color.isByColor()) return color.colorIndex();
  return AcGiSubEntityTraits::kTrueColor | unsigned{color.red()} << 16 |
         unsigned{color.green()} << 8 | color.blue();
}

Status checkName(const std::string& name) {
  if (trim(std::string_view(name)).empty()) return Status::error("A layer needs a name.");
  if (name.find_first_of(kNotInNames) == std::string::npos) return {};
  return Status::error("\"" + name +
                       "\" is no layer name: < > / \\ \" : ; ? * | , = ` are not allowed.");
}

AcDbObjectId find(AcDbDatabase& drawing, const std::string& name) {
  const AcDbObjectPointer<AcDbLayerTable> layers(drawing.layerTableId(), AcDb::kForRead);
  AcDbObjectId id;
  if (layers.openStatus() == Acad::eOk) layers->getAt(toWide(name).c_str(), id);
  return id;
}

/// Entities of all blocks, also of definitions, that are on the layer.
EntityIds entitiesOn(AcDbDatabase& drawing, AcDbObjectId layer) {
  EntityIds found;
  const AcDbObjectPointer<AcDbBlockTable> blocks(drawing.blockTableId(), AcDb::kForRead);
  if (blocks.openStatus() != Acad::eOk) return found;
  for (const AcDbObjectId& block : blocks->recordIds()) {
    const AcDbObjectPointer<AcDbBlockTableRecord> record(block, AcDb::kForRead);
    if (record.openStatus() != Acad::eOk) continue;
    for (const AcDbObjectId& id : record->entityIds()) {
      const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
      if (entity.openStatus() == Acad::eOk && entity->layerId() == layer) found.push_back(id);
    }
  }
  return found;
}

/// Opens the layer for a change, which is then a step of its own.
Status change(HostApp& app, AcDbObjectId id,
              const std::function<Acad::ErrorStatus(AcDbLayerTableRecord&)>& apply) {
  {
    const AcDbObjectPointer<AcDbLayerTableRecord> layer(id, AcDb::kForWrite);
    if (layer.openStatus() != Acad::eOk) return Status::error("The layer is in use just now.");
    if (apply(*layer.object()) != Acad::eOk) {
      return Status::error("Layer \"" + nameOf(*layer.object()) + "\" cannot be changed so.");
    }
  }
  app.documents().endUndoStep("LAYER");
  return {};
}

}  // namespace

std::vector<LayerEntry> layersOf(AcDbDatabase& drawing) {
  std::vector<LayerEntry> all;
  const AcDbObjectPointer<AcDbLayerTable> layers(drawing.layerTableId(), AcDb::kForRead);
  if (layers.openStatus() != Acad::eOk) return all;
  for (const AcDbObjectId& id : layers->recordIds()) {
    const AcDbObjectPointer<AcDbLayerTableRecord> layer(id, AcDb::kForRead);
    if (layer.openStatus() != Acad::eOk) continue;
    all.push_back({id, nameOf(*layer.object()), colorOf(*layer.object()), layer->isOff(),
                   layer->isFrozen(), layer->isLocked(), id == drawing.clayer()});
  }
  return all;
}

Result<AcDbObjectId> makeLayer(AcDbDatabase& drawing, const std::string& name) {
  if (const Status status = checkName(name); !status) return status;
  AcDbObjectId id = find(drawing, name);
  if (!id.isNull()) return id;
  const AcDbObjectPointer<AcDbLayerTable> layers(drawing.layerTableId(), AcDb::kForWrite);
  auto* record = new AcDbLayerTableRecord;
  record->setName(toWide(name).c_str());
  if (layers.openStatus() != Acad::eOk || layers->add(id, record) != Acad::eOk) {
    delete record;
    return Status::error("Layer \"" + name + "\" cannot be made.");
  }
  record->close();
  return id;
}

Result<AcDbObjectId> addLayer(HostApp& app) {
  int number = 1;
  while (!find(current(app), "Layer" + std::to_string(number)).isNull()) ++number;
  Result<AcDbObjectId> made = makeLayer(current(app), "Layer" + std::to_string(number));
  app.documents().endUndoStep("LAYER");
  return made;
}

Status renameLayer(HostApp& app, AcDbObjectId layer, const std::string& name) {
  if (const Status status = checkName(name); !status) return status;
  if (layer == current(app).layerZero()) return Status::error("Layer \"0\" keeps its name.");
  const AcDbObjectId taken = find(current(app), name);
  if (!taken.isNull() && taken != layer) {
    return Status::error("There is a layer \"" + name + "\" already.");
  }
  // What is on it names it in the file, so it has to be written anew.
  for (const AcDbObjectId& id : entitiesOn(current(app), layer)) {
    const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForWrite);
    if (entity.openStatus() == Acad::eOk) entity->setLayer(layer);
  }
  return change(app, layer,
                [&](AcDbLayerTableRecord& record) { return record.setName(toWide(name).c_str()); });
}

Status deleteLayer(HostApp& app, AcDbObjectId layer) {
  AcDbDatabase& drawing = current(app);
  const std::string name = "Layer \"" + nameOf(layer) + "\" ";
  if (layer == drawing.layerZero()) return Status::error(name + "cannot be deleted.");
  if (layer == drawing.clayer()) {
    return Status::error(name + "is the current one; make another one current first.");
  }
  if (const size_t count = entitiesOn(drawing, layer).size(); count != 0) {
    return Status::error(name + "cannot be deleted: " + std::to_string(count) +
                         (count == 1 ? " entity is" : " entities are") + " on it.");
  }
  return change(app, layer, [](AcDbLayerTableRecord& record) { return record.erase(); });
}

Status setCurrentLayer(HostApp& app, AcDbObjectId layer) {
  {
    const AcDbObjectPointer<AcDbLayerTableRecord> record(layer, AcDb::kForRead);
    if (record.openStatus() != Acad::eOk) return Status::error("There is no such layer.");
    if (record->isFrozen())
      return Status::error("A frozen layer cannot be the current one: thaw it first.");
  }
  current(app).setClayer(layer);
  app.documents().endUndoStep("LAYER");
  return {};
}

Status switchLayer(HostApp& app, AcDbObjectId layer, LayerSwitch what, bool on) {
  if (what == LayerSwitch::kFrozen && on && layer == current(app).clayer()) {
    return Status::error("The current layer cannot be frozen. Make another one current first.");
  }
  return change(app, layer, [&](AcDbLayerTableRecord& record) {
    if (what == LayerSwitch::kFrozen) return record.setIsFrozen(on);
    what == LayerSwitch::kOff ? record.setIsOff(on) : record.setIsLocked(on);
    return Acad::eOk;
  });
}

Status colorLayer(HostApp& app, AcDbObjectId layer, int color) {
  if (color < 1 || color > 255) return Status::error("Colours are numbers from 1 to 255.");
  return change(app, layer, [color](AcDbLayerTableRecord& record) {
    return record.setColorIndex(static_cast<Adesk::UInt16>(color));
  });
}

}  // namespace tarn::host
