#include "components/raster/imagefacts.h"

#include <gdal_priv.h>
#include <ogr_spatialref.h>

#include <algorithm>

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
    case GCI_CyanBand:
      return BandColour::kCyan;
    case GCI_MagentaBand:
      return BandColour::kMagenta;
    case GCI_YellowBand:
      return BandColour::kYellow;
    case GCI_BlackBand:
      return BandColour::kBlack;
    default:
      return BandColour::kOther;
  }
}

std::vector<PaletteColour> paletteOf(const GDALColorTable* table) {
  std::vector<PaletteColour> palette;
  const auto byte = [](short value) {
    return static_cast<uint8_t>(std::clamp<int>(value, 0, 255));
  };
  for (int i = 0; table && i < table->GetColorEntryCount(); ++i) {
    GDALColorEntry entry;
    if (!table->GetColorEntryAsRGB(i, &entry)) entry = {0, 0, 0, 0};
    palette.push_back({byte(entry.c1), byte(entry.c2), byte(entry.c3), byte(entry.c4)});
  }
  return palette;
}

std::optional<double> nodataOf(GDALRasterBand& band) {
  int has = 0;
  double value = 0;
  // The 64-bit types have doors of their own and report the common one as a failure.
  if (band.GetRasterDataType() == GDT_Int64) {
    value = static_cast<double>(band.GetNoDataValueAsInt64(&has));
  } else if (band.GetRasterDataType() == GDT_UInt64) {
    value = static_cast<double>(band.GetNoDataValueAsUInt64(&has));
  } else {
    value = band.GetNoDataValue(&has);
  }
  return has ? std::optional<double>(value) : std::nullopt;
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
  // GDAL keeps a table for what counts from white down, too.
  if (band.GetColorInterpretation() == GCI_PaletteIndex)
    facts.palette = paletteOf(band.GetColorTable());
  facts.nodata = nodataOf(band);
  facts.hasMask = (band.GetMaskFlags() & (GMF_ALL_VALID | GMF_NODATA | GMF_ALPHA)) == 0;
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
  facts.minIsWhite = dataset.GetMetadataItem("MINISWHITE", "IMAGE_STRUCTURE") != nullptr;
  // The JPEG driver has no inner georeferencing: what it reports comes from side files.
  if (facts.driver != "JPEG") facts.innerControlPoints = controlPointsOf(dataset);
  double t[6] = {};
  if (facts.driver != "JPEG" && dataset.GetGeoTransform(t) == CE_None)
    facts.innerGeoTransform = GeoTransform{t[0], t[1], t[2], t[3], t[4], t[5]};
  facts.coordinateSystem = systemOf(dataset.GetSpatialRef());
  if (facts.coordinateSystem < 0) facts.coordinateSystem = systemOf(dataset.GetGCPSpatialRef());
  return facts;
}

Status wantBands(const std::vector<int>& bands, ImageFacts& facts) {
  if (bands.empty()) return Status::ok();
  if (bands.size() != 1 && bands.size() != 3)
    return Status::error("one band or three can be shown, not " + std::to_string(bands.size()));
  const int count = static_cast<int>(facts.bands.size());
  for (const int number : bands) {
    if (number < 1 || number > count)
      return Status::error("has no band " + std::to_string(number) + ", only " +
                           std::to_string(count));
  }
  facts.wantedBands = bands;
  return Status::ok();
}

std::vector<ControlPoint> controlPointsOf(GDALDataset& dataset) {
  std::vector<ControlPoint> points;
  const GDAL_GCP* gdalPoints = dataset.GetGCPs();
  for (int i = 0; gdalPoints && i < dataset.GetGCPCount(); ++i) {
    const GDAL_GCP& p = gdalPoints[i];
    points.push_back({p.dfGCPPixel, p.dfGCPLine, p.dfGCPX, p.dfGCPY});
  }
  return points;
}

}  // namespace tarn::raster
