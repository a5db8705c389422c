#include "components/rectify/foldedplaces.h"

#include <algorithm>
#include <cmath>

namespace tarn::rectify {
namespace {

constexpr int kMeshes = 64, kCells = 64;
constexpr int kLookedAt = 32;
// Sides are bent, so a little beyond them counts too.
constexpr double kBeyond = -0.02;

double crossOf(PlanePoint o, PlanePoint p, PlanePoint q) {
  return (p.x - o.x) * (q.y - o.y) - (p.y - o.y) * (q.x - o.x);
}

int cellAlong(double position, double cell) {
  return static_cast<int>(std::clamp(std::floor(position / cell), 0.0, kCells - 1.0));
}

}  // namespace

bool foldsOver(const Chain& chain) {
  if (chain.isAffine()) return false;
  bool positive = false, negative = false;
  for (int j = 0; j <= kLookedAt; ++j) {
    for (int i = 0; i <= kLookedAt; ++i) {
      const PlanePoint pixel{static_cast<double>(chain.width()) * i / kLookedAt,
                             static_cast<double>(chain.height()) * j / kLookedAt};
      const double area = chain.slopeAt(pixel).determinant();
      positive = positive || area > 0;
      negative = negative || area < 0;
    }
  }
  return positive && negative;
}

FoldedPlaces::FoldedPlaces(const Chain& chain, const raster::GeoTransform& frame, int width,
                           int height)
    : frame_(frame),
      cell_{static_cast<double>(width) / kCells, static_cast<double>(height) / kCells},
      mesh_{static_cast<double>(chain.width()) / kMeshes,
            static_cast<double>(chain.height()) / kMeshes},
      cells_(static_cast<size_t>(kCells) * kCells) {
  // One mesh more on every side: pieces that cross an edge need places beyond it.
  constexpr int kSide = kMeshes + 3;
  std::vector<PlanePoint> places, pixels;
  for (int j = -1; j <= kMeshes + 1; ++j) {
    for (int i = -1; i <= kMeshes + 1; ++i) {
      pixels.push_back({i * mesh_.x, j * mesh_.y});
      const PlanePoint p = chain.at(pixels.back());
      places.push_back({(p.x - frame.x0) / frame.a, (p.y - frame.y0) / frame.e});
    }
  }
  // Rows of the frame count downwards, as those of the image do.
  const double side = -chain.orientation();
  for (size_t j = 0; j + 1 < kSide; ++j) {
    for (size_t i = 0; i + 1 < kSide; ++i) {
      const size_t o = j * kSide + i;
      for (const auto& [b, c] : {std::pair<size_t, size_t>{o + 1, o + kSide + 1},
                                 std::pair<size_t, size_t>{o + kSide + 1, o + kSide}}) {
        const Triangle triangle{
            {places[o], places[b], places[c]}, {pixels[o], pixels[b], pixels[c]}, {}, {}};
        if (crossOf(places[o], places[b], places[c]) * side > 0) add(triangle);
      }
    }
  }
}

void FoldedPlaces::add(Triangle triangle) {
  PlanePoint low = triangle.places[0], high = low;
  for (const PlanePoint& p : triangle.places) {
    if (!std::isfinite(p.x) || !std::isfinite(p.y)) return;
    low = {std::min(low.x, p.x), std::min(low.y, p.y)};
    high = {std::max(high.x, p.x), std::max(high.y, p.y)};
  }
  if (high.x < 0 || high.y < 0 || low.x > cell_.x * kCells || low.y > cell_.y * kCells) return;
  const auto index = static_cast<uint32_t>(triangles_.size());
  // Two of the three shares may be kBeyond.
  const double x = -3 * kBeyond * (high.x - low.x), y = -3 * kBeyond * (high.y - low.y);
  triangle.low = {low.x - x, low.y - y};
  triangle.high = {high.x + x, high.y + y};
  triangles_.push_back(triangle);
  for (int j = cellAlong(low.y, cell_.y); j <= cellAlong(high.y, cell_.y); ++j)
    for (int i = cellAlong(low.x, cell_.x); i <= cellAlong(high.x, cell_.x); ++i)
      cells_[static_cast<size_t>(j) * kCells + i].push_back(index);
}

size_t FoldedPlaces::cellOf(double x, double y) const {
  return static_cast<size_t>(cellAlong(y, cell_.y)) * kCells + cellAlong(x, cell_.x);
}

std::optional<PlanePoint> FoldedPlaces::startIn(const Triangle& t, double x, double y) const {
  if (x < t.low.x || x > t.high.x || y < t.low.y || y > t.high.y) return std::nullopt;
  const PlanePoint p{x, y};
  const double all = crossOf(t.places[0], t.places[1], t.places[2]);
  const double b = crossOf(t.places[0], p, t.places[2]) / all;
  const double c = crossOf(t.places[0], t.places[1], p) / all;
  if (!(b >= kBeyond && c >= kBeyond && 1 - b - c >= kBeyond)) return std::nullopt;
  const PlanePoint& o = t.pixels[0];
  return PlanePoint{o.x + b * (t.pixels[1].x - o.x) + c * (t.pixels[2].x - o.x),
                    o.y + b * (t.pixels[1].y - o.y) + c * (t.pixels[2].y - o.y)};
}

std::optional<PlanePoint> FoldedPlaces::at(const Chain& chain, double x, double y) const {
  const PlanePoint ground{frame_.x0 + frame_.a * x, frame_.y0 + frame_.e * y};
  for (const uint32_t index : cells_[cellOf(x, y)]) {
    const auto start = startIn(triangles_[index], x, y);
    if (!start) continue;
    const auto found = chain.pixelOf(ground, *start);
    // What lies far from the triangle is of another sheet.
    if (found && std::fabs(found->x - start->x) <= mesh_.x &&
        std::fabs(found->y - start->y) <= mesh_.y)
      return found;
  }
  return std::nullopt;
}

}  // namespace tarn::rectify
