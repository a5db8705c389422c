#include "tests/raster/byrule.h"

#include <cpl_string.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>

namespace tarn::raster {
namespace {

using Plane = std::vector<double>;

GDALRasterBand* pictureOf(GDALDataset& dataset, int number, int overview) {
  GDALRasterBand* band = dataset.GetRasterBand(number);
  return overview >= 0 ? band->GetOverview(overview) : band;
}

Plane planeOf(GDALRasterBand& band) {
  Plane plane(size_t(band.GetXSize()) * band.GetYSize());
  EXPECT_EQ(band.RasterIO(GF_Read, 0, 0, band.GetXSize(), band.GetYSize(), plane.data(),
                          band.GetXSize(), band.GetYSize(), GDT_Float64, 0, 0, nullptr),
            CE_None);
  const char* kind = band.GetMetadataItem("PIXELTYPE", "IMAGE_STRUCTURE");
  if (kind && EQUAL(kind, "SIGNEDBYTE")) {
    for (double& value : plane) value = value > 127 ? value - 256 : value;
  }
  return plane;
}

/// The bands with these colours, or none.
std::vector<int> named(GDALDataset& dataset, const std::vector<GDALColorInterp>& colours) {
  std::vector<int> found;
  for (const GDALColorInterp colour : colours) {
    for (int i = dataset.GetRasterCount(); i > 0; --i) {
      if (dataset.GetRasterBand(i)->GetColorInterpretation() != colour) continue;
      found.push_back(i);
      break;
    }
  }
  return found.size() == colours.size() ? found : std::vector<int>();
}

double bitsOf(GDALRasterBand& band) {
  const char* bits = band.GetMetadataItem("NBITS", "IMAGE_STRUCTURE");
  return bits ? std::atof(bits) : GDALGetDataTypeSizeBits(band.GetRasterDataType());
}

std::string metadata(GDALDataset& dataset, const char* name) {
  const char* value = dataset.GetMetadataItem(name, "IMAGE_STRUCTURE");
  return value ? value : "";
}

}  // namespace

Picture pixelsByRule(const std::string& path, Scale scale, int overview) {
  GDALAllRegister();
  auto* dataset = GDALDataset::Open(path.c_str(), GDAL_OF_RASTER);
  if (!dataset) return {};
  std::vector<int> shown = named(*dataset, {GCI_RedBand, GCI_GreenBand, GCI_BlueBand});
  const std::vector<int> inks =
      named(*dataset, {GCI_CyanBand, GCI_MagentaBand, GCI_YellowBand, GCI_BlackBand});
  if (shown.empty()) shown = inks;
  for (int i = 1; i <= dataset->GetRasterCount() && shown.size() < 3 && inks.empty(); ++i) {
    if (dataset->GetRasterBand(i)->GetColorInterpretation() != GCI_AlphaBand) shown.push_back(i);
  }
  if (shown.size() == 2) shown.pop_back();
  GDALRasterBand& first = *pictureOf(*dataset, shown[0], overview);
  const bool indexed = shown.size() == 1 && first.GetColorInterpretation() == GCI_PaletteIndex;
  const GDALColorTable* palette = indexed ? first.GetColorTable() : nullptr;
  const bool converted = metadata(*dataset, "SOURCE_COLOR_SPACE") == "CMYK";
  const bool inverse = metadata(*dataset, "MINISWHITE") == "YES" && !palette;
  const char* kind = first.GetMetadataItem("PIXELTYPE", "IMAGE_STRUCTURE");
  const bool bytes = first.GetRasterDataType() == GDT_Byte && !(kind && EQUAL(kind, "SIGNEDBYTE"));
  const bool lineArt = palette || (bytes && bitsOf(first) == 1);
  const std::string type = GDALGetDataTypeName(first.GetRasterDataType());
  const bool isUnsigned = bytes || type.compare(0, 4, "UInt") == 0;
  const double top = std::exp2(bitsOf(first)) - 1;
  const int flags = first.GetMaskFlags();
  const bool zeroNodata = (flags & GMF_NODATA) != 0 && first.GetNoDataValue() == 0;
  bool stated =
      (flags & GMF_ALL_VALID) == 0 && !converted && !(zeroNodata && isUnsigned && !lineArt);
  // GDAL takes an alpha band for a mask only in some places.
  std::vector<int> alpha = named(*dataset, {GCI_AlphaBand});
  if (converted) alpha.clear();
  stated = stated || !alpha.empty();
  for (int i = 0; palette && i < palette->GetColorEntryCount(); ++i)
    stated = stated || palette->GetColorEntry(i)->c4 == 0;
  std::vector<Plane> samples, masks;
  for (const int number : shown) {
    samples.push_back(planeOf(*pictureOf(*dataset, number, overview)));
    masks.push_back(planeOf(*pictureOf(*dataset, number, overview)->GetMaskBand()));
  }
  const Plane opacity = alpha.empty() ? Plane(samples[0].size(), 1)
                                      : planeOf(*pictureOf(*dataset, alpha[0], overview));
  Picture picture{first.GetXSize(), first.GetYSize(), 3, {}};
  picture.pixels.resize(samples[0].size() * 3);
  for (size_t i = 0; i < samples[0].size(); ++i) {
    bool there = converted, allZero = true, allTop = true;
    for (size_t b = 0; b < shown.size(); ++b) {
      const double sample = samples[b][i];
      there = there || masks[b][i] != 0;
      allZero = allZero && sample == 0;
      allTop = allTop && sample == top;
    }
    for (size_t b = 0; b < shown.size(); ++b)
      there = there && opacity[i] != 0 &&
              std::fabs(samples[b][i]) < 1e37;  // false for what is no number, too
    double rgb[3] = {};
    for (int c = 0; c < 3; ++c) {
      const double sample = samples[shown.size() < 3 ? 0 : c][i];
      if (palette) {
        const GDALColorEntry* entry = palette->GetColorEntry(int(sample));
        rgb[c] = !entry || entry->c4 == 0 ? -1
                 : c == 0                 ? entry->c1
                 : c == 1                 ? entry->c2
                                          : entry->c3;
        there = there && rgb[c] >= 0;
      } else if (!inks.empty()) {
        rgb[c] = std::round((top - sample) * (top - samples[3][i]) * 255 / (top * top));
      } else if (bytes) {
        rgb[c] = std::round((inverse ? top - sample : sample) * 255 / top);
      } else if (isUnsigned && !stated && (allZero || allTop)) {
        rgb[c] = allZero == inverse ? 255 : 0;
      } else {
        const double part =
            std::min(1.0, std::max(0.0, (sample - scale.low) / (scale.high - scale.low)));
        rgb[c] =
            scale.low == scale.high ? 128 : std::floor(1.5 + 253 * (inverse ? 1 - part : part));
      }
    }
    const bool black = rgb[0] == 0 && rgb[1] == 0 && rgb[2] == 0;
    const bool white = rgb[0] == 255 && rgb[1] == 255 && rgb[2] == 255;
    for (int c = 0; c < 3; ++c) {
      double value = rgb[c];
      if (black && (stated || lineArt)) value = 1;
      if (white && stated) value = 254;
      picture.pixels[3 * i + c] = uint8_t(there ? value : 0);
    }
  }
  GDALClose(dataset);
  return picture;
}

std::optional<Scale> scaleSaid(const RasterImage& image) {
  for (const std::string& note : image.notes()) {
    const size_t at = note.find('(');
    Scale scale;
    if (note.compare(0, 11, "scaled from") == 0 &&
        std::sscanf(note.c_str() + at, "(%lf to %lf)", &scale.low, &scale.high) == 2)
      return scale;
  }
  return std::nullopt;
}

void writePlanes(const std::string& path, int width, int height,
                 const std::vector<std::vector<double>>& planes, const std::vector<uint8_t>& mask,
                 const SampleForm& form) {
  GDALAllRegister();
  CPLStringList options;
  for (const std::string& option : form.options) options.AddString(option.c_str());
  const bool copied = form.driver == "JPEG";
  auto* driver = GetGDALDriverManager()->GetDriverByName(form.driver.c_str());
  auto* maker = copied ? GetGDALDriverManager()->GetDriverByName("MEM") : driver;
  CPLSetThreadLocalConfigOption("GDAL_TIFF_INTERNAL_MASK",
                                form.mask == MaskKind::kInside ? "YES" : "NO");
  GDALDataset* made = maker->Create(copied ? "" : path.c_str(), width, height, int(planes.size()),
                                    form.type, copied ? nullptr : options.List());
  ASSERT_NE(made, nullptr) << path;
  double place[6] = {500000, 0.5, 0, 3400000, 0, -0.5};
  made->SetGeoTransform(place);
  for (size_t b = 0; b < planes.size(); ++b) {
    GDALRasterBand* band = made->GetRasterBand(int(b) + 1);
    if (b < form.colours.size()) band->SetColorInterpretation(form.colours[b]);
    if (form.nodata) band->SetNoDataValue(*form.nodata);
    if (b == 0 && !form.palette.empty()) {
      GDALColorTable table;
      for (size_t i = 0; i < form.palette.size(); ++i)
        table.SetColorEntry(int(i), &form.palette[i]);
      band->SetColorTable(&table);
    }
  }
  for (size_t b = 0; b < planes.size(); ++b) {
    EXPECT_EQ(made->GetRasterBand(int(b) + 1)
                  ->RasterIO(GF_Write, 0, 0, width, height, const_cast<double*>(planes[b].data()),
                             width, height, GDT_Float64, 0, 0, nullptr),
              CE_None);
  }
  if (form.mask != MaskKind::kNone) {
    EXPECT_EQ(made->CreateMaskBand(GMF_PER_DATASET), CE_None);
    EXPECT_EQ(made->GetRasterBand(1)->GetMaskBand()->RasterIO(
                  GF_Write, 0, 0, width, height, const_cast<uint8_t*>(mask.data()), width, height,
                  GDT_Byte, 0, 0, nullptr),
              CE_None);
  }
  if (copied) {
    GDALDataset* written =
        driver->CreateCopy(path.c_str(), made, FALSE, options.List(), nullptr, nullptr);
    EXPECT_NE(written, nullptr) << path;
    GDALClose(written);
  }
  GDALClose(made);
  CPLSetThreadLocalConfigOption("GDAL_TIFF_INTERNAL_MASK", nullptr);
}

}  // namespace tarn::raster
