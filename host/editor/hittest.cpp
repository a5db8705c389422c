#include "host/editor/hittest.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "host/graphics/textoutlines.h"

namespace tarn::host {

namespace {

double segmentDistance(PixelPoint p, PixelPoint a, PixelPoint b) {
  const double dx = b.x - a.x;
  const double dy = b.y - a.y;
  const double length = dx * dx + dy * dy;
  const double t =
      length > 0 ? std::clamp(((p.x - a.x) * dx + (p.y - a.y) * dy) / length, 0.0, 1.0) : 0.0;
  return std::hypot(p.x - a.x - t * dx, p.y - a.y - t * dy);
}

bool contains(const PixelBox& box, PixelPoint p) {
  return p.x >= box.minX && p.x <= box.maxX && p.y >= box.minY && p.y <= box.maxY;
}

/// True when a part of a-b lies in the box: what is left after cutting at the four sides.
bool crosses(const PixelBox& box, PixelPoint a, PixelPoint b) {
  double from = 0;
  double to = 1;
  const auto cut = [&](double start, double delta, double low, double high) {
    if (delta == 0) return start >= low && start <= high;
    const double t0 = (low - start) / delta;
    const double t1 = (high - start) / delta;
    from = std::max(from, std::min(t0, t1));
    to = std::min(to, std::max(t0, t1));
    return from <= to;
  };
  return cut(a.x, b.x - a.x, box.minX, box.maxX) && cut(a.y, b.y - a.y, box.minY, box.maxY);
}

bool isInPolygon(const std::vector<PixelPoint>& polygon, PixelPoint p) {
  bool inside = false;
  for (size_t i = 0, j = polygon.size() - 1; i < polygon.size(); j = i++) {
    const PixelPoint& a = polygon[i];
    const PixelPoint& b = polygon[j];
    if ((a.y > p.y) != (b.y > p.y) && p.x < (b.x - a.x) * (p.y - a.y) / (b.y - a.y) + a.x) {
      inside = !inside;
    }
  }
  return inside;
}

std::vector<PixelPoint> toPixels(const std::vector<GroundPoint>& points, const ViewState& view,
                                 bool closed) {
  std::vector<PixelPoint> pixels;
  pixels.reserve(points.size() + 1);
  for (const GroundPoint& point : points) pixels.push_back(pixelFromGround(view, point));
  if (closed && !pixels.empty()) pixels.push_back(pixels.front());
  return pixels;
}

struct Adder {
  Outlines& outlines;
  const ViewState& view;

  void operator()(const LineItem& item) const {
    outlines.push_back({toPixels(item.points, view, false), false, false});
  }
  void operator()(const AreaItem& item) const {
    const size_t first = outlines.size();
    for (size_t i = 0; i < loopCount(item); ++i) {
      const auto [begin, end] = loopOf(item, i);
      outlines.push_back(
          {toPixels({item.points.begin() + begin, item.points.begin() + end}, view, true),
           item.filled, false});
    }
    for (size_t i = first; i + 1 < outlines.size(); ++i) outlines[i].goesOn = true;
  }
  void operator()(const TextItem& item) const {
    const double width = measuredTextWidth(item.text.toStdWString(), item.font.toStdWString()) *
                         item.height * item.widthFactor;
    const double length = std::hypot(item.direction.x, item.direction.y);
    if (!(length > 0)) return;
    const GroundVector along{item.direction.x / length * width, item.direction.y / length * width};
    const double rise = item.mirrored ? -item.height : item.height;
    const GroundVector up{-item.direction.y / length * rise, item.direction.x / length * rise};
    const GroundPoint& p = item.position;
    outlines.push_back({toPixels({p,
                                  {p.x + along.x, p.y + along.y},
                                  {p.x + along.x + up.x, p.y + along.y + up.y},
                                  {p.x + up.x, p.y + up.y}},
                                 view, true),
                        true, false});
  }
  void operator()(const ImageItem&) const {}
  void operator()(const PointsItem&) const {}
};

/// True in an odd number of the loops of one area.
bool isInArea(const Outlines& outlines, PixelPoint p) {
  bool inside = false;
  for (const Outline& outline : outlines) {
    if (outline.filled && isInPolygon(outline.points, p)) inside = !inside;
    if (outline.goesOn) continue;
    if (inside) return true;
    inside = false;
  }
  return false;
}

template <typename Test>
bool anyPart(const Outlines& outlines, Test test) {
  for (const Outline& outline : outlines) {
    const auto& points = outline.points;
    if (points.size() == 1 && test(points[0], points[0])) return true;
    for (size_t i = 1; i < points.size(); ++i) {
      if (test(points[i - 1], points[i])) return true;
    }
  }
  return false;
}

}  // namespace

PixelBox boxOf(PixelPoint a, PixelPoint b) {
  return {std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x), std::max(a.y, b.y)};
}

Outlines outlinesOf(const DisplayList& list, const ViewState& view) {
  Outlines outlines;
  for (const DisplayItem& item : list) std::visit(Adder{outlines, view}, item);
  return outlines;
}

bool hasImages(const DisplayList& list) {
  return std::any_of(list.begin(), list.end(), [](const DisplayItem& item) {
    return std::holds_alternative<ImageItem>(item) || std::holds_alternative<PointsItem>(item);
  });
}

void addFrame(Outlines& outlines, const std::vector<GroundPoint>& corners, const ViewState& view) {
  outlines.push_back({toPixels(corners, view, true), false, false});
}

double distanceTo(const Outlines& outlines, PixelPoint point) {
  double nearest = std::numeric_limits<double>::infinity();
  if (isInArea(outlines, point)) return 0;
  anyPart(outlines, [&](PixelPoint a, PixelPoint b) {
    nearest = std::min(nearest, segmentDistance(point, a, b));
    return false;
  });
  return nearest;
}

bool liesInside(const Outlines& outlines, const PixelBox& box) {
  bool any = false;
  const bool outside = anyPart(outlines, [&](PixelPoint a, PixelPoint b) {
    any = true;
    return !contains(box, a) || !contains(box, b);
  });
  return any && !outside;
}

bool touches(const Outlines& outlines, const PixelBox& box) {
  if (anyPart(outlines, [&](PixelPoint a, PixelPoint b) { return crosses(box, a, b); })) {
    return true;
  }
  return isInArea(outlines, {box.minX, box.minY});
}

}  // namespace tarn::host
