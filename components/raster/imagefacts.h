// What an image file is, as plain values, and how it is presented: decided from the values alone.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/result.h"
#include "components/raster/georeference.h"

class GDALDataset;

namespace tarn::raster {

enum class BandColour { kUnknown, kGray, kRed, kGreen, kBlue, kAlpha, kPalette, kOther };

struct BandFacts {
  /// Name of the sample type, "Byte" for unsigned 8 bits.
  std::string type;
  /// Bits in use; 8 for plain bytes.
  int bits = 8;
  BandColour colour = BandColour::kUnknown;
  bool hasPalette = false;
  bool hasMask = false;
  std::optional<double> nodata;
};

struct ImageFacts {
  std::string driver;
  int width = 0;
  int height = 0;
  std::vector<BandFacts> bands;
  /// GDAL's name of the compression; empty for none.
  std::string compression;
  std::string colourSpace;
  int controlPoints = 0;
  std::optional<GeoTransform> innerGeoTransform;
  /// EPSG number, 0 for a coordinate system without one, -1 for none.
  int coordinateSystem = -1;
  /// The image (or its .aux.xml) names another file as its overviews.
  bool namesOverviewFile = false;
};

/// How an image becomes gray or RGB of 8 bits.
struct Presentation {
  int channels = 3;
  std::array<int, 3> bands{1, 2, 3};
  /// Its pyramid's tiles are JPEG too.
  bool lossy = false;
};

/// Reads the facts of an open dataset; I/O, but no decision.
ImageFacts describe(GDALDataset& dataset);

/// The presentation, or the reason why the image cannot be shown (a sentence without the file).
Result<Presentation> decidePresentation(const ImageFacts& facts);

}  // namespace tarn::raster
