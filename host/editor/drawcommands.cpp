// Commands that draw.
#include <cmath>

#include "acedads.h"
#include "base/text.h"
#include "dbcurve.h"
#include "dbents.h"
#include "dbpl.h"
#include "dbtext.h"
#include "host/editor/entities.h"
#include "host/editor/hostapp.h"
#include "host/editor/hostcommands.h"
#include "host/editor/picking.h"
#include "host/editor/sysvars.h"

namespace tarn::host {

namespace {

constexpr double kDegree = 3.141592653589793 / 180;

HostApp& app() {
  return *HostApp::instance();
}

AcGePoint3d pointOf(const ads_point point) {
  return {point[0], point[1], point[2]};
}

/// The keyword given instead of a value.
std::string keyword() {
  ACHAR word[513] = {0};
  acedGetInput(word);
  return toUtf8(word);
}

bool eraseEntity(AcDbObjectId id) {
  AcDbEntity* entity = nullptr;
  if (acdbOpenObject(entity, id, AcDb::kForWrite) != Acad::eOk) return false;
  const bool done = entity->erase() == Acad::eOk;
  entity->close();
  return done;
}

/// The segments of one LINE command.
struct Segments {
  std::vector<AcGePoint3d> points;
  EntityIds lines;

  bool addTo(const AcGePoint3d& point) {
    auto* line = new AcDbLine(points.back(), point);
    if (!appendEntity(app(), line)) return false;
    lines.push_back(line->objectId());
    points.push_back(point);
    return true;
  }
  void takeBack() {
    if (lines.empty() || !eraseEntity(lines.back())) {
      app().print("\nThere is no line to take back.\n");
      return;
    }
    lines.pop_back();
    points.pop_back();
  }
};

/// Vertices of a polyline in the making, straight or by arcs that go on in the direction so far.
class PolylineMaker {
 public:
  explicit PolylineMaker(const AcGePoint3d& first) : points_{first}, bulges_{0.0} {}

  void addTo(const AcGePoint3d& point) {
    const AcGeVector3d chord = point - points_.back();
    const double toPoint = std::atan2(chord.y, chord.x);
    double bulge = 0;
    double direction = toPoint;
    if (arcs_ && points_.size() > 1) {
      const double turn = std::remainder(toPoint - directions_.back(), 360 * kDegree);
      bulge = std::tan(turn / 2);
      direction = toPoint + turn;
    }
    bulges_.back() = bulge;
    points_.push_back(point);
    bulges_.push_back(0);
    directions_.push_back(direction);
  }
  bool takeBack() {
    if (points_.size() < 2) return false;
    points_.pop_back();
    bulges_.pop_back();
    bulges_.back() = 0;
    directions_.pop_back();
    return true;
  }
  void setArcs(bool on) { arcs_ = on; }
  size_t count() const { return points_.size(); }
  const AcGePoint3d& last() const { return points_.back(); }

  AcDbPolyline* make(bool closed) const {
    auto* polyline = new AcDbPolyline;
    for (size_t i = 0; i < points_.size(); ++i) {
      polyline->addVertex(points_[i].x, points_[i].y, bulges_[i]);
    }
    polyline->setElevation(points_.front().z);
    polyline->setClosed(closed);
    return polyline;
  }

