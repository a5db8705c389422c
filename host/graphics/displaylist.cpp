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
    if (points.empty()) return;
    GroundPoint low = points.front();
    GroundPoint high = low;
    double sum = 0;  // finite when all of them are
    for (const GroundPoint& p : points) {
      low = {std::min(low.x, p.x), std::min(low.y, p.y)};
      high = {std::max(high.x, p.x), std::max(high.y, p.y)};
      sum += (p.x - p.x) + (p.y - p.y);
    }
    if (sum != 0) drawn_.isEverywhere = true;
    add(low.x, low.y);
    add(high.x, high.y);
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

LineItem& ListWriter::addLine() {
  if (count_ == list_.size()) {
    ++count_;
    return std::get<LineItem>(list_.emplace_back(LineItem()));
  }
  DisplayItem& item = list_[count_++];
  auto* line = std::get_if<LineItem>(&item);
  if (line == nullptr) return item.emplace<LineItem>();
  std::vector<GroundPoint> points = std::move(line->points);
  points.clear();
  *line = LineItem();
  line->points = std::move(points);
  return *line;
}

void ListWriter::add(DisplayItem item) {
  if (count_ == list_.size()) {
    list_.push_back(std::move(item));
  } else {
    list_[count_] = std::move(item);
  }
  ++count_;
}

Drawn* Scene::known(Key entity) {
  for (const size_t place : {last_, last_ + 1}) {
    if (place >= order_.size() || order_[place] != entity) continue;
    last_ = place;
    return const_cast<Drawn*>(drawn_[place]);  // const for those who look at the scene
  }
  const auto found = entities_.find(entity);
  return found == entities_.end() ? nullptr : &found->second;
}

void Scene::set(Key entity, DisplayList list) {
  Drawn* drawn = known(entity);
  if (drawn == nullptr) {
    drawn = &entities_[entity];
    order_.push_back(entity);
    drawn_.push_back(drawn);
  }
  *drawn = Drawn{std::move(list), {}, false, false};
  Bounds bounds(*drawn);
  for (DisplayItem& item : drawn->list) std::visit(bounds, item);
}

DisplayList Scene::take(Key entity) {
  Drawn* drawn = known(entity);
  return drawn != nullptr ? std::move(drawn->list) : DisplayList();
}

void Scene::remove(Key entity) {
  if (Drawn* drawn = known(entity)) *drawn = Drawn{{}, {}, false, true};
}

size_t Scene::size() const {
  return static_cast<size_t>(std::count_if(drawn_.begin(), drawn_.end(),
                                           [](const Drawn* drawn) { return !drawn->isGone; }));
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
  return found == entities_.end() || found->second.isGone ? nullptr : &found->second;
}

}  // namespace tarn::host
