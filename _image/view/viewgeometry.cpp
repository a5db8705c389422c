#include "_image/view/viewgeometry.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace tarn::image {
namespace {

constexpr double kPi = 3.141592653589793;

/// Moves the ground so that `center` falls on the middle of the screen.
void centerOnScreen(QTransform& transform, const ViewSize& view, const ScreenSize& screen) {
  // Deliberate: halves of odd sides are truncated.
  const int halfWidth = screen.width / 2;
  const int halfHeight = screen.height / 2;
  const QPointF middle = transform.inverted().map(QPointF(halfWidth, halfHeight));
  transform.translate(middle.x() - view.centerX, middle.y() - view.centerY);
}

}  // namespace

int truncateToInt(double value) {
  if (std::isnan(value)) return 0;
  const double lowest = std::numeric_limits<int>::min();
  const double highest = std::numeric_limits<int>::max();
  return static_cast<int>(std::clamp(value, lowest, highest));
}

ViewSize viewSizeFromCorners(const QPointF& one, const QPointF& other) {
  return {std::fabs(other.x() - one.x()), std::fabs(other.y() - one.y()),
          (one.x() + other.x()) / 2.0, (one.y() + other.y()) / 2.0};
}

QTransform groundToScreen(const ViewSize& view, const ScreenSize& screen, double twist) {
  const double degrees = twist * 180.0 / kPi;
  const double scale =
      std::hypot(screen.width, screen.height) / std::hypot(view.width, view.height);
  QTransform transform;
  transform.scale(1, -1);
  transform.translate(0, -screen.height);
  transform.scale(scale, scale);
  centerOnScreen(transform, view, screen);
  transform.rotate(degrees, Qt::ZAxis);
  centerOnScreen(transform, view, screen);
  return transform;
}

GroundRect diagonalRect(const QTransform& groundToScreen, const ScreenSize& screen) {
  const QTransform screenToGround = groundToScreen.inverted();
  const QPointF lowerLeft = screenToGround.map(QPointF(0, screen.height));
  const QPointF upperRight = screenToGround.map(QPointF(screen.width, 0));
  const auto [minX, maxX] = std::minmax({lowerLeft.x(), upperRight.x()});
  const auto [minY, maxY] = std::minmax({lowerLeft.y(), upperRight.y()});
  return {minX, minY, maxX, maxY};
}

GroundRect wholeViewRect(const QPointF& center, double viewHeight, const ScreenSize& screen,
                         double twist) {
  const double aspect = screen.height > 0 ? static_cast<double>(screen.width) / screen.height : 1.0;
  const double halfWidth = viewHeight * aspect / 2;
  const double halfHeight = viewHeight / 2;
  const double c = std::fabs(std::cos(twist));
  const double s = std::fabs(std::sin(twist));
  const double reachX = halfWidth * c + halfHeight * s;
  const double reachY = halfWidth * s + halfHeight * c;
  return {center.x() - reachX, center.y() - reachY, center.x() + reachX, center.y() + reachY};
}

GroundRect enlarged(const GroundRect& rect, double ratio) {
  const double middleX = (rect.minX + rect.maxX) / 2;
  const double middleY = (rect.minY + rect.maxY) / 2;
  const double width = (rect.maxX - rect.minX) * ratio;
  const double height = (rect.maxY - rect.minY) * ratio;
  return {middleX - width / 2, middleY - height / 2, middleX + width / 2, middleY + height / 2};
}

QPolygonF mapPixelRect(const QTransform& transform, const QRect& rect) {
  const QRectF area(rect);
  return transform.map(
      QPolygonF({area.topLeft(), area.topRight(), area.bottomRight(), area.bottomLeft()}));
}

}  // namespace tarn::image
