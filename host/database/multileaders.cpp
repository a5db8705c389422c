#include <cmath>

#include "acgi.h"
#include "dbmleader.h"
#include "dbsymtb.h"
#include "dbtext.h"
#include "host/database/blockdraw.h"
#include "host/database/entitysystem.h"
#include "host/database/objectaccess.h"
#include "host/database/valuedentity.h"
#include "host/geometry/spline.h"

ACRX_DXF_DEFINE_MEMBERS(AcDbMLeader, AcDbEntity, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0,
                        MULTILEADER, ACDB_MLEADER_CLASS)

template <typename Filing>
void eachField(AcDbMLeaderValues::Line& line, Filing& filing) {
  filing.all(line.vertices, line.breaks);
}

template <typename Filing>
void eachField(AcDbMLeaderValues::Leader& leader, Filing& filing) {
  filing.all(leader.hasLast, leader.hasDogleg, leader.last, leader.dogleg, leader.doglegLength,
             leader.breaks, leader.lines);
}

template <typename Filing>
void eachField(AcDbMLeaderValues::Text& text, Filing& filing) {
  filing.all(text.contents, text.style, text.location, text.normal, text.direction, text.rotation,
             text.width, text.definedHeight, text.spacing, text.columnWidth, text.columnGutter,
             text.columnHeights, text.color, text.alignment);
}

template <typename Filing>
void eachField(AcDbMLeaderValues::Block& block, Filing& filing) {
  filing.all(block.id, block.position, block.normal, block.scale, block.rotation, block.color,
             block.matrix);
}

template <typename Filing>
void eachField(AcDbMLeaderValues& values, Filing& filing) {
  filing.all(values.scale, values.base, values.textHeight, values.arrowSize, values.gap,
             values.hasText, values.text, values.hasBlock, values.block, values.planeOrigin,
             values.planeX, values.planeY, values.leaders, values.kind, values.lineColor,
             values.arrow, values.hasDogleg, values.usualDogleg, values.usualArrow,
             values.usualScale, values.blockRotation, values.blockScale);
}

template class AcDbValuedEntity<AcDbMLeaderValues>;

using tarn::host::OwnChange;

namespace {

constexpr short kStraight = 1;
constexpr short kCurves = 2;

/// By layer and by block it is the colour of the leader itself.
void setRawColor(AcGiSubEntityTraits& traits, Adesk::Int32 raw, Adesk::UInt32 own) {
  constexpr unsigned kColors = 0xC2;
  constexpr unsigned kIndex = 0xC3;
  const auto bits = static_cast<Adesk::UInt32>(raw);
  if (bits >> 24 == kColors) {
    traits.setTrueColor(bits & 0xFFFFFF);
  } else if (bits >> 24 == kIndex && (bits & 0xFF) != 0) {
    traits.setColor(static_cast<Adesk::UInt16>(bits & 0xFF));
  } else {
    tarn::host::setResolvedColor(traits, own);
  }
}

void transformAll(std::vector<AcGePoint3d>& points, const AcGeMatrix3d& matrix) {
  for (AcGePoint3d& point : points) point.transformBy(matrix);
}

void turn(AcGeVector3d& direction, const AcGeMatrix3d& matrix) {
  const AcGeVector3d turned = matrix * direction;
  if (turned.length() > 0) direction = turned.normal();
}

void change(AcDbMLeaderValues::Leader& leader, const AcGeMatrix3d& matrix) {
  leader.last.transformBy(matrix);
  const AcGeVector3d before =
      leader.dogleg.length() > 0 ? leader.dogleg.normal() : AcGeVector3d::kXAxis;
  const AcGeVector3d dogleg = matrix * (before * leader.doglegLength);
  turn(leader.dogleg, matrix);
  leader.doglegLength = dogleg.length();
  transformAll(leader.breaks, matrix);
  for (AcDbMLeaderValues::Line& line : leader.lines) {
    transformAll(line.vertices, matrix);
    transformAll(line.breaks, matrix);
  }
}

void change(AcDbMLeaderValues::Text& text, const AcGeMatrix3d& matrix) {
  const OwnChange own = tarn::host::changeOf(text.normal, matrix);
  text.normal = own.normal;
  text.rotation = own.turned(text.rotation);
  text.location.transformBy(matrix);
  turn(text.direction, matrix);
  for (double* length : {&text.width, &text.definedHeight, &text.columnWidth, &text.columnGutter}) {
    *length *= own.scale;
  }
  for (double& height : text.columnHeights) height *= own.scale;
}

void change(AcDbMLeaderValues::Block& block, const AcGeMatrix3d& matrix) {
  const OwnChange own = tarn::host::changeOf(block.normal, matrix);
  block.normal = own.normal;
  block.rotation = own.turned(block.rotation);
  block.position.transformBy(matrix);
  block.scale *= own.scale;
  if (block.matrix.size() != 16) return;
  AcGeMatrix3d held;
  for (size_t i = 0; i < 16; ++i) held.entry[i / 4][i % 4] = block.matrix[i];
  held = matrix * held;
  for (size_t i = 0; i < 16; ++i) block.matrix[i] = held.entry[i / 4][i % 4];
}

AcGeMatrix3d scaling(const AcGeVector3d& scale) {
  AcGeMatrix3d matrix;
  matrix.entry[0][0] = scale.x;
  matrix.entry[1][1] = scale.y;
  matrix.entry[2][2] = scale.z;
  return matrix;
}

}  // namespace