 private:
  std::vector<AcGePoint3d> points_;
  std::vector<double> bulges_;      ///< of the piece that begins at the point
  std::vector<double> directions_;  ///< at the end of each piece, radians
  bool arcs_ = false;
};

}  // namespace

void lineCommand() {
  ads_point at = {0, 0, 0};
  const int first = acedGetPoint(nullptr, ACRX_T("\nFirst point: "), at);
  if (first == RTNONE) {
    // Enter goes on from the last point.
    const auto last = std::get<Point3>(*app().variables().get("LASTPOINT"));
    at[0] = last.x;
    at[1] = last.y;
    at[2] = last.z;
  } else if (first != RTNORM) {
    return;
  }
  Segments made;
  made.points.push_back(pointOf(at));
  for (;;) {
    const bool closable = made.lines.size() > 1;
    acedInitGet(0, closable ? ACRX_T("Close Undo") : ACRX_T("Undo"));
    const int answer = acedGetPoint(
        asDblArray(made.points.back()),
        closable ? ACRX_T("\nNext point or [Close/Undo]: ") : ACRX_T("\nNext point or [Undo]: "),
        at);
    if (answer == RTKWORD && keyword() == "Close") {
      made.addTo(made.points.front());
      return;
    }
    if (answer == RTKWORD) {
      made.takeBack();
    } else if (answer != RTNORM || !made.addTo(pointOf(at))) {
      return;
    }
  }
}

void circleCommand() {
  ads_point center = {0, 0, 0};
  acedInitGet(RSG_NONULL, nullptr);
  if (acedGetPoint(nullptr, ACRX_T("\nCenter point: "), center) != RTNORM) return;
  // That of the last circle is offered again.
  ads_real radius = std::get<double>(*app().variables().get("CIRCLERAD"));
  const auto ask = [&](const char* what, const ACHAR* keywords, double& value) {
    const bool hasLast = radius > 0;
    const std::string offered = hasLast ? " <" + formatDouble(value) + ">: " : ": ";
    acedInitGet((hasLast ? 0 : RSG_NONULL) | RSG_NOZERO | RSG_NONEG, keywords);
    return acedGetDist(center, toWide(what + offered).c_str(), &value);
  };
  const int answer = ask("\nRadius or [Diameter]", ACRX_T("Diameter"), radius);
  if (answer == RTKWORD) {
    double diameter = radius * 2;
    const int second = ask("\nDiameter", nullptr, diameter);
    if (second != RTNORM && second != RTNONE) return;
    radius = diameter / 2;
  } else if (answer != RTNORM && answer != RTNONE) {
    return;
  }
  if (!(radius > 0)) return failCommand(app(), "A circle needs a radius above zero.");
  app().variables().set("CIRCLERAD", radius);
  appendEntity(app(), new AcDbCircle(pointOf(center), AcGeVector3d::kZAxis, radius));
}

void plineCommand() {
  ads_point at = {0, 0, 0};
  acedInitGet(RSG_NONULL, nullptr);
  if (acedGetPoint(nullptr, ACRX_T("\nFirst point: "), at) != RTNORM) return;
  PolylineMaker maker(pointOf(at));
  bool closed = false;
  for (;;) {
    acedInitGet(0, ACRX_T("Arc Close Line Undo"));
    const int answer = acedGetPoint(asDblArray(maker.last()),
                                    ACRX_T("\nNext point or [Arc/Close/Line/Undo]: "), at);
    if (answer == RTCAN) return;
    if (answer == RTNORM) maker.addTo(pointOf(at));
    if (answer != RTNORM && answer != RTKWORD) break;
    const std::string word = answer == RTKWORD ? keyword() : std::string();
    if (word == "Arc" || word == "Line") maker.setArcs(word == "Arc");
    if (word == "Undo" && !maker.takeBack()) app().print("\nThere is no point to take back.\n");
    closed = word == "Close" && maker.count() > 2;
    if (word == "Close" && !closed) app().print("\nThree points are needed to close.\n");
    if (closed) break;
  }
  if (maker.count() > 1) appendEntity(app(), maker.make(closed));
}

void textCommand() {
  ads_point at = {0, 0, 0};
  acedInitGet(RSG_NONULL, nullptr);
  if (acedGetPoint(nullptr, ACRX_T("\nStart point of the text: "), at) != RTNORM) return;
  double height = std::get<double>(*app().variables().get("TEXTSIZE"));
  if (!(height > 0)) height = 1;
  acedInitGet(RSG_NOZERO | RSG_NONEG, nullptr);
  const std::wstring prompt = toWide("\nHeight <" + formatDouble(height) + ">: ");
  if (acedGetDist(at, prompt.c_str(), &height) == RTCAN) return;
  ads_real angle = 0;
  if (acedGetAngle(at, ACRX_T("\nRotation angle <0>: "), &angle) == RTCAN) return;
  ACHAR typed[513] = {0};
  if (acedGetString(1, ACRX_T("\nText: "), typed) != RTNORM || typed[0] == 0) return;
  app().variables().set("TEXTSIZE", height);
  appendEntity(app(), new AcDbText(pointOf(at), typed, height, angle));
}

}  // namespace tarn::host
