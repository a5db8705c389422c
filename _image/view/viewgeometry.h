// From the host's view variables to ground coordinates. Ground: drawing units, y up. Screen:
// pixels of the current viewport, y down, whole numbers are pixel edges.
#pragma once

#include <QPolygonF>
#include <QRect>
#include <QTransform>

namespace tarn::image {

/// A rectangle of drawing coordinates.
struct GroundRect {
  double minX = 0;
  double minY = 0;
  double maxX = 0;
  double maxY = 0;
};

struct ScreenSize {
  int width = 0;
  int height = 0;
};

/// What the view shows, in drawing units; under a twist width and height are those of the box of
/// the screen's diagonal from lower left to upper right.
struct ViewSize {
  double width = 0;
  double height = 0;
  double centerX = 0;
  double centerY = 0;
};

/// Truncates towards zero; what lies beyond an int becomes its limit, what is no number becomes 0.
int truncateToInt(double value);

/// View size from the ground points of two opposite screen corners.
ViewSize viewSizeFromCorners(const QPointF& one, const QPointF& other);

/// Ground to screen for a view turned counter-clockwise on the screen by `twist` radians.
QTransform groundToScreen(const ViewSize& view, const ScreenSize& screen, double twist);

/// Box of the ground under the screen's corners (0, H) and (W, 0).
// Deliberate: only this diagonal counts, so under a twist the box is not that of the whole view.
GroundRect diagonalRect(const QTransform& groundToScreen, const ScreenSize& screen);

/// Box of the ground under all four corners of a view given by centre, height and twist (radians).
GroundRect wholeViewRect(const QPointF& center, double viewHeight, const ScreenSize& screen,
                         double twist);

/// `rect` scaled about its centre.
GroundRect enlarged(const GroundRect& rect, double ratio);

/// The four corners of a rectangle of pixels, mapped: upper left, upper right, lower right, lower
/// left of the rectangle.
QPolygonF mapPixelRect(const QTransform& transform, const QRect& rect);

}  // namespace tarn::image
