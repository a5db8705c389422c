#include "components/convert/miniature.h"

#include <cpl_string.h>

#include <cstring>

namespace tarn::convert {
namespace {

constexpr int kSide = 16;

class MiniatureBand final : public GDALRasterBand {
 public:
  MiniatureBand(GDALDataset* dataset, int number, GDALRasterBand& own) : own_(own) {
    poDS = dataset;
    nBand = number;
    eDataType = GDT_Byte;
    nRasterXSize = nRasterYSize = nBlockXSize = nBlockYSize = kSide;
    SetDescription(own.GetDescription());
    if (own.GetMetadata()) SetMetadata(own.GetMetadata());
  }

  CPLErr IReadBlock(int, int, void* out) override {
    std::memset(out, 0, static_cast<size_t>(kSide) * kSide);
    return CE_None;
  }
  GDALColorInterp GetColorInterpretation() override { return own_.GetColorInterpretation(); }
  char** GetCategoryNames() override { return own_.GetCategoryNames(); }
  double GetNoDataValue(int* has) override { return own_.GetNoDataValue(has); }
  double GetOffset(int* has) override { return own_.GetOffset(has); }
  double GetScale(int* has) override { return own_.GetScale(has); }
  const char* GetUnitType() override { return own_.GetUnitType(); }
  GDALRasterAttributeTable* GetDefaultRAT() override { return own_.GetDefaultRAT(); }

 private:
  GDALRasterBand& own_;
};

class Miniature final : public GDALDataset {
 public:
  explicit Miniature(GDALDataset& view) : view_(view) {
    nRasterXSize = nRasterYSize = kSide;
    const CPLStringList domains(view.GetMetadataDomainList());
    for (int i = 0; i < domains.Count(); ++i) {
      char** items = std::strcmp(domains[i], "DERIVED_SUBDATASETS") != 0
                         ? view.GetMetadata(domains[i])
                         : nullptr;
      if (items) SetMetadata(items, domains[i]);
    }
    for (int i = 1; i <= view.GetRasterCount(); ++i)
      SetBand(i, new MiniatureBand(this, i, *view.GetRasterBand(i)));
  }

  CPLErr GetGeoTransform(double* out) override { return view_.GetGeoTransform(out); }
  const OGRSpatialReference* GetSpatialRef() const override { return view_.GetSpatialRef(); }
  int GetGCPCount() override { return view_.GetGCPCount(); }
  const GDAL_GCP* GetGCPs() override { return view_.GetGCPs(); }
  const OGRSpatialReference* GetGCPSpatialRef() const override { return view_.GetGCPSpatialRef(); }

 private:
  GDALDataset& view_;
};

}  // namespace

std::unique_ptr<GDALDataset> makeMiniature(GDALDataset& view) {
  return std::make_unique<Miniature>(view);
}

}  // namespace tarn::convert
