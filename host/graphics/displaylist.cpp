#include "host/graphics/displaylist.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tarn::host {

namespace {

/// No letter is wider than this many heights of a capital, nor reaches further above or below.
constexpr double kWidestLetter = 2;

class Bounds {
 public:
  explicit Bounds(Drawn& drawn) : drawn_(drawn) {}

  void operator()(LineItem& item) {
    addAll(item.points);
    for (size_t i = 1; i < item.points.size(); ++i) {
      const GroundPoint& a = item.points[i - 1];
      const GroundPoint& b = item.points[i];
      item.longestStep = std::max({item.longestStep, std::fabs(b.x - a.x), std::fabs(b.y - a.y)});
    }
  }
  void operator()(const AreaItem& item) { addAll(item.points); }
  void operator()(const TextItem& item) {
    const double reach = item.height * std::max(1.0, item.widthFactor) * kWidestLetter *
                         (item.text.size() + 1) / std::max(0.1, std::cos(item.oblique));
    add(item.position.x - reach, item.position.y - reach);
    add(item.position.x + reach, item.position.y + reach);
  }
  void operator()(const ImageItem& item) {
    for (const int corner : {0, 1, 2, 3}) {
      const double u = corner % 2;
      const double v = corner < 2 ? 0 : 1;
      add(item.origin.x + u * item.u.x + v * item.v.x, item.origin.y + u * item.u.y + v * item.v.y);
    }
  }
  void operator()(const PointsItem&) { drawn_.isEverywhere = true; }

 private:
  void addAll(const std::vector<GroundPoint>& points) {
    for (const GroundPoint& p : points) add(p.x, p.y);
  }
  void add(double x, double y) {
    if (!std::isfinite(x + y)) drawn_.isEverywhere = true;
    drawn_.box.add(x, y);
  }

  Drawn& drawn_;
};

}  // namespace

size_t loopCount(const AreaItem& item) {
  return item.ends.empty() ? 1 : item.ends.size();
}

std::pair<std::ptrdiff_t, std::ptrdiff_t> loopOf(const AreaItem& item, size_t loop) {
  if (item.ends.empty()) return {0, static_cast<std::ptrdiff_t>(item.points.size())};
  return {loop == 0 ? 0 : item.ends[loop - 1], item.ends[loop]};
}

void Scene::set(Key entity, DisplayList list) {
  const auto [place, isNew] = entities_.try_emplace(entity);
  Drawn& drawn = place->second;
  drawn = Drawn{std::move(list), {}, false};
  Bounds bounds(drawn);
  for (DisplayItem& item : drawn.list) std::visit(bounds, item);
  if (!isNew) return;
  order_.push_back(entity);
  drawn_.push_back(&drawn);
}

void Scene::remove(Key entity) {
  const auto found = entities_.find(entity);
  if (found == entities_.end()) return;
  const auto place = std::find(order_.begin(), order_.end(), entity) - order_.begin();
  order_.erase(order_.begin() + place);
  drawn_.erase(drawn_.begin() + place);
  entities_.erase(found);
}

void Scene::keepInOrder(const std::vector<Key>& entities) {
  if (entities == order_) return;
  std::unordered_map<Key, Drawn> kept;
  order_.clear();
  drawn_.clear();
  for (const Key entity : entities) {
    auto node = entities_.extract(entity);
    if (node.empty()) continue;
    order_.push_back(entity);
    drawn_.push_back(&kept.insert(std::move(node)).position->second);
  }
  entities_ = std::move(kept);
}

void Scene::clear() {
  order_.clear();
  drawn_.clear();
  entities_.clear();
}

const DisplayList* Scene::find(Key entity) const {
  const Drawn* drawn = findDrawn(entity);
  return drawn != nullptr ? &drawn->list : nullptr;
}

const Drawn* Scene::findDrawn(Key entity) const {
  const auto found = entities_.find(entity);
  return found == entities_.end() ? nullptr : &found->second;
}

}  // namespace tarn::host
