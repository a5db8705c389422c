#include <cmath>

#include "acgi.h"
#include "dbdim.h"
#include "dbobjptr.h"
#include "dbsymtb.h"
#include "host/database/blockdraw.h"
#include "host/database/drawnextents.h"
#include "host/database/entitysystem.h"
#include "host/database/fieldfiling.h"
#include "host/database/mirroring.h"
#include "host/database/objectaccess.h"
#include "host/database/plaindimension.h"
#include "host/geometry/spline.h"

ACRX_DXF_DEFINE_MEMBERS(AcDbDimension, AcDbEntity, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0,
                        DIMENSION, ObjectDBX Classes)
ACRX_DXF_DEFINE_MEMBERS(AcDbLeader, AcDbEntity, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0,
                        LEADER, ObjectDBX Classes)

template <typename Filing>
void eachField(AcDbDimensionLook& look, Filing& filing) {
  filing.all(look.textHeight, look.arrowSize, look.offset, look.beyond, look.factor, look.decimals,
             look.trimsZeros);
}

template <typename Filing>
void eachField(AcDbDimension::Values& values, Filing& filing) {
  filing.all(values.block, values.type, values.normal, values.rotation, values.textRotation,
             values.direction, values.text, values.style, values.look);
  for (AcGePoint3d& point : values.points) filing(point);
}

template <typename Filing>
void eachField(AcDbLeader::Values& values, Filing& filing) {
  filing.all(values.vertices, values.normal, values.hasArrow, values.isSpline, values.arrowSize,
             values.style);
}

namespace {

constexpr size_t kText = 1;
constexpr size_t kInsertion = 2;
constexpr size_t kOwnLast = 6;

bool isOwn(size_t point) {
  return point == kText || point == kInsertion || point == kOwnLast;
}

bool isShift(const AcGeMatrix3d& matrix) {
  for (int row = 0; row < 3; ++row) {
    for (int column = 0; column < 3; ++column) {
      if (matrix.entry[row][column] != (row == column ? 1 : 0)) return false;
    }
  }
  return true;
}

}  // namespace

const AcDbDimension::Values& AcDbDimension::values() const {
  assertReadEnabled();
  return values_;
}

