// Lines, points, circles, arcs, ellipses.
#include "dbcurve.h"
#include "host/filing/entitycodec.h"

namespace tarn::host {

namespace {

constexpr double kTurn = 6.283185307179586;

AcDbEntity* readLine(const EntityTags& tags) {
  return new AcDbLine(tags.head.point(10), tags.head.point(11));
}

void writeLine(const AcDbEntity& entity, EntityOutput& output) {
  const auto& line = static_cast<const AcDbLine&>(entity);
  output.head.setPoint(10, line.startPoint());
  output.head.setPoint(11, line.endPoint());
}

AcDbEntity* readPoint(const EntityTags& tags) {
  return new AcDbPoint(tags.head.point(10));
}

void writePoint(const AcDbEntity& entity, EntityOutput& output) {
  output.head.setPoint(10, static_cast<const AcDbPoint&>(entity).position());
}

AcDbEntity* readCircle(const EntityTags& tags) {
  auto* circle = new AcDbCircle;
  circle->setOwn(tags.head.point(10), tags.head.normal(), tags.head.real(40));
  return circle;
}

void writeCircle(const AcDbEntity& entity, EntityOutput& output) {
  const auto& circle = static_cast<const AcDbCircle&>(entity);
  output.head.setPoint(10, circle.ownCenter());
  output.head.setReal(40, circle.radius());
  output.head.setNormal(circle.normal());
}

AcDbEntity* readArc(const EntityTags& tags) {
  auto* arc = new AcDbArc;
  arc->setOwn(tags.head.point(10), tags.head.normal(), tags.head.real(40));
  const TagView own = tags.head.own("AcDbArc");
  arc->setStartAngle(own.angle(50));
  arc->setEndAngle(own.angle(51));
  return arc;
}

void writeArc(const AcDbEntity& entity, EntityOutput& output) {
  const auto& arc = static_cast<const AcDbArc&>(entity);
  writeCircle(entity, output);
  output.head.enterOwn("AcDbArc");
  output.head.setAngle(50, arc.startAngle());
  output.head.setAngle(51, arc.endAngle());
}

AcDbEntity* readEllipse(const EntityTags& tags) {
  auto* ellipse = new AcDbEllipse;
  const AcGePoint3d major = tags.head.point(11);
  ellipse->set(tags.head.point(10), tags.head.normal(), major.asVector(), tags.head.real(40, 1),
               tags.head.real(41), tags.head.real(42, kTurn));
  return ellipse;
}

void writeEllipse(const AcDbEntity& entity, EntityOutput& output) {
  const auto& ellipse = static_cast<const AcDbEllipse&>(entity);
  const AcGeVector3d major = ellipse.majorAxis();
  output.head.setPoint(10, ellipse.center());
  output.head.setPoint(11, {major.x, major.y, major.z});
  output.head.setNormal(ellipse.normal());
  output.head.setReal(40, ellipse.radiusRatio());
  output.head.setReal(41, ellipse.startParam());
  output.head.setReal(42, ellipse.endParam());
}

}  // namespace

const std::vector<EntityCodec>& curveCodecs() {
  static const std::vector<EntityCodec> codecs = {
      {"LINE", "AcDbLine", &AcDbLine::desc, readLine, writeLine, true, true, false, true},
      {"POINT", "AcDbPoint", &AcDbPoint::desc, readPoint, writePoint, true, true, false, true},
      {"CIRCLE", "AcDbCircle", &AcDbCircle::desc, readCircle, writeCircle, true, true, false, true},
      {"ARC", "AcDbCircle", &AcDbArc::desc, readArc, writeArc, true, true, false, true},
      {"ELLIPSE", "AcDbEllipse", &AcDbEllipse::desc, readEllipse, writeEllipse, false, true},
  };
  return codecs;
}

}  // namespace tarn::host
