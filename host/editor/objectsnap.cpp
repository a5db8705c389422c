#include "host/editor/objectsnap.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "base/text.h"
#include "dbents.h"
#include "dbobjptr.h"
#include "host/editor/documents.h"
#include "host/editor/hostapp.h"
#include "host/editor/picking.h"
#include "host/editor/sysvars.h"

namespace tarn::host {

namespace {

struct Kind {
  const char* word;
  int bit;
  AcDb::OsnapMode mode;  ///< not used for intersections
};

constexpr Kind kKinds[] = {
    {"endpoint", kSnapEnd, AcDb::kOsModeEnd},
    {"midpoint", kSnapMid, AcDb::kOsModeMid},
    {"center", kSnapCenter, AcDb::kOsModeCen},
    {"node", kSnapNode, AcDb::kOsModeNode},
    {"quadrant", kSnapQuadrant, AcDb::kOsModeQuad},
    {"intersection", kSnapIntersection, AcDb::kOsModeEnd},
    {"insertion", kSnapInsertion, AcDb::kOsModeIns},
    {"nearest", kSnapNearest, AcDb::kOsModeNear},
};
constexpr size_t kShortestWord = 3;
constexpr double kDiagonal = 1.5;  ///< above the root of two: twisted views

/// Keeps the candidate nearest to the cursor, measured in pixels.
class Nearest {
 public:
  Nearest(const ViewState& view, GroundPoint cursor, double reach)
      : view_(view), cursor_(pixelFromGround(view, cursor)), reach_(reach), best_(reach) {}
  void offer(const AcGePoint3d& point, int bit) {
    const PixelPoint at = pixelFromGround(view_, {point.x, point.y});
    const double distance = std::hypot(at.x - cursor_.x, at.y - cursor_.y);
    // "Nearest" lies under the cursor always; it counts only where nothing else does.
    if (snap_ && bit == kSnapNearest && snap_->bit != kSnapNearest) return;
    const bool replacesNearest = snap_ && snap_->bit == kSnapNearest && bit != kSnapNearest;
    if (!(distance <= (replacesNearest ? reach_ : best_))) return;
    best_ = distance;
    snap_ = Snap{point, bit};
  }
  const std::optional<Snap>& snap() const { return snap_; }

