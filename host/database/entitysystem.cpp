#include "host/database/entitysystem.h"

#include <algorithm>
#include <cmath>

namespace tarn::host {

namespace {

constexpr double kTurn = 6.283185307179586;
constexpr int kSidesOfTurn = 128;

bool isFlatZ(const AcGeVector3d& normal) {
  return normal.x == 0 && normal.y == 0 && normal.z > 0;
}

bool onlyMoves(const AcGeMatrix3d& m) {
  for (int row = 0; row < 3; ++row) {
    for (int column = 0; column < 3; ++column) {
      if (m.entry[row][column] != (row == column ? 1 : 0)) return false;
    }
  }
  return true;
}

/// To the last bit: coordinates may be large.
bool isIdentity(const AcGeMatrix3d& m) {
  const AcGeVector3d offset = m.translation();
  return onlyMoves(m) && offset.x == 0 && offset.y == 0 && offset.z == 0;
}

}  // namespace

AcGeMatrix3d entityToWorld(const AcGeVector3d& normal) {
  if (isFlatZ(normal)) return {};
  constexpr double kNearZ = 1.0 / 64;
  const AcGeVector3d z = normal.normal();
  const bool nearZ = std::abs(z.x) < kNearZ && std::abs(z.y) < kNearZ;
  const AcGeVector3d guide = nearZ ? AcGeVector3d::kYAxis : AcGeVector3d::kZAxis;
  const AcGeVector3d x = guide.crossProduct(z).normal();
  AcGeMatrix3d matrix;
  return matrix.setCoordSystem(AcGePoint3d::kOrigin, x, z.crossProduct(x).normal(), z);
}

double OwnChange::turned(double angle) const {
  if (onlyMoves(map)) return angle;
  const AcGeVector3d direction = map * AcGeVector3d(std::cos(angle), std::sin(angle), 0);
  const double turned = std::atan2(direction.y, direction.x);
  return turned < 0 ? turned + kTurn : turned;
}

OwnChange changeOf(const AcGeVector3d& normal, const AcGeMatrix3d& transform) {
  OwnChange change;
  change.normal = normal;
  if (onlyMoves(transform)) {
    const AcGeMatrix3d own = entityToWorld(normal);
    change.map = isFlatZ(normal) ? transform : own.inverse() * transform * own;
    return change;
  }
  const AcGeMatrix3d from = entityToWorld(normal);
  const AcGeVector3d x = transform * (from * AcGeVector3d::kXAxis);
  const AcGeVector3d y = transform * (from * AcGeVector3d::kYAxis);
  const AcGeVector3d z = x.crossProduct(y);
  if (z.length() > 0) change.normal = z.normal();
  change.map = entityToWorld(change.normal).inverse() * transform * from;
  change.scale = x.length();
  return change;
}

std::vector<AcGePoint3d> arcPoints(const AcGePoint3d& center, double radius, double start,
                                   double end) {
  double sweep = std::remainder(end - start, kTurn);
  if (sweep <= 0) sweep += kTurn;
  const int sides = std::max(1, static_cast<int>(std::ceil(sweep / kTurn * kSidesOfTurn)));
  std::vector<AcGePoint3d> points;
  points.reserve(static_cast<size_t>(sides) + 1);
  for (int i = 0; i <= sides; ++i) {
    const double angle = start + sweep * i / sides;
    points.emplace_back(center.x + radius * std::cos(angle), center.y + radius * std::sin(angle),
                        center.z);
  }
  return points;
}

void addBulge(std::vector<AcGePoint3d>& points, const AcGePoint3d& from, const AcGePoint3d& to,
              double bulge) {
  const AcGeVector3d chord = to - from;
  if (bulge != 0 && std::isfinite(bulge) && chord.length() > 0) {
    const double sweep = 4 * std::atan(bulge);
    // The centre lies beside the middle of the chord.
    const double aside = (1 - bulge * bulge) / (4 * bulge);
    const AcGePoint3d center(from.x + chord.x / 2 - chord.y * aside,
                             from.y + chord.y / 2 + chord.x * aside, from.z);
    const double radius = std::hypot(from.x - center.x, from.y - center.y);
    const double start = std::atan2(from.y - center.y, from.x - center.x);
    const int sides =
        std::max(1, static_cast<int>(std::ceil(std::abs(sweep) / kTurn * kSidesOfTurn)));
    for (int i = 1; i < sides; ++i) {
      const double angle = start + sweep * i / sides;
      points.emplace_back(center.x + radius * std::cos(angle), center.y + radius * std::sin(angle),
                          from.z);
    }
  }
  points.push_back(to);
}

void transformAll(std::vector<AcGePoint3d>& points, const AcGeMatrix3d& matrix) {
  if (isIdentity(matrix)) return;
  for (AcGePoint3d& point : points) point.transformBy(matrix);
}

}  // namespace tarn::host
