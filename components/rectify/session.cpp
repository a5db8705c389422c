#include "components/rectify/session.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tarn::rectify {
namespace {

constexpr double kVersion = 1;
constexpr size_t kMostLayers = 64;
constexpr size_t kMostPoints = 1 << 20;

PlanePoint pointOf(const kel::List<double>& p) {
  constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
  return p.size() < 2 ? PlanePoint{kNone, kNone} : PlanePoint{p[0], p[1]};
}

bool isUsable(const kel::RectifyPlacement& p) {
  constexpr double kThin = 1e-9;
  const Slope slope{p.a, p.b, p.d, p.e};
  const double longest = slope.longest(), area = std::fabs(slope.determinant());
  return std::isfinite(p.originX) && std::isfinite(p.originY) && std::isfinite(longest) &&
         longest > 0 && area > kThin * longest * longest;
}

void append(kel::List<double>& out, const kel::RectifyPlacement& p) {
  out.insert(out.end(), {p.originX, p.originY, p.a, p.b, p.d, p.e});
}

/// Takes numbers off a list one after the other; `failed` once there are none left.
struct Reader {
  const kel::List<double>& numbers;
  size_t next = 0;
  bool failed = false;

  double number() {
    if (next >= numbers.size() || !std::isfinite(numbers[next])) {
      failed = true;
      return 0;
    }
    return numbers[next++];
  }
  size_t count(size_t most) {
    const double value = number();
    if (value < 0 || value > static_cast<double>(most) || value != std::floor(value)) failed = true;
    return failed ? 0 : static_cast<size_t>(value);
  }
  kel::RectifyPlacement placement() {
    kel::RectifyPlacement p;
    for (double* value : {&p.originX, &p.originY, &p.a, &p.b, &p.d, &p.e}) *value = number();
    failed = failed || !isUsable(p);
    return p;
  }
};

}  // namespace

Session::Session(const raster::GeoTransform& ground, int width, int height)
    : width_(width), height_(height), fileGround_(ground) {
  accepted_.ground = ground;
  rebuild();
}

Chain Session::chainOf(size_t layers) const {
  std::vector<Step> steps;
  for (size_t i = 0; i < layers; ++i) steps.push_back(accepted_.layers[i].step);
  return {accepted_.ground, width_, height_, accepted_.placement, std::move(steps)};
}

void Session::rebuild() {
  acceptedChain_ = chainOf(accepted_.layers.size());
  trial_.reset();
  preview_ = false;
  assessment_ = {};
}

void Session::begin() {
  setMethod(-1);
  if (accepted_.layers.empty()) return;
  Layer& last = accepted_.layers.back();
  last.handed.clear();
  for (const PointPair& pair : last.pairs) {
    const PlanePoint fitted = last.step.fit.at(pair.source);
    PlanePoint drawn;
    last.step.after.applyTo(fitted.x, fitted.y, drawn.x, drawn.y);
    last.handed.push_back(drawn);
  }
}

void Session::setMethod(int method) {
  method_ = methodOf(method) == Method::kNone ? -1 : method;
  if (method_ >= 0) return;
  trial_.reset();
  preview_ = false;
  assessment_ = {};
}

int Session::method() const {
  if (method_ >= 0) return method_;
  if (trial_) return static_cast<int>(trial_->method);
  return accepted_.layers.empty() ? -1 : static_cast<int>(accepted_.layers.back().method);
}

int Session::minimumPointCount(int method) {
  if (methodOf(method) != Method::kNone) lastAsked_ = method;
  return rectify::minimumPointCount(methodOf(method));
}

int Session::handedRow(PlanePoint source) const {
  constexpr double kSame = 1e-5;
  if (accepted_.layers.empty()) return -1;
  const std::vector<PlanePoint>& handed = accepted_.layers.back().handed;
  for (size_t i = 0; i < handed.size(); ++i) {
    if (std::fabs(handed[i].x - source.x) < kSame && std::fabs(handed[i].y - source.y) < kSame)
      return static_cast<int>(i);
  }
  return -1;
}

std::optional<PlanePoint> Session::underLast(PlanePoint source) const {
  const int row = handedRow(source);
  if (row >= 0) return accepted_.layers.back().pairs[row].source;
  const auto pixel = acceptedChain_.pixelOf(source);
  if (!pixel) return std::nullopt;
  return chainOf(accepted_.layers.size() - 1).at(*pixel);
}

ImageOutline Session::outlineOf(const Chain& base) const {
  ImageOutline outline =
      ImageOutline::rectangle({0, 0}, {static_cast<double>(width_), static_cast<double>(height_)});
  for (PlanePoint& p : outline.corners) p = base.at(p);
  for (PlanePoint& p : outline.lattice) p = base.at(p);
  return outline;
}

