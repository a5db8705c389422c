#include "components/raster/placement.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <utility>

#include "base/result.h"
#include "base/text.h"
#include "components/raster/controlpoints.h"

namespace tarn::raster {
namespace {

constexpr double kVisible = 0.5;
constexpr double kLongestSide = 1 << 30;
// A band of 1000 x 100,000 pixels that lies askew needs fifty times its pixels.
constexpr double kMostEmptiness = 1024;
// Pixels of one image differ by less than this in their area on the ground.
constexpr double kMostUnevenness = 16;
constexpr int kLattice = 17;

struct Size {
  int width = 0;
  int height = 0;
};

/// A candidate whose numbers have been found good.
struct Usable {
  const GeoCandidate* candidate = nullptr;
  std::optional<GeoTransform> transform;
  PlaneMapping pixelOfGround;
  double residual = 0;
};

/// `value` must not be negative.
std::string rounded(double value) {
  char text[64];
  constexpr double kNothing = 0.0005, kSmall = 0.095;
  if (value < kNothing) return "0";
  std::snprintf(text, sizeof text, value < kSmall ? "%.2g" : "%.1f", value);
  return text;
}

/// True when rotation terms against the others move no pixel of the image visibly.
bool areInvisible(double b, double d, double a, double e, Size size) {
  constexpr double kInvisible = 0.1;
  return std::fabs(b) * size.height < kInvisible * std::fabs(a) &&
         std::fabs(d) * size.width < kInvisible * std::fabs(e);
}

/// The ground points of a lattice over the image, whole outline included; empty when the mapping
/// cannot be followed back over all of the image, or turns over in it.
std::vector<PlanePoint> latticeOf(const PlaneMapping& pixelOfGround, Size size) {
  std::vector<PlanePoint> points;
  double least = 0, most = 0;
  for (int j = 0; j < kLattice; ++j) {
    for (int i = 0; i < kLattice; ++i) {
      const auto ground = pixelOfGround.invert(
          {size.width * i / (kLattice - 1.0), size.height * j / (kLattice - 1.0)});
      if (!ground) return {};
      const double area = pixelOfGround.slopeAt(ground->x, ground->y).determinant();
      least = points.empty() ? area : std::min(least, area);
      most = points.empty() ? area : std::max(most, area);
      points.push_back(*ground);
    }
  }
  const bool turnsOver = least * most <= 0;
  const double unevenness = std::max(most / least, least / most);
  return turnsOver || unevenness > kMostUnevenness ? std::vector<PlanePoint>() : points;
}

/// Presented by mapping every pixel.
///
/// One step to the right or down on the grid is as long in the image as one of its pixels (on
/// average where that changes). So square pixels keep their size under any rotation, and of oblong
/// ones the short side decides: no detail is lost, and no step jumps over a pixel.
std::optional<Placement> resampled(const Usable& usable, Size size) {
  const std::vector<PlanePoint> ground = latticeOf(usable.pixelOfGround, size);
  if (ground.empty()) return std::nullopt;
  PlanePoint low = ground[0], high = low;
  double acrossSquared = 0, downSquared = 0;
  for (const PlanePoint& p : ground) {
    low = {std::min(low.x, p.x), std::min(low.y, p.y)};
    high = {std::max(high.x, p.x), std::max(high.y, p.y)};
    const Slope slope = usable.pixelOfGround.slopeAt(p.x, p.y);
    acrossSquared += slope.ux * slope.ux + slope.vx * slope.vx;
    downSquared += slope.uy * slope.uy + slope.vy * slope.vy;
  }
  const double count = static_cast<double>(ground.size());
  const PlanePoint pixel{1 / std::sqrt(acrossSquared / count), 1 / std::sqrt(downSquared / count)};
  // Sums of rounding errors add no column.
  constexpr double kTrace = 1e-6;
  const double columns = std::max(1.0, std::ceil((high.x - low.x) / pixel.x - kTrace));
  const double rows = std::max(1.0, std::ceil((high.y - low.y) / pixel.y - kTrace));
  const double own = static_cast<double>(size.width) * size.height;
  if (!(columns <= kLongestSide && rows <= kLongestSide) || columns * rows > kMostEmptiness * own)
    return std::nullopt;
  Placement result;
  result.transform = {low.x, pixel.x, 0, high.y, 0, -pixel.y};
  result.width = static_cast<int>(columns);
  result.height = static_cast<int>(rows);
  result.resampling = usable.pixelOfGround.onGrid({low.x, high.y}, {pixel.x, -pixel.y});
  return result;
}

/// Presented pixel by pixel when the image's axes run along the ground's.
std::optional<Placement> turned(const GeoTransform& t, Size size) {
  Placement result;
  if (areInvisible(t.b, t.d, t.a, t.e, size)) {
    result.turn = {false, t.a<0, t.e> 0};
    result.width = size.width;
    result.height = size.height;
    result.transform = {std::min(t.x0, t.x0 + t.a * size.width),
                        std::fabs(t.a),
                        0,
                        std::max(t.y0, t.y0 + t.e * size.height),
                        0,
                        -std::fabs(t.e)};
    return result;
  }
  if (areInvisible(t.a, t.e, t.b, t.d, {size.height, size.width})) {
    result.turn = {true, t.d > 0, t.b < 0};
    result.width = size.height;
    result.height = size.width;
    result.transform = {std::min(t.x0, t.x0 + t.b * size.height),
                        std::fabs(t.b),
                        0,
                        std::max(t.y0, t.y0 + t.d * size.width),
                        0,
                        -std::fabs(t.d)};
    return result;
  }
  return std::nullopt;
}

std::string rotationNote(const GeoTransform& t) {
  constexpr double kDegrees = 57.295779513082321;
  const bool mirrored = t.a * t.e - t.b * t.d > 0;
  const double rotation = kDegrees * std::atan2(mirrored ? -t.d : t.d, mirrored ? -t.a : t.a);
  const double down = kDegrees * std::atan2(t.b, -t.e);
  const double shear = std::fabs(std::remainder(rotation - down, 360));
  std::string text = "is rotated by " + rounded(std::fabs(rotation)) + " degrees";
  constexpr double kSquare = 0.05;
  if (shear > kSquare) text += " and sheared by " + rounded(shear);
  if (mirrored) text += " and mirrored";
  return text + ": shown resampled, north up";
}

/// Presented pixels to the image's own, for an image that is turned by quarters or mirrored.
PlanePoint turnedBack(const Turn& turn, int ownWidth, int ownHeight, PlanePoint p) {
  if (turn.transposed) std::swap(p.x, p.y);
  if (turn.mirroredColumns) p.x = ownWidth - p.x;
  if (turn.mirroredRows) p.y = ownHeight - p.y;
  return p;
}

Result<Usable> checked(const GeoCandidate& candidate) {
  Usable usable;
  usable.candidate = &candidate;
  if (candidate.transform) {
    if (!isUsable(*candidate.transform))
      return Status::error("its georeferencing in " + candidate.name + " is not usable");
    usable.transform = candidate.transform;
    usable.pixelOfGround = PlaneMapping::pixelsOf(*candidate.transform);
    return usable;
  }
  auto solved = solveControlPoints(candidate.points);
  if (!solved) return solved.status();
  usable.transform = solved.value().transform;
  usable.pixelOfGround = solved.value().pixelOfGround;
  usable.residual = solved.value().residual;
  return usable;
}

Result<Placement> placedBy(const Usable& usable, Size size) {
  std::optional<Placement> placed;
  if (usable.transform) placed = turned(*usable.transform, size);
  if (!placed) placed = resampled(usable, size);
  const bool byPoints = !usable.candidate->transform;
  const std::string count = std::to_string(usable.candidate->points.size());
  if (!placed) {
    return Status::error(byPoints ? "its " + count + " control points contradict one another"
                                  : "its georeferencing in " + usable.candidate->name +
                                        " would distort it beyond measure");
  }
  placed->coordinateSystem = usable.candidate->coordinateSystem;
  if (byPoints) {
    placed->notes.push_back("is placed by " + count + " control points (largest residual " +
                            rounded(usable.residual) + " pixels)" +
                            (placed->resampling ? ": shown resampled, north up" : ""));
  } else if (placed->resampling) {
    placed->notes.push_back(rotationNote(*usable.candidate->transform));
  }
  return *placed;
}

/// How far the image's corners lie apart.
struct Distance {
  double pixels = 0;
  double ground = 0;
};

Distance distanceOf(const Usable& p, const Usable& q, Size size) {
  Distance most;
  for (const int column : {0, size.width}) {
    for (const int row : {0, size.height}) {
      const PlanePoint corner{static_cast<double>(column), static_cast<double>(row)};
      const auto a = p.pixelOfGround.invert(corner), b = q.pixelOfGround.invert(corner);
      if (!a || !b) continue;
      const PlanePoint seen = p.pixelOfGround.at(b->x, b->y);
      most.pixels = std::max(most.pixels, std::hypot(seen.x - corner.x, seen.y - corner.y));
      most.ground = std::max(most.ground, std::hypot(a->x - b->x, a->y - b->y));
    }
  }
  return most;
}

}  // namespace

PlanePoint OwnPlace::pixelOf(PlanePoint presented) const {
  return placement.resampling ? placement.resampling->at(presented.x, presented.y)
                              : turnedBack(placement.turn, width, height, presented);
}

std::optional<Placement> placeByTransform(const GeoTransform& transform, int width, int height) {
  if (!isUsable(transform)) return std::nullopt;
  const Size size{width, height};
  if (auto placed = turned(transform, size)) return placed;
  Usable usable;
  usable.pixelOfGround = PlaneMapping::pixelsOf(transform);
  return resampled(usable, size);
}

Placement placeImage(const std::vector<GeoCandidate>& candidates, int width, int height) {
  const Size size{width, height};
  std::vector<std::string> notes;
  std::optional<Placement> chosen;
  Usable winner;
  for (const GeoCandidate& candidate : candidates) {
    const auto usable = checked(candidate);
    if (!usable) {
      if (!chosen) notes.push_back(usable.message() + " and is ignored");
      continue;
    }
    if (chosen) {
      const Distance apart = distanceOf(winner, usable.value(), size);
      if (apart.pixels <= kVisible) continue;
      notes.push_back("its georeferencing in " + winner.candidate->name + " and in " +
                      candidate.name + " differs by " + rounded(apart.pixels) + " pixels (" +
                      rounded(apart.ground) + " units of the ground); " + winner.candidate->name +
                      " counts");
      break;
    }
    auto placed = placedBy(usable.value(), size);
    if (placed) {
      chosen = placed.take();
      winner = usable.value();
    } else {
      notes.push_back(placed.message() + " and is ignored");
    }
  }
  if (!chosen) {
    chosen = Placement();
    chosen->width = width;
    chosen->height = height;
    chosen->transform.y0 = height;
    notes.emplace_back(
        "has no georeferencing: shown at the origin, one unit a pixel; rectifyImage puts it into "
        "its "
        "place");
  }
  chosen->notes.insert(chosen->notes.begin(), notes.begin(), notes.end());
  return *chosen;
}

}  // namespace tarn::raster
