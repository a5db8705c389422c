#include <cmath>
#include <numeric>

#include "acgi.h"
#include "dbfiler.h"
#include "dbtext.h"
#include "host/database/drawnextents.h"
#include "host/database/entitysystem.h"
#include "host/database/plaintext.h"
#include "host/database/recordfiling.h"
#include "host/database/textmeasure.h"

ACRX_DXF_DEFINE_MEMBERS(AcDbText, AcDbEntity, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0, TEXT,
                        ObjectDBX Classes)

using tarn::host::OwnChange;

namespace {

constexpr double kDescent = 1.0 / 3;  ///< of the height of a capital
enum Horizontal { kCenter = 1, kRight = 2, kAligned = 3, kMiddle = 4, kFit = 5 };
enum Vertical { kBottom = 1, kHalf = 2, kTop = 3 };
enum Generation { kBackward = 2, kUpsideDown = 4 };

double shareToTheLeft(short horizontal) {
  if (horizontal == kCenter || horizontal == kMiddle) return 0.5;
  return horizontal == kRight ? 1 : 0;
}

/// How far the base line lies above the point of alignment, in heights.
double riseOf(const AcDbTextLine& line) {
  if (line.horizontal == kMiddle || line.vertical == kHalf) return -0.5;
  if (line.vertical == kTop) return -1;
  return line.vertical == kBottom ? kDescent : 0;
}

/// Between its two points a text gets the angle of the line through them, and is made to fit.
AcDbTextLine fitted(const AcDbTextLine& line, double width) {
  AcDbTextLine out = line;
  const AcGeVector3d across = line.alignment - line.position;
  const double length = std::hypot(across.x, across.y);
  if (!(length > 0) || !(width > 0)) return out;
  out.rotation = std::atan2(across.y, across.x);
  (line.horizontal == kFit ? out.widthFactor : out.height) *= length / width;
  return out;
}

}  // namespace

AcDbTextLine AcDbTextLine::placed(double width) const {
  const bool isBetween = horizontal == kAligned || horizontal == kFit;
  AcDbTextLine out = isBetween ? fitted(*this, width) : *this;
  if (isBetween || (horizontal == 0 && vertical == 0)) return out;
  const AcGeVector3d along(std::cos(rotation), std::sin(rotation), 0);
  const double left = shareToTheLeft(horizontal) * width * (generation & kBackward ? -1 : 1);
  const double rise = riseOf(*this) * height * (generation & kUpsideDown ? -1 : 1);
  out.position = alignment - along * left + AcGeVector3d(-along.y, along.x, 0) * rise;
  return out;
}

void AcDbTextLine::draw(AcGiWorldDraw& draw) const {
  const std::wstring font = tarn::host::fontOfStyle(style);
  const std::vector<tarn::host::TextRun> runs = tarn::host::textRuns(text);
  std::vector<double> widths(runs.size());  // in heights
  const bool isMeasured = runs.size() > 1 || horizontal != 0 || vertical != 0;
  for (size_t i = 0; isMeasured && i < runs.size(); ++i) {
    widths[i] = tarn::host::textWidth(runs[i].text, font) * widthFactor;
  }
  const AcDbTextLine at = placed(std::accumulate(widths.begin(), widths.end(), 0.0) * height);
  const AcGeMatrix3d world = tarn::host::entityToWorld(normal);
  AcGeVector3d along = world * AcGeVector3d(std::cos(at.rotation), std::sin(at.rotation), 0);
  if ((generation & kBackward) != 0) along = -along;
  const bool isTurned = ((generation & kBackward) != 0) != ((generation & kUpsideDown) != 0);
  const AcGeVector3d facing = isTurned ? -normal : normal;
  AcGePoint3d start = world * at.position;
  for (size_t i = 0; i < runs.size(); ++i) {
    AcGiTextStyle manner(font);
    manner.setUnderlined(runs[i].underlined);
    manner.setOverlined(runs[i].overlined);
    draw.geometry().styledText(start, facing, along, at.height, at.widthFactor, oblique,
                               runs[i].text.c_str(), manner);
    start += along * (widths[i] * at.height * at.widthFactor / widthFactor);
  }
}

