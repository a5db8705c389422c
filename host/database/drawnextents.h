// The box around what an entity draws.
#pragma once

#include "acdb.h"

class AcDbEntity;
class AcDbExtents;

namespace tarn::host {

/// Draws the entity, which must be open, into a box. eInvalidExtents when it draws nothing. Texts
/// count with an estimate of their length.
Acad::ErrorStatus drawnExtents(const AcDbEntity& entity, AcDbExtents& extents);

}  // namespace tarn::host
