#include "host/database/plaindimension.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "acgi.h"
#include "dbtext.h"
#include "host/database/entitysystem.h"

namespace tarn::host {

namespace {

constexpr double kTurn = 6.283185307179586;
constexpr double kDegree = kTurn / 360;
enum Kind { kRotated, kAligned, kTwoLines, kDiameter, kRadius, kThreePoints, kOrdinate };
constexpr short kAlongX = 64;  ///< an ordinate that says x

double angleOf(const AcGeVector3d& v) {
  return std::atan2(v.y, v.x);
}

AcGeVector3d directionOf(double angle) {
  return {std::cos(angle), std::sin(angle), 0};
}

/// Draws in the dimension's own system.
class PlainDimension {
 public:
  PlainDimension(AcGiWorldDraw& draw, const AcDbDimension::Values& values)
      : draw_(draw), values_(values), look_(values.look), world_(entityToWorld(values.normal)) {
    const AcGeMatrix3d own = world_.inverse();
    for (size_t i = 0; i < points_.size(); ++i) {
      const bool isOwn = i == 1 || i == 2 || i == 6;
      points_[i] = isOwn ? values.points[i] : own * values.points[i];
      points_[i].z = 0;
    }
  }

  void run() {
    switch (values_.type & 7) {
      case kRotated:
        return straight(directionOf(values_.rotation));
      case kAligned:
        return straight((points_[4] - points_[3]).normal());
      case kTwoLines:
        return angleOfLines();
      case kThreePoints:
        return angle(points_[5], points_[3], points_[4], points_[0]);
      case kDiameter:
        return across(points_[5], points_[0], L"\u00D8", true);
      case kRadius:
        return across(points_[0], points_[5], L"R", false);
      default:
        return ordinate();
    }
  }

 private:
  void line(std::vector<AcGePoint3d> points) const {
    transformAll(points, world_);
    draw_.geometry().polyline(static_cast<Adesk::UInt32>(points.size()), points.data());
  }

  void arrow(const AcGePoint3d& tip, const AcGeVector3d& pointing) const {
    const AcGePoint3d foot = tip - pointing * look_.arrowSize;
    const AcGeVector3d aside = AcGeVector3d(-pointing.y, pointing.x, 0) * (look_.arrowSize / 6);
    std::vector<AcGePoint3d> corners = {tip, foot + aside, foot - aside};
    transformAll(corners, world_);
    draw_.geometry().polygon(3, corners.data());
  }

  std::wstring number(double measured, const wchar_t* before, const wchar_t* behind) const {
    char digits[64];
    const int decimals = std::min<int>(std::max<int>(look_.decimals, 0), 8);
    std::snprintf(digits, sizeof digits, "%.*f", decimals, measured);
    std::string shown = digits;
    if (look_.trimsZeros && shown.find('.') != std::string::npos) {
      shown.erase(shown.find_last_not_of('0') + 1);
      if (shown.back() == '.') shown.pop_back();
    }
    return before + std::wstring(shown.begin(), shown.end()) + behind;
  }

  /// What the dimension says instead of the number, or with it.
  std::wstring textFor(const std::wstring& measured) const {
    if (values_.text.empty()) return measured;
    std::wstring text = values_.text;
    const size_t place = text.find(L"<>");
    if (place != std::wstring::npos) text.replace(place, 2, measured);
    return text;
  }

  /// Upright for a reader, in the middle of `usual` where the file does not say a place.
  void text(const std::wstring& shown, const AcGePoint3d& usual, double along) const {
    AcDbTextLine line;
    const bool isPlaced = points_[1].x != 0 || points_[1].y != 0;
    line.alignment = isPlaced ? points_[1] : usual;
    line.position = line.alignment;
    line.normal = values_.normal;
    line.height = look_.textHeight;
    line.horizontal = 4;
    double angle = values_.textRotation != 0 ? values_.textRotation : along;
    angle = std::remainder(angle, kTurn);
    if (std::fabs(angle) > kTurn / 4 + 1e-9) angle = std::remainder(angle + kTurn / 2, kTurn);
    line.rotation = angle;
    line.text = textFor(shown);
    line.draw(draw_);
  }

  AcGePoint3d above(const AcGePoint3d& point, const AcGeVector3d& along) const {
    const double side = along.x < 0 || (along.x == 0 && along.y < 0) ? -1 : 1;
    return point + AcGeVector3d(-along.y, along.x, 0) * (side * look_.textHeight);
  }

