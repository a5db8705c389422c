#include "host/graphics/points.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <vector>

namespace tarn::host {

namespace {

using Point = AcGiPointCloud::Point;

constexpr int kWidestDot = 3;

/// Device pixels of cloud coordinates. Both are taken relative to a place near the view's centre,
/// so that no digits are lost however far away their origins lie.
struct CloudToDevice {
  double centerX = 0, centerY = 0;  ///< cloud coordinates, whole
  double x0 = 0, y0 = 0;            ///< device pixels there
  double xx = 0, xy = 0, yx = 0, yy = 0;

  double x(double dx, double dy) const { return x0 + xx * dx + xy * dy; }
  double y(double dx, double dy) const { return y0 + yx * dx + yy * dy; }
  double determinant() const { return xx * yy - xy * yx; }
  /// Device pixels a unit of the cloud.
  double scale() const { return std::sqrt(std::fabs(determinant())); }
};

std::optional<CloudToDevice> planPoints(const PointsItem& item, const ViewState& view) {
  const double area = item.u.x * item.v.y - item.v.x * item.u.y;
  const double dx = view.centerX - item.origin.x;
  const double dy = view.centerY - item.origin.y;
  CloudToDevice plan;
  plan.centerX = std::round((dx * item.v.y - dy * item.v.x) / area);
  plan.centerY = std::round((dy * item.u.x - dx * item.u.y) / area);
  const GroundPoint ground = {item.origin.x + item.u.x * plan.centerX + item.v.x * plan.centerY,
                              item.origin.y + item.u.y * plan.centerX + item.v.y * plan.centerY};
  const PixelPoint at = pixelFromGround(view, ground);
  plan.x0 = at.x;
  plan.y0 = at.y;
  // The directions of the view without its place.
  const double pixels = 1 / view.unitsPerPixel();
  const double c = std::cos(view.twist) * pixels;
  const double s = std::sin(view.twist) * pixels;
  plan.xx = c * item.u.x - s * item.u.y;
  plan.xy = c * item.v.x - s * item.v.y;
  plan.yx = -(s * item.u.x + c * item.u.y);
  plan.yy = -(s * item.v.x + c * item.v.y);
  const bool isUsable =
      std::isfinite(plan.x0 + plan.y0) && plan.scale() > 0 && std::isfinite(plan.scale());
  if (!isUsable) return std::nullopt;
  return plan;
}

/// The box of cloud coordinates around a part of the device.
AcGiPointCloud::Box cloudBox(const CloudToDevice& plan, const QRect& device) {
  constexpr double kFar = std::numeric_limits<double>::max();
  AcGiPointCloud::Box box{kFar, kFar, -kFar, -kFar};
  const double area = plan.determinant();
  for (const double px : {device.left() - kWidestDot, device.right() + 1 + kWidestDot}) {
    for (const double py : {device.top() - kWidestDot, device.bottom() + 1 + kWidestDot}) {
      const double dx = px - plan.x0;
      const double dy = py - plan.y0;
      const double x = plan.centerX + (dx * plan.yy - dy * plan.xy) / area;
      const double y = plan.centerY + (dy * plan.xx - dx * plan.yx) / area;
      box.minX = std::min(box.minX, x);
      box.minY = std::min(box.minY, y);
      box.maxX = std::max(box.maxX, x);
      box.maxY = std::max(box.maxY, y);
    }
  }
  return box;
}

/// Pixels with the height of what they show.
class Plate {
 public:
  Plate(const CloudToDevice& plan, const QRect& device)
      : plan_(plan), device_(device), image_(device.size(), QImage::Format_ARGB32_Premultiplied) {
    if (image_.isNull()) return;
    image_.fill(Qt::transparent);
    pixels_ = reinterpret_cast<std::uint32_t*>(image_.bits());
    heights_.assign(static_cast<size_t>(device.width()) * device.height(),
                    std::numeric_limits<std::int32_t>::min());
  }

  bool isUsable() const { return pixels_ != nullptr; }
  bool isEmpty() const { return isEmpty_; }
  const QImage& image() const { return image_; }

  void add(const Point* points, size_t count, double spacing) {
    const int dot =
        static_cast<int>(std::lround(std::clamp(spacing * plan_.scale(), 1.0, kWidestDot * 1.0)));
    const double shift = (dot - 1) / 2.0;
    const double left = plan_.x0 - device_.left() - shift;
    const double top = plan_.y0 - device_.top() - shift;
    for (size_t i = 0; i < count; ++i) {
      const Point& point = points[i];
      if (point.color == 0) continue;
      const double dx = point.x - plan_.centerX;
      const double dy = point.y - plan_.centerY;
      const double x = left + plan_.xx * dx + plan_.xy * dy;
      const double y = top + plan_.yx * dx + plan_.yy * dy;
      if (!(x > -kWidestDot && x < device_.width() && y > -kWidestDot && y < device_.height())) {
        continue;
      }
      put(static_cast<int>(std::floor(x)), static_cast<int>(std::floor(y)), dot, point);
    }
  }

 private:
  void put(int x, int y, int dot, const Point& point) {
    const int right = std::min(x + dot, device_.width());
    const int bottom = std::min(y + dot, device_.height());
    for (int row = std::max(y, 0); row < bottom; ++row) {
      for (int column = std::max(x, 0); column < right; ++column) {
        const size_t at = static_cast<size_t>(row) * device_.width() + column;
        if (pixels_[at] != 0 && heights_[at] > point.z) continue;
        heights_[at] = point.z;
        pixels_[at] = point.color;
        isEmpty_ = false;
      }
    }
  }

  const CloudToDevice& plan_;
  QRect device_;
  QImage image_;
  std::uint32_t* pixels_ = nullptr;
  std::vector<std::int32_t> heights_;
  bool isEmpty_ = true;
};

}  // namespace

QImage paintPoints(const PointsItem& item, const ViewState& view, const QRect& device) {
  const auto plan = planPoints(item, view);
  if (!plan || device.isEmpty()) return {};
  Plate plate(*plan, device);
  if (!plate.isUsable()) return {};
  item.cloud->visit(cloudBox(*plan, device), 1 / plan->scale(),
                    [&](const Point* points, size_t count, double spacing) {
                      plate.add(points, count, spacing);
                    });
  return plate.isEmpty() ? QImage() : plate.image();
}

}  // namespace tarn::host
