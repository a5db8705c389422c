// The whole state of an object as bytes.
#pragma once

#include <vector>

#include "adesk.h"

class AcDbObject;

namespace tarn::host {

using Bytes = std::vector<char>;

/// What the object files, open or not. Empty when it cannot be filed.
ACADHOST_EXPORT Bytes objectBytes(AcDbObject& object);

/// Reads the bytes back into the object, which must be open for write. False when they do not fit.
ACADHOST_EXPORT bool readObjectBytes(AcDbObject& object, const Bytes& bytes);

}  // namespace tarn::host
