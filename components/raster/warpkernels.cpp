#include "components/raster/warpkernels.h"

#include <algorithm>
#include <cstring>

#include "components/raster/kernels.h"
#include "components/raster/vectorised.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace tarn::raster {
namespace {

constexpr int kOne = 256;

struct Weights {
  int w[4];
};

/// Of the four pixels around a position; they sum to 256.
inline Weights weightsOf(int x, int y) {
  const int fx = x & (kOne - 1), fy = y & (kOne - 1);
  const int both = (fx * fy + kOne / 2) >> 8;
  return {{kOne - fx - fy + both, fx - both, fy - both, both}};
}

inline uint32_t contentOnly(uint32_t rgb) {
  constexpr uint32_t kWhite = 0xFFFFFF, kNearlyBlack = 0x010101, kNearlyWhite = 0xFEFEFE;
  rgb &= kWhite;
  if (rgb == 0) return kNearlyBlack;
  return rgb == kWhite ? kNearlyWhite : rgb;
}

/// Four pixels of three bytes at `p` and `p + stride`; reads one byte more than they have.
inline uint32_t blendColours(const uint8_t* p, size_t stride, const Weights& weights) {
#if defined(__SSE2__)
  const __m128i zero = _mm_setzero_si128();
  const auto load = [&](const uint8_t* at) {
    int32_t bytes;
    std::memcpy(&bytes, at, sizeof bytes);
    return _mm_unpacklo_epi8(_mm_cvtsi32_si128(bytes), zero);
  };
  const auto weighted = [&](const uint8_t* at, int weight) {
    return _mm_mullo_epi16(load(at), _mm_set1_epi16(static_cast<int16_t>(weight)));
  };
  __m128i sum = _mm_set1_epi16(kOne / 2);
  sum = _mm_add_epi16(sum, weighted(p, weights.w[0]));
  sum = _mm_add_epi16(sum, weighted(p + 3, weights.w[1]));
  sum = _mm_add_epi16(sum, weighted(p + stride, weights.w[2]));
  sum = _mm_add_epi16(sum, weighted(p + stride + 3, weights.w[3]));
  sum = _mm_srli_epi16(sum, 8);
  return static_cast<uint32_t>(_mm_cvtsi128_si32(_mm_packus_epi16(sum, sum)));
#else
  uint32_t rgb = 0;
  for (int c = 0; c < 3; ++c) {
    const int sum = p[c] * weights.w[0] + p[c + 3] * weights.w[1] + p[stride + c] * weights.w[2] +
                    p[stride + c + 3] * weights.w[3] + kOne / 2;
    rgb |= static_cast<uint32_t>(sum >> 8) << (8 * c);
  }
  return rgb;
#endif
}

inline bool isKey(const uint8_t* p, int channels) {
  if (channels == 1) return p[0] == 0 || p[0] == 255;
  const int high = p[0] | p[1] | p[2], low = p[0] & p[1] & p[2];
  return high == 0 || low == 255;
}

/// Stores sum / weight, or black when the weight is less than half of `all`.
inline void storeShare(const int* sum, int weight, int all, int channels, uint8_t* out) {
  if (2 * weight < all) {
    std::memset(out, 0, static_cast<size_t>(channels));
    return;
  }
  uint32_t value = 0;
  for (int c = 0; c < channels; ++c)
    value |= static_cast<uint32_t>((sum[c] + weight / 2) / weight) << (8 * c);
  if (channels == 1) {
    out[0] = static_cast<uint8_t>(std::clamp(value, 1U, 254U));
    return;
  }
  value = contentOnly(value);
  for (int c = 0; c < channels; ++c) out[c] = static_cast<uint8_t>(value >> (8 * c));
}

void sampleWithoutKeys(const PixelPatch& patch, const RowSources& from, int count, uint8_t* out) {
  const int channels = patch.channels;
  const size_t stride = patch.stride();
  for (int i = 0; i < count; ++i, out += channels) {
    if (!from.inside[i]) {
      std::memset(out, 0, static_cast<size_t>(channels));
      continue;
    }
    const uint8_t* p = patch.pixels.get() + (from.y[i] >> 8) * stride +
                       static_cast<size_t>(from.x[i] >> 8) * channels;
    const uint8_t* corners[4] = {p, p + channels, p + stride, p + stride + channels};
    const Weights weights = weightsOf(from.x[i], from.y[i]);
    int sum[3] = {0, 0, 0}, weight = 0;
    for (int k = 0; k < 4; ++k) {
      // Pixels without weight may lie behind the patch.
      if (weights.w[k] == 0 || isKey(corners[k], channels)) continue;
      weight += weights.w[k];
      for (int c = 0; c < channels; ++c) sum[c] += weights.w[k] * corners[k][c];
    }
    storeShare(sum, weight, kOne, channels, out);
  }
}

void sampleColours(const PixelPatch& patch, const RowSources& from, int count, uint8_t* out) {
  const size_t stride = patch.stride();
  for (int i = 0; i < count; ++i) {
    const uint8_t* p =
        patch.pixels.get() + (from.y[i] >> 8) * stride + static_cast<size_t>(from.x[i] >> 8) * 3;
    const uint32_t blended = contentOnly(blendColours(p, stride, weightsOf(from.x[i], from.y[i])));
    const uint32_t rgb = from.inside[i] ? blended : 0;
    // The fourth byte is the next pixel's first and written again with it.
    std::memcpy(out + 3 * static_cast<size_t>(i), &rgb, i + 1 < count ? 4 : 3);
  }
}

void sampleGray(const PixelPatch& patch, const RowSources& from, int count, uint8_t* out) {
  const size_t stride = patch.stride();
  for (int i = 0; i < count; ++i) {
    const uint8_t* p = patch.pixels.get() + (from.y[i] >> 8) * stride + (from.x[i] >> 8);
    const Weights w = weightsOf(from.x[i], from.y[i]);
    const int sum = p[0] * w.w[0] + p[1] * w.w[1] + p[stride] * w.w[2] + p[stride + 1] * w.w[3];
    const int value = std::clamp((sum + kOne / 2) >> 8, 1, 254);
    out[i] = static_cast<uint8_t>(from.inside[i] ? value : 0);
  }
}

}  // namespace

