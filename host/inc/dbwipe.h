// Areas that cover what lies below them.
#pragma once

#include "dbimage.h"

/// Like an image whose shown part has the colour of what the drawing stands on.
class ACADHOST_EXPORT AcDbWipeout : public AcDbRasterImage {
 public:
  ACRX_DECLARE_MEMBERS(AcDbWipeout);

 protected:
  Adesk::Boolean subWorldDraw(AcGiWorldDraw* draw) override;
  /// The corners of the area.
  Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& gripPoints, AcDbIntArray& osnapModes,
                                     AcDbIntArray& geomIds) const override;
  Adesk::Int16 frameMode() const override;
};
