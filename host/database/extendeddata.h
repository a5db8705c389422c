// The extended data of an object.
#pragma once

#include "dbmain.h"
#include "host/database/resbufitems.h"

class AcGeMatrix3d;

struct AcDbObject::ExtendedData {
  tarn::host::ResbufItems items;  ///< of all applications, each behind its name
};

namespace tarn::host {

/// Positions, displacements, directions, distances and scale factors among the extended data go
/// with the entity that they are said of.
void transformExtendedData(AcDbObject& object, const AcGeMatrix3d& transform);

}  // namespace tarn::host