void AcDbTextLine::transformBy(const AcGeMatrix3d& transform) {
  const OwnChange change = tarn::host::changeOf(normal, transform);
  position.transformBy(change.map);
  alignment.transformBy(change.map);
  rotation = change.turned(rotation);
  height *= change.scale;
  normal = change.normal;
}

void AcDbTextLine::write(AcDbDwgFiler& filer) const {
  filer.writePoint3d(position);
  filer.writePoint3d(alignment);
  filer.writeVector3d(normal);
  for (const double value : {height, rotation, widthFactor, oblique}) filer.writeDouble(value);
  for (const short value : {horizontal, vertical, generation}) filer.writeInt16(value);
  filer.writeHardPointerId(style);
  filer.writeString(text.c_str());
}

void AcDbTextLine::read(AcDbDwgFiler& filer) {
  filer.readPoint3d(&position);
  filer.readPoint3d(&alignment);
  filer.readVector3d(&normal);
  for (double* value : {&height, &rotation, &widthFactor, &oblique}) filer.readDouble(value);
  for (short* value : {&horizontal, &vertical, &generation}) filer.readInt16(value);
  filer.readHardPointerId(&style);
  tarn::host::readText(filer, text);
}

AcDbText::AcDbText(const AcGePoint3d& position, const ACHAR* text, double height, double rotation) {
  line_.position = position;
  line_.height = height;
  line_.rotation = rotation;
  line_.text = text != nullptr ? text : L"";
}

const AcDbTextLine& AcDbText::line() const {
  assertReadEnabled();
  return line_;
}

Acad::ErrorStatus AcDbText::setLine(const AcDbTextLine& line) {
  assertWriteEnabled();
  line_ = line;
  recordGraphicsModified();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbText::setTextString(const ACHAR* text) {
  assertWriteEnabled();
  line_.text = text != nullptr ? text : L"";
  recordGraphicsModified();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbText::dwgOutFields(AcDbDwgFiler* filer) const {
  const Acad::ErrorStatus status = AcDbEntity::dwgOutFields(filer);
  if (status != Acad::eOk) return status;
  line_.write(*filer);
  return filer->filerStatus();
}

Acad::ErrorStatus AcDbText::dwgInFields(AcDbDwgFiler* filer) {
  const Acad::ErrorStatus status = AcDbEntity::dwgInFields(filer);
  if (status != Acad::eOk) return status;
  line_.read(*filer);
  return filer->filerStatus();
}

Adesk::Boolean AcDbText::subWorldDraw(AcGiWorldDraw* draw) {
  line().draw(*draw);
  return Adesk::kTrue;
}

Acad::ErrorStatus AcDbText::subGetGeomExtents(AcDbExtents& extents) const {
  return tarn::host::drawnExtents(*this, extents);
}

Acad::ErrorStatus AcDbText::subGetOsnapPoints(AcDb::OsnapMode osnapMode, Adesk::GsMarker,
                                              const AcGePoint3d&, const AcGePoint3d&,
                                              const AcGeMatrix3d&, AcGePoint3dArray& snapPoints,
                                              AcDbIntArray&) const {
  const bool isAligned = line().horizontal != 0 || line().vertical != 0;
  if (osnapMode == AcDb::kOsModeIns) {
    snapPoints.append(tarn::host::entityToWorld(line().normal) *
                      (isAligned ? line().alignment : line().position));
  }
  return Acad::eOk;
}

Acad::ErrorStatus AcDbText::subGetGripPoints(AcGePoint3dArray& gripPoints, AcDbIntArray&,
                                             AcDbIntArray&) const {
  gripPoints.append(tarn::host::entityToWorld(line().normal) * line().position);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbText::subTransformBy(const AcGeMatrix3d& transform) {
  assertWriteEnabled();
  line_.transformBy(transform);
  recordGraphicsModified();
  return Acad::eOk;
}