void AcDbMLeader::drawArrow(AcGiWorldDraw& draw, const AcGePoint3d& tip,
                            const AcGePoint3d& next) const {
  const AcGeVector3d back = next - tip;
  const double size = values_.arrowSize;
  if (!(size > 0) || !(back.length() > 0)) return;
  if (!values_.arrow.isNull()) {
    const AcGeMatrix3d place =
        AcGeMatrix3d::translation(tip.asVector()) *
        AcGeMatrix3d::rotation(std::atan2(-back.y, -back.x), AcGeVector3d::kZAxis) *
        AcGeMatrix3d::scaling(size);
    return tarn::host::drawBlock(draw, *this, values_.arrow, place,
                                 tarn::host::lookOf(draw.subEntityTraits()));
  }
  const AcGeVector3d normal = values_.planeX.crossProduct(values_.planeY);
  const AcGePoint3d foot = tip + back.normal() * size;
  const AcGeVector3d aside = normal.crossProduct(back).normal() * (size / 6);
  const AcGePoint3d arrow[] = {tip, foot + aside, foot - aside};
  draw.geometry().polygon(3, arrow);
}

void AcDbMLeader::drawLine(AcGiWorldDraw& draw, const Values::Leader& leader,
                           const Values::Line& line) const {
  std::vector<AcGePoint3d> points = line.vertices;
  if (leader.hasLast) points.push_back(leader.last);
  if (points.size() < 2) return;
  const AcGePoint3d tip = points[0];
  const AcGePoint3d next = points[1];
  if (values_.kind == kCurves) {
    points = tarn::host::pointsThrough(points, {0, 0, 0}, {0, 0, 0});
  }
  draw.geometry().polyline(static_cast<Adesk::UInt32>(points.size()), points.data());
  drawArrow(draw, tip, next);
}

void AcDbMLeader::drawText(AcGiWorldDraw& draw) const {
  AcDbMText text;
  text.setLocation(values_.text.location);
  text.setNormal(values_.text.normal);
  text.setDirection(values_.text.direction);
  text.setTextHeight(values_.textHeight);
  text.setWidth(values_.text.width);
  text.setTextStyle(values_.text.style);
  text.setLineSpacingFactor(values_.text.spacing);
  text.setAttachment(values_.text.alignment);
  text.setContents(values_.text.contents.c_str());
  text.worldDraw(&draw);
}

void AcDbMLeader::drawBlock(AcGiWorldDraw& draw) const {
  const Values::Block& block = values_.block;
  AcGePoint3d base;
  if (auto* record = AcDbBlockTableRecord::cast(tarn::host::peek(block.id))) {
    const tarn::host::ObjectAccess::Look look(*record);
    base = record->origin();
  }
  const AcGeMatrix3d place = AcGeMatrix3d::translation(block.position.asVector()) *
                             tarn::host::entityToWorld(block.normal) *
                             AcGeMatrix3d::rotation(block.rotation, AcGeVector3d::kZAxis) *
                             scaling(block.scale) * AcGeMatrix3d::translation(-base.asVector());
  tarn::host::drawBlock(draw, *this, block.id, place, tarn::host::lookOf(draw.subEntityTraits()));
}