void Session::setControlPoints(const kel::PointList& sources, const kel::PointList& targets) {
  Layer layer;
  const size_t count = std::min(sources.size(), targets.size());
  for (size_t i = 0; i < count; ++i) layer.handed.push_back(pointOf(sources[i]));
  layer.method = methodOf(method_ >= 0 ? method_ : lastAsked_);
  replacesLast_ = std::any_of(layer.handed.begin(), layer.handed.end(),
                              [&](PlanePoint p) { return handedRow(p) >= 0; });
  std::vector<int> lost;
  for (size_t i = 0; i < count; ++i) {
    PlanePoint source = layer.handed[i];
    if (replacesLast_) {
      const auto under = underLast(source);
      if (!under) lost.push_back(static_cast<int>(i));
      source = under ? *under : pointOf({});
    }
    layer.pairs.push_back({source, pointOf(targets[i])});
  }
  const size_t below = accepted_.layers.size() - (replacesLast_ ? 1 : 0);
  const Chain base = chainOf(below);
  assessment_ = assess(layer.method, layer.pairs, outlineOf(base));
  // Its changes would be of other numbers than those that were handed in.
  kel::RectifyRepair& repair = assessment_.quality.repair;
  const bool touchesSources =
      std::any_of(repair.changes.begin(), repair.changes.end(),
                  [](const kel::RectifyChange& change) { return !change.isTarget; });
  if (replacesLast_ && touchesSources) repair = {};
  if (!lost.empty()) {
    assessment_.quality.fault = kel::RectifyFault::kSourceLost;
    assessment_.quality.faultPoints = lost;
  }
  preview_ = assessment_.solution.fit.has_value();
  if (preview_) {
    layer.step.fit = *assessment_.solution.fit;
    std::vector<Step> steps;
    for (size_t i = 0; i < below; ++i) steps.push_back(accepted_.layers[i].step);
    steps.push_back(layer.step);
    previewChain_ = {accepted_.ground, width_, height_, accepted_.placement, std::move(steps)};
  }
  trial_ = std::move(layer);
}

bool Session::points(kel::PointList& sources, kel::PointList& targets) const {
  sources.clear();
  targets.clear();
  const Layer* layer = trial_                     ? &*trial_
                       : accepted_.layers.empty() ? nullptr
                                                  : &accepted_.layers.back();
  if (!layer) return false;
  for (size_t i = 0; i < layer->pairs.size(); ++i) {
    sources.push_back({layer->handed[i].x, layer->handed[i].y, 0.0});
    targets.push_back({layer->pairs[i].target.x, layer->pairs[i].target.y, 0.0});
  }
  return !layer->pairs.empty();
}

void Session::accept() {
  if (!preview_ || !trial_) return;
  if (replacesLast_) accepted_.layers.pop_back();
  accepted_.layers.push_back(std::move(*trial_));
  const Assessment kept = std::move(assessment_);
  rebuild();
  assessment_ = kept;
}

const kel::RectifyPlacement& Session::placement() const {
  return accepted_.layers.empty() ? accepted_.placement : accepted_.layers.back().step.after;
}

bool Session::setPlacement(const kel::RectifyPlacement& placement) {
  if (!isUsable(placement)) return false;
  (accepted_.layers.empty() ? accepted_.placement : accepted_.layers.back().step.after) = placement;
  rebuild();
  return true;
}

std::optional<PlanePoint> Session::transformed(PlanePoint p) const {
  if (!std::isfinite(p.x) || !std::isfinite(p.y)) return std::nullopt;
  if (preview_ && !replacesLast_) return trial_->step.fit.at(p);
  if (accepted_.layers.empty()) return std::nullopt;
  const auto under = underLast(p);
  if (!under) return std::nullopt;
  return (preview_ ? trial_->step.fit : accepted_.layers.back().step.fit).at(*under);
}

std::optional<PlanePoint> Session::sourceOfFit(PlanePoint p) const {
  if (!std::isfinite(p.x) || !std::isfinite(p.y)) return std::nullopt;
  if ((trial_ && !replacesLast_) || accepted_.layers.empty()) return p;
  return underLast(p);
}

kel::List<double> Session::stored() const {
  const raster::GeoTransform& g = accepted_.ground;
  kel::List<double> out{kVersion,
                        static_cast<double>(width_),
                        static_cast<double>(height_),
                        g.x0,
                        g.a,
                        g.b,
                        g.y0,
                        g.d,
                        g.e};
  append(out, accepted_.placement);
  out.push_back(static_cast<double>(accepted_.layers.size()));
  for (const Layer& layer : accepted_.layers) {
    out.push_back(static_cast<double>(layer.method));
    out.push_back(static_cast<double>(layer.pairs.size()));
    for (const PointPair& p : layer.pairs)
      out.insert(out.end(), {p.source.x, p.source.y, p.target.x, p.target.y});
    append(out, layer.step.after);
  }
  return out;
}

bool Session::restore(const kel::List<double>& numbers) {
  State state;
  state.ground = fileGround_;
  if (!numbers.empty()) {
    Reader reader{numbers};
    if (reader.number() != kVersion || reader.number() != width_ || reader.number() != height_)
      return false;
    raster::GeoTransform& g = state.ground;
    for (double* value : {&g.x0, &g.a, &g.b, &g.y0, &g.d, &g.e}) *value = reader.number();
    if (reader.failed || !raster::isUsable(g)) return false;
    state.placement = reader.placement();
    const size_t layers = reader.count(kMostLayers);
    for (size_t i = 0; i < layers && !reader.failed; ++i) {
      Layer layer;
      layer.method = methodOf(static_cast<int>(reader.count(4)));
      layer.pairs.resize(reader.count(std::min(kMostPoints, numbers.size() / 4)));
      for (PointPair& p : layer.pairs) {
        for (double* value : {&p.source.x, &p.source.y, &p.target.x, &p.target.y})
          *value = reader.number();
        layer.handed.push_back(p.source);
      }
      layer.step.after = reader.placement();
      const Solution solution = solve(layer.method, layer.pairs);
      if (reader.failed || !solution.fit) return false;
      layer.step.fit = *solution.fit;
      state.layers.push_back(std::move(layer));
    }
    if (reader.failed || reader.next != numbers.size()) return false;
  }
  accepted_ = std::move(state);
  method_ = -1;
  rebuild();
  begin();
  return true;
}

}  // namespace tarn::rectify
