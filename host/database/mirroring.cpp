#include "host/database/mirroring.h"

#include <cmath>

#include "dbfcf.h"
#include "dbtext.h"
#include "host/database/entitysystem.h"

namespace tarn::host {

namespace {

bool isMirror(const AcGeMatrix3d& m) {
  return m.entry[0][0] * m.entry[1][1] - m.entry[0][1] * m.entry[1][0] < 0;
}

/// The direction in which a text is read; false for what is no text.
bool readingOf(const AcDbEntity& entity, AcGeVector3d& along) {
  if (const auto* text = AcDbText::cast(&entity)) {
    const AcDbTextLine& line = text->line();
    along = entityToWorld(line.normal) *
            AcGeVector3d(std::cos(line.rotation), std::sin(line.rotation), 0);
  } else if (const auto* paragraph = AcDbMText::cast(&entity)) {
    along = paragraph->direction();
  } else if (const auto* frame = AcDbFcf::cast(&entity)) {
    along = frame->values().direction;
  } else {
    return false;
  }
  return std::hypot(along.x, along.y) > 0;
}

}  // namespace

AcGeMatrix3d mirrorAlong(const AcGePoint3d& a, const AcGePoint3d& b) {
  const double length = std::hypot(b.x - a.x, b.y - a.y);
  const double x = (b.x - a.x) / length;
  const double y = (b.y - a.y) / length;
  AcGeMatrix3d mirror;
  mirror(0, 0) = x * x - y * y;
  mirror(0, 1) = mirror(1, 0) = 2 * x * y;
  mirror(1, 1) = y * y - x * x;
  mirror(0, 3) = a.x - mirror(0, 0) * a.x - mirror(0, 1) * a.y;
  mirror(1, 3) = a.y - mirror(1, 0) * a.x - mirror(1, 1) * a.y;
  return mirror;
}

/// Mirrored along or across its own middle first, a text lies where it lay; mirrored once more it
/// is only moved and turned.
AcGeMatrix3d legible(const AcDbEntity& entity, const AcGeMatrix3d& transform) {
  AcGeVector3d along;
  AcDbExtents box;
  if (!isMirror(transform) || !readingOf(entity, along) ||
      entity.getGeomExtents(box) != Acad::eOk) {
    return transform;
  }
  const AcGePoint3d middle = box.minPoint() + (box.maxPoint() - box.minPoint()) / 2;
  const AcGeVector3d mirrored = transform * along;
  constexpr double kUpright = 1e-6;
  const bool reads = mirrored.x > kUpright * mirrored.length() ||
                     (std::fabs(mirrored.x) <= kUpright * mirrored.length() && mirrored.y > 0);
  const AcGeVector3d axis = reads ? along : AcGeVector3d(-along.y, along.x, 0);
  return transform * mirrorAlong(middle, middle + axis);
}

}  // namespace tarn::host
