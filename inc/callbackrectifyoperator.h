// What the rectification component asks of the drawing. Every operation is empty here; a class
// derived from it answers those that it can.
#pragma once

#include "inc/kvalues.h"

class CallBackRectifyOperator {
 public:
  /// Slot 0. The area that the component works on: left, bottom, right, top in drawing units.
  virtual void areaChanged(double /*left*/, double /*bottom*/, double /*right*/, double /*top*/) {}
  /// Slot 1. A question of the component; false when it has no answer.
  virtual bool query(int /*what*/, void* /*answer*/) { return false; }
  /// Slot 2. The image has changed: its window in pixels, its place and pixel size, its pixels.
  virtual void redraw(int /*x*/, int /*y*/, int /*width*/, int /*height*/, double /*left*/,
                      double /*top*/, double /*scaleX*/, double /*scaleY*/,
                      const unsigned char* /*pixels*/) {}
  /// Slot 3. Lets the user pick a point: 0 with x, y and 0.0 in `point`, else -1 and an empty list.
  virtual int pickPoint(kel::List<double>& /*point*/) { return -1; }
  /// Slot 4. The source of the image, an IImageDivision; null when there is none.
  virtual void* imageAnalyser() { return nullptr; }
  /// Slot 5.
  virtual ~CallBackRectifyOperator() = default;
};
