// The state of one object as bytes.
#pragma once

#include <vector>

#include "acdb.h"
#include "adesk.h"

class AcDbObject;

namespace tarn::host {

/// The object's filed state and its erase mark. It must be open. Empty when its filing fails.
ACADHOST_EXPORT std::vector<char> takeSnapshot(const AcDbObject& object);

/// Brings a snapshot of the same object back; it must be open for write (with openErased). The
/// object refuses with the status of its own filing or erasing.
ACADHOST_EXPORT Acad::ErrorStatus restoreSnapshot(AcDbObject& object,
                                                  const std::vector<char>& snapshot);

}  // namespace tarn::host
