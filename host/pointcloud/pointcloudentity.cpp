#include "host/pointcloud/pointcloudentity.h"

#include <algorithm>
#include <cmath>

#include "acedads.h"
#include "acgi.h"
#include "acutads.h"
#include "base/file.h"
#include "base/path.h"
#include "base/text.h"
#include "dbfiler.h"
#include "host/database/databaseinit.h"
#include "host/pointcloud/cloudfile.h"
#include "host/pointcloud/cloudview.h"

using tarn::host::CloudFile;
using tarn::host::CloudPlacement;
using tarn::host::LasReader;

ACRX_DXF_DEFINE_MEMBERS(TarnPointCloud, AcDbEntity, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0,
                        TARNPOINTCLOUD, Tarn Image)

namespace {

[[maybe_unused]] const bool kRegistered =
    (tarn::host::registerDatabaseClasses(), TarnPointCloud::rxInit(), true);

bool isFinite(const AcGeVector3d& v) {
  return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}

}  // namespace

bool TarnPointCloud::Frame::isValid() const {
  return std::isfinite(minX) && std::isfinite(minY) && std::isfinite(maxX) && std::isfinite(maxY) &&
         minX <= maxX && minY <= maxY;
}

const std::string& TarnPointCloud::path() const {
  assertReadEnabled();
  return path_;
}
AcGePoint3d TarnPointCloud::position() const {
  assertReadEnabled();
  return position_;
}
AcGeVector3d TarnPointCloud::xAxis() const {
  assertReadEnabled();
  return xAxis_;
}
AcGeVector3d TarnPointCloud::yAxis() const {
  assertReadEnabled();
  return yAxis_;
}
TarnPointCloud::Frame TarnPointCloud::frame() const {
  assertReadEnabled();
  return frame_;
}

Acad::ErrorStatus TarnPointCloud::setPath(const std::string& path) {
  assertWriteEnabled();
  path_ = path;
  cloud_.reset();
  reason_.clear();
  recordGraphicsModified();
  return Acad::eOk;
}

Acad::ErrorStatus TarnPointCloud::setPlacement(const AcGePoint3d& position,
                                               const AcGeVector3d& xAxis,
                                               const AcGeVector3d& yAxis) {
  assertWriteEnabled();
  const double area = xAxis.x * yAxis.y - xAxis.y * yAxis.x;
  if (!isFinite(position - AcGePoint3d()) || !isFinite(xAxis) || !isFinite(yAxis) || area == 0) {
    return Acad::eInvalidInput;
  }
  position_ = position;
  xAxis_ = xAxis;
  yAxis_ = yAxis;
  recordGraphicsModified();
  return Acad::eOk;
}

Acad::ErrorStatus TarnPointCloud::setFrame(const Frame& frame) {
  assertWriteEnabled();
  if (!frame.isValid()) return Acad::eInvalidInput;
  frame_ = frame;
  recordGraphicsModified();
  return Acad::eOk;
}

/// The stored path, or the file of that name in the drawing's folder when the stored one is gone.
std::string TarnPointCloud::existingPath() const {
  if (tarn::fileKind(path_) == tarn::FileKind::kRegular || database() == nullptr) return path_;
  const ACHAR* drawing = nullptr;
  if (database()->getFilename(drawing) != Acad::eOk || drawing == nullptr) return path_;
  const std::string folder = tarn::folderOf(tarn::toUtf8(drawing));
  if (folder.empty()) return path_;
  const std::string beside = tarn::joinPath(folder, tarn::nameOf(path_));
  return tarn::fileKind(beside) == tarn::FileKind::kRegular ? beside : path_;
}

