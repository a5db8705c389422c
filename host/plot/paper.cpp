#include "host/plot/paper.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "base/text.h"

namespace tarn::host {

namespace {

struct Paper {
  const char* name;
  double width;  ///< standing
  double height;
};
constexpr Paper kPapers[] = {
    {"A4", 210, 297}, {"A3", 297, 420}, {"A2", 420, 594}, {"A1", 594, 841}, {"A0", 841, 1189}};

bool positive(const std::string& text, double& value) {
  return parseDouble(std::string(trim(std::string_view(text))), value) && std::isfinite(value) &&
         value > 0;
}

}  // namespace

std::vector<std::string> paperNames() {
  std::vector<std::string> names;
  for (const Paper& paper : kPapers) names.emplace_back(paper.name);
  return names;
}

std::string setPaper(PlotData& settings, const std::string& text) {
  for (const Paper& paper : kPapers) {
    if (!equalsIgnoreCase(std::string_view(paper.name), text)) continue;
    const bool landscape = settings.width > settings.height;
    settings.paper = toWide(paper.name);
    settings.width = paper.width;
    settings.height = paper.height;
    setLandscape(settings, landscape);
    return {};
  }
  const std::vector<std::string> sides = split(toLower(std::string_view(text)), 'x');
  double width = 0;
  double height = 0;
  if (sides.size() != 2 || !positive(sides[0], width) || !positive(sides[1], height) ||
      std::min(width, height) < kLeastPaperSide || std::max(width, height) > kMostPaperSide) {
    return "\"" + text + "\" is no paper: A0 to A4, or WIDTHxHEIGHT from 10 to 5000 millimetres.";
  }
  settings.paper = toWide(text);
  settings.width = width;
  settings.height = height;
  return {};
}

void setLandscape(PlotData& settings, bool landscape) {
  if ((settings.width > settings.height) != landscape) std::swap(settings.width, settings.height);
}

std::string setScale(PlotData& settings, const std::string& text) {
  if (equalsIgnoreCase(std::string_view(text), "Fit") ||
      equalsIgnoreCase(std::string_view(text), "F")) {
    settings.fit = true;
    return {};
  }
  const size_t sign = text.find_first_of("=:");
  double numerator = 0;
  double denominator = 0;
  if (sign == std::string::npos || !positive(text.substr(0, sign), numerator) ||
      !positive(text.substr(sign + 1), denominator)) {
    return "\"" + text + "\" is no scale: two numbers above zero as 1=500, or Fit.";
  }
  settings.fit = false;
  settings.numerator = numerator;
  settings.denominator = denominator;
  return {};
}

std::string setOffset(PlotData& settings, const std::string& text) {
  if (equalsIgnoreCase(std::string_view(text), "Center") ||
      equalsIgnoreCase(std::string_view(text), "C")) {
    settings.centered = true;
    return {};
  }
  const std::vector<std::string> parts = split(text, ',');
  double x = 0;
  double y = 0;
  const bool valid = parts.size() == 2 && parseDouble(parts[0], x) && parseDouble(parts[1], y) &&
                     std::isfinite(x + y);
  if (!valid) return "\"" + text + "\" is no offset: two numbers as 10,20, or Center.";
  settings.centered = false;
  settings.originX = x;
  settings.originY = y;
  return {};
}

void setWindow(PlotData& settings, GroundPoint a, GroundPoint b, double twist) {
  const double c = std::cos(twist);
  const double s = std::sin(twist);
  const auto along = [&](const GroundPoint& p) {
    return GroundPoint{p.x * c - p.y * s, p.x * s + p.y * c};
  };
  const GroundPoint p = along(a);
  const GroundPoint q = along(b);
  settings.windowMinX = std::min(p.x, q.x);
  settings.windowMinY = std::min(p.y, q.y);
  settings.windowMaxX = std::max(p.x, q.x);
  settings.windowMaxY = std::max(p.y, q.y);
}

}  // namespace tarn::host
