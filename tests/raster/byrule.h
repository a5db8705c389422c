// What every kind of image should look like: the plain rule, pixel for pixel, from GDAL's reading
// of its samples and masks.
#pragma once

#include <gdal_priv.h>

#include <optional>
#include <string>
#include <vector>

#include "tests/raster/testimages.h"

namespace tarn::raster {

/// The picture (or an overview) by the rule; `scale` for samples that are not bytes.
Picture pixelsByRule(const std::string& path, Scale scale = {}, int overview = -1);

/// The scale that an image says it has; empty when it says nothing of one.
std::optional<Scale> scaleSaid(const RasterImage& image);

enum class MaskKind { kNone, kInside, kBeside };

/// An image of any kind, to be written by GDAL.
struct SampleForm {
  std::string driver = "GTiff";
  GDALDataType type = GDT_Byte;
  std::vector<std::string> options;
  std::vector<GDALColorInterp> colours;
  std::optional<double> nodata;
  MaskKind mask = MaskKind::kNone;
  std::vector<GDALColorEntry> palette;
};

/// `sample(x, y, band)` gives the samples, `there(x, y)` the mask. On failure the test fails.
template <typename Sample, typename There>
void writeSamples(const std::string& path, int width, int height, int bands, const SampleForm& form,
                  const Sample& sample, const There& there);

/// The same from planes of samples, and a mask of bytes or none.
void writePlanes(const std::string& path, int width, int height,
                 const std::vector<std::vector<double>>& planes, const std::vector<uint8_t>& mask,
                 const SampleForm& form);

template <typename Sample, typename There>
void writeSamples(const std::string& path, int width, int height, int bands, const SampleForm& form,
                  const Sample& sample, const There& there) {
  std::vector<std::vector<double>> planes(bands);
  std::vector<uint8_t> mask;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      for (int b = 0; b < bands; ++b) planes[b].push_back(sample(x, y, b));
      if (form.mask != MaskKind::kNone) mask.push_back(there(x, y) ? 255 : 0);
    }
  }
  writePlanes(path, width, height, planes, mask, form);
}

}  // namespace tarn::raster
