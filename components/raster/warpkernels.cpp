#include "components/raster/warpkernels.h"

#include <algorithm>
#include <cstring>

#include "components/raster/kernels.h"
#include "components/raster/vectorised.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif
#if defined(__x86_64__) && defined(__GNUC__)
#include <immintrin.h>
#define TARN_AVX2 __attribute__((target("avx2")))
#endif

namespace tarn::raster {
namespace {

constexpr int kOne = 256;
constexpr uint32_t kWhite = 0xFFFFFF;

struct Weights {
  int w[4];
};

inline int acrossOf(int share) {
  return share & (kOne - 1);
}

inline int downOf(int share) {
  return share >> 8;
}

/// Of the four pixels around a position; they sum to 256.
inline Weights weightsOf(int share) {
  const int fx = acrossOf(share), fy = downOf(share);
  const int both = (fx * fy + kOne / 2) >> 8;
  return {{kOne - fx - fy + both, fx - both, fy - both, both}};
}

constexpr uint32_t kNearlyBlack = 0x010101, kNearlyWhite = 0xFEFEFE;

inline uint32_t contentOnly(uint32_t rgb) {
  rgb &= kWhite;
  if (rgb == 0) return kNearlyBlack;
  return rgb == kWhite ? kNearlyWhite : rgb;
}

#if defined(__SSE2__)
/// For each 256th between two neighbouring pixels of three bytes: their weights across, as 65536ths
/// in the order of the bytes, and the 256ths down, for each byte.
struct ShareTable {
  alignas(16) uint16_t across[kOne][8];
  alignas(16) uint16_t down[kOne][8];

  ShareTable() {
    for (int i = 0; i < kOne; ++i) {
      for (int lane = 0; lane < 8; ++lane) {
        const int weight = lane < 3 ? kOne - i : lane < 6 ? i : 0;
        across[i][lane] = static_cast<uint16_t>(std::min(weight * kOne, 65535));
        down[i][lane] = static_cast<uint16_t>(i);
      }
    }
  }
};
const ShareTable kShares;

inline __m128i lanesOf(const uint16_t (&lanes)[8]) {
  return _mm_load_si128(reinterpret_cast<const __m128i*>(lanes));
}

/// The blend of the four pixels of three bytes at `p`, times 256, in the first three lanes; reads
/// two bytes more than they have.
inline __m128i blendOf(const uint8_t* p, size_t stride, int share) {
  const auto load = [](const uint8_t* at) {
    return _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(at)),
                             _mm_setzero_si128());
  };
  const __m128i top = load(p), bottom = load(p + stride);
  // Both rows blended, times 256: exact in 16 bits.
  const __m128i rows = _mm_add_epi16(
      _mm_slli_epi16(top, 8),
      _mm_mullo_epi16(_mm_sub_epi16(bottom, top), lanesOf(kShares.down[downOf(share)])));
  const __m128i both = _mm_mulhi_epu16(rows, lanesOf(kShares.across[acrossOf(share)]));
  return _mm_add_epi16(both, _mm_srli_si128(both, 6));
}

/// Four numbers of two blends to bytes, red first.
inline __m128i bytesOf(__m128i first, __m128i second) {
  const __m128i half = _mm_set1_epi16(kOne / 2);
  return _mm_packus_epi16(_mm_srli_epi16(_mm_add_epi16(first, half), 8),
                          _mm_srli_epi16(_mm_add_epi16(second, half), 8));
}

inline uint32_t blendColours(const uint8_t* p, size_t stride, int share) {
  const __m128i blend = blendOf(p, stride, share);
  return static_cast<uint32_t>(_mm_cvtsi128_si32(bytesOf(blend, blend)));
}

/// Four colours a step, all but the last four at most; returns how many.
template <bool kAllInside>
int sampleFours(const uint8_t* pixels, size_t stride, const RowSources& from, int count,
                uint8_t* out) {
  const __m128i white = _mm_set1_epi32(static_cast<int>(kWhite));
  const __m128i least = _mm_set1_epi32(static_cast<int>(kNearlyBlack));
  int i = 0;
  for (; i + 4 < count; i += 4, out += 12) {
    const auto blend = [&](int k) {
      return blendOf(pixels + from.offset[i + k], stride, from.share[i + k]);
    };
    __m128i rgb =
        bytesOf(_mm_unpacklo_epi64(blend(0), blend(1)), _mm_unpacklo_epi64(blend(2), blend(3)));
    rgb = _mm_and_si128(rgb, white);
    rgb = _mm_or_si128(rgb, _mm_and_si128(_mm_cmpeq_epi32(rgb, _mm_setzero_si128()), least));
    rgb = _mm_xor_si128(rgb, _mm_and_si128(_mm_cmpeq_epi32(rgb, white), least));
    if (!kAllInside)
      rgb = _mm_and_si128(rgb, _mm_loadu_si128(reinterpret_cast<const __m128i*>(from.inside + i)));
    // The fourth byte of each is the next one's first and written again with it.
    for (int k = 0; k < 4; ++k) {
      const int32_t bytes = _mm_cvtsi128_si32(rgb);
      std::memcpy(out + static_cast<size_t>(3) * k, &bytes, sizeof bytes);
      rgb = _mm_srli_si128(rgb, 4);
    }
  }
  return i;
}

