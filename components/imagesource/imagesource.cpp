// IImageDivision over components/raster.
#include <algorithm>
#include <atomic>
#include <memory>
#include <optional>
#include <string>

#include "base/path.h"
#include "components/interaction/interaction.h"
#include "components/raster/rasterimage.h"
#include "inc/iimagedivision.h"
#include "inc/kplugin.h"

namespace tarn::imagesource {
namespace {

using interaction::Interaction;
using interaction::ProgressScope;
using raster::RasterImage;
using raster::ReadCounts;
using raster::Window;

class ImageSource final : public kel::Implements<ImageSource, IImageDivision> {
 public:
  static constexpr const char* kName = "imagesource";

  bool init(const char* imagePath, const char* pyramidFolder, bool) override {
    close();
    const std::string path = imagePath ? imagePath : "";
    folder_ = pyramidFolder ? pyramidFolder : "";
    if (path.empty() || folder_.empty()) {
      user_.message(path.empty() ? "No image is named."
                                 : path + ": no folder is named for its pyramid");
      return false;
    }
    // Pictures that are never given a pyramid may be of more kinds.
    auto opened = RasterImage::open(path, {places(folder_), !noPyramid_, {}, noPyramid_});
    if (!opened) {
      user_.message(opened.message());
      return false;
    }
    image_ = opened.take();
    const raster::GeoTransform& t = image_->geoTransform();
    const double numbers[6] = {t.a, 0, 0, t.e, t.x0, t.y0};
    std::copy(numbers, numbers + 6, geoTransform_);
    // An image is opened again once its pyramid is there; what was said then is not said twice.
    // Of a picture nobody wants to know more than how it looks.
    if (path != notedPath_ && !noPyramid_) {
      std::string all;
      for (const std::string& note : image_->notes()) all += (all.empty() ? "" : "; ") + note;
      if (!all.empty()) user_.message(nameOf(path) + ": " + all);
      notedPath_ = path;
    }
    return true;
  }

  bool buildPyramid(const char* pyramidFolder, int, int, double, double, int firstPosition,
                    int lastPosition) override {
    if (!image_) return false;
    const std::string name = nameOf(image_->path());
    ProgressScope progress(interaction::pyramidLabel(name), firstPosition, lastPosition);
    std::string note;
    const Status built = image_->buildPyramid(
        places(pyramidFolder ? pyramidFolder : ""),
        [&](double part) {
          progress.move(part);
          return !user_.cancelWanted();
        },
        note);
    if (!built) {
      user_.message(built.message());
    } else if (!note.empty()) {
      user_.message(name + ": " + note);
    }
    return built.isOk();
  }

  bool readRegion(int x, int y, int width, int height, double reductionX, double reductionY,
                  unsigned char* out) override {
    return readCounted(
        {static_cast<double>(x), static_cast<double>(y), reductionX, reductionY, width, height},
        out);
  }

  bool readRegionOverview(double x, double y, int width, int height, double reduction,
                          unsigned char* out) override {
    return readCounted({x, y, reduction, reduction, width, height}, out);
  }

  bool hasPyramid(const char* pyramidFolder) override {
    return image_ && image_->hasPyramid(places(pyramidFolder ? pyramidFolder : ""));
  }

  void close() override {
    image_.reset();
    announced_.reset();
    reportedFailure_.clear();
  }

  int width() override { return image_ ? image_->width() : 0; }
  int height() override { return image_ ? image_->height() : 0; }
  void setOutputMode(int) override {}
  double* geoTransform() override { return geoTransform_; }

  void getGeoInfo(int& width, int& height, double& x0, double& y0, double& a, double& e) override {
    width = this->width();
    height = this->height();
    a = geoTransform_[0];
    e = geoTransform_[3];
    x0 = geoTransform_[4];
    y0 = geoTransform_[5];
  }

  void setNoPyramid(bool noPyramid) override {
    if (noPyramid == noPyramid_) return;
    noPyramid_ = noPyramid;
    // An open image drops or takes its pyramid at once; should that fail it stays as it was opened.
    if (!image_) return;
    auto opened = RasterImage::open(image_->path(), {places(folder_), !noPyramid_});
    if (opened) image_ = opened.take();
  }

  void coordinateSystem(int& code) override { code = image_ ? image_->coordinateSystem() : -1; }

  bool readBlock(int column, int row, int width, int height, double resolutionX, double resolutionY,
                 unsigned char** destination) override {
    if (!image_ || !destination) return false;
    ReadCounts counts;
    return readCells({static_cast<double>(column), static_cast<double>(row), resolutionX,
                      resolutionY, width, height},
                     *destination, counts)
        .isOk();
  }

  void setAntiAliasing(bool on) override { antiAliasing_ = on; }
  void setStretchMode(int mode) override {
    const bool known = mode == 1 || mode == 2;
    stretch_ = known ? static_cast<raster::StretchMode>(mode) : raster::StretchMode::kNone;
  }

  int bandCount() override { return image_ ? image_->bandCount() : 0; }
  kel::StringList notes() override {
    kel::StringList all;
    if (image_) all.assign(image_->notes().begin(), image_->notes().end());
    return all;
  }

  void announceWindow(double x, double y, double cellX, double cellY) override {
    announced_ = Window{x, y, cellX, cellY, 0, 0};
  }

 private:
  raster::PyramidPlaces places(const std::string& folder) const {
    return {folder, user_.cacheFolder()};
  }

  Status readCells(const Window& window, unsigned char* out, ReadCounts& counts) const {
    Status done = image_->read(window, antiAliasing_, out, counts);
    if (done) image_->stretch(stretch_, out, static_cast<size_t>(window.columns) * window.rows);
    return done;
  }

  bool readCounted(Window window, unsigned char* out) {
    if (announced_) {
      announced_->columns = window.columns;
      announced_->rows = window.rows;
      window = *announced_;
      announced_.reset();
    }
    if (!image_) return false;
    ReadCounts counts;
    const Status done = readCells(window, out, counts);
    user_.count(counts);
    // A broken image would say so at every redraw: once is enough until a read succeeds again.
    if (!done && done.message() != reportedFailure_) user_.message(done.message());
    reportedFailure_ = done.message();
    return done.isOk();
  }

  Interaction user_;
  std::shared_ptr<RasterImage> image_;
  std::string folder_;
  std::string notedPath_;
  std::string reportedFailure_;
  std::optional<Window> announced_;
  double geoTransform_[6] = {1, 0, 0, -1, 0, 0};
  bool noPyramid_ = false;
  std::atomic<bool> antiAliasing_{false};
  std::atomic<raster::StretchMode> stretch_{raster::StretchMode::kNone};
};

}  // namespace
}  // namespace tarn::imagesource

extern "C" KEL_PLUGIN_API void kelRegisterPlugin() {
  tarn::imagesource::ImageSource::registerSelf();
}
