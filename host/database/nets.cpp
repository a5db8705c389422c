#include "acgi.h"
#include "dbmesh.h"
#include "host/database/entitysystem.h"
#include "host/database/valuedentity.h"

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbNet, AcDbEntity)
ACRX_DXF_DEFINE_MEMBERS(AcDbPolygonMesh, AcDbNet, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0,
                        POLYLINE, ObjectDBX Classes)
ACRX_DXF_DEFINE_MEMBERS(AcDbPolyFaceMesh, AcDbNet, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0,
                        POLYLINE, ObjectDBX Classes)
ACRX_DXF_DEFINE_MEMBERS(AcDbSubDMesh, AcDbNet, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0, MESH,
                        ObjectDBX Classes)

template <typename Filing>
void eachField(AcDbNetValues& values, Filing& filing) {
  filing.all(values.points, values.edges);
}

template class AcDbValuedEntity<AcDbNetValues>;

/// Edges that go on where the one before ended are one line.
Adesk::Boolean AcDbNet::subWorldDraw(AcGiWorldDraw* draw) {
  const std::vector<AcGePoint3d>& points = values().points;
  const std::vector<Adesk::Int32>& edges = values().edges;
  const auto isPlace = [&](Adesk::Int32 place) {
    return place >= 0 && static_cast<size_t>(place) < points.size();
  };
  std::vector<AcGePoint3d> line;
  const auto finish = [&] {
    if (line.size() > 1) {
      draw->geometry().polyline(static_cast<Adesk::UInt32>(line.size()), line.data());
    }
    line.clear();
  };
  for (size_t i = 0; i + 1 < edges.size(); i += 2) {
    if (!isPlace(edges[i]) || !isPlace(edges[i + 1])) continue;
    if (i == 0 || edges[i] != edges[i - 1]) finish();
    if (line.empty()) line.push_back(points[static_cast<size_t>(edges[i])]);
    line.push_back(points[static_cast<size_t>(edges[i + 1])]);
  }
  finish();
  return Adesk::kTrue;
}

Acad::ErrorStatus AcDbNet::subGetOsnapPoints(AcDb::OsnapMode osnapMode, Adesk::GsMarker,
                                             const AcGePoint3d&, const AcGePoint3d&,
                                             const AcGeMatrix3d&, AcGePoint3dArray& snapPoints,
                                             AcDbIntArray&) const {
  if (osnapMode != AcDb::kOsModeEnd) return Acad::eOk;
  for (const AcGePoint3d& point : values().points) snapPoints.append(point);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbNet::subGetGripPoints(AcGePoint3dArray& gripPoints, AcDbIntArray&,
                                            AcDbIntArray&) const {
  for (const AcGePoint3d& point : values().points) gripPoints.append(point);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbNet::subMoveGripPointsAt(const AcDbIntArray& indices,
                                               const AcGeVector3d& offset) {
  assertWriteEnabled();
  for (const int index : indices) values_.points[static_cast<size_t>(index)] += offset;
  recordGraphicsModified();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbNet::subTransformBy(const AcGeMatrix3d& transform) {
  assertWriteEnabled();
  tarn::host::transformAll(values_.points, transform);
  recordGraphicsModified();
  return Acad::eOk;
}
