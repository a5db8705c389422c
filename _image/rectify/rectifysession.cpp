#include "_image/rectify/rectifysession.h"

#include <utility>

#include "_image/adskdmgr.h"
#include "_image/cadimage.h"
#include "_image/docdata.h"
#include "_image/moduleglobals.h"
#include "_image/rectify/placementrecord.h"
#include "acdocman.h"
#include "acedads.h"
#include "base/file.h"
#include "base/text.h"
#include "commoncode/cadutil/documentlock.h"
#include "commoncode/cadutil/message.h"

namespace tarn::image {
namespace {

constexpr uint64_t kLargestPointFile = 1 << 20;

std::vector<double> listed(double x, double y) {
  return {x, y, 0.0};
}

std::vector<ControlPoint> pairsOf(const kel::PointList& sources, const kel::PointList& targets) {
  std::vector<ControlPoint> points;
  for (size_t i = 0; i < sources.size() && i < targets.size(); ++i) {
    if (sources[i].size() < 2 || targets[i].size() < 2) continue;
    points.push_back({sources[i][0], sources[i][1], targets[i][0], targets[i][1]});
  }
  return points;
}

}  // namespace

RectifySession::RectifySession(kel::Object<IRectifyDialog> component, AcApDocument* document,
                               std::wstring path)
    : component_(std::move(component)), document_(document), path_(std::move(path)) {
  CDocData* data = record();
  if (!data) return;
  stateBefore_ = accepted_ = storedPlacement(data->database(), path_);
  if (auto text = readFile(toUtf8(recordFilePath(path_)), kLargestPointFile)) {
    fileBefore_ = text.take();
  }
  const OpenedImage image(*data, AcDb::kForRead);
  IImageDivision* source = image ? image->sourceOf(path_) : nullptr;
  if (!source) return;
  source->retain();
  before_ = kel::Object<IImageDivision>::adopt(source);
}

RectifySession::~RectifySession() {
  if (std::exchange(isPreviewed_, false)) followFade();
}

CDocData* RectifySession::record() const {
  return g_dataMap ? g_dataMap->find(document_) : nullptr;
}

PointRecord RectifySession::earlierPoints() {
  kel::PointList sources, targets;
  if (component_->rectifyMethod() >= 0 && component_->transformQuery(sources, targets)) {
    return {component_->rectifyMethod(), pairsOf(sources, targets)};
  }
  // A state that this program cannot read: the file beside the image has the points at least.
  if (stateBefore_.empty() || component_->storedState() == stateBefore_ || !fileBefore_) return {};
  return recordOfFileText(*fileBefore_).value_or(PointRecord{});
}

void RectifySession::setPoints(const std::vector<ControlPoint>& points) {
  kel::PointList sources, targets;
  for (const ControlPoint& point : points) {
    sources.push_back(listed(point.sourceEast, point.sourceNorth));
    targets.push_back(listed(point.targetEast, point.targetNorth));
  }
  component_->setControlPoints(sources, targets);
}

std::vector<ControlPoint> RectifySession::handedPoints() {
  kel::PointList sources, targets;
  if (!component_->transformQuery(sources, targets)) return {};
  return pairsOf(sources, targets);
}

bool RectifySession::bind(const kel::Object<IImageDivision>& division) {
  CDocData* data = record();
  if (!data || division.isNull()) return false;
  const OpenedImage image(*data, AcDb::kForWrite);
  if (!image) return false;
  image->SetImageInfo(path_, division);
  return true;
}

void RectifySession::followFade() {
  CDocData* data = record();
  if (!data) return;
  const OpenedImage image(*data, AcDb::kForRead);
  if (!image) return;
  if (isPreviewed_) {
    image->startFade(path_, opacity_);
  } else {
    image->endFade();
  }
}

void RectifySession::fade(double opacity) {
  opacity_ = opacity;
  CDocData* data = record();
  if (!data || !isPreviewed_) return;
  {
    const OpenedImage image(*data, AcDb::kForRead);
    if (!image) return;
    image->changeFade(opacity);
  }
  regenerate();
}

void RectifySession::preview() {
  bind(kel::Object<IImageDivision>::adopt(component_->imageSource()));
  isPreviewed_ = true;
  followFade();
}

bool RectifySession::endPreview() {
  component_->setRectifyMethod(-1);
  if (!std::exchange(isPreviewed_, false)) return false;
  followFade();
  if (wasAccepted_) {
    bind(kel::Object<IImageDivision>::adopt(component_->imageSource()));
  } else {
    bind(before_);
  }
  return true;
}

bool RectifySession::store(const kel::List<double>& state) {
  CDocData* data = record();
  const cad::DocumentLock lock(document_);
  if (!data || !lock.isLocked()) {
    cad::printMessage(L"\nlockDocument fail");
    return false;
  }
  if (storePlacement(data->database(), path_, state)) return true;
  cad::printMessage(L"\n%1：影像位置无法保存到图形中！", path_);
  return false;
}

bool RectifySession::keepAccepted() {
  const kel::List<double> state = component_->storedState();
  if (state != accepted_ && !store(state)) {
    component_->restoreState(accepted_);
    isPreviewed_ = true;
    endPreview();
    return false;
  }
  accepted_ = state;
  wasAccepted_ = true;
  // From now on the component knows its points by where they are drawn.
  component_->prepare(0);
  bind(kel::Object<IImageDivision>::adopt(component_->imageSource()));
  isPreviewed_ = false;
  followFade();
  return true;
}

void RectifySession::cancel() {
  component_->setRectifyMethod(-1);
  if (wasAccepted_) {
    store(stateBefore_);
    restorePointFile();
  }
  if (wasAccepted_ || isPreviewed_) bind(before_);
  wasAccepted_ = false;
  isPreviewed_ = false;
  followFade();
}

void RectifySession::regenerate() {
  CDocData* data = record();
  if (!data) return;
  const AcDbObjectId id = data->residentImage();
  ads_name name{};
  if (id.isNull() || acdbGetAdsName(name, id) != Acad::eOk) return;
  acdbEntUpd(name);
}

std::string RectifySession::writePointFile(const PointRecord& record) {
  const Status written = writeFileAtomically(toUtf8(recordFilePath(path_)), recordFileText(record));
  // What could not be written stands there as it did, and cancelling leaves it alone.
  isFileWritten_ = isFileWritten_ || written;
  return written.message();
}

void RectifySession::restorePointFile() {
  if (!std::exchange(isFileWritten_, false)) return;
  const std::string file = toUtf8(recordFilePath(path_));
  const Status status = fileBefore_ ? writeFileAtomically(file, *fileBefore_) : removeAll(file);
  if (!status) cad::printMessage(L"\n%1", toWide(status.message()));
}

}  // namespace tarn::image
