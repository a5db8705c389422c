#include "host/database/databaseinit.h"

#include "dbblockref.h"
#include "dbcurve.h"
#include "dbdict.h"
#include "dbdim.h"
#include "dbents.h"
#include "dbfcf.h"
#include "dbhatch.h"
#include "dblayout.h"
#include "dbmain.h"
#include "dbmesh.h"
#include "dbmleader.h"
#include "dbpl.h"
#include "dbproxy.h"
#include "dbray.h"
#include "dbspline.h"
#include "dbsymtb.h"
#include "dbtable.h"
#include "dbtext.h"
#include "dbtrace.h"
#include "dbwipe.h"
#include "dbxrecrd.h"
#include "host/rx/rxinit.h"
#include "sorttab.h"

namespace tarn::host {

void registerDatabaseClasses() {
  registerRxClasses();
  AcDbDatabase::rxInit();
  AcDbObject::rxInit();
  AcDbEntity::rxInit();
  AcDbLine::rxInit();
  AcDbViewport::rxInit();
  AcDbPoint::rxInit();
  AcDbCircle::rxInit();
  AcDbArc::rxInit();
  AcDbEllipse::rxInit();
  AcDbText::rxInit();
  AcDbMText::rxInit();
  AcDbTrace::rxInit();
  AcDbSolid::rxInit();
  AcDbFace::rxInit();
  AcDbHatch::rxInit();
  AcDbSpline::rxInit();
  AcDbDimension::rxInit();
  AcDbLeader::rxInit();
  AcDbRasterImage::rxInit();
  AcDbWipeout::rxInit();
  AcDbEndlessLine::rxInit();
  AcDbRay::rxInit();
  AcDbXline::rxInit();
  AcDbMLeader::rxInit();
  AcDbFcf::rxInit();
  AcDbNet::rxInit();
  AcDbPolygonMesh::rxInit();
  AcDbPolyFaceMesh::rxInit();
  AcDbSubDMesh::rxInit();
  AcDbPolyline::rxInit();
  AcDbBlockReference::rxInit();
  AcDbTable::rxInit();
  AcDbProxyEntity::rxInit();
  AcDbProxyObject::rxInit();
  AcDbSymbolTableRecord::rxInit();
  AcDbSymbolTable::rxInit();
  AcDbLayerTableRecord::rxInit();
  AcDbLayerTable::rxInit();
  AcDbBlockTableRecord::rxInit();
  AcDbBlockTable::rxInit();
  AcDbLinetypeTableRecord::rxInit();
  AcDbLinetypeTable::rxInit();
  AcDbTextStyleTableRecord::rxInit();
  AcDbTextStyleTable::rxInit();
  AcDbRegAppTableRecord::rxInit();
  AcDbRegAppTable::rxInit();
  AcDbDimStyleTableRecord::rxInit();
  AcDbDimStyleTable::rxInit();
  AcDbUCSTableRecord::rxInit();
  AcDbUCSTable::rxInit();
  AcDbViewportTableRecord::rxInit();
  AcDbViewportTable::rxInit();
  AcDbViewTableRecord::rxInit();
  AcDbViewTable::rxInit();
  AcDbDictionary::rxInit();
  AcDbXrecord::rxInit();
  AcDbSortentsTable::rxInit();
  AcDbPlotSettings::rxInit();
  AcDbLayout::rxInit();
}

namespace {

[[maybe_unused]] const bool kRegistered = (registerDatabaseClasses(), true);

}  // namespace

}  // namespace tarn::host
