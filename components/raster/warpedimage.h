// An open image drawn in another place: the same pixels through a transformation, north up again.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "components/raster/curvedmapping.h"
#include "components/raster/rasterimage.h"

namespace tarn::raster {

/// A grid on the ground, and where its pixels lie in the presented image.
struct WarpGrid {
  GeoTransform transform;
  int width = 0;
  int height = 0;
  std::shared_ptr<const CurvedMapping> mapping;
  /// About how many image pixels a pixel of the grid is long.
  double pixelLength = 1;
};

/// The mapping, which leads to presented pixels of the image, on to its own.
std::shared_ptr<const CurvedMapping> toOwnPixels(const RasterImage& image,
                                                 std::shared_ptr<const CurvedMapping> mapping);

class WarpedImage {
 public:
  /// Presented pixels of the image lie on the ground as the transform says. Null when the image's
  /// own presentation is no affine one, or the transform distorts it beyond measure.
  static std::shared_ptr<const WarpedImage> place(const std::shared_ptr<const RasterImage>& image,
                                                  const GeoTransform& ground);
  static std::shared_ptr<const WarpedImage> warp(const std::shared_ptr<const RasterImage>& image,
                                                 const WarpGrid& grid);
  ~WarpedImage();
  WarpedImage(const WarpedImage&) = delete;
  WarpedImage& operator=(const WarpedImage&) = delete;

  int width() const { return placement_.width; }
  int height() const { return placement_.height; }
  const GeoTransform& geoTransform() const { return placement_.transform; }

  /// As of RasterImage.
  Status read(const Window& window, bool smooth, uint8_t* out, ReadCounts& counts) const;
  void stretch(StretchMode mode, uint8_t* cells, size_t pixels) const {
    image_->stretch(mode, cells, pixels);
  }

 private:
  WarpedImage(std::shared_ptr<const RasterImage> image, Placement placement);

  std::shared_ptr<const RasterImage> image_;
  Placement placement_;
  uint64_t id_;
  std::vector<Level> levels_;
};

}  // namespace tarn::raster
