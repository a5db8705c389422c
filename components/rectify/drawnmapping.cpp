#include "components/rectify/drawnmapping.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tarn::rectify {
namespace {

constexpr double kLongestSide = 1 << 30;
// A narrow image that lies askew needs many times its pixels; beyond this they become larger.
constexpr double kMostEmptiness = 16;
constexpr int kLatticeMeshes = 32;
// Along the outline, places to a side.
constexpr int kOutline = 256;

PlanePoint latticePixel(const Chain& chain, int i, int j, int meshes) {
  return {static_cast<double>(chain.width()) * i / meshes,
          static_cast<double>(chain.height()) * j / meshes};
}

bool isFinite(PlanePoint p) {
  constexpr double kFarthest = 1e15;
  return std::fabs(p.x) < kFarthest && std::fabs(p.y) < kFarthest;
}

double median(std::vector<double>& values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

/// Drawing units of a step to the right or down that is one image pixel long: the inverse slopes'
/// lengths, of which the median counts where they differ.
PlanePoint pixelSizeOf(const Chain& chain) {
  std::vector<double> across, down;
  constexpr int kMeshes = 16;
  for (int j = 0; j <= kMeshes; ++j) {
    for (int i = 0; i <= kMeshes; ++i) {
      const Slope s = chain.slopeAt(latticePixel(chain, i, j, kMeshes));
      const double det = std::fabs(s.determinant());
      if (!(det > 0) || !std::isfinite(det)) continue;
      across.push_back(det / std::hypot(s.vy, s.vx));
      down.push_back(det / std::hypot(s.uy, s.ux));
    }
  }
  if (across.empty()) return {0, 0};
  return {median(across), median(down)};
}

}  // namespace

std::optional<Frame> frameOf(const Chain& chain) {
  PlanePoint low{HUGE_VAL, HUGE_VAL}, high{-HUGE_VAL, -HUGE_VAL};
  const auto add = [&](PlanePoint pixel) {
    const PlanePoint p = chain.at(pixel);
    low = {std::min(low.x, p.x), std::min(low.y, p.y)};
    high = {std::max(high.x, p.x), std::max(high.y, p.y)};
    return isFinite(p);
  };
  const double w = chain.width(), h = chain.height();
  bool usable = true;
  for (int i = 0; i <= kOutline; ++i) {
    const double part = static_cast<double>(i) / kOutline;
    for (const PlanePoint p : {PlanePoint{w * part, 0}, PlanePoint{w * part, h},
                               PlanePoint{0, h * part}, PlanePoint{w, h * part}})
      usable = add(p) && usable;
  }
  // A folded image may reach beyond its outline.
  for (int j = 1; j < kLatticeMeshes; ++j)
    for (int i = 1; i < kLatticeMeshes; ++i)
      usable = add(latticePixel(chain, i, j, kLatticeMeshes)) && usable;
  PlanePoint pixel = pixelSizeOf(chain);
  if (!usable || !(pixel.x > 0) || !(pixel.y > 0)) return std::nullopt;
  const double needed = (high.x - low.x) / pixel.x * ((high.y - low.y) / pixel.y);
  const double larger = std::sqrt(std::max(1.0, needed / (kMostEmptiness * w * h + 1)));
  pixel = {pixel.x * larger, pixel.y * larger};
  constexpr double kTrace = 1e-6;
  const double columns = std::max(1.0, std::ceil((high.x - low.x) / pixel.x - kTrace));
  const double rows = std::max(1.0, std::ceil((high.y - low.y) / pixel.y - kTrace));
  if (!(columns <= kLongestSide && rows <= kLongestSide)) return std::nullopt;
  Frame frame;
  frame.transform = {low.x, pixel.x, 0, high.y, 0, -pixel.y};
  frame.width = static_cast<int>(columns);
  frame.height = static_cast<int>(rows);
  frame.pixelLength = larger;
  return frame;
}

DrawnMapping::DrawnMapping(Chain chain, const Frame& frame)
    : chain_(std::move(chain)), frame_(frame.transform) {
  if (foldsOver(chain_)) folded_.emplace(chain_, frame.transform, frame.width, frame.height);
  for (int j = 0; j <= kLatticeMeshes; ++j) {
    for (int i = 0; i <= kLatticeMeshes; ++i) {
      const PlanePoint pixel = latticePixel(chain_, i, j, kLatticeMeshes);
      const PlanePoint p = chain_.at(pixel);
      pixels_.push_back(pixel);
      places_.push_back({(p.x - frame_.x0) / frame_.a, (p.y - frame_.y0) / frame_.e});
    }
  }
  // Sides of a mesh bulge a little.
  constexpr double kBulge = 0.15;
  for (int j = 0; j < kLatticeMeshes; ++j) {
    for (int i = 0; i < kLatticeMeshes; ++i) {
      Box box{{HUGE_VAL, HUGE_VAL}, {-HUGE_VAL, -HUGE_VAL}};
      for (const int corner : {0, 1, kLatticeMeshes + 1, kLatticeMeshes + 2}) {
        const PlanePoint p = places_[static_cast<size_t>(j) * (kLatticeMeshes + 1) + i + corner];
        box.low = {std::min(box.low.x, p.x), std::min(box.low.y, p.y)};
        box.high = {std::max(box.high.x, p.x), std::max(box.high.y, p.y)};
      }
      const double more = kBulge * std::max(box.high.x - box.low.x, box.high.y - box.low.y) + 1;
      meshes_.push_back(
          {{box.low.x - more, box.low.y - more}, {box.high.x + more, box.high.y + more}});
    }
  }
}

std::optional<PlanePoint> DrawnMapping::at(double x, double y) const {
  if (folded_) return folded_->at(chain_, x, y);
  const PlanePoint ground{frame_.x0 + frame_.a * x, frame_.y0 + frame_.e * y};
  if (const auto found = chain_.pixelFromAbout(ground)) return found;
  // Strongly bent images: from the meshes that lie there.
  for (size_t i = 0; i < meshes_.size(); ++i) {
    const Box& box = meshes_[i];
    if (x < box.low.x || x > box.high.x || y < box.low.y || y > box.high.y) continue;
    const size_t corner = i / kLatticeMeshes * (kLatticeMeshes + 1) + i % kLatticeMeshes;
    const PlanePoint low = pixels_[corner], high = pixels_[corner + kLatticeMeshes + 2];
    const auto found = chain_.pixelOf(ground, {(low.x + high.x) / 2, (low.y + high.y) / 2});
    if (found) return found;
  }
  return std::nullopt;
}

bool DrawnMapping::mayShow(PlanePoint low, PlanePoint high) const {
  return std::any_of(meshes_.begin(), meshes_.end(), [&](const Box& box) {
    return box.low.x <= high.x && box.high.x >= low.x && box.low.y <= high.y && box.high.y >= low.y;
  });
}

double DrawnMapping::orientation() const {
  // The frame's rows count downwards.
  return -chain_.orientation();
}

}  // namespace tarn::rectify