/// A reason is told when it is new.
void TarnPointCloud::load() {
  bool stopped = false;
  auto loaded = CloudFile::load(existingPath(), stopped);
  if (loaded) {
    cloud_ = loaded.take();
    reason_.clear();
    const std::uint64_t missing = cloud_->header().claimedPoints - cloud_->header().points;
    if (missing == 0 || hasToldMissing_) return;
    hasToldMissing_ = true;
    acutPrintf(ACRX_T("\n%ls: the file is cut short, %ls of its points are missing.\n"),
               tarn::toWide(path_).c_str(), std::to_wstring(missing).c_str());
    return;
  }
  cloud_.reset();
  if (reason_ == loaded.message()) return;
  reason_ = loaded.message();
  acutPrintf(ACRX_T("\n%ls: %ls.\n"), tarn::toWide(path_).c_str(), tarn::toWide(reason_).c_str());
}

void TarnPointCloud::readFile() {
  assertWriteEnabled();
  load();
  if (cloud_) {
    const tarn::host::LasHeader& header = cloud_->header();
    const AcGiPointCloud::Box& box = cloud_->box();
    const double x[] = {box.minX * header.scale[0] + header.offset[0],
                        box.maxX * header.scale[0] + header.offset[0]};
    const double y[] = {box.minY * header.scale[1] + header.offset[1],
                        box.maxY * header.scale[1] + header.offset[1]};
    frame_ = {std::min(x[0], x[1]), std::min(y[0], y[1]), std::max(x[0], x[1]),
              std::max(y[0], y[1])};
    return;
  }
  LasReader reader;
  const bool hasBox = reader.open(path_).isOk() && reader.header().hasBox();
  const tarn::host::LasHeader& says = reader.header();
  frame_ = hasBox ? Frame{says.minimum[0], says.minimum[1], says.maximum[0], says.maximum[1]}
                  : frameInView();
}

/// Half the width and a fifth of the height of what is seen, around its centre.
TarnPointCloud::Frame TarnPointCloud::frameInView() const {
  AcGiPointCloud::Box view;
  if (!tarn::host::visibleGround(view)) return {0, 0, 1, 1};
  const double area = xAxis_.x * yAxis_.y - xAxis_.y * yAxis_.x;
  const double dx = (view.minX + view.maxX) / 2 - position_.x;
  const double dy = (view.minY + view.maxY) / 2 - position_.y;
  const double x = (dx * yAxis_.y - dy * yAxis_.x) / area;
  const double y = (dy * xAxis_.x - dx * xAxis_.y) / area;
  const double scale = std::sqrt(std::fabs(area));
  const double halfX = (view.maxX - view.minX) / 4 / scale;
  const double halfY = (view.maxY - view.minY) / 10 / scale;
  return {x - halfX, y - halfY, x + halfX, y + halfY};
}

std::array<AcGePoint3d, 4> TarnPointCloud::corners() const {
  const auto at = [&](double x, double y) { return position_ + xAxis_ * x + yAxis_ * y; };
  return {at(frame_.minX, frame_.minY), at(frame_.maxX, frame_.minY), at(frame_.maxX, frame_.maxY),
          at(frame_.minX, frame_.maxY)};
}

AcRxObject* TarnPointCloud::clone() const {
  assertReadEnabled();
  auto copy = std::make_unique<TarnPointCloud>();
  copy->path_ = path_;
  copy->position_ = position_;
  copy->xAxis_ = xAxis_;
  copy->yAxis_ = yAxis_;
  copy->frame_ = frame_;
  copy->cloud_ = cloud_;
  copy->reason_ = reason_;
  return copy.release();
}

Acad::ErrorStatus TarnPointCloud::dwgOutFields(AcDbDwgFiler* filer) const {
  const Acad::ErrorStatus status = AcDbEntity::dwgOutFields(filer);
  if (status != Acad::eOk) return status;
  filer->writeString(tarn::toWide(path_).c_str());
  filer->writePoint3d(position_);
  filer->writeVector3d(xAxis_);
  filer->writeVector3d(yAxis_);
  for (const double side : {frame_.minX, frame_.minY, frame_.maxX, frame_.maxY}) {
    filer->writeDouble(side);
  }
  return filer->filerStatus();
}

