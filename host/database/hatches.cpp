#include <cmath>

#include "acgi.h"
#include "dbhatch.h"
#include "host/database/drawnextents.h"
#include "host/database/entitysystem.h"
#include "host/database/fieldfiling.h"
#include "host/database/hatchfill.h"

ACRX_DXF_DEFINE_MEMBERS(AcDbHatch, AcDbEntity, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0, HATCH,
                        ObjectDBX Classes)

template <typename Filing>
void eachField(AcDbHatchEdge& edge, Filing& filing) {
  filing.all(edge.kind, edge.first, edge.second, edge.ratio, edge.start, edge.end,
             edge.counterClockwise, edge.degree, edge.rational, edge.periodic, edge.knots,
             edge.control, edge.hasFit, edge.fit, edge.tangents);
}

template <typename Filing>
void eachField(AcDbHatchLoop& loop, Filing& filing) {
  filing.all(loop.flags, loop.hasBulges, loop.closed, loop.vertices, loop.edges, loop.sources);
}

template <typename Filing>
void eachField(AcDbHatchLines& lines, Filing& filing) {
  filing.all(lines.angle, lines.base, lines.offset, lines.dashes);
}

template <typename Filing>
void eachField(AcDbHatch::Values& values, Filing& filing) {
  filing.all(values.elevation, values.normal, values.pattern, values.solid, values.associative,
             values.loops, values.style, values.type, values.angle, values.scale, values.isDouble,
             values.lines, values.seeds);
}

namespace {

/// Changes what stands in the own system along with it.
class Mover {
 public:
  explicit Mover(const tarn::host::OwnChange& change) : change_(change) {}

  void move(AcGePoint3d& point) const {
    const double kept = point.z;  // a bulge or a weight
    point = change_.map * AcGePoint3d(point.x, point.y, 0);
    point.z = kept;
  }
  void move(std::vector<AcGePoint3d>& points) const {
    for (AcGePoint3d& point : points) move(point);
  }
  void turn(AcGeVector3d& vector) const {
    vector = change_.map * vector;
    vector.z = 0;
  }
  void move(AcDbHatchEdge& edge) const {
    const bool isCurve = edge.kind == AcDbHatchEdge::kArc || edge.kind == AcDbHatchEdge::kEllipse;
    move(edge.first);
    if (isCurve) {
      AcGeVector3d axis = edge.second.asVector();
      turn(axis);
      edge.second = AcGePoint3d(axis.x, axis.y, 0);
    } else {
      move(edge.second);
    }
    if (edge.kind == AcDbHatchEdge::kArc) {
      edge.ratio *= change_.scale;
      const double sign = edge.counterClockwise ? 1 : -1;
      edge.start += sign * turn_();
      edge.end += sign * turn_();
    }
    move(edge.control);
    move(edge.fit);
    for (AcGePoint3d& tangent : edge.tangents) {
      AcGeVector3d vector = tangent.asVector();
      turn(vector);
      tangent = AcGePoint3d(vector.x, vector.y, 0);
    }
  }
  void move(AcDbHatchLines& lines) const {
    lines.angle += turn_();
    move(lines.base);
    turn(lines.offset);
    for (double& dash : lines.dashes) dash *= change_.scale;
  }
  double turned(double angle) const { return angle + turn_(); }

 private:
  /// Zero, to the last digit, when nothing turns.
  double turn_() const { return change_.turned(0); }

  const tarn::host::OwnChange& change_;
};

void drawRims(AcGiGeometry& geometry, const std::vector<tarn::host::Rim>& rims) {
  for (tarn::host::Rim rim : rims) {
    rim.push_back(rim.front());
    geometry.polyline(static_cast<Adesk::UInt32>(rim.size()), rim.data());
  }
}

void fill(AcGiGeometry& geometry, const std::vector<tarn::host::Rim>& rims, bool everything) {
  std::vector<Adesk::UInt32> counts;
  std::vector<AcGePoint3d> points;
  for (const tarn::host::Rim& rim : rims) {
    if (everything) geometry.polygon(static_cast<Adesk::UInt32>(rim.size()), rim.data());
    counts.push_back(static_cast<Adesk::UInt32>(rim.size()));
    points.insert(points.end(), rim.begin(), rim.end());
  }
  if (!everything && !counts.empty()) {
    geometry.polyPolygon(static_cast<Adesk::UInt32>(counts.size()), counts.data(), points.data());
  }
}

}  // namespace

