// What a drawing keeps beside its objects.
#pragma once

#include "dbid.h"
#include "gepnt2d.h"

class AcDbDatabase;

namespace tarn::host {

/// Variables of a drawing, as AcDbDatabase describes them.
struct HeaderVariables {
  AcDbObjectId currentLayer;
  double linetypeScale = 1;
  bool showsLineWeights = false;
  Adesk::Int16 imageFrame = 1;
  Adesk::Int16 wipeoutFrame = 1;
  Adesk::Int16 pointMode = 0;
  double pointSize = 0;
  AcGePoint2d lowerLimit;  ///< of the model
  AcGePoint2d upperLimit{420, 297};
};
ACADHOST_EXPORT bool operator==(const HeaderVariables& a, const HeaderVariables& b);

/// A mode of points that can be drawn.
bool isPointMode(int mode);

/// Tells who listens to the drawing that its variables were `before` and have been brought back.
void tellRestored(AcDbDatabase& database, const HeaderVariables& before);

}  // namespace tarn::host
