// What an image file is, as plain values.
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

enum class BandColour {
  kUnknown,
  kGray,
  kRed,
  kGreen,
  kBlue,
  kAlpha,
  kCyan,
  kMagenta,
  kYellow,
  kBlack,
  kOther
};

/// Red, green, blue, alpha.
using PaletteColour = std::array<uint8_t, 4>;

struct BandFacts {
  /// GDAL's name of the sample type, "Byte" for unsigned 8 bits.
  std::string type;
  /// Bits in use; 8 for plain bytes.
  int bits = 8;
  BandColour colour = BandColour::kUnknown;
  /// Empty for none.
  std::vector<PaletteColour> palette;
  /// A mask of its own or of the whole image, not one that follows from alpha or nodata.
  bool hasMask = false;
  std::optional<double> nodata;
};

struct ImageFacts {
  std::string driver;
  int width = 0;
  int height = 0;
  std::vector<BandFacts> bands;
  /// Numbers of the bands to show as gray or as red, green and blue; empty for what the bands say.
  std::vector<int> wantedBands;
  /// GDAL's name of the compression; empty for none.
  std::string compression;
  /// Colours of the file when GDAL converts them ("CMYK"); empty else.
  std::string colourSpace;
  /// Samples count from white down.
  bool minIsWhite = false;
  /// The file says that colours are multiplied by alpha. Not known to GDAL.
  bool alphaMultiplied = false;
  std::vector<ControlPoint> innerControlPoints;
  std::optional<GeoTransform> innerGeoTransform;
  /// EPSG number, 0 for a coordinate system without one, -1 for none.
  int coordinateSystem = -1;
  /// The image (or its .aux.xml) names another file as its overviews.
  bool namesOverviewFile = false;
};

/// Reads the facts of an open dataset; I/O, but no decision.
ImageFacts describe(GDALDataset& dataset);
/// Asks for the bands with these numbers (from 1); empty leaves it to the image. Fails (a sentence
/// without the file) when there is no such band or they are neither one nor three.
Status wantBands(const std::vector<int>& bands, ImageFacts& facts);
std::vector<ControlPoint> controlPointsOf(GDALDataset& dataset);

}  // namespace tarn::raster