const AcDbHatch::Values& AcDbHatch::values() const {
  assertReadEnabled();
  return values_;
}

Acad::ErrorStatus AcDbHatch::setValues(Values values) {
  assertWriteEnabled();
  values_ = std::move(values);
  recordGraphicsModified();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::dwgOutFields(AcDbDwgFiler* filer) const {
  const Acad::ErrorStatus status = AcDbEntity::dwgOutFields(filer);
  if (status != Acad::eOk) return status;
  tarn::host::FieldWriter write(*filer);
  write(values_);
  return filer->filerStatus();
}

Acad::ErrorStatus AcDbHatch::dwgInFields(AcDbDwgFiler* filer) {
  const Acad::ErrorStatus status = AcDbEntity::dwgInFields(filer);
  if (status != Acad::eOk) return status;
  tarn::host::FieldReader read(*filer);
  Values values;
  read(values);
  if (filer->filerStatus() == Acad::eOk) values_ = std::move(values);
  return filer->filerStatus();
}

Adesk::Boolean AcDbHatch::subWorldDraw(AcGiWorldDraw* draw) {
  assertReadEnabled();
  std::vector<tarn::host::Rim> flat;
  for (const AcDbHatchLoop& loop : values_.loops) {
    flat.push_back(tarn::host::rimOf(loop));
    if (flat.back().size() < 2) flat.pop_back();
  }
  const AcGeMatrix3d world = tarn::host::entityToWorld(values_.normal) *
                             AcGeMatrix3d::translation({0, 0, values_.elevation});
  draw->subEntityTraits().setLineType({});  // the pattern is the hatch's own
  std::vector<std::pair<AcGePoint3d, AcGePoint3d>> lines;
  bool all = !values_.solid && !values_.lines.empty();
  for (size_t i = 0; all && i < values_.lines.size(); ++i) {
    all = tarn::host::addPatternLines(flat, values_.lines[i], lines);
  }
  for (const auto& [from, to] : lines) {
    const AcGePoint3d ends[] = {world * from, world * to};
    if (all) draw->geometry().polyline((to - from).length() > 0 ? 2 : 1, ends);
  }
  for (tarn::host::Rim& rim : flat) tarn::host::transformAll(rim, world);
  if (values_.solid) fill(draw->geometry(), flat, values_.style == 2);
  if (!values_.solid && !all) drawRims(draw->geometry(), flat);
  return Adesk::kTrue;
}

Acad::ErrorStatus AcDbHatch::subGetGeomExtents(AcDbExtents& extents) const {
  return tarn::host::drawnExtents(*this, extents);
}

Acad::ErrorStatus AcDbHatch::subGetGripPoints(AcGePoint3dArray& gripPoints, AcDbIntArray&,
                                              AcDbIntArray&) const {
  AcDbExtents box;
  if (subGetGeomExtents(box) != Acad::eOk) return Acad::eOk;
  gripPoints.append(box.minPoint() + (box.maxPoint() - box.minPoint()) * 0.5);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::subTransformBy(const AcGeMatrix3d& transform) {
  assertWriteEnabled();
  const tarn::host::OwnChange change = tarn::host::changeOf(values_.normal, transform);
  const Mover mover(change);
  values_.elevation = (change.map * AcGePoint3d(0, 0, values_.elevation)).z;
  values_.normal = change.normal;
  for (AcDbHatchLoop& loop : values_.loops) {
    mover.move(loop.vertices);
    for (AcDbHatchEdge& edge : loop.edges) mover.move(edge);
  }
  for (AcDbHatchLines& lines : values_.lines) mover.move(lines);
  mover.move(values_.seeds);
  values_.angle = mover.turned(values_.angle);
  values_.scale *= change.scale;
  recordGraphicsModified();
  return Acad::eOk;
}
