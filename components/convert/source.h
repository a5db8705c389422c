// An image that is being converted: its pixels, and all that is said about it.
#pragma once

#include <gdal_priv.h>
#include <ogr_spatialref.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/result.h"
#include "components/raster/gdalaccess.h"
#include "components/raster/georeference.h"
#include "components/raster/pyramidstamp.h"
#include "components/raster/rasterimage.h"

namespace tarn::convert {

class Source {
 public:
  /// `shownBands` as in raster::OpenOptions. The reason of a failure names the file.
  static Result<std::unique_ptr<Source>> open(const std::string& path,
                                              const std::vector<int>& shownBands);

  const std::string& path() const { return image_->path(); }
  const raster::RasterImage& image() const { return *image_; }
  /// For one thread.
  GDALDataset& dataset() const { return *dataset_; }
  /// Where the image lies, by what counts for the program (.aux.xml, world file, the image): a
  /// transform or control points, with the coordinate system of the same source, of the image or of
  /// a .prj file beside it.
  const std::optional<raster::GeoTransform>& transform() const { return transform_; }
  const std::vector<raster::ControlPoint>& points() const { return points_; }
  /// Null when there is none.
  const OGRSpatialReference* system() const { return system_.IsEmpty() ? nullptr : &system_; }
  /// The file as it was when it was opened.
  const raster::ImageStamp& stamp() const { return stamp_; }

 private:
  void findPlace();

  std::shared_ptr<raster::RasterImage> image_;
  raster::DatasetPtr dataset_;
  std::optional<raster::GeoTransform> transform_;
  std::vector<raster::ControlPoint> points_;
  OGRSpatialReference system_;
  raster::ImageStamp stamp_;
};

}  // namespace tarn::convert
