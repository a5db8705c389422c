#include "components/rectify/rectification.h"

#include <cmath>
#include <utility>

#include "base/path.h"
#include "base/text.h"
#include "components/raster/warpexport.h"
#include "components/rectify/drawnmapping.h"
#include "components/rectify/rectifiedsource.h"
#include "inc/callbackrectifyoperator.h"
#include "inc/iimagedivision.h"
#include "inc/irectifydialogmaker.h"

namespace tarn::rectify {

using raster::RasterImage;

namespace {

std::optional<raster::ExportFormat> formatOf(const std::string& name) {
  if (equalsIgnoreCase(name, "tif") || equalsIgnoreCase(name, "tiff"))
    return raster::ExportFormat::kTiff;
  if (equalsIgnoreCase(name, "img")) return raster::ExportFormat::kImagine;
  return std::nullopt;
}

}  // namespace

bool Rectification::hasImage() {
  return image_ != nullptr;
}

kel::DString Rectification::imagePath() {
  return path_;
}

void Rectification::prepare(int) {
  session_.begin();
  stateChanged();
}

bool Rectification::load(const std::string& path) {
  auto opened = RasterImage::open(path, {{folderOf(path), user_.cacheFolder()}, true});
  if (!opened) {
    user_.message(opened.message());
    return false;
  }
  image_ = opened.take();
  path_ = path;
  return true;
}

bool Rectification::openImage(const kel::DString& path, CallBackRectifyOperator* callback) {
  if (!load(path.str())) return false;
  session_ = Session(image_->geoTransform(), image_->width(), image_->height());
  takeOver(callback);
  session_.begin();
  stateChanged();
  return true;
}

void Rectification::takeOver(CallBackRectifyOperator* callback) {
  auto* source = callback ? static_cast<IImageDivision*>(callback->imageAnalyser()) : nullptr;
  void* found = nullptr;
  if (!source || !source->queryInterface(IRectifyDialog::interfaceId(), &found)) return;
  const auto earlier = kel::Object<IRectifyDialog>::adopt(static_cast<IRectifyDialog*>(found));
  if (earlier.get() != this && earlier->imagePath() == kel::DString(path_))
    session_.restore(earlier->storedState());
}

bool Rectification::reopen() {
  if (path_.empty() || !load(path_)) return false;
  stateChanged();
  return true;
}

void Rectification::setModal(int modal) {
  isModal_ = modal == 1;
}

void Rectification::show() {
  // Asked without the handle's assertion: a program without windows has none.
  void* made = nullptr;
  kel::createObject("N", IRectifyDialogMaker::interfaceId(), &made);
  const auto maker =
      kel::Object<IRectifyDialogMaker>::adopt(static_cast<IRectifyDialogMaker*>(made));
  if (maker.isNull()) {
    user_.message("The rectification dialog cannot be shown here.");
  } else {
    maker->showDialog(this, isModal_);
  }
}

int Rectification::imageQueryA() {
  return image_ ? image_->width() : 0;
}

int Rectification::imageQueryB() {
  return image_ ? image_->height() : 0;
}

kel::RectifyPlacement* Rectification::imageQueryC() {
  return &record_;
}

void Rectification::setRectifyMethod(int method) {
  session_.setMethod(method);
  if (method < 0) stateChanged();
}

void Rectification::setControlPoints(const kel::PointList& sources, const kel::PointList& targets) {
  session_.setControlPoints(sources, targets);
  stateChanged();
}

void Rectification::computeTransform() {}

int Rectification::minimumPointCount(int method) {
  return session_.minimumPointCount(method);
}

kel::PointList Rectification::getResiduals() {
  kel::PointList list;
  for (const Residual& r : session_.assessment().residuals)
    list.push_back({r.dx, r.dy, r.length()});
  return list;
}

void Rectification::getImageGeometry(int& width, int& height, double& left, double& top,
                                     double& scaleX, double& scaleY) {
  const auto picture = this->picture();
  const raster::WarpedImage* drawn = picture ? picture->drawn.get() : nullptr;
  const raster::GeoTransform none{0, 0, 0, 0, 0, 0};
  const raster::GeoTransform& t = drawn ? drawn->geoTransform() : none;
  width = drawn ? drawn->width() : 0;
  height = drawn ? drawn->height() : 0;
  left = t.x0;
  top = t.y0;
  scaleX = t.a;
  scaleY = t.e;
}

bool Rectification::transformQuery(kel::PointList& sources, kel::PointList& targets) {
  return session_.points(sources, targets);
}

bool Rectification::exportPrepare(const kel::DString& path, const kel::DString& format) {
  std::string fault;
  const auto picture = this->picture();
  if (!formatOf(format.str())) {
    fault = path.str() + ": is written as TIFF (.tif, .tiff) or IMG (.img) only";
  } else if (!picture || !picture->drawn) {
    fault = path.str() + ": there is no image to be exported";
  } else if (const Status fit = raster::checkExportTarget(*image_, path.str()); !fit) {
    fault = fit.message();
  }
  if (!fault.empty()) user_.message(fault);
  return fault.empty();
}

bool Rectification::exportImage(const kel::DString& path, const kel::DString& format) {
  if (!exportPrepare(path, format)) return false;
  const auto picture = this->picture();
  raster::ExportRequest request;
  request.target = path.str();
  request.format = *formatOf(format.str());
  request.resampling = exportResampling_ == 0 ? raster::ExportResampling::kNearest
                                              : raster::ExportResampling::kBilinear;
  const raster::WarpedImage& drawn = *picture->drawn;
  const Frame frame{drawn.geoTransform(), drawn.width(), drawn.height()};
  request.grid = {frame.transform, frame.width, frame.height,
                  std::make_shared<DrawnMapping>(session_.drawn(), frame)};
  interaction::ProgressScope progress("导出 " + nameOf(path.str()), 0, 100);
  const Status done = raster::exportWarped(*image_, request, [&](double part) {
    progress.move(part);
    return !user_.cancelWanted();
  });
  if (!done) user_.message(done.message());
  return done.isOk();
}

int Rectification::rectifyStatus() {
  return session_.assessment().quality.status;
}

void Rectification::applyPlacement() {
  if (!session_.setPlacement(record_))
    user_.message(nameOf(path_) + ": cannot be placed like that: it would have no area");
  stateChanged();
}

IImageDivision* Rectification::imageSource() {
  return makeRectifiedSource(*this);
}

int Rectification::rectifyMethod() {
  return session_.method();
}

void Rectification::acceptTransform() {
  session_.accept();
  stateChanged();
}

kel::RectifyQuality Rectification::quality() {
  return session_.assessment().quality;
}

bool Rectification::transformPoint(double x, double y, double& outX, double& outY) {
  const auto p = session_.transformed({x, y});
  if (!p) return false;
  outX = p->x;
  outY = p->y;
  return std::isfinite(outX) && std::isfinite(outY);
}

bool Rectification::drawingOfPixel(double column, double row, double& x, double& y) {
  if (!image_ || !std::isfinite(column) || !std::isfinite(row)) return false;
  const PlanePoint p = session_.drawn().at({column, row});
  x = p.x;
  y = p.y;
  return std::isfinite(x) && std::isfinite(y);
}

bool Rectification::pixelOfDrawing(double x, double y, double& column, double& row) {
  const auto p = image_ ? session_.drawn().pixelOf({x, y}) : std::nullopt;
  if (!p) return false;
  column = p->x;
  row = p->y;
  return true;
}

kel::List<double> Rectification::storedState() {
  return image_ ? session_.stored() : kel::List<double>();
}

bool Rectification::restoreState(const kel::List<double>& numbers) {
  if (!image_ || !session_.restore(numbers)) return false;
  stateChanged();
  return true;
}

void Rectification::setExportResampling(int mode) {
  exportResampling_ = mode == 0 ? 0 : 1;
}

bool Rectification::sourceOfFit(double x, double y, double& outX, double& outY) {
  const auto p = session_.sourceOfFit({x, y});
  if (!p) return false;
  outX = p->x;
  outY = p->y;
  return true;
}

std::shared_ptr<const Picture> Rectification::picture() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return picture_;
}

void Rectification::stateChanged() {
  record_ = session_.placement();
  if (!image_) return;
  auto picture = makePicture(image_, session_.drawn());
  if (picture->drawn) {
    const raster::GeoTransform& t = picture->drawn->geoTransform();
    const double numbers[6] = {t.a, 0, 0, t.e, t.x0, t.y0};
    std::copy(numbers, numbers + 6, numbers_);
  }
  const std::lock_guard<std::mutex> lock(mutex_);
  picture_ = std::move(picture);
}

}  // namespace tarn::rectify

extern "C" KEL_PLUGIN_API void kelRegisterPlugin() {
  tarn::rectify::Rectification::registerSelf();
}