Acad::ErrorStatus TarnPointCloud::dwgInFields(AcDbDwgFiler* filer) {
  assertWriteEnabled();
  const Acad::ErrorStatus status = AcDbEntity::dwgInFields(filer);
  if (status != Acad::eOk) return status;
  ACHAR* path = nullptr;
  AcGePoint3d position;
  AcGeVector3d xAxis;
  AcGeVector3d yAxis;
  Frame frame;
  filer->readString(&path);
  filer->readPoint3d(&position);
  filer->readVector3d(&xAxis);
  filer->readVector3d(&yAxis);
  for (double* side : {&frame.minX, &frame.minY, &frame.maxX, &frame.maxY}) {
    filer->readDouble(side);
  }
  const std::string file = path != nullptr ? tarn::toUtf8(path) : std::string();
  acutDelString(path);
  if (filer->filerStatus() != Acad::eOk) return filer->filerStatus();
  if (file != path_) setPath(file);
  if (setPlacement(position, xAxis, yAxis) != Acad::eOk || setFrame(frame) != Acad::eOk) {
    return Acad::eInvalidInput;
  }
  return Acad::eOk;
}

Adesk::Boolean TarnPointCloud::subWorldDraw(AcGiWorldDraw* draw) {
  assertReadEnabled();
  load();
  if (!cloud_) {
    drawFrame(*draw);
    return Adesk::kTrue;
  }
  const auto placement = CloudPlacement::of(cloud_->header(), position_, xAxis_, yAxis_);
  tarn::host::CloudView view;
  if (currentCloudView(placement, view)) cloud_->prepare(view.box, view.spacing);
  draw->geometry().pointCloud(cloud_, placement.origin, placement.u, placement.v);
  return Adesk::kTrue;
}

/// A rectangle with the file's name and the reason, as large as fits.
void TarnPointCloud::drawFrame(AcGiWorldDraw& draw) const {
  const auto corner = corners();
  const AcGePoint3d outline[] = {corner[0], corner[1], corner[2], corner[3], corner[0]};
  draw.geometry().polyline(5, outline);
  const AcGeVector3d along = corner[1] - corner[0];
  const AcGeVector3d up = corner[3] - corner[0];
  const std::wstring lines[] = {tarn::toWide(tarn::nameOf(path_)), tarn::toWide(reason_)};
  const auto longest = static_cast<double>(std::max(lines[0].size(), lines[1].size()));
  constexpr double kWidthOfCharacter = 1.0;  // of its height, also for wide scripts and gaps
  const double height =
      std::min(along.length() * 0.9 / (longest * kWidthOfCharacter), up.length() * 0.2);
  if (!(height > 0)) return;
  const AcGeVector3d line = up.normal() * height;
  const AcGePoint3d middle = corner[0] + along * 0.05 + up * 0.5;
  draw.geometry().text(middle + line * 0.4, AcGeVector3d::kZAxis, along, height, 1, 0,
                       lines[0].c_str());
  draw.geometry().text(middle - line * 1.4, AcGeVector3d::kZAxis, along, height, 1, 0,
                       lines[1].c_str());
}

Acad::ErrorStatus TarnPointCloud::subGetGeomExtents(AcDbExtents& extents) const {
  assertReadEnabled();
  extents = AcDbExtents();
  for (const AcGePoint3d& corner : corners()) extents.addPoint(corner);
  return Acad::eOk;
}

Acad::ErrorStatus TarnPointCloud::subGetGripPoints(AcGePoint3dArray& gripPoints, AcDbIntArray&,
                                                   AcDbIntArray&) const {
  assertReadEnabled();
  for (const AcGePoint3d& corner : corners()) gripPoints.append(corner);
  return Acad::eOk;
}

Acad::ErrorStatus TarnPointCloud::subTransformBy(const AcGeMatrix3d& transform) {
  assertWriteEnabled();
  AcGePoint3d position = position_;
  AcGeVector3d xAxis = xAxis_;
  AcGeVector3d yAxis = yAxis_;
  return setPlacement(position.transformBy(transform), xAxis.transformBy(transform),
                      yAxis.transformBy(transform));
}