  void straight(const AcGeVector3d& along) const {
    const AcGeVector3d up(-along.y, along.x, 0);
    const auto footOf = [&](const AcGePoint3d& point) {
      return point + up * (points_[0] - point).dotProduct(up);
    };
    const AcGePoint3d feet[] = {footOf(points_[3]), footOf(points_[4])};
    for (const size_t i : {size_t{0}, size_t{1}}) {
      const AcGeVector3d to = feet[i] - points_[3 + i];
      if (to.length() <= look_.offset) continue;
      const AcGeVector3d way = to.normal();
      line({points_[3 + i] + way * look_.offset, feet[i] + way * look_.beyond});
    }
    const AcGeVector3d span = feet[1] - feet[0];
    line({feet[0], feet[1]});
    if (span.length() > 2 * look_.arrowSize) {
      arrow(feet[0], -span.normal());
      arrow(feet[1], span.normal());
    }
    const AcGePoint3d middle = feet[0] + span / 2;
    text(number(span.length() * look_.factor, L"", L""), above(middle, along), angleOf(along));
  }

  /// The line from one point of a circle to its centre or to the other side.
  void across(const AcGePoint3d& from, const AcGePoint3d& to, const wchar_t* sign,
              bool bothEnds) const {
    const AcGeVector3d span = to - from;
    if (!(span.length() > 0)) return;
    line({from, to});
    arrow(to, span.normal());
    if (bothEnds) arrow(from, -span.normal());
    text(number(span.length() * look_.factor, sign, L""), above(from + span / 2, span.normal()),
         angleOf(span));
  }

  void angleOfLines() const {
    const AcGeVector3d first = points_[4] - points_[3];
    const AcGeVector3d second = points_[0] - points_[5];
    const double cross = first.x * second.y - first.y * second.x;
    if (cross == 0) return;
    const AcGeVector3d apart = points_[5] - points_[3];
    const double share = (apart.x * second.y - apart.y * second.x) / cross;
    const AcGePoint3d vertex = points_[3] + first * share;
    // Of each line the half on whose side the arc lies.
    const AcGeVector3d to = points_[6] - vertex;
    const auto halfOf = [&](const AcGeVector3d& along, const AcGeVector3d& other) {
      const double side = along.x * other.y - along.y * other.x;
      const double arc = to.x * other.y - to.y * other.x;
      return side * arc >= 0 ? along : -along;
    };
    const AcGeVector3d a = halfOf(first, second);
    const AcGeVector3d b = halfOf(second, first);
    angle(vertex, vertex + a, vertex + b, points_[6]);
  }

  /// The arc through `place` from one leg to the other.
  void angle(const AcGePoint3d& vertex, const AcGePoint3d& firstLeg, const AcGePoint3d& secondLeg,
             const AcGePoint3d& place) const {
    const double radius = place.distanceTo(vertex);
    if (!(radius > 0)) return;
    double start = angleOf(firstLeg - vertex);
    double end = angleOf(secondLeg - vertex);
    const auto from = [](double a, double b) { return std::fmod(b - a + 2 * kTurn, kTurn); };
    if (from(start, angleOf(place - vertex)) > from(start, end)) std::swap(start, end);
    const double opening = from(start, end);
    line(arcPoints(vertex, radius, start, end));
    for (const AcGePoint3d& leg : {firstLeg, secondLeg}) {
      const double reach = leg.distanceTo(vertex);
      const AcGeVector3d way = directionOf(angleOf(leg - vertex));
      if (reach < radius) {
        line({vertex + way * (reach + look_.offset), vertex + way * (radius + look_.beyond)});
      }
    }
    if (opening * radius > 2 * look_.arrowSize) {
      arrow(vertex + directionOf(start) * radius, directionOf(start - kTurn / 4));
      arrow(vertex + directionOf(end) * radius, directionOf(end + kTurn / 4));
    }
    const AcGeVector3d middle = directionOf(start + opening / 2);
    text(number(opening / kDegree, L"", L"\u00B0"), vertex + middle * (radius + look_.textHeight),
         angleOf(middle) - kTurn / 4);
  }

  void ordinate() const {
    const bool saysX = (values_.type & kAlongX) != 0;
    const AcGeVector3d from = points_[3] - points_[0];
    line({points_[3], points_[4]});
    text(number(std::fabs(saysX ? from.x : from.y) * look_.factor, L"", L""), points_[4],
         saysX ? kTurn / 4 : 0);
  }

  AcGiWorldDraw& draw_;
  const AcDbDimension::Values& values_;
  const AcDbDimensionLook& look_;
  AcGeMatrix3d world_;
  AcDbDimension::Points points_;
};

}  // namespace

void drawPlainDimension(AcGiWorldDraw& draw, const AcDbDimension::Values& values) {
  PlainDimension(draw, values).run();
}

}  // namespace tarn::host
