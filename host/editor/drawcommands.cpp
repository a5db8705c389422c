// Commands that change the drawing.
#include "aced.h"
#include "acedads.h"
#include "dbents.h"
#include "dbmain.h"
#include "dbsymtb.h"
#include "host/editor/commandprocessor.h"
#include "host/editor/documents.h"
#include "host/editor/hostapp.h"
#include "host/editor/hostcommands.h"

namespace tarn::host {

namespace {

/// The current drawing's model space, open for writing; null, with a message, when it is not to be
/// had. The caller closes it.
AcDbBlockTableRecord* openModelSpace(HostApp& app) {
  AcDbBlockTable* blocks = nullptr;
  AcDbBlockTableRecord* space = nullptr;
  AcDbDatabase* database = app.documents().current().database();
  Acad::ErrorStatus status = database->getBlockTable(blocks, AcDb::kForRead);
  if (status == Acad::eOk) {
    status = blocks->getAt(ACDB_MODEL_SPACE, space, AcDb::kForWrite);
    blocks->close();
  }
  if (status != Acad::eOk) failCommand(app, "The model space cannot be opened for writing.");
  return status == Acad::eOk ? space : nullptr;
}

/// Appends and closes the entity; deletes it when that fails.
bool append(HostApp& app, AcDbEntity* entity) {
  AcDbBlockTableRecord* space = openModelSpace(app);
  if (space == nullptr) {
    delete entity;
    return false;
  }
  const Acad::ErrorStatus status = space->appendAcDbEntity(entity);
  space->close();
  if (status != Acad::eOk) {
    delete entity;
    failCommand(app, "The entity cannot be added.");
    return false;
  }
  entity->close();
  return true;
}

}  // namespace

void lineCommand() {
  HostApp& app = *HostApp::instance();
  ads_point from = {0, 0, 0};
  if (acedGetPoint(nullptr, ACRX_T("\nFirst point: "), from) != RTNORM) return;
  for (;;) {
    ads_point to = {0, 0, 0};
    if (acedGetPoint(from, ACRX_T("\nNext point: "), to) != RTNORM) return;
    auto* line =
        new AcDbLine(AcGePoint3d(from[0], from[1], from[2]), AcGePoint3d(to[0], to[1], to[2]));
    if (!append(app, line)) return;
    ads_point_set(to, from);
  }
}

void eraseCommand() {
  HostApp& app = *HostApp::instance();
  ads_name set = {0, 0};
  if (acedSSGet(nullptr, nullptr, nullptr, nullptr, set) != RTNORM) return;
  Adesk::Int32 count = 0;
  acedSSLength(set, &count);
  int erased = 0;
  for (Adesk::Int32 i = 0; i < count; ++i) {
    ads_name name = {0, 0};
    AcDbObjectId id;
    AcDbEntity* entity = nullptr;
    if (acedSSName(set, i, name) != RTNORM || acdbGetObjectId(id, name) != Acad::eOk) continue;
    if (acdbOpenObject(entity, id, AcDb::kForWrite) != Acad::eOk) continue;
    if (entity->erase() == Acad::eOk) ++erased;
    entity->close();
  }
  acedSSFree(set);
  app.print("\n" + std::to_string(erased) + " erased.\n");
}

}  // namespace tarn::host
