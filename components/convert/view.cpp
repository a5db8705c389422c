#include "components/convert/view.h"

#include <algorithm>
#include <cstring>
#include <map>

#include "base/text.h"
#include "components/raster/tile.h"

namespace tarn::convert {
namespace {

using raster::GeoTransform;

// Of what a driver says about its own file these belong to the picture.
constexpr const char* kKeptDomains[] = {"RPC", "COLOR_PROFILE", "xml:XMP"};

bool isStatistic(const char* item) {
  return std::strncmp(item, "STATISTICS_", 11) == 0;
}

void copyMetadata(GDALMajorObject& from, GDALMajorObject& to, bool withStatistics) {
  CPLStringList kept;
  for (char** item = from.GetMetadata(); item && *item; ++item) {
    if (std::strncmp(*item, kMarkItem, std::strlen(kMarkItem)) == 0) continue;
    if (withStatistics || !isStatistic(*item)) kept.AddString(*item);
  }
  if (kept.Count() > 0) to.SetMetadata(kept.List());
}

/// What both kinds of view say about the image as a whole.
class View : public GDALDataset {
 public:
  View(const Source& source, const std::string& mark) : source_(source) {
    nRasterXSize = source.image().facts().width;
    nRasterYSize = source.image().facts().height;
    copyMetadata(source.dataset(), *this, false);
    if (!mark.empty()) SetMetadataItem(kMarkItem, mark.c_str());
    for (const char* domain : kKeptDomains) {
      char** items = source.dataset().GetMetadata(domain);
      if (items) SetMetadata(items, domain);
    }
    for (const raster::ControlPoint& p : source.points()) addPoint(p);
  }
  ~View() override {
    if (!points_.empty()) GDALDeinitGCPs(static_cast<int>(points_.size()), points_.data());
  }
  View(const View&) = delete;
  View& operator=(const View&) = delete;

  CPLErr GetGeoTransform(double* out) override {
    const std::optional<GeoTransform>& t = source_.transform();
    const GeoTransform unplaced{0, 1, 0, 0, 0, 1};
    const GeoTransform& used = t ? *t : unplaced;
    const double numbers[6] = {used.x0, used.a, used.b, used.y0, used.d, used.e};
    std::copy(numbers, numbers + 6, out);
    return t ? CE_None : CE_Failure;
  }
  const OGRSpatialReference* GetSpatialRef() const override {
    return points_.empty() ? source_.system() : nullptr;
  }
  int GetGCPCount() override { return static_cast<int>(points_.size()); }
  const GDAL_GCP* GetGCPs() override { return points_.empty() ? nullptr : points_.data(); }
  const OGRSpatialReference* GetGCPSpatialRef() const override {
    return points_.empty() ? nullptr : source_.system();
  }

 protected:
  const Source& source_;

 private:
  void addPoint(const raster::ControlPoint& p) {
    GDAL_GCP point;
    GDALInitGCPs(1, &point);
    point.dfGCPPixel = p.column;
    point.dfGCPLine = p.row;
    point.dfGCPX = p.x;
    point.dfGCPY = p.y;
    // Heights and names of the same point, where the file has them.
    const GDAL_GCP* own = source_.dataset().GetGCPs();
    for (int i = 0; own && i < source_.dataset().GetGCPCount(); ++i) {
      if (own[i].dfGCPPixel != p.column || own[i].dfGCPLine != p.row) continue;
      point.dfGCPZ = own[i].dfGCPZ;
      CPLFree(point.pszId);
      point.pszId = CPLStrdup(own[i].pszId ? own[i].pszId : "");
      break;
    }
    points_.push_back(point);
  }

  std::vector<GDAL_GCP> points_;
};

/// A band of the file as it is.
class StoredBand final : public GDALRasterBand {
 public:
  StoredBand(GDALDataset* view, int number, GDALRasterBand& own, GDALRasterBand* mask)
      : own_(own), mask_(mask) {
    poDS = view;
    nBand = number;
    eDataType = own.GetRasterDataType();
    nRasterXSize = own.GetXSize();
    nRasterYSize = own.GetYSize();
    own.GetBlockSize(&nBlockXSize, &nBlockYSize);
    SetDescription(own.GetDescription());
    copyMetadata(own, *this, true);
    for (const char* item : {"NBITS", "PIXELTYPE"}) {
      if (const char* value = own.GetMetadataItem(item, "IMAGE_STRUCTURE"))
        SetMetadataItem(item, value, "IMAGE_STRUCTURE");
    }
  }

