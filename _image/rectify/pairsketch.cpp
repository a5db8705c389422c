#include "_image/rectify/pairsketch.h"

#include <cmath>
#include <string>

namespace tarn::image {
namespace {

// Screen pixels.
constexpr double kCrossArm = 8;
constexpr double kCircleRadius = 7;
constexpr double kArrowHead = 11;
constexpr double kArrowHeadHalf = 4;
constexpr double kShortestArrow = 2 * kCircleRadius;
constexpr double kDigitWidth = 6;
constexpr double kDigitHeight = 10;
constexpr double kDigitStep = 9;
constexpr double kNumberOffset = 9;

constexpr int kCircleSides = 24;
constexpr double kPi = 3.141592653589793;

/// Strokes of a digit as bits: top, upper left, upper right, middle, lower left, lower right,
/// bottom.
constexpr unsigned kStrokes[10] = {0x77, 0x24, 0x5D, 0x6D, 0x2E, 0x6B, 0x7B, 0x25, 0x7F, 0x6F};

/// Draws in pixels around a ground point, x to the right and y up on the screen.
class Pen {
 public:
  Pen(std::vector<SketchLine>& lines, SketchPoint origin, const SketchView& view, int color)
      : lines_(lines),
        origin_(origin),
        along_(view.unitsPerPixel * std::cos(view.twist)),
        across_(view.unitsPerPixel * std::sin(view.twist)),
        color_(color) {}

  void line(double x1, double y1, double x2, double y2) {
    lines_.push_back({ground(x1, y1), ground(x2, y2), color_});
  }
  SketchPoint ground(double x, double y) const {
    return {origin_.x + x * along_ + y * across_, origin_.y - x * across_ + y * along_};
  }

 private:
  std::vector<SketchLine>& lines_;
  SketchPoint origin_;
  double along_;
  double across_;
  int color_;
};

void drawCircle(Pen pen) {
  for (int i = 0; i < kCircleSides; ++i) {
    const double a = 2 * kPi * i / kCircleSides;
    const double b = 2 * kPi * (i + 1) / kCircleSides;
    pen.line(kCircleRadius * std::cos(a), kCircleRadius * std::sin(a), kCircleRadius * std::cos(b),
             kCircleRadius * std::sin(b));
  }
}

void drawDigit(Pen& pen, char digit, double left, double bottom) {
  const unsigned strokes = kStrokes[digit - '0'];
  const double right = left + kDigitWidth;
  const double middle = bottom + kDigitHeight / 2;
  const double top = bottom + kDigitHeight;
  const double ends[7][4] = {{left, top, right, top},      {left, middle, left, top},
                             {right, middle, right, top},  {left, middle, right, middle},
                             {left, bottom, left, middle}, {right, bottom, right, middle},
                             {left, bottom, right, bottom}};
  for (unsigned i = 0; i < 7; ++i) {
    if ((strokes >> i & 1U) != 0) pen.line(ends[i][0], ends[i][1], ends[i][2], ends[i][3]);
  }
}

/// From the source to the rim of the circle; a pair that stands close together needs none.
void drawArrow(std::vector<SketchLine>& lines, SketchPoint source, SketchPoint target,
               double unitsPerPixel) {
  const double dx = target.x - source.x;
  const double dy = target.y - source.y;
  const double length = std::hypot(dx, dy);
  if (!(length > kShortestArrow * unitsPerPixel)) return;
  const double ux = dx / length;
  const double uy = dy / length;
  const double rim = kCircleRadius * unitsPerPixel;
  const SketchPoint tip{target.x - ux * rim, target.y - uy * rim};
  lines.push_back({source, tip, kArrowColor});
  for (const double side : {-kArrowHeadHalf, kArrowHeadHalf}) {
    const double back = kArrowHead * unitsPerPixel;
    const double out = side * unitsPerPixel;
    lines.push_back(
        {tip, {tip.x - ux * back - uy * out, tip.y - uy * back + ux * out}, kArrowColor});
  }
}

}  // namespace

std::vector<SketchLine> sketchPair(SketchPoint source, SketchPoint target, int number,
                                   const SketchView& view) {
  std::vector<SketchLine> lines;
  Pen cross(lines, source, view, kSourceColor);
  cross.line(-kCrossArm, 0, kCrossArm, 0);
  cross.line(0, -kCrossArm, 0, kCrossArm);
  drawCircle(Pen(lines, target, view, kTargetColor));
  drawArrow(lines, source, target, view.unitsPerPixel);
  Pen pen(lines, target, view, kNumberColor);
  double left = kNumberOffset;
  for (const char digit : std::to_string(number)) {
    drawDigit(pen, digit, left, kNumberOffset / 2);
    left += kDigitStep;
  }
  return lines;
}

}  // namespace tarn::image
