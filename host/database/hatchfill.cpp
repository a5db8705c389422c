#include "host/database/hatchfill.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "host/database/entitysystem.h"
#include "host/geometry/spline.h"

namespace tarn::host {

namespace {

constexpr double kTurn = 6.283185307179586;
constexpr int kSidesOfTurn = 128;
constexpr double kMostLines = 4000;     ///< of one pattern
constexpr double kMostCrossings = 4e7;  ///< that are looked for
constexpr size_t kMostPieces = 40000;   ///< of all patterns together

/// `along` and `across` are the axes of the curve.
void addCurve(Rim& rim, const AcDbHatchEdge& edge, const AcGeVector3d& along,
              const AcGeVector3d& across) {
  const double sign = edge.counterClockwise ? 1 : -1;
  double sweep = std::remainder(edge.end - edge.start, kTurn);
  if (sweep <= 0) sweep += kTurn;
  const int sides = std::max(2, static_cast<int>(std::ceil(sweep / kTurn * kSidesOfTurn)));
  for (int i = 0; i <= sides; ++i) {
    const double angle = sign * (edge.start + sweep * i / sides);
    rim.push_back(edge.first + along * std::cos(angle) + across * std::sin(angle));
  }
}

void addSpline(Rim& rim, const AcDbHatchEdge& edge) {
  SplineCurve curve{edge.degree, edge.knots, edge.control, {}};
  for (AcGePoint3d& point : curve.control) {
    if (edge.rational) curve.weights.push_back(point.z);
    point.z = 0;
  }
  const bool isFit = !isCurve(curve) && !edge.fit.empty();
  const Rim points = isFit ? pointsThrough(edge.fit, {0, 0, 0}, {0, 0, 0}) : pointsAlong(curve);
  rim.insert(rim.end(), points.begin(), points.end());
}

void addEdge(Rim& rim, const AcDbHatchEdge& edge) {
  if (edge.kind == AcDbHatchEdge::kSpline) return addSpline(rim, edge);
  if (edge.kind == AcDbHatchEdge::kArc) {
    return addCurve(rim, edge, AcGeVector3d(edge.ratio, 0, 0), AcGeVector3d(0, edge.ratio, 0));
  }
  if (edge.kind == AcDbHatchEdge::kEllipse) {
    const AcGeVector3d major = edge.second.asVector();
    return addCurve(rim, edge, major, AcGeVector3d(-major.y, major.x, 0) * edge.ratio);
  }
  rim.push_back(edge.first);
  rim.push_back(edge.second);
}

/// Edges of a rim may stand in the file turned about: the next begins where the last has ended.
void join(Rim& rim, Rim piece) {
  if (!rim.empty() && !piece.empty()) {
    const double there = (piece.front() - rim.back()).length();
    if ((piece.back() - rim.back()).length() < there) std::reverse(piece.begin(), piece.end());
  }
  rim.insert(rim.end(), piece.begin(), piece.end());
}

/// Where on a line, from its base on, it crosses the rims; in order.
std::vector<double> crossings(const std::vector<Rim>& rims, const AcGePoint3d& base,
                              const AcGeVector3d& along) {
  std::vector<double> places;
  const auto aside = [&](const AcGePoint3d& p) {
    return (p.x - base.x) * along.y - (p.y - base.y) * along.x;
  };
  const auto ahead = [&](const AcGePoint3d& p) {
    return (p.x - base.x) * along.x + (p.y - base.y) * along.y;
  };
  for (const Rim& rim : rims) {
    double before = rim.empty() ? 0 : aside(rim.back());
    for (size_t i = 0; i < rim.size(); ++i) {
      const double now = aside(rim[i]);
      if ((before > 0) != (now > 0)) {
        const AcGePoint3d& a = rim[i == 0 ? rim.size() - 1 : i - 1];
        const double share = before / (before - now);
        places.push_back(ahead(a) + (ahead(rim[i]) - ahead(a)) * share);
      }
      before = now;
    }
  }
  std::sort(places.begin(), places.end());
  return places;
}

/// Beyond, a sum no longer grows by one.
bool canCount(double value) {
  return std::fabs(value) < 1e12;
}

class LineFiller {
 public:
  LineFiller(const AcDbHatchLines& pattern, std::vector<std::pair<AcGePoint3d, AcGePoint3d>>& lines)
      : dashes_(pattern.dashes), lines_(lines) {
    period_ = std::accumulate(dashes_.begin(), dashes_.end(), 0.0,
                              [](double sum, double dash) { return sum + std::fabs(dash); });
  }