  CPLErr IReadBlock(int column, int row, void* out) override {
    const int x = column * nBlockXSize, y = row * nBlockYSize;
    const int bytes = GDALGetDataTypeSizeBytes(eDataType);
    return own_.RasterIO(GF_Read, x, y, std::min(nBlockXSize, nRasterXSize - x),
                         std::min(nBlockYSize, nRasterYSize - y), out,
                         std::min(nBlockXSize, nRasterXSize - x),
                         std::min(nBlockYSize, nRasterYSize - y), eDataType, bytes,
                         static_cast<GSpacing>(nBlockXSize) * bytes, nullptr);
  }
  CPLErr IRasterIO(GDALRWFlag flag, int x, int y, int width, int height, void* out, int columns,
                   int rows, GDALDataType type, GSpacing pixel, GSpacing line,
                   GDALRasterIOExtraArg* extra) override {
    return own_.RasterIO(flag, x, y, width, height, out, columns, rows, type, pixel, line, extra);
  }

  GDALColorInterp GetColorInterpretation() override { return own_.GetColorInterpretation(); }
  GDALColorTable* GetColorTable() override { return own_.GetColorTable(); }
  char** GetCategoryNames() override { return own_.GetCategoryNames(); }
  double GetNoDataValue(int* has) override { return own_.GetNoDataValue(has); }
  int64_t GetNoDataValueAsInt64(int* has) override { return own_.GetNoDataValueAsInt64(has); }
  uint64_t GetNoDataValueAsUInt64(int* has) override { return own_.GetNoDataValueAsUInt64(has); }
  double GetOffset(int* has) override { return own_.GetOffset(has); }
  double GetScale(int* has) override { return own_.GetScale(has); }
  const char* GetUnitType() override { return own_.GetUnitType(); }
  GDALRasterAttributeTable* GetDefaultRAT() override { return own_.GetDefaultRAT(); }

  int GetMaskFlags() override { return mask_ ? GMF_PER_DATASET : own_.GetMaskFlags(); }
  GDALRasterBand* GetMaskBand() override { return mask_ ? mask_ : own_.GetMaskBand(); }

 private:
  GDALRasterBand& own_;
  GDALRasterBand* mask_;
};

/// The band that says for the whole image where it is: of alpha, or the first band's own mask.
GDALRasterBand* maskOf(GDALDataset& own, const Plan& plan) {
  if (plan.alphaToMask > 0) return own.GetRasterBand(plan.alphaToMask);
  GDALRasterBand* first = own.GetRasterBand(plan.bands[0]);
  const int follows = GMF_ALL_VALID | GMF_NODATA | GMF_ALPHA;
  return (first->GetMaskFlags() & follows) == 0 ? first->GetMaskBand() : nullptr;
}

class StoredView final : public View {
 public:
  StoredView(const Source& source, const Plan& plan, const std::string& mark)
      : View(source, mark), numbers_(plan.bands) {
    GDALDataset& own = source.dataset();
    GDALRasterBand* mask = maskOf(own, plan);
    for (size_t i = 0; i < numbers_.size(); ++i) {
      const int number = static_cast<int>(i) + 1;
      SetBand(number, new StoredBand(this, number, *own.GetRasterBand(numbers_[i]), mask));
    }
    const char* interleave = own.GetMetadataItem("INTERLEAVE", "IMAGE_STRUCTURE");
    if (interleave) SetMetadataItem("INTERLEAVE", interleave, "IMAGE_STRUCTURE");
  }

  CPLErr IRasterIO(GDALRWFlag flag, int x, int y, int width, int height, void* out, int columns,
                   int rows, GDALDataType type, int count, int* bands, GSpacing pixel,
                   GSpacing line, GSpacing band, GDALRasterIOExtraArg* extra) override {
    std::vector<int> own;
    own.reserve(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i) own.push_back(numbers_[bands ? bands[i] - 1 : i]);
    return source_.dataset().RasterIO(flag, x, y, width, height, out, columns, rows, type, count,
                                      own.data(), pixel, line, band, extra);
  }

 private:
  std::vector<int> numbers_;
};

class ShownView;

class ShownBand final : public GDALRasterBand {
 public:
  ShownBand(ShownView& view, int number);
  CPLErr IReadBlock(int column, int row, void* out) override;
  GDALColorInterp GetColorInterpretation() override { return colour_; }
  double GetNoDataValue(int* has) override {
    if (has) *has = statesNothing_ ? 1 : 0;
    return 0;
  }

