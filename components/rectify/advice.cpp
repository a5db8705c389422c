#include "components/rectify/advice.h"

#include <cstdio>
#include <vector>

namespace tarn::rectify {
namespace {

using kel::RectifyFault;
using kel::RectifyHint;
using kel::RectifyQuality;

std::string number(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.3g", value);
  return text;
}

std::string rowsText(const kel::List<int>& rows) {
  constexpr size_t kMostNamed = 12;
  std::string text;
  for (size_t i = 0; i < rows.size() && i < kMostNamed; ++i)
    text += (i > 0 ? ", " : "") + std::to_string(rows[i] + 1);
  return rows.size() > kMostNamed ? text + " ..." : text;
}

std::string firstRow(const RectifyQuality& quality) {
  return quality.faultPoints.empty() ? "?" : std::to_string(quality.faultPoints[0] + 1);
}

std::string onCurve(const RectifyQuality& quality) {
  const bool onLine = quality.fault == RectifyFault::kOnLine;
  if (quality.lines.size() < 2) {
    const std::string order = quality.fault == RectifyFault::kOnConic ? "second" : "third";
    return (onLine ? "All points lie on one line"
                   : "All points lie on one curve of the " + order + " order") +
           (quality.lines.empty() ? ", or nearly" : "") + ": a point away from it is needed.";
  }
  std::string text = "All points lie on " + std::to_string(quality.lines.size()) + " lines (";
  for (size_t i = 0; i < quality.lines.size(); ++i)
    text += (i > 0 ? "; " : "") + rowsText(quality.lines[i]);
  return text + "): a point away from them is needed.";
}

std::string hintOf(const RectifyQuality& quality) {
  if (quality.hint == RectifyHint::kSpreadPoints)
    return "An error of picking grows " + number(quality.cornerFactor) +
           " times up to an image corner; points further apart would help.";
  if (quality.hint == RectifyHint::kNoCheck)
    return "No check: the points are just enough for the method.";
  return {};
}

}  // namespace

std::string adviceOf(const RectifyQuality& quality) {
  switch (quality.fault) {
    case RectifyFault::kNone:
      return hintOf(quality);
    case RectifyFault::kTooFew:
      return "The method needs " + std::to_string(quality.pointsNeeded) + " points, there are " +
             std::to_string(quality.pointsThere) + ".";
    case RectifyFault::kNotFinite:
      return "Point " + firstRow(quality) + " has a coordinate that is not a number.";
    case RectifyFault::kNoExtent:
      return "All points have the same source: points further apart are needed.";
    case RectifyFault::kTargetsFlat:
      if (!quality.faultPoints.empty())
        return "The targets of points " + rowsText(quality.faultPoints) +
               " lie far away from all others, which look like one place beside them.";
      return "The targets lie on one point or line, so the image would have no area.";
    case RectifyFault::kAlongAxis:
      return "All points lie on a line along an axis: a point away from it in the other direction "
             "is needed.";
    case RectifyFault::kOnLine:
    case RectifyFault::kOnConic:
    case RectifyFault::kOnCubic:
      return onCurve(quality);
    case RectifyFault::kTooFewPlaces:
      return "Points share their places (" + rowsText(quality.faultPoints) +
             "): the method needs " + std::to_string(quality.pointsNeeded) +
             " different ones, there are " + std::to_string(quality.pointsThere) + ".";
    case RectifyFault::kCornerFar:
      return "An error of picking grows " + number(quality.cornerFactor) +
             " times up to an image corner: the points lie too close together or along a line.";
    case RectifyFault::kFolds:
      return "The image would fold over itself: the points contradict one another.";
    case RectifyFault::kSourceLost:
      return "Point " + firstRow(quality) +
             " lies where the image as it is drawn now has no pixel.";
  }
  return {};
}

}  // namespace tarn::rectify
