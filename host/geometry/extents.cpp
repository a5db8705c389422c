#include <algorithm>

#include "dbextents.h"

bool AcDbExtents::isEmpty() const {
  return minimum_.x > maximum_.x || minimum_.y > maximum_.y || minimum_.z > maximum_.z;
}

Acad::ErrorStatus AcDbExtents::set(const AcGePoint3d& minimum, const AcGePoint3d& maximum) {
  if (!(minimum.x <= maximum.x && minimum.y <= maximum.y && minimum.z <= maximum.z)) {
    return Acad::eInvalidExtents;
  }
  minimum_ = minimum;
  maximum_ = maximum;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbExtents::addPoint(const AcGePoint3d& point) {
  minimum_.set(std::min(minimum_.x, point.x), std::min(minimum_.y, point.y),
               std::min(minimum_.z, point.z));
  maximum_.set(std::max(maximum_.x, point.x), std::max(maximum_.y, point.y),
               std::max(maximum_.z, point.z));
  return Acad::eOk;
}

Acad::ErrorStatus AcDbExtents::addExt(const AcDbExtents& other) {
  if (other.isEmpty()) return Acad::eInvalidExtents;
  addPoint(other.minimum_);
  return addPoint(other.maximum_);
}

void AcDbExtents::transformBy(const AcGeMatrix3d& matrix) {
  if (isEmpty()) return;
  AcDbExtents moved;
  for (int corner = 0; corner < 8; ++corner) {
    moved.addPoint(matrix * AcGePoint3d((corner & 1) ? maximum_.x : minimum_.x,
                                        (corner & 2) ? maximum_.y : minimum_.y,
                                        (corner & 4) ? maximum_.z : minimum_.z));
  }
  *this = moved;
}
