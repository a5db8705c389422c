#include "dbwipe.h"

#include "acgi.h"
#include "dbmain.h"
#include "host/database/blockdraw.h"

ACRX_DXF_DEFINE_MEMBERS(AcDbWipeout, AcDbRasterImage, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0,
                        WIPEOUT, ObjectDBX Classes)

Adesk::Boolean AcDbWipeout::subWorldDraw(AcGiWorldDraw* draw) {
  const std::vector<AcGePoint3d> rim = frame();
  AcGiSubEntityTraits& traits = draw->subEntityTraits();
  const Adesk::UInt32 own = traits.trueColor();
  traits.setGroundColor();
  draw->geometry().polygon(static_cast<Adesk::UInt32>(rim.size()) - 1, rim.data());
  tarn::host::setResolvedColor(traits, own);
  if (isFrameShown(*draw)) {
    draw->geometry().polyline(static_cast<Adesk::UInt32>(rim.size()), rim.data());
  }
  return Adesk::kTrue;
}

Acad::ErrorStatus AcDbWipeout::subGetGripPoints(AcGePoint3dArray& gripPoints, AcDbIntArray&,
                                                AcDbIntArray&) const {
  assertReadEnabled();
  std::vector<AcGePoint3d> rim = frame();
  rim.pop_back();
  for (const AcGePoint3d& point : rim) gripPoints.append(point);
  return Acad::eOk;
}

Adesk::Int16 AcDbWipeout::frameMode() const {
  return database() != nullptr ? database()->wipeoutFrame() : Adesk::Int16{1};
}