 private:
  ShownView& view_;
  GDALColorInterp colour_;
  bool statesNothing_;
};

class ShownView final : public View {
 public:
  ShownView(const Source& source, const std::string& mark) : View(source, mark) {
    const int channels = source.image().presentation().channels;
    for (int i = 1; i <= channels; ++i) SetBand(i, new ShownBand(*this, i));
    SetMetadataItem("INTERLEAVE", "PIXEL", "IMAGE_STRUCTURE");
  }

  const raster::TileReader& reader() const { return source_.image().storedPixels(); }
  bool statesNothing() const { return source_.image().presentation().statesNothing(); }

  /// A tile of the row that was asked for last; null when it cannot be read.
  const raster::Tile* tile(int column, int row) {
    if (row != row_) tiles_.clear();
    row_ = row;
    raster::Tile& tile = tiles_[column];
    uint64_t bytes = 0;
    if (tile.pixels || reader().read(column, row, tile, bytes)) return &tile;
    tiles_.erase(column);
    return nullptr;
  }

 private:
  int row_ = -1;
  std::map<int, raster::Tile> tiles_;
};

ShownBand::ShownBand(ShownView& view, int number)
    : view_(view), statesNothing_(view.statesNothing()) {
  const raster::TileGrid& grid = view.reader().grid();
  poDS = &view;
  nBand = number;
  eDataType = GDT_Byte;
  nBlockXSize = grid.tileWidth;
  nBlockYSize = grid.tileHeight;
  constexpr GDALColorInterp kColours[] = {GCI_RedBand, GCI_GreenBand, GCI_BlueBand};
  colour_ = grid.channels == 1 ? GCI_GrayIndex : kColours[(number - 1) % 3];
}

CPLErr ShownBand::IReadBlock(int column, int row, void* out) {
  const raster::Tile* tile = view_.tile(column, row);
  if (!tile) {
    CPLError(CE_Failure, CPLE_FileIO, "some of its pixels cannot be read");
    return CE_Failure;
  }
  auto* target = static_cast<uint8_t*>(out);
  for (int y = 0; y < tile->height; ++y) {
    const uint8_t* from = tile->pixels.get() + y * tile->stride() + (nBand - 1);
    uint8_t* to = target + static_cast<size_t>(y) * nBlockXSize;
    for (int x = 0; x < tile->width; ++x) to[x] = from[static_cast<size_t>(x) * tile->channels];
  }
  return CE_None;
}

void describeBand(GDALRasterBand& from, GDALRasterBand& to) {
  if (*from.GetDescription()) to.SetDescription(from.GetDescription());
  int has = 0;
  const double nodata = from.GetNoDataValue(&has);
  if (has) to.SetNoDataValue(nodata);
  if (GDALColorTable* table = from.GetColorTable()) to.SetColorTable(table);
  const GDALColorInterp colour = from.GetColorInterpretation();
  if (colour != GCI_Undefined && colour != to.GetColorInterpretation())
    to.SetColorInterpretation(colour);
  const double offset = from.GetOffset(&has);
  if (has && offset != 0) to.SetOffset(offset);
  const double scale = from.GetScale(&has);
  if (has && scale != 1) to.SetScale(scale);
  if (*from.GetUnitType()) to.SetUnitType(from.GetUnitType());
  if (from.GetMetadata()) to.SetMetadata(from.GetMetadata());
}

}  // namespace

std::unique_ptr<GDALDataset> makeStoredView(const Source& source, const Plan& plan,
                                            const std::string& mark) {
  return std::make_unique<StoredView>(source, plan, mark);
}

std::unique_ptr<GDALDataset> makeShownView(const Source& source, const std::string& mark) {
  return std::make_unique<ShownView>(source, mark);
}

bool hasMask(GDALDataset& view) {
  return (view.GetRasterBand(1)->GetMaskFlags() & GMF_PER_DATASET) != 0;
}

void describeLike(GDALDataset& view, GDALDataset& target) {
  double transform[6] = {};
  if (view.GetSpatialRef()) target.SetSpatialRef(view.GetSpatialRef());
  if (view.GetGeoTransform(transform) == CE_None) target.SetGeoTransform(transform);
  if (view.GetGCPCount() > 0)
    target.SetGCPs(view.GetGCPCount(), view.GetGCPs(), view.GetGCPSpatialRef());
  if (view.GetMetadata()) target.SetMetadata(view.GetMetadata());
  for (const char* domain : kKeptDomains) {
    if (view.GetMetadata(domain)) target.SetMetadata(view.GetMetadata(domain), domain);
  }
  for (int i = 1; i <= view.GetRasterCount(); ++i)
    describeBand(*view.GetRasterBand(i), *target.GetRasterBand(i));
}

}  // namespace tarn::convert
