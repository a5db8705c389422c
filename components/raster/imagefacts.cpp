#include "components/raster/imagefacts.h"

#include <gdal_priv.h>
#include <ogr_spatialref.h>

#include <cmath>

#include "base/text.h"

namespace tarn::raster {
namespace {

BandColour colourOf(GDALColorInterp interpretation) {
  switch (interpretation) {
    case GCI_Undefined:
      return BandColour::kUnknown;
    case GCI_GrayIndex:
      return BandColour::kGray;
    case GCI_RedBand:
      return BandColour::kRed;
    case GCI_GreenBand:
      return BandColour::kGreen;
    case GCI_BlueBand:
      return BandColour::kBlue;
    case GCI_AlphaBand:
      return BandColour::kAlpha;
    case GCI_PaletteIndex:
      return BandColour::kPalette;
    default:
      return BandColour::kOther;
  }
}

BandFacts describeBand(GDALRasterBand& band) {
  BandFacts facts;
  facts.type = GDALGetDataTypeName(band.GetRasterDataType());
  facts.bits = GDALGetDataTypeSizeBits(band.GetRasterDataType());
  if (const char* bits = band.GetMetadataItem("NBITS", "IMAGE_STRUCTURE"))
    parseInt(bits, facts.bits);
  if (const char* kind = band.GetMetadataItem("PIXELTYPE", "IMAGE_STRUCTURE"))
    if (equalsIgnoreCase(kind, "SIGNEDBYTE")) facts.type = "signed Byte";
  facts.colour = colourOf(band.GetColorInterpretation());
  facts.hasPalette = band.GetColorTable() != nullptr;
  int hasNodata = 0;
  const double nodata = band.GetNoDataValue(&hasNodata);
  if (hasNodata) facts.nodata = nodata;
  const int flags = band.GetMaskFlags();
  facts.hasMask = (flags & (GMF_ALL_VALID | GMF_NODATA)) == 0;
  return facts;
}

int systemOf(const OGRSpatialReference* system) {
  if (!system || system->IsEmpty()) return -1;
  const char* authority = system->GetAuthorityName(nullptr);
  const char* code = system->GetAuthorityCode(nullptr);
  int number = 0;
  if (authority && code && equalsIgnoreCase(authority, "EPSG") && parseInt(code, number))
    return number;
  return 0;
}

/// Nodata that pixels of 8 bits either cannot have or that is black anyway.
bool isHarmless(double nodata) {
  return std::isnan(nodata) || nodata == 0 || nodata < 0 || nodata > 255 ||
         nodata != std::floor(nodata);
}

Status checkBand(const BandFacts& band) {
  if (band.type != "Byte")
    return Status::error("has samples of type " + band.type + "; 8 bits a sample can be shown");
  if (band.bits != 8)
    return Status::error("has " + std::to_string(band.bits) + " bits a sample; 8 can be shown");
  if (band.hasPalette || band.colour == BandColour::kPalette)
    return Status::error("has a colour palette; gray and RGB images can be shown");
  if (band.hasMask) return Status::error("has a mask; images without one can be shown");
  if (band.nodata && !isHarmless(*band.nodata))
    return Status::error("has the nodata value " + formatDouble(*band.nodata) +
                         "; only black can mean that there is nothing");
  return Status::ok();
}

}  // namespace

ImageFacts describe(GDALDataset& dataset) {
  ImageFacts facts;
  facts.driver = dataset.GetDriverName();
  facts.width = dataset.GetRasterXSize();
  facts.height = dataset.GetRasterYSize();
  facts.namesOverviewFile = dataset.GetMetadataItem("OVERVIEW_FILE", "OVERVIEWS") != nullptr;
  for (int i = 1; i <= dataset.GetRasterCount(); ++i) {
    facts.bands.push_back(describeBand(*dataset.GetRasterBand(i)));
  }
  const char* compression = dataset.GetMetadataItem("COMPRESSION", "IMAGE_STRUCTURE");
  facts.compression = compression ? compression : "";
  const char* space = dataset.GetMetadataItem("SOURCE_COLOR_SPACE", "IMAGE_STRUCTURE");
  facts.colourSpace = space ? space : "";
  facts.controlPoints = dataset.GetGCPCount();
  // The JPEG driver has no inner georeferencing: what it reports comes from side files.
  double t[6] = {};
  if (facts.driver != "JPEG" && dataset.GetGeoTransform(t) == CE_None)
    facts.innerGeoTransform = GeoTransform{t[0], t[1], t[2], t[3], t[4], t[5]};
  facts.coordinateSystem = systemOf(dataset.GetSpatialRef());
  return facts;
}

Result<Presentation> decidePresentation(const ImageFacts& facts) {
  if (facts.bands.empty()) return Status::error("has no bands");
  for (const BandFacts& band : facts.bands) {
    // Named before the mask that it brings for the other bands.
    if (band.colour == BandColour::kAlpha)
      return Status::error("has an alpha band; gray and RGB images can be shown");
  }
  for (const BandFacts& band : facts.bands) {
    if (Status status = checkBand(band); !status) return status;
  }
  if (facts.colourSpace == "CMYK" || facts.colourSpace == "YCbCrK")
    return Status::error("has CMYK colours; gray and RGB images can be shown");
  Presentation result;
  result.lossy = facts.driver == "JPEG" || facts.compression.find("JPEG") != std::string::npos;
  const auto& bands = facts.bands;
  if (bands.size() == 1 &&
      (bands[0].colour == BandColour::kGray || bands[0].colour == BandColour::kUnknown)) {
    result.channels = 1;
    result.bands = {1, 1, 1};
    return result;
  }
  if (bands.size() != 3)
    return Status::error("has " + std::to_string(bands.size()) +
                         " bands; gray and RGB images can be shown");
  result.bands = {0, 0, 0};
  bool unnamed = true;
  for (int i = 0; i < 3; ++i) {
    const BandColour colour = bands[i].colour;
    unnamed = unnamed && (colour == BandColour::kUnknown || colour == BandColour::kGray);
    const int place = colour == BandColour::kRed     ? 0
                      : colour == BandColour::kGreen ? 1
                      : colour == BandColour::kBlue  ? 2
                                                     : -1;
    if (place >= 0) result.bands[place] = i + 1;
  }
  // IMG files and many TIFFs name no colours; three bands are red, green and blue in this order
  // then.
  if (unnamed) result.bands = {1, 2, 3};
  for (const int band : result.bands) {
    if (band == 0) return Status::error("has three bands that are not red, green and blue");
  }
  return result;
}

}  // namespace tarn::raster