  /// The part of a line from one place to another.
  bool fill(const AcGePoint3d& base, const AcGeVector3d& along, double from, double to) {
    if (!(period_ > 0)) return add(base + along * from, base + along * to);
    double at = std::floor(from / period_) * period_;
    if (!((to - at) / period_ * static_cast<double>(dashes_.size()) <= kMostPieces)) return false;
    if (!canCount(from / period_) || !canCount(to / period_)) return false;
    while (at < to) {
      for (const double dash : dashes_) {
        const double low = std::max(from, at);
        const double high = std::min(to, at + std::fabs(dash));
        if (dash >= 0 && low <= high && !add(base + along * low, base + along * high)) return false;
        at += std::fabs(dash);
      }
    }
    return true;
  }

 private:
  bool add(const AcGePoint3d& a, const AcGePoint3d& b) {
    if (lines_.size() >= kMostPieces) return false;
    lines_.emplace_back(a, b);
    return true;
  }

  const std::vector<double>& dashes_;
  std::vector<std::pair<AcGePoint3d, AcGePoint3d>>& lines_;
  double period_ = 0;
};

bool fillLines(const std::vector<Rim>& rims, const AcDbHatchLines& pattern,
               std::vector<std::pair<AcGePoint3d, AcGePoint3d>>& lines) {
  const AcGeVector3d along(std::cos(pattern.angle), std::sin(pattern.angle), 0);
  const double distance = along.x * pattern.offset.y - along.y * pattern.offset.x;
  double low = INFINITY;
  double high = -INFINITY;
  size_t sides = 0;
  for (const Rim& rim : rims) {
    sides += rim.size();
    for (const AcGePoint3d& p : rim) {
      const AcGeVector3d from = p - pattern.base;
      const double number = (along.x * from.y - along.y * from.x) / distance;
      low = std::min(low, number);
      high = std::max(high, number);
    }
  }
  const double count = high - low;
  if (!canCount(low) || !canCount(high)) return false;
  if (!(count <= kMostLines) || count * static_cast<double>(sides) > kMostCrossings) return false;
  LineFiller filler(pattern, lines);
  const auto first = static_cast<long long>(std::ceil(low));
  const auto last = static_cast<long long>(std::floor(high));
  for (long long line = first; line <= last; ++line) {
    const auto number = static_cast<double>(line);
    const AcGePoint3d base = pattern.base + pattern.offset * number;
    const std::vector<double> places = crossings(rims, base, along);
    for (size_t i = 0; i + 1 < places.size(); i += 2) {
      if (!filler.fill(base, along, places[i], places[i + 1])) return false;
    }
  }
  return true;
}

}  // namespace

Rim rimOf(const AcDbHatchLoop& loop) {
  Rim rim;
  if (!loop.isPolyline()) {
    for (const AcDbHatchEdge& edge : loop.edges) {
      Rim piece;
      addEdge(piece, edge);
      join(rim, std::move(piece));
    }
  }
  const std::vector<AcGePoint3d>& vertices = loop.vertices;
  const auto flat = [&](size_t i) { return AcGePoint3d(vertices[i].x, vertices[i].y, 0); };
  if (loop.isPolyline() && !vertices.empty()) rim.push_back(flat(0));
  for (size_t i = 0; loop.isPolyline() && i < vertices.size(); ++i) {
    addBulge(rim, flat(i), flat((i + 1) % vertices.size()), vertices[i].z);
  }
  if (rim.size() > 1 && (rim.back() - rim.front()).length() == 0) rim.pop_back();
  return rim;
}

bool addPatternLines(const std::vector<Rim>& rims, const AcDbHatchLines& pattern,
                     std::vector<std::pair<AcGePoint3d, AcGePoint3d>>& lines) {
  const size_t before = lines.size();
  if (fillLines(rims, pattern, lines)) return true;
  lines.resize(before);
  return false;
}

}  // namespace tarn::host
