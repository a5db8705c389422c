#include "components/raster/exportform.h"

#include <gdal_priv.h>
#include <ogr_spatialref.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>

namespace tarn::raster {
namespace {

std::optional<NativeType> nativeTypeOf(GDALDataType type) {
  for (int i = 0; i <= static_cast<int>(NativeType::kDouble); ++i)
    if (gdalTypeOf(static_cast<NativeType>(i)) == type) return static_cast<NativeType>(i);
  return std::nullopt;
}

std::string imageStructure(GDALRasterBand& band, const char* name) {
  const char* value = band.GetMetadataItem(name, "IMAGE_STRUCTURE");
  return value ? value : "";
}

bool hasAlpha(GDALDataset& source) {
  for (int b = 1; b <= source.GetRasterCount(); ++b)
    if (source.GetRasterBand(b)->GetColorInterpretation() == GCI_AlphaBand) return true;
  return false;
}

/// A value that stands for nothing in samples that have no such value of their own.
double unusedValue(NativeType type) {
  constexpr double kUnlikely = -9999;
  switch (type) {
    case NativeType::kInt16:
      return std::numeric_limits<int16_t>::min();
    case NativeType::kInt32:
      return std::numeric_limits<int32_t>::min();
    case NativeType::kFloat:
    case NativeType::kDouble:
      return kUnlikely;
    default:
      return 0;
  }
}

/// A palette index that no pixel can mean: the first behind a short palette, or the last of one
/// that was filled up with black; -1 for none.
int unusedEntry(const GDALColorTable& palette, int entries) {
  constexpr int kMostEntries = 256;
  if (entries < kMostEntries) return entries;
  for (int i = kMostEntries - 2; i < kMostEntries; ++i) {
    const GDALColorEntry* entry = palette.GetColorEntry(i);
    if (!entry || entry->c1 != 0 || entry->c2 != 0 || entry->c3 != 0) return -1;
  }
  return kMostEntries - 1;
}

/// What is written outside, where the source has neither nodata nor alpha.
void chooseNothing(GDALDataset& source, ExportForm& form) {
  GDALRasterBand& first = *source.GetRasterBand(1);
  const GDALColorTable* palette = first.GetColorTable();
  const int entries = palette ? palette->GetColorEntryCount() : 0;
  const bool bits = imageStructure(first, "NBITS") == "1";
  if (bits) {
    // Drawn on paper: outside there is paper.
    const char* white = first.GetMetadataItem("MINISWHITE", "IMAGE_STRUCTURE");
    const GDALColorEntry* zero = entries > 0 ? palette->GetColorEntry(0) : nullptr;
    const double paper = white || (zero && zero->c1 > 127) ? 0 : 1;
    form.nodata.assign(form.samples.bands, paper);
  } else if (entries > 0) {
    const int unused = unusedEntry(*palette, entries);
    if (unused >= 0) form.nodata.assign(1, unused);
  } else {
    form.nodata.assign(form.samples.bands, unusedValue(form.samples.type));
    form.samples.avoidsNothing = true;
  }
  form.samples.nothing = form.nodata;
  if (form.nodata.empty()) form.samples.nothing.assign(form.samples.bands, 0);
}

/// True when tiles and their tables go beyond what offsets of 32 bits can name.
bool needsBigTiff(const WarpGrid& grid, int64_t pixelBits) {
  constexpr int64_t kTile = 256, kTableBytes = 16, kHeadBytes = 1 << 20, kMost = 0xFFFFFFFF;
  const int64_t tiles = ((grid.width + kTile - 1) / kTile) * ((grid.height + kTile - 1) / kTile);
  const int64_t tileBytes = kTile * kTile * pixelBits / 8;
  // Bands apart from one another have a table each; one entry a band is always enough.
  return tiles > (kMost - kHeadBytes) / (tileBytes + kTableBytes * pixelBits);
}

void chooseOptions(GDALDataset& source, const ExportRequest& request, ExportForm& form) {
  GDALRasterBand& first = *source.GetRasterBand(1);
  if (request.format == ExportFormat::kImagine) return;
  const char* interleave = source.GetMetadataItem("INTERLEAVE", "IMAGE_STRUCTURE");
  form.options = {"TILED=YES", "BLOCKXSIZE=256", "BLOCKYSIZE=256"};
  form.options.push_back(interleave && std::strcmp(interleave, "BAND") == 0 ? "INTERLEAVE=BAND"
                                                                            : "INTERLEAVE=PIXEL");
  const std::string bits = imageStructure(first, "NBITS");
  if (!bits.empty()) form.options.push_back("NBITS=" + bits);
  const int sampleBits = bits.empty() ? 8 * bytesOf(form.samples.type) : std::atoi(bits.c_str());
  form.options.emplace_back(needsBigTiff(request.grid, int64_t{sampleBits} * form.samples.bands)
                                ? "BIGTIFF=YES"
                                : "BIGTIFF=NO");
  if (first.GetColorInterpretation() == GCI_CyanBand) form.options.emplace_back("PHOTOMETRIC=CMYK");
}

/// The coordinate system that the transform can be in: degrees have their limits.
bool fits(const OGRSpatialReference& system, const WarpGrid& grid) {
  constexpr double kDegrees = 400;
  const GeoTransform& t = grid.transform;
  const double right = t.x0 + t.a * grid.width, bottom = t.y0 + t.e * grid.height;
  return !system.IsGeographic() || std::max({std::fabs(t.x0), std::fabs(right), std::fabs(t.y0),
                                             std::fabs(bottom)}) < kDegrees;
}

}  // namespace

GDALDataType gdalTypeOf(NativeType type) {
  constexpr GDALDataType kTypes[] = {GDT_Byte,  GDT_UInt16,  GDT_Int16,  GDT_UInt32,
                                     GDT_Int32, GDT_Float32, GDT_Float64};
  return kTypes[static_cast<int>(type)];
}

Result<ExportForm> decideExportForm(GDALDataset& source, const ExportRequest& request) {
  ExportForm form;
  GDALDataType all = source.GetRasterBand(1)->GetRasterDataType();
  for (int b = 2; b <= source.GetRasterCount(); ++b)
    all = GDALDataTypeUnion(all, source.GetRasterBand(b)->GetRasterDataType());
  const auto type = nativeTypeOf(all);
  if (!type) return Status::error("its samples cannot be exported");
  GDALRasterBand& first = *source.GetRasterBand(1);
  const std::string bits = imageStructure(first, "NBITS");
  const bool isSigned = imageStructure(first, "PIXELTYPE") == "SIGNEDBYTE";
  form.samples.type = *type;
  form.samples.bands = source.GetRasterCount();
  form.samples.blends = request.resampling == ExportResampling::kBilinear &&
                        !first.GetColorTable() && bits != "1" && !isSigned;
  chooseOptions(source, request, form);
  if (isSigned) form.options.emplace_back("PIXELTYPE=SIGNEDBYTE");
  for (int b = 1; b <= source.GetRasterCount(); ++b) {
    int has = 0;
    const double value = source.GetRasterBand(b)->GetNoDataValue(&has);
    if (has) form.sourceNodata.push_back(value);
  }
  const bool statesNodata = static_cast<int>(form.sourceNodata.size()) == form.samples.bands;
  if (!statesNodata) form.sourceNodata.clear();
  const int flags = first.GetMaskFlags();
  form.sourceHasMask =
      !statesNodata && (flags & GMF_PER_DATASET) != 0 && (flags & (GMF_ALPHA | GMF_NODATA)) == 0;
  if (statesNodata) {
    form.nodata = form.samples.nothing = form.sourceNodata;
  } else if (hasAlpha(source)) {
    form.samples.nothing.assign(form.samples.bands, 0);
  } else {
    chooseNothing(source, form);
  }
  return form;
}

Status describeExport(GDALDataset& source, const RasterImage& image, const ExportRequest& request,
                      const ExportForm& form, GDALDataset& target) {
  const GeoTransform& t = request.grid.transform;
  double numbers[6] = {t.x0, t.a, t.b, t.y0, t.d, t.e};
  if (target.SetGeoTransform(numbers) != CE_None)
    return Status::error("its georeferencing cannot be written");
  OGRSpatialReference numbered;
  const OGRSpatialReference* system = source.GetSpatialRef();
  const int code = image.coordinateSystem();
  if (!system && code > 0 && numbered.importFromEPSG(code) == OGRERR_NONE) system = &numbered;
  if (system && fits(*system, request.grid)) target.SetSpatialRef(system);
  for (int b = 1; b <= source.GetRasterCount(); ++b) {
    GDALRasterBand& from = *source.GetRasterBand(b);
    GDALRasterBand& to = *target.GetRasterBand(b);
    if (GDALColorTable* palette = from.GetColorTable()) {
      to.SetColorTable(palette);
    } else {
      to.SetColorInterpretation(from.GetColorInterpretation());
    }
    if (*from.GetDescription()) to.SetDescription(from.GetDescription());
    int has = 0;
    const double scale = from.GetScale(&has);
    if (has && scale != 1) to.SetScale(scale);
    const double offset = from.GetOffset(&has);
    if (has && offset != 0) to.SetOffset(offset);
    if (!form.nodata.empty()) to.SetNoDataValue(form.nodata[static_cast<size_t>(b) - 1]);
  }
  return Status::ok();
}

}  // namespace tarn::raster
