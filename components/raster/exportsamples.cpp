#include "components/raster/exportsamples.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>

#include "components/raster/warpkernels.h"

namespace tarn::raster {
namespace {

constexpr int kOne = 256;

template <typename T>
T rounded(float value) {
  return static_cast<T>(value + 0.5F);
}
template <>
int16_t rounded(float value) {
  return static_cast<int16_t>(std::floor(value + 0.5F));
}
template <>
float rounded(float value) {
  return value;
}

/// Sums in float do for what it holds exactly, else in double.
template <typename T>
constexpr bool kWide = sizeof(T) > 2 && !std::is_same_v<T, float>;

template <typename T>
T blended(const T* p, size_t right, size_t down, int fx, int fy) {
  if constexpr (kWide<T>) {
    const double x = fx / double{kOne}, y = fy / double{kOne};
    const double top = p[0] + x * (double(p[right]) - p[0]);
    const double bottom = p[down] + x * (double(p[down + right]) - p[down]);
    const double value = top + y * (bottom - top);
    if constexpr (std::is_integral_v<T>) return static_cast<T>(std::floor(value + 0.5));
    return static_cast<T>(value);
  } else {
    const float x = static_cast<float>(fx) / kOne, y = static_cast<float>(fy) / kOne;
    const auto a = static_cast<float>(p[0]), b = static_cast<float>(p[right]);
    const auto c = static_cast<float>(p[down]), d = static_cast<float>(p[down + right]);
    const float top = a + x * (b - a), bottom = c + x * (d - c);
    return rounded<T>(top + y * (bottom - top));
  }
}

/// The blend of those of the four pixels that are content; false when they have less than half of
/// the weight.
template <typename T>
bool blendContent(const T* p, const uint8_t* content, size_t rowPixels, int bands, int fx, int fy,
                  T* out) {
  const size_t pixels[4] = {0, 1, rowPixels, rowPixels + 1};
  const double x = fx / double{kOne}, y = fy / double{kOne};
  const double weights[4] = {(1 - x) * (1 - y), x * (1 - y), (1 - x) * y, x * y};
  double all = 0;
  for (int k = 0; k < 4; ++k)
    if (weights[k] > 0 && content[pixels[k]]) all += weights[k];
  if (all < 0.4999) return false;
  for (int b = 0; b < bands; ++b) {
    double sum = 0;
    for (int k = 0; k < 4; ++k) {
      if (weights[k] > 0 && content[pixels[k]])
        sum += weights[k] * static_cast<double>(p[pixels[k] * bands + b]);
    }
    sum /= all;
    out[b] = static_cast<T>(std::is_integral_v<T> ? std::floor(sum + 0.5) : sum);
  }
  return true;
}

template <typename T>
struct Nothing {
  std::vector<T> values;
  explicit Nothing(const NativeForm& form) {
    for (const double v : form.nothing) values.push_back(static_cast<T>(v));
  }
};

template <typename T>
void avoid(const Nothing<T>& nothing, int bands, T* out) {
  if constexpr (std::is_integral_v<T>) {
    for (int b = 0; b < bands; ++b) {
      if (out[b] == nothing.values[b])
        out[b] = static_cast<T>(out[b] == std::numeric_limits<T>::max() ? out[b] - 1 : out[b] + 1);
    }
  }
}

/// Samples of one located row. `kBands` 0: as many as the form says.
template <typename T, int kBands>
void sampleRowOf(const NativeForm& form, const NativePatch& patch, const RowSources& from,
                 int count, uint8_t* bytes) {
  const int bands = kBands > 0 ? kBands : form.bands;
  const Nothing<T> nothing(form);
  const T* samples = reinterpret_cast<const T*>(patch.samples.data());
  const size_t right = static_cast<size_t>(bands);
  const size_t down = static_cast<size_t>(patch.part.width) * bands;
  T* out = reinterpret_cast<T*>(bytes);
  for (int i = 0; i < count; ++i, out += bands) {
    if (from.inside[i] == 0) {
      std::copy(nothing.values.begin(), nothing.values.end(), out);
      continue;
    }
    size_t at = static_cast<size_t>(from.offset[i]);
    const int fx = from.share[i] & (kOne - 1), fy = from.share[i] >> 8;
    if (!form.blends) {
      at += (fx >= kOne / 2 ? right : 0) + (fy >= kOne / 2 ? down : 0);
      if (!patch.content.empty() && !patch.content[at / bands]) {
        std::copy(nothing.values.begin(), nothing.values.end(), out);
        continue;
      }
      for (int b = 0; b < bands; ++b) out[b] = samples[at + b];
    } else if (patch.content.empty()) {
      for (int b = 0; b < bands; ++b) out[b] = blended(samples + at + b, right, down, fx, fy);
    } else if (!blendContent(samples + at, &patch.content[at / bands], patch.part.width, bands, fx,
                             fy, out)) {
      std::copy(nothing.values.begin(), nothing.values.end(), out);
      continue;
    }
    if (form.avoidsNothing) avoid(nothing, bands, out);
  }
}

template <typename T>
void sampleTyped(const NativeForm& form, const NativePatch& patch, const RowSources& from,
                 int count, uint8_t* out) {
  if (form.bands == 1) {
    sampleRowOf<T, 1>(form, patch, from, count, out);
  } else if (form.bands == 3) {
    sampleRowOf<T, 3>(form, patch, from, count, out);
  } else {
    sampleRowOf<T, 0>(form, patch, from, count, out);
  }
}

template <typename T>
void fillTyped(const NativeForm& form, int64_t pixels, uint8_t* bytes) {
  const Nothing<T> nothing(form);
  T* out = reinterpret_cast<T*>(bytes);
  for (int64_t i = 0; i < pixels; ++i, out += form.bands)
    std::copy(nothing.values.begin(), nothing.values.end(), out);
}

}  // namespace

int bytesOf(NativeType type) {
  int bytes = 1;
  withSampleType(type, [&](auto sample) { bytes = sizeof sample; });
  return bytes;
}

void exportRow(const NativeForm& form, const PlaneMapping& mapping, const Part& part, int row,
               int width, int height, double orientation, const NativePatch& patch, uint8_t* out) {
  std::vector<int32_t> places(static_cast<size_t>(part.width) * 3);
  const RowSources sources{places.data(), places.data() + part.width,
                           places.data() + static_cast<size_t>(2) * part.width};
  PixelPatch where;
  where.x = patch.part.x;
  where.y = patch.part.y;
  where.width = patch.part.width;
  where.height = patch.part.height;
  where.channels = form.bands;
  locateRow(mapping.row(part.y + row + 0.5), part.x + 0.5, 1, part.width,
            {static_cast<double>(width), static_cast<double>(height), orientation}, where, sources);
  withSampleType(form.type, [&](auto sample) {
    sampleTyped<decltype(sample)>(form, patch, sources, part.width, out);
  });
}

void fillNothing(const NativeForm& form, int64_t pixels, uint8_t* out) {
  withSampleType(form.type, [&](auto sample) { fillTyped<decltype(sample)>(form, pixels, out); });
}

}  // namespace tarn::raster
