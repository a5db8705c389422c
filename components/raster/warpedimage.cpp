#include "components/raster/warpedimage.h"

#include <cmath>
#include <cstring>
#include <utility>

#include "components/raster/presentedlevels.h"
#include "components/raster/tilecache.h"

namespace tarn::raster {
namespace {

/// Through the presentation of the image itself.
class OwnPixels final : public CurvedMapping {
 public:
  OwnPixels(std::shared_ptr<const CurvedMapping> presented, const OwnPlace& own)
      : presented_(std::move(presented)), own_(own) {
    const PlanePoint middle{own.placement.width / 2.0, own.placement.height / 2.0};
    const PlanePoint p = own_.pixelOf(middle);
    const PlanePoint right = own_.pixelOf({middle.x + 1, middle.y});
    const PlanePoint down = own_.pixelOf({middle.x, middle.y + 1});
    const double area = (right.x - p.x) * (down.y - p.y) - (right.y - p.y) * (down.x - p.x);
    orientation_ = presented_->orientation() * (area < 0 ? -1 : 1);
  }

  std::optional<PlanePoint> at(double x, double y) const override {
    const auto p = presented_->at(x, y);
    return p ? std::optional<PlanePoint>(own_.pixelOf(*p)) : std::nullopt;
  }
  bool mayShow(PlanePoint low, PlanePoint high) const override {
    return presented_->mayShow(low, high);
  }
  double orientation() const override { return orientation_; }

 private:
  std::shared_ptr<const CurvedMapping> presented_;
  OwnPlace own_;
  double orientation_ = 1;
};

}  // namespace

std::shared_ptr<const CurvedMapping> toOwnPixels(const RasterImage& image,
                                                 std::shared_ptr<const CurvedMapping> mapping) {
  if (image.isAsStored()) return mapping;
  return std::make_shared<OwnPixels>(std::move(mapping), image.ownPlace());
}

WarpedImage::WarpedImage(std::shared_ptr<const RasterImage> image, Placement placement)
    : image_(std::move(image)), placement_(std::move(placement)), id_(TileCache::newImage()) {}

WarpedImage::~WarpedImage() {
  TileCache::shared().removeImage(id_);
}

std::shared_ptr<const WarpedImage> WarpedImage::place(
    const std::shared_ptr<const RasterImage>& image, const GeoTransform& ground) {
  const OwnPlace own = image->ownPlace();
  if (own.placement.resampling && !own.placement.resampling->isAffine()) return nullptr;
  // Own pixels to presented ones, back from where three presented points come from.
  const PlanePoint o = own.pixelOf({0, 0}), x = own.pixelOf({1, 0}), y = own.pixelOf({0, 1});
  const GeoTransform back{o.x, x.x - o.x, y.x - o.x, o.y, x.y - o.y, y.y - o.y};
  const double det = back.a * back.e - back.b * back.d;
  if (det == 0) return nullptr;
  const double ia = back.e / det, ib = -back.b / det, id = -back.d / det, ie = back.a / det;
  const double px = -(ia * o.x + ib * o.y), py = -(id * o.x + ie * o.y);
  const GeoTransform placed{ground.x0 + ground.a * px + ground.b * py,
                            ground.a * ia + ground.b * id,
                            ground.a * ib + ground.b * ie,
                            ground.y0 + ground.d * px + ground.e * py,
                            ground.d * ia + ground.e * id,
                            ground.d * ib + ground.e * ie};
  auto placement = placeByTransform(placed, own.width, own.height);
  if (!placement) return nullptr;
  std::shared_ptr<WarpedImage> warped(new WarpedImage(image, std::move(*placement)));
  if (!warped->placement_.isAsStored())
    warped->levels_ = presentLevels(image->ownLevels(), image->ownTiles(), warped->placement_,
                                    own.width, own.height);
  return warped;
}

std::shared_ptr<const WarpedImage> WarpedImage::warp(
    const std::shared_ptr<const RasterImage>& image, const WarpGrid& grid) {
  const OwnPlace own = image->ownPlace();
  Placement placement;
  placement.transform = grid.transform;
  placement.width = grid.width;
  placement.height = grid.height;
  std::shared_ptr<WarpedImage> warped(new WarpedImage(image, std::move(placement)));
  warped->levels_ =
      warpLevels(image->ownLevels(), image->ownTiles(), toOwnPixels(*image, grid.mapping),
                 {grid.width, grid.height, own.width, own.height, 1}, grid.pixelLength);
  return warped;
}

Status WarpedImage::read(const Window& window, bool smooth, uint8_t* out,
                         ReadCounts& counts) const {
  if (Status unchanged = image_->checkUnchanged(); !unchanged) {
    if (out && window.columns > 0 && window.rows > 0)
      std::memset(out, 0, static_cast<size_t>(window.columns) * window.rows * 3);
    return unchanged;
  }
  // An image that only lies elsewhere is read as it is, and shares its tiles.
  const bool own = levels_.empty();
  return readWindow({own ? image_->ownLevels() : levels_, own ? image_->ownTiles() : id_, width(),
                     height(), image_->presentation().thinLines},
                    image_->path(), window, smooth, out, counts);
}

}  // namespace tarn::raster
