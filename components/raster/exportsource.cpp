#include "components/raster/exportsource.h"

#include <gdal_priv.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

namespace tarn::raster {
namespace {

/// Marks the pixels of which every band has its nodata value.
template <typename T>
void markNodata(const std::vector<double>& nodata, NativePatch& patch) {
  const size_t bands = nodata.size();
  const T* p = reinterpret_cast<const T*>(patch.samples.data());
  for (uint8_t& content : patch.content) {
    bool nothing = true;
    for (size_t b = 0; b < bands && nothing; ++b) {
      const auto value = static_cast<double>(p[b]);
      nothing = std::isnan(nodata[b]) ? std::isnan(value) : static_cast<T>(nodata[b]) == p[b];
    }
    if (nothing) content = 0;
    p += bands;
  }
}

}  // namespace

ExportSource::ExportSource(const RasterImage& image, const ExportForm& form)
    : image_(image), form_(form) {
  const Presentation& p = image.presentation();
  const bool isPlain = p.plain && p.conversion == Conversion::kBytes && !p.statesNothing() &&
                       !p.keepsBlack && !p.keepsWhite && form.samples.type == NativeType::kByte &&
                       form.samples.bands == p.channels;
  if (isPlain) plain_ = std::make_unique<CachedLevel>(image.storedPixels(), image.ownTiles(), 0);
}

bool ExportSource::read(NativePatch& patch) {
  patch.content.clear();
  // A row and a pixel more than asked for, for loops that look at four pixels.
  const size_t pixelBytes = static_cast<size_t>(form_.samples.bands) * bytesOf(form_.samples.type);
  const size_t pixels = static_cast<size_t>(patch.part.width) * patch.part.height;
  patch.samples.resize((pixels + patch.part.width + 2) * pixelBytes);
  std::memset(patch.samples.data() + pixels * pixelBytes, 0,
              patch.samples.size() - pixels * pixelBytes);
  if (plain_) return readPlain(patch);
  DatasetPtr dataset;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (!idle_.empty()) {
      dataset = std::move(idle_.back());
      idle_.pop_back();
    }
  }
  if (!dataset) {
    auto opened = image_.guarded()->open();
    if (!opened) return false;
    dataset = opened.take();
  }
  const bool done = readByGdal(*dataset, patch);
  const std::lock_guard<std::mutex> lock(mutex_);
  idle_.push_back(std::move(dataset));
  return done;
}

bool ExportSource::readPlain(NativePatch& patch) const {
  PixelPatch pixels;
  pixels.x = patch.part.x;
  pixels.y = patch.part.y;
  pixels.width = patch.part.width;
  pixels.height = patch.part.height;
  uint64_t bytesRead = 0;
  if (!plain_->copy(pixels, bytesRead)) return false;
  std::memcpy(patch.samples.data(), pixels.pixels.get(), pixels.stride() * pixels.height);
  return true;
}

bool ExportSource::readByGdal(GDALDataset& dataset, NativePatch& patch) const {
  const GdalErrors quiet;
  const GSpacing sample = bytesOf(form_.samples.type), pixel = sample * form_.samples.bands;
  const Part& part = patch.part;
  const GDALDataType type = gdalTypeOf(form_.samples.type);
  if (dataset.RasterIO(GF_Read, part.x, part.y, part.width, part.height, patch.samples.data(),
                       part.width, part.height, type, form_.samples.bands, nullptr, pixel,
                       pixel * part.width, sample, nullptr) != CE_None)
    return false;
  if (form_.sourceNodata.empty() && !form_.sourceHasMask) return true;
  const size_t pixels = static_cast<size_t>(part.width) * part.height;
  // The same more as of the samples.
  patch.content.assign(pixels + part.width + 2, 1);
  std::fill(patch.content.begin() + static_cast<std::ptrdiff_t>(pixels), patch.content.end(), 0);
  if (form_.sourceHasMask) {
    return dataset.GetRasterBand(1)->GetMaskBand()->RasterIO(
               GF_Read, part.x, part.y, part.width, part.height, patch.content.data(), part.width,
               part.height, GDT_Byte, 1, part.width, nullptr) == CE_None;
  }
  findContent(patch);
  return true;
}

void ExportSource::findContent(NativePatch& patch) const {
  const std::vector<double>& nodata = form_.sourceNodata;
  const size_t pixels = static_cast<size_t>(patch.part.width) * patch.part.height;
  patch.content.resize(pixels);
  withSampleType(form_.samples.type,
                 [&](auto sample) { markNodata<decltype(sample)>(nodata, patch); });
  patch.content.resize(pixels + patch.part.width + 2, 0);
  if (std::find(patch.content.begin(), patch.content.begin() + static_cast<std::ptrdiff_t>(pixels),
                0) == patch.content.begin() + static_cast<std::ptrdiff_t>(pixels))
    patch.content.clear();
}

}  // namespace tarn::raster