TARN_VECTORISED int locateRow(const PlaneMapping::Row& row, double first, double step, int count,
                              const LevelExtent& extent, const PixelPatch& patch,
                              const RowSources& out) {
  const double u0 = row.u[0], u1 = row.u[1], u2 = row.u[2];
  const double v0 = row.v[0], v1 = row.v[1], v2 = row.v[2];
  const double d0 = row.determinant[0] * extent.orientation;
  const double d1 = row.determinant[1] * extent.orientation;
  const double d2 = row.determinant[2] * extent.orientation;
  const double width = extent.width, height = extent.height;
  const double left = patch.x + 0.5, top = patch.y + 0.5, start = first - row.centre;
  const double right = patch.width - 1, bottom = patch.height - 1;
  int32_t* xs = out.x;
  int32_t* ys = out.y;
  uint8_t* insides = out.inside;
  int found = 0;
  for (int i = 0; i < count; ++i) {
    const double x = start + i * step;
    const double u = (u2 * x + u1) * x + u0;
    const double v = (v2 * x + v1) * x + v0;
    const double side = (d2 * x + d1) * x + d0;
    const int inside = static_cast<int>(u >= 0) & static_cast<int>(u < width) &
                       static_cast<int>(v >= 0) & static_cast<int>(v < height) &
                       static_cast<int>(side > 0);
    const double px = std::min(std::max(u - left, 0.0), right);
    const double py = std::min(std::max(v - top, 0.0), bottom);
    xs[i] = static_cast<int32_t>(px * kOne + 0.5);
    ys[i] = static_cast<int32_t>(py * kOne + 0.5);
    insides[i] = static_cast<uint8_t>(inside);
    found += inside;
  }
  return found;
}

void sampleRow(const PixelPatch& patch, const RowSources& from, int count, uint8_t* out) {
  if (patch.hasKeys) {
    sampleWithoutKeys(patch, from, count, out);
  } else if (patch.channels == 3) {
    sampleColours(patch, from, count, out);
  } else {
    sampleGray(patch, from, count, out);
  }
}

void averageRows(const uint8_t* rows, int n, int count, int channels, uint8_t* out) {
  const size_t stride = static_cast<size_t>(n) * count * channels;
  for (int i = 0; i < count; ++i, out += channels) {
    int sum[3] = {0, 0, 0}, weight = 0;
    for (int y = 0; y < n; ++y) {
      const uint8_t* p = rows + y * stride + static_cast<size_t>(i) * n * channels;
      for (int x = 0; x < n; ++x, p += channels) {
        if (isKey(p, channels)) continue;
        ++weight;
        for (int c = 0; c < channels; ++c) sum[c] += p[c];
      }
    }
    storeShare(sum, weight, n * n, channels, out);
  }
}

}  // namespace tarn::raster
