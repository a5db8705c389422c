#include "acgi.h"
#include "dbray.h"
#include "host/database/valuedentity.h"

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbEndlessLine, AcDbEntity)
ACRX_DXF_DEFINE_MEMBERS(AcDbRay, AcDbEndlessLine, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0,
                        RAY, ObjectDBX Classes)
ACRX_DXF_DEFINE_MEMBERS(AcDbXline, AcDbEndlessLine, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0,
                        XLINE, ObjectDBX Classes)

template <typename Filing>
void eachField(AcDbEndlessLineValues& values, Filing& filing) {
  filing.all(values.base, values.direction);
}

template class AcDbValuedEntity<AcDbEndlessLineValues>;

Acad::ErrorStatus AcDbEndlessLine::subGetOsnapPoints(AcDb::OsnapMode osnapMode, Adesk::GsMarker,
                                                     const AcGePoint3d&, const AcGePoint3d&,
                                                     const AcGeMatrix3d&,
                                                     AcGePoint3dArray& snapPoints,
                                                     AcDbIntArray&) const {
  if (osnapMode == AcDb::kOsModeEnd) snapPoints.append(values().base);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbEndlessLine::subGetGripPoints(AcGePoint3dArray& gripPoints, AcDbIntArray&,
                                                    AcDbIntArray&) const {
  gripPoints.append(values().base);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbEndlessLine::subTransformBy(const AcGeMatrix3d& transform) {
  assertWriteEnabled();
  const AcGeVector3d direction = transform * values_.direction;
  values_.base.transformBy(transform);
  if (direction.length() > 0) values_.direction = direction.normal();
  recordGraphicsModified();
  return Acad::eOk;
}

Adesk::Boolean AcDbRay::subWorldDraw(AcGiWorldDraw* draw) {
  draw->geometry().ray(values().base, values().base + values().direction);
  return Adesk::kTrue;
}

Adesk::Boolean AcDbXline::subWorldDraw(AcGiWorldDraw* draw) {
  draw->geometry().xline(values().base, values().base + values().direction);
  return Adesk::kTrue;
}
