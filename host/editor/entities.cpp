#include "host/editor/entities.h"

#include "dbents.h"
#include "dbobjptr.h"
#include "dbsymtb.h"
#include "host/database/draworder.h"
#include "host/editor/documents.h"
#include "host/editor/hostapp.h"
#include "host/editor/hostcommands.h"

namespace tarn::host {

namespace {

void addEntities(AcDbObjectId space, EntityIds& ids) {
  const AcDbObjectPointer<AcDbBlockTableRecord> block(space, AcDb::kForRead);
  if (block.openStatus() != Acad::eOk) return;
  for (const AcDbObjectId& id : block->entityIds()) {
    if (!id.isErased()) ids.push_back(id);
  }
}

bool isOnLockedLayer(const AcDbEntity& entity) {
  const AcDbObjectPointer<AcDbLayerTableRecord> layer(entity.layerId(), AcDb::kForRead);
  return layer.openStatus() == Acad::eOk && layer->isLocked();
}

}  // namespace

EntityIds currentSpaceEntities(HostDocument& document) {
  EntityIds ids;
  addEntities(document.space().currentBlock(), ids);
  return ids;
}

EntityIds currentSpaceInDrawnOrder(HostDocument& document) {
  EntityIds ids;
  const AcDbObjectPointer<AcDbBlockTableRecord> block(document.space().currentBlock(),
                                                      AcDb::kForRead);
  if (block.openStatus() != Acad::eOk) return ids;
  for (const AcDbObjectId& id : drawnOrder(*block.object())) {
    if (!id.isErased()) ids.push_back(id);
  }
  return ids;
}

EntityIds allEntities(HostDocument& document) {
  EntityIds ids;
  const AcDbObjectPointer<AcDbBlockTable> blocks(document.database()->blockTableId(),
                                                 AcDb::kForRead);
  if (blocks.openStatus() != Acad::eOk) return ids;
  for (const AcDbObjectId& id : blocks->recordIds()) {
    const AcDbObjectPointer<AcDbBlockTableRecord> block(id, AcDb::kForRead);
    if (block.openStatus() == Acad::eOk && block->isLayout()) addEntities(id, ids);
  }
  return ids;
}

bool isShown(const AcDbEntity& entity) {
  if (entity.visibility() != AcDb::kVisible) return false;
  const AcDbObjectPointer<AcDbLayerTableRecord> layer(entity.layerId(), AcDb::kForRead);
  return layer.openStatus() != Acad::eOk || (!layer->isOff() && !layer->isFrozen());
}

bool appendEntity(HostApp& app, AcDbEntity* entity) {
  HostDocument& document = app.documents().current();
  AcDbBlockTableRecord* space = nullptr;
  Acad::ErrorStatus status =
      acdbOpenObject(space, document.space().currentBlock(), AcDb::kForWrite);
  if (status == Acad::eOk) {
    status = space->appendAcDbEntity(entity);
    space->close();
  }
  if (status != Acad::eOk) {
    delete entity;
    failCommand(app, "The entity cannot be added to the drawing.");
    return false;
  }
  entity->close();
  return true;
}

int changeEntities(HostApp& app, const EntityIds& ids, const std::string& verb,
                   const std::function<bool(AcDbEntity&)>& change) {
  int changed = 0;
  int locked = 0;
  int refused = 0;
  for (const AcDbObjectId& id : ids) {
    AcDbEntity* entity = nullptr;
    if (acdbOpenObject(entity, id, AcDb::kForRead) != Acad::eOk) continue;
    const bool isLocked = isOnLockedLayer(*entity);
    if (isLocked) {
      ++locked;
    } else if (entity->upgradeOpen() == Acad::eOk && change(*entity)) {
      ++changed;
    } else {
      ++refused;
    }
    entity->close();
  }
  app.print("\n" + std::to_string(changed) + " " + verb + ".\n");
  if (locked > 0) app.print("\n" + std::to_string(locked) + " on a locked layer, left alone.\n");
  if (refused > 0) app.print("\n" + std::to_string(refused) + " cannot be " + verb + ".\n");
  return changed;
}

}  // namespace tarn::host