 private:
  const ViewState& view_;
  PixelPoint cursor_;
  double reach_;
  double best_;
  std::optional<Snap> snap_;
};

struct Segment {
  GroundPoint a, b;  ///< from the cursor
};

/// Of the lines that come near the cursor: `reach` is ground to each side.
void addSegments(const DisplayList& list, GroundPoint cursor, double reach,
                 std::vector<Segment>& segments) {
  const auto beside = [reach](double a, double b) {
    return (a > reach && b > reach) || (a < -reach && b < -reach);
  };
  for (const DisplayItem& item : list) {
    const auto* line = std::get_if<LineItem>(&item);
    if (line == nullptr) continue;
    for (size_t i = 1; i < line->points.size(); ++i) {
      const GroundPoint& a = line->points[i - 1];
      const GroundPoint& b = line->points[i];
      const Segment one{{a.x - cursor.x, a.y - cursor.y}, {b.x - cursor.x, b.y - cursor.y}};
      if (!beside(one.a.x, one.b.x) && !beside(one.a.y, one.b.y)) segments.push_back(one);
    }
  }
}

std::optional<GroundPoint> crossing(const Segment& s, const Segment& t) {
  const GroundVector u{s.b.x - s.a.x, s.b.y - s.a.y};
  const GroundVector v{t.b.x - t.a.x, t.b.y - t.a.y};
  const double cross = u.x * v.y - u.y * v.x;
  if (cross == 0) return std::nullopt;
  const double dx = t.a.x - s.a.x;
  const double dy = t.a.y - s.a.y;
  const double along = (dx * v.y - dy * v.x) / cross;
  const double across = (dx * u.y - dy * u.x) / cross;
  constexpr double kSlack = 1e-9;
  if (along < -kSlack || along > 1 + kSlack || across < -kSlack || across > 1 + kSlack) {
    return std::nullopt;
  }
  return GroundPoint{s.a.x + along * u.x, s.a.y + along * u.y};
}

/// The kinds of which the entity has offered points.
int offerEntity(const AcDbEntity& entity, int bits, GroundPoint cursor, const Point3& last,
                Nearest& nearest) {
  int offered = 0;
  for (const Kind& kind : kKinds) {
    if ((bits & kind.bit) == 0 || kind.bit == kSnapIntersection) continue;
    AcGePoint3dArray points;
    AcDbIntArray ids;
    entity.getOsnapPoints(kind.mode, 0, {cursor.x, cursor.y, 0}, {last.x, last.y, last.z},
                          AcGeMatrix3d(), points, ids);
    for (const AcGePoint3d& point : points) nearest.offer(point, kind.bit);
    if (!points.isEmpty()) offered |= kind.bit;
  }
  return offered;
}

/// The foot of the cursor on each segment: for curves that do not say it themselves.
void offerFeet(const std::vector<Segment>& segments, GroundPoint cursor, Nearest& nearest) {
  for (const Segment& s : segments) {
    const GroundVector u{s.b.x - s.a.x, s.b.y - s.a.y};
    const double length = u.x * u.x + u.y * u.y;
    const double t = length > 0 ? std::clamp(-(s.a.x * u.x + s.a.y * u.y) / length, 0.0, 1.0) : 0.0;
    nearest.offer({cursor.x + s.a.x + t * u.x, cursor.y + s.a.y + t * u.y, 0}, kSnapNearest);
  }
}

/// Told by the ground that it covers, without a look at its lines. Pictures are hit at frames that
/// reach beyond it.
bool isAway(const Drawn& drawn, GroundPoint cursor, double reach) {
  const GroundBox& box = drawn.box;
  return !drawn.isEverywhere && !hasImages(drawn.list) &&
         (box.minX > cursor.x + reach || box.maxX < cursor.x - reach ||
          box.minY > cursor.y + reach || box.maxY < cursor.y - reach);
}

}  // namespace

std::optional<int> snapBits(const std::string& words) {
  int bits = 0;
  for (const std::string& piece : split(words, ',')) {
    const std::string word = toLower(!piece.empty() && piece[0] == '_' ? piece.substr(1) : piece);
    if (word.size() < kShortestWord) return std::nullopt;
    int bit = 0;
    for (const Kind& kind : kKinds) {
      if (std::string(kind.word).compare(0, word.size(), word) == 0) bit = kind.bit;
    }
    if (bit == 0) return std::nullopt;
    bits |= bit;
  }
  if (bits == 0) return std::nullopt;
  return bits;
}

std::optional<Snap> findSnap(HostApp& app, int bits, GroundPoint cursor, bool magnetic) {
  HostDocument& document = app.documents().current();
  const double aperture = app.variables().shortOf("APERTURE");
  const ViewState view = document.space().mouseView();
  const PixelPoint pixel = pixelFromGround(view, cursor);
  Nearest nearest(view, cursor, magnetic ? aperture : std::numeric_limits<double>::infinity());
  const Point3 last = std::get<Point3>(*app.variables().get("LASTPOINT"));
  std::vector<Segment> segments;
  const double reach = aperture * view.unitsPerPixel() * kDiagonal;
  const Scene& scene = document.currentScene();
  for (const AcDbObjectId& id : currentSpaceEntities(document)) {
    const Drawn* drawn = scene.findDrawn(id.handle().value());
    if (drawn == nullptr || isAway(*drawn, cursor, reach)) continue;
    if (distanceTo(outlinesOf(document, id), pixel) > aperture) continue;
    const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
    if (entity.openStatus() != Acad::eOk) continue;
    const int offered = offerEntity(*entity.object(), bits, cursor, last, nearest);
    std::vector<Segment> own;
    addSegments(drawn->list, cursor, reach, own);
    if ((bits & ~offered & kSnapNearest) != 0) offerFeet(own, cursor, nearest);
    if ((bits & kSnapIntersection) != 0) segments.insert(segments.end(), own.begin(), own.end());
  }
  for (size_t i = 0; i < segments.size(); ++i) {
    for (size_t k = i + 1; k < segments.size(); ++k) {
      const auto at = crossing(segments[i], segments[k]);
      if (at) nearest.offer({at->x + cursor.x, at->y + cursor.y, 0}, kSnapIntersection);
    }
  }
  return nearest.snap();
}

int runningSnaps(HostApp& app) {
  const int bits = app.variables().shortOf("OSMODE");
  return (bits & kSnapsOff) != 0 ? 0 : bits;
}

}  // namespace tarn::host