Acad::ErrorStatus AcDbDimension::setValues(Values values) {
  assertWriteEnabled();
  values_ = std::move(values);
  recordGraphicsModified();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbDimension::dwgOutFields(AcDbDwgFiler* filer) const {
  const Acad::ErrorStatus status = AcDbEntity::dwgOutFields(filer);
  if (status != Acad::eOk) return status;
  tarn::host::FieldWriter write(*filer);
  write(values_);
  return filer->filerStatus();
}

Acad::ErrorStatus AcDbDimension::dwgInFields(AcDbDwgFiler* filer) {
  const Acad::ErrorStatus status = AcDbEntity::dwgInFields(filer);
  if (status != Acad::eOk) return status;
  tarn::host::FieldReader read(*filer);
  read(values_);
  return filer->filerStatus();
}

AcGeMatrix3d AcDbDimension::blockToWorld() const {
  const AcGePoint3d at = tarn::host::entityToWorld(values_.normal) * values_.points[kInsertion];
  return AcGeMatrix3d::translation(at.asVector());
}

Adesk::Boolean AcDbDimension::subWorldDraw(AcGiWorldDraw* draw) {
  assertReadEnabled();
  if (values_.block.isNull()) {
    tarn::host::drawPlainDimension(*draw, values_);
    return Adesk::kTrue;
  }
  tarn::host::drawBlock(*draw, *this, values_.block, blockToWorld(),
                        tarn::host::lookOf(draw->subEntityTraits()));
  return Adesk::kTrue;
}

Acad::ErrorStatus AcDbDimension::subGetGeomExtents(AcDbExtents& extents) const {
  return tarn::host::drawnExtents(*this, extents);
}

Acad::ErrorStatus AcDbDimension::subGetOsnapPoints(AcDb::OsnapMode osnapMode, Adesk::GsMarker,
                                                   const AcGePoint3d&, const AcGePoint3d&,
                                                   const AcGeMatrix3d&,
                                                   AcGePoint3dArray& snapPoints,
                                                   AcDbIntArray&) const {
  assertReadEnabled();
  if (osnapMode != AcDb::kOsModeEnd) return Acad::eOk;
  for (const size_t i : {size_t{3}, size_t{4}, size_t{0}}) snapPoints.append(values_.points[i]);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbDimension::subGetGripPoints(AcGePoint3dArray& gripPoints, AcDbIntArray&,
                                                  AcDbIntArray&) const {
  assertReadEnabled();
  gripPoints.append(tarn::host::entityToWorld(values_.normal) * values_.points[kText]);
  return Acad::eOk;
}

bool AcDbDimension::sharesBlock() const {
  const AcDbDatabase* owner = values_.block.database();  // none without a block
  if (owner == nullptr) return false;
  for (const auto& [handle, slot] :
       tarn::host::ObjectAccess::state(const_cast<AcDbDatabase&>(*owner)).stubs) {
    const auto* other = AcDbDimension::cast(slot->object.get());
    if (other != nullptr && other != this && !other->isErased() &&
        other->values_.block == values_.block) {
      return true;
    }
  }
  return false;
}

Acad::ErrorStatus AcDbDimension::subTransformBy(const AcGeMatrix3d& transform) {
  const bool onlyMoves = isShift(transform);
  if (!onlyMoves && sharesBlock()) return AcDbEntity::subTransformBy(transform);
  assertWriteEnabled();
  if (!onlyMoves && !values_.block.isNull()) {
    const AcGeMatrix3d place = blockToWorld();
    const AcDbObjectPointer<AcDbBlockTableRecord> block(values_.block, AcDb::kForRead);
    for (const AcDbObjectId& id :
         block.openStatus() == Acad::eOk ? block->entityIds() : AcDbObjectIdArray()) {
      const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForWrite);
      if (entity.openStatus() == Acad::eOk) {
        entity->transformBy(tarn::host::legible(*entity.object(), transform * place));
      }
    }
    // The block's entities now lie where they are seen.
    values_.points[kInsertion] = AcGePoint3d::kOrigin;
  }
  const tarn::host::OwnChange change = tarn::host::changeOf(values_.normal, transform);
  for (size_t i = 0; i < values_.points.size(); ++i) {
    if (i == kInsertion && !onlyMoves) continue;
    // The text has no place of its own.
    if (i == kText && values_.points[i] == AcGePoint3d::kOrigin) continue;
    values_.points[i].transformBy(isOwn(i) ? change.map : transform);
  }
  for (double* angle : {&values_.rotation, &values_.textRotation, &values_.direction}) {
    *angle = change.turned(*angle);
  }
  AcDbDimensionLook& look = values_.look;
  for (double* length : {&look.textHeight, &look.arrowSize, &look.offset, &look.beyond}) {
    *length *= change.scale;
  }
  values_.normal = change.normal;
  recordGraphicsModified();
  return Acad::eOk;
}

const AcDbLeader::Values& AcDbLeader::values() const {
  assertReadEnabled();
  return values_;
}

Acad::ErrorStatus AcDbLeader::setValues(Values values) {
  assertWriteEnabled();
  values_ = std::move(values);
  recordGraphicsModified();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbLeader::dwgOutFields(AcDbDwgFiler* filer) const {
  const Acad::ErrorStatus status = AcDbEntity::dwgOutFields(filer);
  if (status != Acad::eOk) return status;
  tarn::host::FieldWriter write(*filer);
  write(values_);
  return filer->filerStatus();
}

Acad::ErrorStatus AcDbLeader::dwgInFields(AcDbDwgFiler* filer) {
  const Acad::ErrorStatus status = AcDbEntity::dwgInFields(filer);
  if (status != Acad::eOk) return status;
  tarn::host::FieldReader read(*filer);
  read(values_);
  return filer->filerStatus();
}

/// The arrow is left out where the first piece is shorter than two of it.
Adesk::Boolean AcDbLeader::subWorldDraw(AcGiWorldDraw* draw) {
  assertReadEnabled();
  const std::vector<AcGePoint3d>& vertices = values_.vertices;
  if (vertices.size() < 2) return Adesk::kTrue;
  const std::vector<AcGePoint3d> line =
      values_.isSpline ? tarn::host::pointsThrough(vertices, {0, 0, 0}, {0, 0, 0}) : vertices;
  draw->geometry().polyline(static_cast<Adesk::UInt32>(line.size()), line.data());
  const AcGeVector3d back = vertices[1] - vertices[0];
  const double size = values_.arrowSize;
  if (!values_.hasArrow || !(size > 0) || back.length() < 2 * size) return Adesk::kTrue;
  const AcGePoint3d foot = vertices[0] + back.normal() * size;
  const AcGeVector3d aside = values_.normal.crossProduct(back).normal() * (size / 6);
  const AcGePoint3d arrow[] = {vertices[0], foot + aside, foot - aside};
  draw->geometry().polygon(3, arrow);
  return Adesk::kTrue;
}

Acad::ErrorStatus AcDbLeader::subGetGeomExtents(AcDbExtents& extents) const {
  return tarn::host::drawnExtents(*this, extents);
}

Acad::ErrorStatus AcDbLeader::subGetOsnapPoints(AcDb::OsnapMode osnapMode, Adesk::GsMarker,
                                                const AcGePoint3d&, const AcGePoint3d&,
                                                const AcGeMatrix3d&, AcGePoint3dArray& snapPoints,
                                                AcDbIntArray&) const {
  assertReadEnabled();
  if (osnapMode != AcDb::kOsModeEnd) return Acad::eOk;
  for (const AcGePoint3d& vertex : values_.vertices) snapPoints.append(vertex);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbLeader::subGetGripPoints(AcGePoint3dArray& gripPoints, AcDbIntArray&,
                                               AcDbIntArray&) const {
  assertReadEnabled();
  for (const AcGePoint3d& vertex : values_.vertices) gripPoints.append(vertex);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbLeader::subMoveGripPointsAt(const AcDbIntArray& indices,
                                                  const AcGeVector3d& offset) {
  assertWriteEnabled();
  for (const int index : indices) values_.vertices[static_cast<size_t>(index)] += offset;
  recordGraphicsModified();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbLeader::subTransformBy(const AcGeMatrix3d& transform) {
  assertWriteEnabled();
  const tarn::host::OwnChange change = tarn::host::changeOf(values_.normal, transform);
  for (AcGePoint3d& vertex : values_.vertices) vertex.transformBy(transform);
  values_.arrowSize *= change.scale;
  values_.normal = change.normal;
  recordGraphicsModified();
  return Acad::eOk;
}
