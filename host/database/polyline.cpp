#include <algorithm>

#include "acgi.h"
#include "dbfiler.h"
#include "dbpl.h"
#include "host/database/drawnextents.h"
#include "host/database/entitysystem.h"
#include "host/database/widelines.h"

ACRX_DXF_DEFINE_MEMBERS(AcDbPolyline, AcDbEntity, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0,
                        LWPOLYLINE, ObjectDBX Classes)

namespace {

constexpr short kFramePoint = 16;

}  // namespace

unsigned AcDbPolyline::numVerts() const {
  return static_cast<unsigned>(vertices().size());
}

const std::vector<AcDbPolylineVertex>& AcDbPolyline::vertices() const {
  assertReadEnabled();
  return vertices_;
}

Acad::ErrorStatus AcDbPolyline::setVertices(std::vector<AcDbPolylineVertex> vertices) {
  assertWriteEnabled();
  vertices_ = std::move(vertices);
  recordGraphicsModified();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::addVertex(double x, double y, double bulge) {
  assertWriteEnabled();
  AcDbPolylineVertex vertex;
  vertex.point = {x, y, 0};
  vertex.bulge = bulge;
  vertices_.push_back(vertex);
  recordGraphicsModified();
  return Acad::eOk;
}

bool AcDbPolyline::isClosed() const {
  assertReadEnabled();
  return closed_;
}

Acad::ErrorStatus AcDbPolyline::setClosed(Adesk::Boolean closed) {
  assertWriteEnabled();
  closed_ = closed;
  recordGraphicsModified();
  return Acad::eOk;
}

bool AcDbPolyline::isInSpace() const {
  assertReadEnabled();
  return inSpace_;
}

Acad::ErrorStatus AcDbPolyline::setInSpace(bool inSpace) {
  assertWriteEnabled();
  inSpace_ = inSpace;
  recordGraphicsModified();
  return Acad::eOk;
}

double AcDbPolyline::elevation() const {
  assertReadEnabled();
  return elevation_;
}

Acad::ErrorStatus AcDbPolyline::setElevation(double elevation) {
  assertWriteEnabled();
  elevation_ = elevation;
  recordGraphicsModified();
  return Acad::eOk;
}

AcGeVector3d AcDbPolyline::normal() const {
  assertReadEnabled();
  return normal_;
}

Acad::ErrorStatus AcDbPolyline::setNormal(const AcGeVector3d& normal) {
  assertWriteEnabled();
  normal_ = normal;
  recordGraphicsModified();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::dwgOutFields(AcDbDwgFiler* filer) const {
  const Acad::ErrorStatus status = AcDbEntity::dwgOutFields(filer);
  if (status != Acad::eOk) return status;
  filer->writeVector3d(normal_);
  filer->writeDouble(elevation_);
  filer->writeBool(closed_);
  filer->writeBool(inSpace_);
  filer->writeInt32(static_cast<Adesk::Int32>(vertices_.size()));
  for (const AcDbPolylineVertex& vertex : vertices_) {
    filer->writePoint3d(vertex.point);
    for (const double value : {vertex.bulge, vertex.startWidth, vertex.endWidth}) {
      filer->writeDouble(value);
    }
    filer->writeInt16(vertex.flags);
  }
  return filer->filerStatus();
}

Acad::ErrorStatus AcDbPolyline::dwgInFields(AcDbDwgFiler* filer) {
  const Acad::ErrorStatus status = AcDbEntity::dwgInFields(filer);
  if (status != Acad::eOk) return status;
  Adesk::Int32 count = 0;
  filer->readVector3d(&normal_);
  filer->readDouble(&elevation_);
  filer->readBool(&closed_);
  filer->readBool(&inSpace_);
  filer->readInt32(&count);
  std::vector<AcDbPolylineVertex> read;
  for (Adesk::Int32 i = 0; i < count && filer->filerStatus() == Acad::eOk; ++i) {
    AcDbPolylineVertex vertex;
    filer->readPoint3d(&vertex.point);
    for (double* value : {&vertex.bulge, &vertex.startWidth, &vertex.endWidth}) {
      filer->readDouble(value);
    }
    filer->readInt16(&vertex.flags);
    read.push_back(vertex);
  }
  if (filer->filerStatus() == Acad::eOk) vertices_ = std::move(read);
  return filer->filerStatus();
}

AcGePoint3d AcDbPolyline::ownPoint(const AcDbPolylineVertex& vertex) const {
  return inSpace_ ? vertex.point : AcGePoint3d(vertex.point.x, vertex.point.y, elevation_);
}

AcGePoint3d AcDbPolyline::worldPoint(const AcDbPolylineVertex& vertex) const {
  if (inSpace_) return vertex.point;
  return tarn::host::entityToWorld(normal_) * ownPoint(vertex);
}

template <typename Piece, typename Lone>
void AcDbPolyline::forEachPiece(const Piece& piece, const Lone& lone) const {
  const AcDbPolylineVertex* before = nullptr;
  const AcDbPolylineVertex* first = nullptr;
  for (const AcDbPolylineVertex& vertex : vertices_) {
    if ((vertex.flags & kFramePoint) != 0) continue;
    if (before == nullptr) first = &vertex;
    if (before != nullptr) piece(*before, vertex);
    before = &vertex;
  }
  if (before != nullptr && before == first) lone(*first);
  if (closed_ && before != first) piece(*before, *first);
}

std::vector<tarn::host::WideSegment> AcDbPolyline::segments() const {
  std::vector<tarn::host::WideSegment> all;
  forEachPiece(
      [&](const AcDbPolylineVertex& from, const AcDbPolylineVertex& to) {
        tarn::host::WideSegment segment{{ownPoint(from)}, from.startWidth, from.endWidth};
        tarn::host::addBulge(segment.points, ownPoint(from), ownPoint(to), from.bulge);
        all.push_back(std::move(segment));
      },
      [](const AcDbPolylineVertex&) {});
  return all;
}

std::vector<AcGePoint3d> AcDbPolyline::middle() const {
  std::vector<AcGePoint3d> points;
  points.reserve(vertices_.size() + 1);
  forEachPiece(
      [&](const AcDbPolylineVertex& from, const AcDbPolylineVertex& to) {
        if (points.empty()) points.push_back(ownPoint(from));
        tarn::host::addBulge(points, ownPoint(from), ownPoint(to), inSpace_ ? 0 : from.bulge);
      },
      [&](const AcDbPolylineVertex& vertex) { points.push_back(ownPoint(vertex)); });
  return points;
}

bool AcDbPolyline::isWide() const {
  return !inSpace_ && std::any_of(vertices_.begin(), vertices_.end(), [](const auto& vertex) {
    return vertex.startWidth > 0 || vertex.endWidth > 0;
  });
}

/// A line along the middle, so that it is seen from far away, and areas for what is wide.
Adesk::Boolean AcDbPolyline::subWorldDraw(AcGiWorldDraw* draw) {
  assertReadEnabled();
  std::vector<AcGePoint3d> points = middle();
  if (points.empty()) return Adesk::kTrue;
  const AcGeMatrix3d world = inSpace_ ? AcGeMatrix3d() : tarn::host::entityToWorld(normal_);
  tarn::host::transformAll(points, world);
  draw->geometry().polyline(static_cast<Adesk::UInt32>(points.size()), points.data());
  if (!isWide()) return Adesk::kTrue;
  for (std::vector<AcGePoint3d>& area : tarn::host::wideAreas(segments(), closed_)) {
    tarn::host::transformAll(area, world);
    draw->geometry().polygon(static_cast<Adesk::UInt32>(area.size()), area.data());
  }
  return Adesk::kTrue;
}

Acad::ErrorStatus AcDbPolyline::subGetGeomExtents(AcDbExtents& extents) const {
  return tarn::host::drawnExtents(*this, extents);
}

Acad::ErrorStatus AcDbPolyline::subGetOsnapPoints(AcDb::OsnapMode osnapMode, Adesk::GsMarker,
                                                  const AcGePoint3d&, const AcGePoint3d&,
                                                  const AcGeMatrix3d&, AcGePoint3dArray& snapPoints,
                                                  AcDbIntArray&) const {
  assertReadEnabled();
  if (osnapMode == AcDb::kOsModeEnd) {
    for (const AcDbPolylineVertex& vertex : vertices_) snapPoints.append(worldPoint(vertex));
  }
  if (osnapMode != AcDb::kOsModeMid) return Acad::eOk;
  const size_t pieces = vertices_.empty() ? 0 : vertices_.size() - (closed_ ? 0 : 1);
  for (size_t i = 0; i < pieces; ++i) {
    const AcDbPolylineVertex& a = vertices_[i];
    const AcGePoint3d& b = vertices_[(i + 1) % vertices_.size()].point;
    AcDbPolylineVertex middle;
    middle.point = a.point + (b - a.point) * 0.5;
    // The middle of an arc stands beside the chord by bulge times half of it.
    middle.point += AcGeVector3d(b.y - a.point.y, a.point.x - b.x, 0) * (a.bulge / 2);
    snapPoints.append(worldPoint(middle));
  }
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::subGetGripPoints(AcGePoint3dArray& gripPoints, AcDbIntArray&,
                                                 AcDbIntArray&) const {
  assertReadEnabled();
  for (const AcDbPolylineVertex& vertex : vertices_) gripPoints.append(worldPoint(vertex));
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::subTransformBy(const AcGeMatrix3d& transform) {
  assertWriteEnabled();
  recordGraphicsModified();
  if (inSpace_) {
    for (AcDbPolylineVertex& vertex : vertices_) vertex.point.transformBy(transform);
    return Acad::eOk;
  }
  const tarn::host::OwnChange change = tarn::host::changeOf(normal_, transform);
  const double before = elevation_;
  elevation_ = (change.map * AcGePoint3d(0, 0, before)).z;
  for (AcDbPolylineVertex& vertex : vertices_) {
    const AcGePoint3d moved = change.map * AcGePoint3d(vertex.point.x, vertex.point.y, before);
    vertex.point = {moved.x, moved.y, 0};
    vertex.startWidth *= change.scale;
    vertex.endWidth *= change.scale;
  }
  normal_ = change.normal;
  return Acad::eOk;
}
