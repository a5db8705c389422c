#include "components/rectify/rectifiedsource.h"

#include <atomic>
#include <optional>
#include <string>
#include <utility>

#include "base/path.h"
#include "components/rectify/rectification.h"
#include "inc/iimagedivision.h"

namespace tarn::rectify {
namespace {

using interaction::ProgressScope;
using raster::ReadCounts;
using raster::WarpedImage;
using raster::Window;

class RectifiedSource final : public kel::Implements<RectifiedSource, IImageDivision> {
 public:
  static constexpr const char* kName = "rectifiedsource";

  explicit RectifiedSource(Rectification& owner) : owner_(owner) { owner_.retain(); }
  ~RectifiedSource() { owner_.release(); }

  bool queryInterface(uint32_t id, void** out) override {
    return Implements::queryInterface(id, out) || owner_.queryInterface(id, out);
  }

  bool init(const char* imagePath, const char*, bool) override {
    if (!imagePath || owner_.imagePath() != kel::DString(imagePath)) {
      owner_.user().message(std::string(imagePath ? imagePath : "") +
                            ": is not the image of this rectification");
      return false;
    }
    isClosed_ = false;
    return picture() != nullptr;
  }

  bool buildPyramid(const char* pyramidFolder, int, int, double, double, int firstPosition,
                    int lastPosition) override {
    const auto picture = this->picture();
    if (!picture) return false;
    const auto& user = owner_.user();
    const std::string name = nameOf(picture->image->path());
    ProgressScope progress(interaction::pyramidLabel(name), firstPosition, lastPosition);
    std::string note;
    const Status built = picture->image->buildPyramid(
        placesIn(pyramidFolder),
        [&](double part) {
          progress.move(part);
          return !user.cancelWanted();
        },
        note);
    if (!built || !note.empty()) user.message(built ? name + ": " + note : built.message());
    return built.isOk() && owner_.reopen();
  }

  bool readRegion(int x, int y, int width, int height, double reductionX, double reductionY,
                  unsigned char* out) override {
    return readAnnounced(
        {static_cast<double>(x), static_cast<double>(y), reductionX, reductionY, width, height},
        out);
  }

  bool readRegionOverview(double x, double y, int width, int height, double reduction,
                          unsigned char* out) override {
    return readAnnounced({x, y, reduction, reduction, width, height}, out);
  }

  bool hasPyramid(const char* pyramidFolder) override {
    const auto picture = this->picture();
    return picture && picture->image->hasPyramid(placesIn(pyramidFolder));
  }

  void close() override { isClosed_ = true; }

  int width() override {
    const auto shown = drawn();
    return shown ? shown->width() : 0;
  }
  int height() override {
    const auto shown = drawn();
    return shown ? shown->height() : 0;
  }
  void setOutputMode(int) override {}
  double* geoTransform() override { return owner_.geoTransform(); }

  void getGeoInfo(int& width, int& height, double& x0, double& y0, double& a, double& e) override {
    width = this->width();
    height = this->height();
    const double* numbers = geoTransform();
    a = numbers[0];
    e = numbers[3];
    x0 = numbers[4];
    y0 = numbers[5];
  }

  // The pyramid is part of the image that is transformed; it stays in use.
  void setNoPyramid(bool) override {}

  void coordinateSystem(int& code) override {
    const auto picture = this->picture();
    code = picture ? picture->image->coordinateSystem() : -1;
  }

  bool readBlock(int column, int row, int width, int height, double resolutionX, double resolutionY,
                 unsigned char** destination) override {
    const auto shown = drawn();
    if (!shown || !destination || !*destination) return false;
    ReadCounts counts;
    return readCells(*shown,
                     {static_cast<double>(column), static_cast<double>(row), resolutionX,
                      resolutionY, width, height},
                     *destination, counts)
        .isOk();
  }

  void setAntiAliasing(bool on) override { antiAliasing_ = on; }
  void setStretchMode(int mode) override {
    const bool known = mode == 1 || mode == 2;
    stretch_ = known ? static_cast<raster::StretchMode>(mode) : raster::StretchMode::kNone;
  }

  void announceWindow(double x, double y, double cellX, double cellY) override {
    announced_ = Window{x, y, cellX, cellY, 0, 0};
  }

 private:
  std::shared_ptr<const Picture> picture() const { return isClosed_ ? nullptr : owner_.picture(); }
  std::shared_ptr<const WarpedImage> drawn() const {
    const auto picture = this->picture();
    return picture ? picture->drawn : nullptr;
  }
  raster::PyramidPlaces placesIn(const char* folder) const {
    return {folder ? folder : "", owner_.user().cacheFolder()};
  }

  Status readCells(const WarpedImage& image, const Window& window, unsigned char* out,
                   ReadCounts& counts) const {
    Status done = image.read(window, antiAliasing_, out, counts);
    if (done) image.stretch(stretch_, out, static_cast<size_t>(window.columns) * window.rows);
    return done;
  }

  bool readAnnounced(Window window, unsigned char* out) {
    if (const auto announced = std::exchange(announced_, std::nullopt)) {
      window.x = announced->x;
      window.y = announced->y;
      window.cellX = announced->cellX;
      window.cellY = announced->cellY;
    }
    const auto shown = drawn();
    if (!shown) return false;
    ReadCounts counts;
    const Status done = readCells(*shown, window, out, counts);
    owner_.user().count(counts);
    // Said once until a read succeeds again, not at every redraw.
    if (!done && done.message() != reportedFailure_) owner_.user().message(done.message());
    reportedFailure_ = done.message();
    return done.isOk();
  }

  Rectification& owner_;
  std::atomic<bool> isClosed_{false};
  std::string reportedFailure_;
  std::optional<Window> announced_;
  std::atomic<bool> antiAliasing_{false};
  std::atomic<raster::StretchMode> stretch_{raster::StretchMode::kNone};
};

}  // namespace

IImageDivision* makeRectifiedSource(Rectification& rectification) {
  return new RectifiedSource(rectification);
}

}  // namespace tarn::rectify
