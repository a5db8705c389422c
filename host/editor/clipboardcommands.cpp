// Copies of entities by way of the clipboard, also into another drawing.
#include <memory>

#include "acedads.h"
#include "dbents.h"
#include "dbobjptr.h"
#include "dbsymtb.h"
#include "host/editor/clipboard.h"
#include "host/editor/documents.h"
#include "host/editor/entities.h"
#include "host/editor/hostapp.h"
#include "host/editor/hostcommands.h"
#include "host/filing/deepclone.h"

namespace tarn::host {

namespace {

HostApp& app() {
  return *HostApp::instance();
}

/// A copy for the target drawing, or null for an entity that has no place of its own.
std::unique_ptr<AcDbEntity> copyFor(DeepCloner& cloner, const AcDbEntity& entity,
                                    const AcGeMatrix3d& matrix) {
  std::unique_ptr<AcDbEntity> copy(cloner.clone(entity));
  if (copy != nullptr && copy->transformBy(matrix) != Acad::eOk) copy.reset();
  return copy;
}

bool appendToModel(AcDbDatabase& drawing, AcDbEntity* entity) {
  const AcDbObjectPointer<AcDbBlockTable> blocks(drawing.blockTableId(), AcDb::kForRead);
  AcDbBlockTableRecord* space = nullptr;
  if (blocks.openStatus() != Acad::eOk ||
      blocks->getAt(ACDB_MODEL_SPACE, space, AcDb::kForWrite) != Acad::eOk) {
    return false;
  }
  const bool done = space->appendAcDbEntity(entity) == Acad::eOk;
  space->close();
  if (done) entity->close();
  return done;
}

}  // namespace

void copyclipCommand() {
  EntityIds ids;
  if (!selectForCommand(ids)) return;
  Clipboard clipboard;
  clipboard.drawing = std::make_unique<AcDbDatabase>();
  DeepCloner cloner(*clipboard.drawing);
  AcDbExtents box;
  int copied = 0;
  int refused = 0;
  for (const AcDbObjectId& id : ids) {
    const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
    if (entity.openStatus() != Acad::eOk) continue;
    auto copy = copyFor(cloner, *entity.object(), AcGeMatrix3d());
    AcDbExtents extents;
    if (copy != nullptr && entity->getGeomExtents(extents) == Acad::eOk) box.addExt(extents);
    if (copy != nullptr && appendToModel(*clipboard.drawing, copy.get())) {
      copy.release();  // NOLINT(bugprone-unused-return-value): the drawing owns it now.
      ++copied;
    } else {
      ++refused;
    }
  }
  app().print("\n" + std::to_string(copied) + " copied to the clipboard.\n");
  if (refused > 0) app().print("\n" + std::to_string(refused) + " cannot be copied.\n");
  if (copied == 0) return;
  if (!box.isEmpty()) clipboard.base = box.minPoint();
  app().clipboard() = std::move(clipboard);
}

void pasteclipCommand() {
  const Clipboard& clipboard = app().clipboard();
  if (clipboard.drawing == nullptr) return failCommand(app(), "The clipboard is empty.");
  ads_point at = {0, 0, 0};
  acedInitGet(RSG_NONULL, nullptr);
  if (acedGetPoint(nullptr, ACRX_T("\nInsertion point: "), at) != RTNORM) return;
  const AcGeMatrix3d shift =
      AcGeMatrix3d::translation(AcGePoint3d(at[0], at[1], at[2]) - clipboard.base);
  DeepCloner cloner(*app().documents().current().database());
  int pasted = 0;
  AcDbBlockTable* blocks = nullptr;
  AcDbBlockTableRecord* space = nullptr;
  if (clipboard.drawing->getBlockTable(blocks, AcDb::kForRead) != Acad::eOk) return;
  const Acad::ErrorStatus found = blocks->getAt(ACDB_MODEL_SPACE, space, AcDb::kForRead);
  blocks->close();
  if (found != Acad::eOk) return;
  for (const AcDbObjectId& id : space->entityIds()) {
    const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
    if (entity.openStatus() != Acad::eOk) continue;
    auto copy = copyFor(cloner, *entity.object(), shift);
    if (copy != nullptr && appendEntity(app(), copy.release())) ++pasted;
  }
  space->close();
  app().print("\n" + std::to_string(pasted) + " pasted.\n");
}

}  // namespace tarn::host
