#include "host/graphics/recorder.h"

#include <cmath>
#include <utility>

#include "dbsymtb.h"
#include "host/database/entitysystem.h"
#include "host/database/objectaccess.h"

namespace tarn::host {

namespace {

constexpr double kEndless = 1e9;  ///< drawing units

void addGroundPoints(std::vector<GroundPoint>& out, Adesk::UInt32 count,
                     const AcGePoint3d* points) {
  out.reserve(count);
  for (Adesk::UInt32 i = 0; i < count; ++i) out.push_back({points[i].x, points[i].y});
}

std::vector<GroundPoint> groundPoints(Adesk::UInt32 count, const AcGePoint3d* points) {
  std::vector<GroundPoint> out;
  addGroundPoints(out, count, points);
  return out;
}

/// Closed: the last point is the first one.
const std::vector<GroundPoint>& unitCircle() {
  constexpr int kSides = 128;
  constexpr double kTurn = 6.283185307179586;
  static const std::vector<GroundPoint> points = [] {
    std::vector<GroundPoint> made;
    for (int i = 0; i <= kSides; ++i) {
      const double angle = kTurn * (i % kSides) / kSides;
      made.push_back({std::cos(angle), std::sin(angle)});
    }
    return made;
  }();
  return points;
}

inline std::uint32_t withAlpha(std::uint32_t pixel, std::uint32_t alpha) {
  if (alpha == 255) return pixel | 0xff000000u;
  if (alpha == 0) return 0;
  return qPremultiply((pixel & 0xffffffu) | alpha << 24);
}

}  // namespace

QImage premultipliedImage(const AcGiImageBGRA32& source, AcGiGeometry::TransparencyMode mode) {
  constexpr Adesk::UInt32 kMaxSide = 32767;
  const Adesk::UInt32 w = source.width();
  const Adesk::UInt32 h = source.height();
  if (w == 0 || h == 0 || w > kMaxSide || h > kMaxSide || source.image() == nullptr) return {};
  QImage out(static_cast<int>(w), static_cast<int>(h), QImage::Format_ARGB32_Premultiplied);
  if (out.isNull()) return out;
  for (Adesk::UInt32 row = 0; row < h; ++row) {
    auto* to = reinterpret_cast<std::uint32_t*>(out.scanLine(static_cast<int>(row)));
    const AcGiPixelBGRA32* from = source.image() + static_cast<size_t>(row) * w;
    for (Adesk::UInt32 column = 0; column < w; ++column) {
      const AcGiPixelBGRA32& p = from[column];
      const std::uint32_t color = static_cast<std::uint32_t>(p.red()) << 16 |
                                  static_cast<std::uint32_t>(p.green()) << 8 | p.blue();
      std::uint32_t alpha = p.alpha();
      if (mode == AcGiGeometry::kTransparencyOff) alpha = 255;
      if (mode == AcGiGeometry::kTransparency1Bit) alpha = alpha >= 128 ? 255 : 0;
      to[column] = withAlpha(color, alpha);
    }
  }
  return out;
}

void RecordingTraits::setLineType(AcDbObjectId linetype) {
  linetype_ = linetype;
  setLineTypeScale(scale_);
}

void RecordingTraits::setLineTypeScale(double scale) {
  scale_ = scale > 0 ? scale : 1;
  dashes_.reset();
  const auto* record = AcDbLinetypeTableRecord::cast(peek(linetype_));
  if (record == nullptr || record->dashes().empty()) return;
  auto pattern = std::make_shared<DashPattern>();
  for (const double length : record->dashes()) {
    pattern->lengths.push_back(length * scale_ * drawingScale_);
    pattern->period += std::fabs(pattern->lengths.back());
  }
  if (pattern->period > 0) dashes_ = std::move(pattern);
}

Adesk::Boolean RecordingGeometry::circle(const AcGePoint3d& center, double radius,
                                         const AcGeVector3d& normal) const {
  const AcGeMatrix3d plane = entityToWorld(normal);
  const double xx = radius * plane.entry[0][0];
  const double xy = radius * plane.entry[1][0];
  const double yx = radius * plane.entry[0][1];
  const double yy = radius * plane.entry[1][1];
  LineItem& item = addLine();
  item.dashes = traits_.dashes();
  item.points.reserve(unitCircle().size());
  for (const GroundPoint& p : unitCircle()) {
    item.points.push_back({center.x + p.x * xx + p.y * yx, center.y + p.x * xy + p.y * yy});
  }
  return Adesk::kFalse;
}

Adesk::Boolean RecordingGeometry::polyline(Adesk::UInt32 count, const AcGePoint3d* points,
                                           const AcGeVector3d*, Adesk::LongPtr) const {
  if (count == 0 || points == nullptr) return Adesk::kFalse;
  LineItem& item = addLine();
  addGroundPoints(item.points, count, points);
  if (count > 1) item.dashes = traits_.dashes();
  return Adesk::kFalse;
}

LineItem& RecordingGeometry::addLine() const {
  LineItem& item = list_.addLine();
  item.color = traits_.trueColor();
  item.weight = traits_.lineWeight();
  item.alpha = traits_.transparency().alpha();
  return item;
}

/// Display lists know no view: the line ends where no drawing reaches.
Adesk::Boolean RecordingGeometry::ray(const AcGePoint3d& first, const AcGePoint3d& second) const {
  const AcGePoint3d ends[] = {first, first + (second - first).normal() * kEndless};
  return polyline(2, ends, nullptr, -1);
}

/// In two halves, so that places near the first point are as exact as it is.
Adesk::Boolean RecordingGeometry::xline(const AcGePoint3d& first, const AcGePoint3d& second) const {
  const AcGeVector3d far = (second - first).normal() * kEndless;
  const AcGePoint3d points[] = {first - far, first, first + far};
  return polyline(3, points, nullptr, -1);
}

Adesk::Boolean RecordingGeometry::polygon(Adesk::UInt32 count, const AcGePoint3d* points) const {
  if (count < 3 || points == nullptr) return Adesk::kFalse;
  list_.add(AreaItem{groundPoints(count, points),
                     traits_.trueColor(),
                     traits_.fillType() == kAcGiFillAlways,
                     {},
                     traits_.transparency().alpha()});
  return Adesk::kFalse;
}

Adesk::Boolean RecordingGeometry::polyPolygon(Adesk::UInt32 loops, const Adesk::UInt32* counts,
                                              const AcGePoint3d* points) const {
  AreaItem item;
  Adesk::UInt32 all = 0;
  for (Adesk::UInt32 i = 0; i < loops; ++i) item.ends.push_back(all += counts[i]);
  if (all < 3) return Adesk::kFalse;
  item.points = groundPoints(all, points);
  item.color = traits_.trueColor();
  item.filled = traits_.fillType() == kAcGiFillAlways;
  item.alpha = traits_.transparency().alpha();
  list_.add(std::move(item));
  return Adesk::kFalse;
}

Adesk::Boolean RecordingGeometry::text(const AcGePoint3d& position, const AcGeVector3d& normal,
                                       const AcGeVector3d& direction, double height, double width,
                                       double oblique, const ACHAR* message) const {
  return styledText(position, normal, direction, height, width, oblique, message, {});
}

/// What stands upright in its own plane leans when that plane is seen from above.
Adesk::Boolean RecordingGeometry::styledText(const AcGePoint3d& position,
                                             const AcGeVector3d& normal,
                                             const AcGeVector3d& direction, double height,
                                             double width, double oblique, const ACHAR* message,
                                             const AcGiTextStyle& style) const {
  const AcGeVector3d along = direction.normal();
  const AcGeVector3d up = normal.crossProduct(along).normal();
  const double length = std::hypot(along.x, along.y);
  if (message == nullptr || *message == 0 || !(height > 0) || !(length > 0)) return Adesk::kFalse;
  const double across = (along.x * up.y - along.y * up.x) / length;
  const double leaning = (along.x * up.x + along.y * up.y) / length + std::tan(oblique) * length;
  const double rise = std::fabs(across);
  if (!(rise > 0)) return Adesk::kFalse;
  TextItem item;
  item.position = {position.x, position.y};
  item.direction = {along.x, along.y};
  item.height = height * rise;
  item.widthFactor = (width > 0 ? width : 1) * length / rise;
  item.oblique = std::atan(leaning / rise);
  item.text = QString::fromWCharArray(message);
  item.color = traits_.trueColor();
  item.font = QString::fromStdWString(style.fileName());
  item.mirrored = across < 0;
  item.underlined = style.isUnderlined();
  item.overlined = style.isOverlined();
  item.alpha = traits_.transparency().alpha();
  list_.add(std::move(item));
  return Adesk::kFalse;
}

Adesk::Boolean RecordingGeometry::image(const AcGiImageBGRA32& source, const AcGePoint3d& position,
                                        const AcGeVector3d& u, const AcGeVector3d& v,
                                        TransparencyMode mode) const {
  ImageItem item;
  item.image = premultipliedImage(source, mode);
  if (item.image.isNull()) return Adesk::kFalse;
  item.origin = {position.x, position.y};
  item.u = {u.x, u.y};
  item.v = {v.x, v.y};
  item.alpha = traits_.transparency().alpha();
  list_.add(std::move(item));
  return Adesk::kFalse;
}

Adesk::Boolean RecordingGeometry::pointCloud(const std::shared_ptr<const AcGiPointCloud>& cloud,
                                             const AcGePoint3d& origin, const AcGeVector3d& u,
                                             const AcGeVector3d& v) const {
  if (cloud == nullptr) return Adesk::kFalse;
  list_.add(PointsItem{cloud, {origin.x, origin.y}, {u.x, u.y}, {v.x, v.y}});
  return Adesk::kFalse;
}

}  // namespace tarn::host
