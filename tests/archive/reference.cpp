#include "tests/archive/reference.h"

#include <cpl_string.h>
#include <gdal_priv.h>
#include <gdalwarper.h>

#include <algorithm>
#include <cmath>

namespace tarn::test {
namespace {

/// Three colours and alpha, bilinear, without approximation.
CPLErr warpColours(GDALDataset* source, GDALDataset* target) {
  GDALWarpOptions* options = GDALCreateWarpOptions();
  options->hSrcDS = GDALDataset::ToHandle(source);
  options->hDstDS = GDALDataset::ToHandle(target);
  options->eResampleAlg = GRA_Bilinear;
  options->nBandCount = 3;
  options->panSrcBands = static_cast<int*>(CPLMalloc(3 * sizeof(int)));
  options->panDstBands = static_cast<int*>(CPLMalloc(3 * sizeof(int)));
  for (int i = 0; i < 3; ++i) options->panSrcBands[i] = options->panDstBands[i] = i + 1;
  options->nSrcAlphaBand = options->nDstAlphaBand = 4;
  options->eWorkingDataType = GDT_Float32;
  options->pTransformerArg = GDALCreateGenImgProjTransformer2(
      GDALDataset::ToHandle(source), GDALDataset::ToHandle(target), nullptr);
  options->pfnTransformer = GDALGenImgProjTransform;
  CPLErr done = CE_Failure;
  if (options->pTransformerArg) {
    GDALWarpOperation operation;
    if (operation.Initialize(options) == CE_None)
      done = operation.ChunkAndWarpImage(0, 0, target->GetRasterXSize(), target->GetRasterYSize());
    GDALDestroyGenImgProjTransformer(options->pTransformerArg);
  }
  GDALDestroyWarpOptions(options);
  return done;
}

}  // namespace

struct Reference::Samples {
  std::array<std::vector<double>, 4> bands;  // colours, and black of CMYK
  std::vector<uint8_t> content;
  int count = 3;
};

Reference::Reference(const std::string& path) {
  GDALAllRegister();
  const char* options[] = {"GEOREF_SOURCES=PAM,WORLDFILE,INTERNAL", nullptr};
  const char* drivers[] = {"GTiff", "HFA", "JPEG", nullptr};
  data_ = GDALDataset::Open(path.c_str(), GDAL_OF_RASTER, drivers, options, nullptr);
}

Reference::~Reference() {
  if (data_) GDALClose(data_);
}

int Reference::width() const {
  return data_->GetRasterXSize();
}

int Reference::height() const {
  return data_->GetRasterYSize();
}

bool Reference::isDeep() const {
  const GDALRasterBand* band = data_->GetRasterBand(1);
  return const_cast<GDALRasterBand*>(band)->GetRasterDataType() != GDT_Byte &&
         const_cast<GDALRasterBand*>(band)->GetColorTable() == nullptr;
}

int Reference::controlPoints() const {
  return data_->GetGCPCount();
}

std::optional<std::array<double, 6>> Reference::transform() const {
  std::array<double, 6> six{};
  if (data_->GetGeoTransform(six.data()) != CE_None) return std::nullopt;
  return six;
}

std::array<int, 3> Reference::colourBands() const {
  std::array<int, 3> bands{0, 0, 0};
  const int count = data_->GetRasterCount();
  for (int i = 1; i <= count; ++i) {
    const GDALColorInterp colour = data_->GetRasterBand(i)->GetColorInterpretation();
    if (colour >= GCI_RedBand && colour <= GCI_BlueBand) bands[colour - GCI_RedBand] = i;
  }
  if (bands[0] && bands[1] && bands[2]) return bands;
  const bool gray = count < 3;
  return gray ? std::array<int, 3>{1, 1, 1} : std::array<int, 3>{1, 2, 3};
}

std::optional<Reference::Samples> Reference::samples(const Piece& piece) const {
  Samples out;
  const size_t size = static_cast<size_t>(piece.width) * piece.height;
  const std::array<int, 3> bands = colourBands();
  out.content.assign(size, 0);
  for (int c = 0; c < 3; ++c) {
    GDALRasterBand* band = data_->GetRasterBand(bands[c]);
    out.bands[c].resize(size);
    std::vector<uint8_t> mask(size);
    if (band->RasterIO(GF_Read, piece.x, piece.y, piece.width, piece.height, out.bands[c].data(),
                       piece.width, piece.height, GDT_Float64, 0, 0, nullptr) != CE_None ||
        band->GetMaskBand()->RasterIO(GF_Read, piece.x, piece.y, piece.width, piece.height,
                                      mask.data(), piece.width, piece.height, GDT_Byte, 0, 0,
                                      nullptr) != CE_None)
      return std::nullopt;
    for (size_t i = 0; i < size; ++i) {
      if (mask[i] != 0 && std::isfinite(out.bands[c][i])) out.content[i] = 1;
    }
  }
  return out;
}

std::optional<Colours> Reference::read(const Piece& piece, const Scale& scale) const {
  auto read = samples(piece);
  if (!read) return std::nullopt;
  Colours out{piece.width, piece.height, {}, std::move(read->content)};
  out.rgb.resize(out.content.size() * 3);
  GDALRasterBand* first = data_->GetRasterBand(1);
  const GDALColorTable* table = data_->GetRasterCount() < 3 ? first->GetColorTable() : nullptr;
  const char* bits = first->GetMetadataItem("NBITS", "IMAGE_STRUCTURE");
  const double top = bits && !isDeep() ? std::pow(2.0, std::atoi(bits)) - 1 : 255;
  for (size_t i = 0; i < out.content.size(); ++i) {
    float* rgb = &out.rgb[3 * i];
    if (table) {
      GDALColorEntry entry{0, 0, 0, 0};
      table->GetColorEntryAsRGB(static_cast<int>(read->bands[0][i]), &entry);
      rgb[0] = entry.c1, rgb[1] = entry.c2, rgb[2] = entry.c3;
      const GDALColorEntry* exact = table->GetColorEntry(static_cast<int>(read->bands[0][i]));
      if (!exact || exact->c4 == 0) out.content[i] = 0;
      continue;
    }
    for (int c = 0; c < 3; ++c) {
      const double value = read->bands[c][i];
      const double span = scale.high - scale.low;
      const double part = !isDeep() ? value / top : span > 0 ? (value - scale.low) / span : 0.5;
      rgb[c] = static_cast<float>(isDeep() ? 1 + 253 * std::clamp(part, 0.0, 1.0) : 255 * part);
    }
  }
  return out;
}

std::array<double, 2> Reference::sharesOutside(const Piece& piece, const Scale& scale) const {
  std::array<double, 2> shares{0, 0};
  double all = 0;
  const auto read = samples(piece);
  if (!read) return shares;
  for (size_t i = 0; i < read->content.size(); ++i) {
    for (int c = 0; c < 3 && read->content[i]; ++c) {
      all += 1;
      if (read->bands[c][i] < scale.low) shares[0] += 1;
      if (read->bands[c][i] > scale.high) shares[1] += 1;
    }
  }
  for (double& share : shares) share /= std::max(all, 1.0);
  return shares;
}

std::optional<Colours> Reference::warp(const std::array<double, 6>& grid, int width, int height,
                                       const Scale& scale) const {
  const auto whole = read({0, 0, this->width(), this->height()}, scale);
  if (!whole) return std::nullopt;
  GDALDriver* memory = GetGDALDriverManager()->GetDriverByName("MEM");
  GDALDataset* source = memory->Create("", whole->width, whole->height, 4, GDT_Float32, nullptr);
  GDALDataset* target = memory->Create("", width, height, 4, GDT_Float32, nullptr);
  // Pure black and pure white are nothing too, and so take no part in mixtures.
  std::vector<float> alpha(whole->content.size());
  for (size_t i = 0; i < alpha.size(); ++i) {
    const float* p = &whole->rgb[3 * i];
    const auto [least, largest] = std::minmax({p[0], p[1], p[2]});
    alpha[i] = whole->content[i] && largest > 0 && least < 255 ? 255.0F : 0.0F;
  }
  for (int c = 0; c < 4; ++c) {
    const bool done = source->GetRasterBand(c + 1)->RasterIO(
                          GF_Write, 0, 0, whole->width, whole->height,
                          c == 3 ? alpha.data() : const_cast<float*>(whole->rgb.data()) + c,
                          whole->width, whole->height, GDT_Float32, c == 3 ? 0 : 12,
                          c == 3 ? 0 : 12 * GSpacing{whole->width}, nullptr) == CE_None;
    if (!done) return std::nullopt;
  }
  source->GetRasterBand(4)->SetColorInterpretation(GCI_AlphaBand);
  target->GetRasterBand(4)->SetColorInterpretation(GCI_AlphaBand);
  if (const auto six = transform()) {
    source->SetGeoTransform(const_cast<double*>(six->data()));
  } else {
    source->SetGCPs(data_->GetGCPCount(), data_->GetGCPs(), static_cast<const char*>(nullptr));
  }
  target->SetGeoTransform(const_cast<double*>(grid.data()));
  const CPLErr warped = warpColours(source, target);
  Colours out{width, height, {}, {}};
  out.rgb.resize(static_cast<size_t>(width) * height * 3);
  alpha.resize(static_cast<size_t>(width) * height);
  bool done = warped == CE_None;
  for (int c = 0; c < 4 && done; ++c) {
    done =
        target->GetRasterBand(c + 1)->RasterIO(
            GF_Read, 0, 0, width, height, c == 3 ? alpha.data() : out.rgb.data() + c, width, height,
            GDT_Float32, c == 3 ? 0 : 12, c == 3 ? 0 : 12 * GSpacing{width}, nullptr) == CE_None;
  }
  for (const float a : alpha) out.content.push_back(a >= 254.5F ? 1 : 0);
  GDALClose(source);
  GDALClose(target);
  return done ? std::optional<Colours>(std::move(out)) : std::nullopt;
}

}  // namespace tarn::test
