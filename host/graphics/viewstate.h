// The view of a drawing: which ground it shows on how many pixels. A value; nothing here draws.
//
// Ground coordinates are drawing units, y up. Pixel coordinates are pixel edges, y down: (0, 0) is
// the upper left corner of the view, (0, height) the lower left one, the centre of the first pixel
// is (0.5, 0.5). The twist is in radians; a positive twist turns the drawing counter-clockwise on
// the screen.
#pragma once

#include "adesk.h"

namespace tarn::host {

struct GroundPoint {
  double x = 0;
  double y = 0;
};

struct PixelPoint {
  double x = 0;
  double y = 0;
};

/// An axis-aligned box of ground; empty while minX > maxX.
struct ACADHOST_EXPORT GroundBox {
  double minX = 1;
  double minY = 1;
  double maxX = 0;
  double maxY = 0;
  bool isEmpty() const { return minX > maxX || minY > maxY; }
  void add(double x, double y);
};

struct ViewState {
  double centerX = 0;
  double centerY = 0;
  double height = 1000;  ///< ground units over the whole view height; always above zero
  double twist = 0;      ///< radians
  int pixelWidth = 1280;
  int pixelHeight = 720;

  double unitsPerPixel() const { return height / pixelHeight; }
};

/// Ground under a pixel position and back; exact inverses up to rounding.
ACADHOST_EXPORT GroundPoint groundFromPixel(const ViewState& view, PixelPoint pixel);
ACADHOST_EXPORT PixelPoint pixelFromGround(const ViewState& view, GroundPoint ground);

/// The view enlarged by `factor` (2 shows half the ground) so that the ground under `pixel` stays
/// there. Heights are kept between 1e-6 and 1e12; other factors than positive finite ones change
/// nothing.
ACADHOST_EXPORT ViewState zoomedAt(const ViewState& view, PixelPoint pixel, double factor);

/// The view after the drawing was dragged by (dx, dy) pixels, y down.
ACADHOST_EXPORT ViewState pannedBy(const ViewState& view, double dx, double dy);

/// The view moved so that the ground point falls on the pixel.
ACADHOST_EXPORT ViewState viewWithGroundAt(const ViewState& view, GroundPoint ground,
                                           PixelPoint pixel);

/// The view that shows the whole box with a margin on each side (a part of its size). An empty or
/// infinite box changes nothing; a box without area keeps the height.
ACADHOST_EXPORT ViewState fittedTo(const ViewState& view, const GroundBox& box, double margin);

/// The box around the four corners of the view.
ACADHOST_EXPORT GroundBox groundBoxOf(const ViewState& view);

}  // namespace tarn::host