#if defined(TARN_AVX2)
TARN_AVX2 inline __m256i widened(const uint8_t* first, const uint8_t* second) {
  const __m128i low = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(first));
  return _mm256_cvtepu8_epi16(
      _mm_unpacklo_epi64(low, _mm_loadl_epi64(reinterpret_cast<const __m128i*>(second))));
}

TARN_AVX2 inline __m256i bothLanes(const uint16_t (&first)[8], const uint16_t (&second)[8]) {
  return _mm256_inserti128_si256(_mm256_castsi128_si256(lanesOf(first)), lanesOf(second), 1);
}

/// blendOf for two pixels at once, one in each half.
TARN_AVX2 inline __m256i blendPair(const uint8_t* pixels, size_t stride, const int32_t* offset,
                                   const int32_t* share) {
  const uint8_t* p = pixels + offset[0];
  const uint8_t* q = pixels + offset[1];
  const __m256i top = widened(p, q), bottom = widened(p + stride, q + stride);
  const __m256i down = bothLanes(kShares.down[downOf(share[0])], kShares.down[downOf(share[1])]);
  const __m256i rows = _mm256_add_epi16(_mm256_slli_epi16(top, 8),
                                        _mm256_mullo_epi16(_mm256_sub_epi16(bottom, top), down));
  const __m256i both = _mm256_mulhi_epu16(
      rows, bothLanes(kShares.across[acrossOf(share[0])], kShares.across[acrossOf(share[1])]));
  return _mm256_add_epi16(both, _mm256_srli_si256(both, 6));
}

/// The same colours as sampleFours, twice as wide.
template <bool kAllInside>
TARN_AVX2 int sampleFoursWide(const uint8_t* pixels, size_t stride, const RowSources& from,
                              int count, uint8_t* out) {
  const __m128i white = _mm_set1_epi32(static_cast<int>(kWhite));
  const __m128i least = _mm_set1_epi32(static_cast<int>(kNearlyBlack));
  const __m128i packed = _mm_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1);
  const __m256i half = _mm256_set1_epi16(kOne / 2);
  int i = 0;
  // Four bytes too many are stored each time, so the last five pixels are left.
  for (; i + 5 < count; i += 4, out += 12) {
    const __m256i first = blendPair(pixels, stride, from.offset + i, from.share + i);
    const __m256i second = blendPair(pixels, stride, from.offset + i + 2, from.share + i + 2);
    // Pixels 0 and 2 in the low half, 1 and 3 in the high one.
    __m256i sums = _mm256_unpacklo_epi64(first, second);
    sums = _mm256_srli_epi16(_mm256_add_epi16(sums, half), 8);
    const __m256i bytes = _mm256_packus_epi16(sums, sums);
    __m128i rgb =
        _mm_unpacklo_epi32(_mm256_castsi256_si128(bytes), _mm256_extracti128_si256(bytes, 1));
    rgb = _mm_and_si128(rgb, white);
    rgb = _mm_or_si128(rgb, _mm_and_si128(_mm_cmpeq_epi32(rgb, _mm_setzero_si128()), least));
    rgb = _mm_xor_si128(rgb, _mm_and_si128(_mm_cmpeq_epi32(rgb, white), least));
    if (!kAllInside)
      rgb = _mm_and_si128(rgb, _mm_loadu_si128(reinterpret_cast<const __m128i*>(from.inside + i)));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm_shuffle_epi8(rgb, packed));
  }
  return i;
}
const bool kIsWide = __builtin_cpu_supports("avx2") != 0;
#else
template <bool kAllInside>
int sampleFoursWide(const uint8_t*, size_t, const RowSources&, int, uint8_t*) {
  return 0;
}
constexpr bool kIsWide = false;
#endif
#else
constexpr bool kIsWide = false;
template <bool kAllInside>
int sampleFoursWide(const uint8_t*, size_t, const RowSources&, int, uint8_t*) {
  return 0;
}
inline uint32_t blendColours(const uint8_t* p, size_t stride, int share) {
  const Weights weights = weightsOf(share);
  uint32_t rgb = 0;
  for (int c = 0; c < 3; ++c) {
    const int sum = p[c] * weights.w[0] + p[c + 3] * weights.w[1] + p[stride + c] * weights.w[2] +
                    p[stride + c + 3] * weights.w[3] + kOne / 2;
    rgb |= static_cast<uint32_t>(sum >> 8) << (8 * c);
  }
  return rgb;
}

