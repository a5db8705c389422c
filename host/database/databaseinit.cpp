#include "host/database/databaseinit.h"

#include "dbdict.h"
#include "dbents.h"
#include "dblayout.h"
#include "dbmain.h"
#include "dbproxy.h"
#include "dbsymtb.h"
#include "dbxrecrd.h"
#include "host/rx/rxinit.h"

namespace tarn::host {

void registerDatabaseClasses() {
  registerRxClasses();
  AcDbDatabase::rxInit();
  AcDbObject::rxInit();
  AcDbEntity::rxInit();
  AcDbLine::rxInit();
  AcDbViewport::rxInit();
  AcDbProxyEntity::rxInit();
  AcDbSymbolTableRecord::rxInit();
  AcDbSymbolTable::rxInit();
  AcDbLayerTableRecord::rxInit();
  AcDbLayerTable::rxInit();
  AcDbBlockTableRecord::rxInit();
  AcDbBlockTable::rxInit();
  AcDbViewTableRecord::rxInit();
  AcDbDictionary::rxInit();
  AcDbXrecord::rxInit();
  AcDbPlotSettings::rxInit();
  AcDbLayout::rxInit();
}

namespace {

[[maybe_unused]] const bool kRegistered = (registerDatabaseClasses(), true);

}  // namespace

}  // namespace tarn::host
