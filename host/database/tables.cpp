#include <cmath>

#include "dbtable.h"
#include "host/database/entitysystem.h"

ACRX_DXF_DEFINE_MEMBERS(AcDbTable, AcDbBlockReference, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent,
                        0, ACAD_TABLE, ObjectDBX Classes)

Acad::ErrorStatus AcDbTable::subTransformBy(const AcGeMatrix3d& transform) {
  constexpr double kSame = 1e-9;
  const double scale = tarn::host::changeOf(placement().normal, transform).scale;
  const bool keepsSize = std::abs(scale - 1) < kSame && transform.det() > 0;
  return keepsSize ? AcDbBlockReference::subTransformBy(transform)
                   : AcDbEntity::subTransformBy(transform);
}