template <bool kAllInside>
int sampleFours(const uint8_t*, size_t, const RowSources&, int, uint8_t*) {
  return 0;
}
#endif

inline bool isKey(const uint8_t* p, int channels) {
  if (channels == 1) return p[0] == 0 || p[0] == 255;
  const int high = p[0] | p[1] | p[2], low = p[0] & p[1] & p[2];
  return high == 0 || low == 255;
}

/// Stores sum / weight, or black when the weight is less than half of `all`.
inline void storeShare(const int* sum, int weight, int all, int channels, uint8_t* out) {
  if (weight == 0 || 2 * weight < all) {
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

/// The blend of those of the four pixels at `p` that are content.
void blendContent(const uint8_t* p, size_t stride, int channels, int share, uint8_t* out) {
  const uint8_t* corners[4] = {p, p + channels, p + stride, p + stride + channels};
  const Weights weights = weightsOf(share);
  int sum[3] = {0, 0, 0}, weight = 0;
  for (int k = 0; k < 4; ++k) {
    if (isKey(corners[k], channels)) continue;
    weight += weights.w[k];
    for (int c = 0; c < channels; ++c) sum[c] += weights.w[k] * corners[k][c];
  }
  storeShare(sum, weight, kOne, channels, out);
}

/// True when one of the four pixels of three bytes is pure black or white.
inline bool keysAround(const uint8_t* p, size_t stride) {
  const auto isKeyAt = [](const uint8_t* at) {
    uint32_t rgb;
    std::memcpy(&rgb, at, sizeof rgb);
    return ((rgb + 1) & kWhite) <= 1;
  };
  return isKeyAt(p) || isKeyAt(p + 3) || isKeyAt(p + stride) || isKeyAt(p + stride + 3);
}

template <bool kHasKeys, bool kAllInside>
void sampleColours(const PixelPatch& patch, const RowSources& from, int count, uint8_t* out) {
  const size_t stride = patch.stride();
  const uint8_t* pixels = patch.pixels.get();
  const auto fours = kIsWide ? sampleFoursWide<kAllInside> : sampleFours<kAllInside>;
  const int done = kHasKeys ? 0 : fours(pixels, stride, from, count, out);
  out += static_cast<size_t>(3) * done;
  for (int i = done; i < count; ++i, out += 3) {
    const uint8_t* p = pixels + from.offset[i];
    const bool inside = kAllInside || from.inside[i] != 0;
    if (kHasKeys && inside && keysAround(p, stride)) {
      blendContent(p, stride, 3, from.share[i], out);
      continue;
    }
    const uint32_t rgb = inside ? contentOnly(blendColours(p, stride, from.share[i])) : 0;
    std::memcpy(out, &rgb, 3);
  }
}

template <bool kHasKeys, bool kAllInside>
void sampleGray(const PixelPatch& patch, const RowSources& from, int count, uint8_t* out) {
  const size_t stride = patch.stride();
  const uint8_t* pixels = patch.pixels.get();
  for (int i = 0; i < count; ++i) {
    const uint8_t* p = pixels + from.offset[i];
    const int inside = kAllInside ? -1 : from.inside[i];
    if (kHasKeys && inside != 0) {
      blendContent(p, stride, 1, from.share[i], out + i);
      continue;
    }
    const Weights w = weightsOf(from.share[i]);
    const int sum = p[0] * w.w[0] + p[1] * w.w[1] + p[stride] * w.w[2] + p[stride + 1] * w.w[3];
    const int value = std::clamp((sum + kOne / 2) >> 8, 1, 254);
    out[i] = static_cast<uint8_t>(value & inside);
  }
}

}  // namespace

TARN_VECTORISED void locateRow(const PlaneMapping::Row& row, double first, double step, int count,
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
  const int stride = patch.width * patch.channels, channels = patch.channels;
  int32_t* const offsets = out.offset;
  int32_t* const shares = out.share;
  int32_t* const insides = out.inside;
  for (int i = 0; i < count; ++i) {
    const double x = start + i * step;
    const double u = (u2 * x + u1) * x + u0;
    const double v = (v2 * x + v1) * x + v0;
    const double side = (d2 * x + d1) * x + d0;
    const int inside = static_cast<int>(u >= 0) & static_cast<int>(u < width) &
                       static_cast<int>(v >= 0) & static_cast<int>(v < height) &
                       static_cast<int>(side > 0);
    const int px = static_cast<int>(std::min(std::max(u - left, 0.0), right) * kOne + 0.5);
    const int py = static_cast<int>(std::min(std::max(v - top, 0.0), bottom) * kOne + 0.5);
    offsets[i] = (py >> 8) * stride + (px >> 8) * channels;
    shares[i] = (px & (kOne - 1)) | (py & (kOne - 1)) << 8;
    insides[i] = -inside;
  }
}

TARN_VECTORISED void locateInside(const PlaneMapping::Row& row, double first, double step,
                                  int count, const PixelPatch& patch, const RowSources& out) {
  // 256ths of a pixel of the patch, counted from the first position: small numbers, so that floats
  // do. A half is added, for the nearest.
  const double start = first - row.centre;
  const auto along = [&](const std::array<double, 3>& c, double from, float(&terms)[3]) {
    terms[0] = static_cast<float>(((c[2] * start + c[1]) * start + c[0] - from - 0.5) * kOne + 0.5);
    terms[1] = static_cast<float>((2 * c[2] * start + c[1]) * step * kOne);
    terms[2] = static_cast<float>(c[2] * step * step * kOne);
  };
  float u[3], v[3];
  along(row.u, patch.x, u);
  along(row.v, patch.y, v);
  const float u0 = u[0], u1 = u[1], u2 = u[2], v0 = v[0], v1 = v[1], v2 = v[2];
  const int right = (patch.width - 1) * kOne, bottom = (patch.height - 1) * kOne;
  const int stride = patch.width * patch.channels, channels = patch.channels;
  int32_t* const offsets = out.offset;
  int32_t* const shares = out.share;
  for (int i = 0; i < count; ++i) {
    const auto x = static_cast<float>(i);
    const int px = std::min(std::max(static_cast<int>((u2 * x + u1) * x + u0), 0), right);
    const int py = std::min(std::max(static_cast<int>((v2 * x + v1) * x + v0), 0), bottom);
    offsets[i] = (py >> 8) * stride + (px >> 8) * channels;
    shares[i] = (px & (kOne - 1)) | (py & (kOne - 1)) << 8;
  }
}

void locatePoints(const PlanePoint* points, int count, const LevelExtent& extent,
                  const PixelPatch& patch, const RowSources& out) {
  for (int i = 0; i < count; ++i) {
    const PlanePoint p = points[i];
    const bool inside = p.x >= 0 && p.y >= 0 && p.x < extent.width && p.y < extent.height;
    const double right = std::clamp(p.x - patch.x - 0.5, 0.0, patch.width - 1.0);
    const double down = std::clamp(p.y - patch.y - 0.5, 0.0, patch.height - 1.0);
    const int px = static_cast<int>(right * kOne + 0.5), py = static_cast<int>(down * kOne + 0.5);
    out.offset[i] = ((py >> 8) * patch.width + (px >> 8)) * patch.channels;
    out.share[i] = (px & (kOne - 1)) | (py & (kOne - 1)) << 8;
    out.inside[i] = inside ? -1 : 0;
  }
}

namespace {

template <bool kHasKeys, bool kAllInside>
void sampleAs(const PixelPatch& patch, const RowSources& from, int count, uint8_t* out) {
  (patch.channels == 3 ? sampleColours<kHasKeys, kAllInside>
                       : sampleGray<kHasKeys, kAllInside>)(patch, from, count, out);
}

}  // namespace

void sampleRow(const PixelPatch& patch, const RowSources& from, int count, uint8_t* out) {
  if (from.inside) {
    (patch.hasKeys ? sampleAs<true, false> : sampleAs<false, false>)(patch, from, count, out);
  } else {
    (patch.hasKeys ? sampleAs<true, true> : sampleAs<false, true>)(patch, from, count, out);
  }
}

void averageRows(const uint8_t* rows, int n, int count, int channels, uint8_t* out) {
  const size_t stride = static_cast<size_t>(n) * count * channels;
  for (int i = 0; i < count; ++i, out += channels) {
    int sum[4] = {0, 0, 0, 0}, weight = 0;
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