Adesk::Boolean AcDbMLeader::subWorldDraw(AcGiWorldDraw* draw) {
  assertReadEnabled();
  AcGiSubEntityTraits& traits = draw->subEntityTraits();
  const Adesk::UInt32 own = traits.trueColor();
  setRawColor(traits, values_.lineColor, own);
  for (const Values::Leader& leader : values_.leaders) {
    if (values_.kind != kStraight && values_.kind != kCurves) break;
    for (const Values::Line& line : leader.lines) drawLine(*draw, leader, line);
    if (!leader.hasDogleg || !leader.hasLast || !values_.hasDogleg) continue;
    if (!(leader.doglegLength > 0) || !(leader.dogleg.length() > 0)) continue;
    const AcGePoint3d dogleg[] = {leader.last,
                                  leader.last + leader.dogleg.normal() * leader.doglegLength};
    draw->geometry().polyline(2, dogleg);
  }
  setRawColor(traits, values_.hasText ? values_.text.color : values_.block.color, own);
  if (values_.hasText) drawText(*draw);
  if (values_.hasBlock) drawBlock(*draw);
  return Adesk::kTrue;
}

std::vector<AcGePoint3d*> AcDbMLeader::tips() {
  std::vector<AcGePoint3d*> found;
  for (Values::Leader& leader : values_.leaders) {
    for (Values::Line& line : leader.lines) {
      if (!line.vertices.empty()) found.push_back(&line.vertices.front());
    }
  }
  return found;
}

Acad::ErrorStatus AcDbMLeader::subGetOsnapPoints(AcDb::OsnapMode osnapMode, Adesk::GsMarker,
                                                 const AcGePoint3d&, const AcGePoint3d&,
                                                 const AcGeMatrix3d&, AcGePoint3dArray& snapPoints,
                                                 AcDbIntArray&) const {
  assertReadEnabled();
  if (osnapMode == AcDb::kOsModeIns && values_.hasText) snapPoints.append(values_.text.location);
  if (osnapMode == AcDb::kOsModeIns && values_.hasBlock) snapPoints.append(values_.block.position);
  if (osnapMode != AcDb::kOsModeEnd) return Acad::eOk;
  for (const Values::Leader& leader : values_.leaders) {
    for (const Values::Line& line : leader.lines) {
      for (const AcGePoint3d& point : line.vertices) snapPoints.append(point);
    }
    if (leader.hasLast) snapPoints.append(leader.last);
  }
  return Acad::eOk;
}

Acad::ErrorStatus AcDbMLeader::subGetGripPoints(AcGePoint3dArray& gripPoints, AcDbIntArray&,
                                                AcDbIntArray&) const {
  assertReadEnabled();
  for (const AcGePoint3d* tip : const_cast<AcDbMLeader&>(*this).tips()) gripPoints.append(*tip);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbMLeader::subMoveGripPointsAt(const AcDbIntArray& indices,
                                                   const AcGeVector3d& offset) {
  assertWriteEnabled();
  const std::vector<AcGePoint3d*> found = tips();
  for (const int index : indices) *found[static_cast<size_t>(index)] += offset;
  recordGraphicsModified();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbMLeader::subTransformBy(const AcGeMatrix3d& transform) {
  assertWriteEnabled();
  const double scale = (transform * AcGeVector3d::kXAxis).length();
  for (double* length : {&values_.scale, &values_.textHeight, &values_.arrowSize, &values_.gap,
                         &values_.usualDogleg, &values_.usualArrow, &values_.usualScale}) {
    *length *= scale;
  }
  values_.base.transformBy(transform);
  values_.planeOrigin.transformBy(transform);
  turn(values_.planeX, transform);
  turn(values_.planeY, transform);
  for (Values::Leader& leader : values_.leaders) change(leader, transform);
  if (values_.hasText) change(values_.text, transform);
  if (values_.hasBlock) {
    change(values_.block, transform);
    values_.blockRotation = values_.block.rotation;
    values_.blockScale = values_.block.scale;
  }
  recordGraphicsModified();
  return Acad::eOk;
}
