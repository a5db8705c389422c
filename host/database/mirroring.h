// Texts that stay legible in a mirror.
#pragma once

#include "gemat3d.h"
#include "gepnt3d.h"

class AcDbEntity;

namespace tarn::host {

/// A mirror on the ground: along the line through two different points.
ACADHOST_EXPORT AcGeMatrix3d mirrorAlong(const AcGePoint3d& a, const AcGePoint3d& b);

/// How an entity that is open is changed by a transformation: a text that would be mirrored is
/// moved and turned to where its mirrored image would be, reading from the left or from below;
/// everything else by the transformation itself.
ACADHOST_EXPORT AcGeMatrix3d legible(const AcDbEntity& entity, const AcGeMatrix3d& transform);

}  // namespace tarn::host
