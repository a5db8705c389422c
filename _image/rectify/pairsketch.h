// The lines that show one pair of control points over the drawing: a cross at the source, a circle
// at the target, an arrow between them, the number. Pure.
#pragma once

#include <vector>

namespace tarn::image {

/// How the current view maps screen pixels to ground.
struct SketchView {
  double unitsPerPixel = 1;
  double twist = 0;  ///< radians; positive turns the drawing counter-clockwise on the screen
};

struct SketchPoint {
  double x = 0;
  double y = 0;
};

/// A line of ground with its colour index.
struct SketchLine {
  SketchPoint from;
  SketchPoint to;
  int color = 0;
};

constexpr int kSourceColor = 1;
constexpr int kArrowColor = 2;
constexpr int kTargetColor = 3;
constexpr int kNumberColor = 4;

/// Everything but the arrow's length has the same size on every screen. `number` counts from 1.
std::vector<SketchLine> sketchPair(SketchPoint source, SketchPoint target, int number,
                                   const SketchView& view);

}  // namespace tarn::image
