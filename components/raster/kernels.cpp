#include "components/raster/kernels.h"

#include <algorithm>
#include <cstring>

#include "components/raster/vectorised.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace tarn::raster {
namespace {

TARN_VECTORISED void blend1(const uint8_t* a, size_t bytes, uint16_t* out) {
  for (size_t i = 0; i < bytes; ++i) out[i] = static_cast<uint16_t>(a[i] << 8);
}

TARN_VECTORISED void blend2(const uint8_t* a, const uint8_t* b, uint16_t wa, uint16_t wb,
                            size_t bytes, uint16_t* out) {
  for (size_t i = 0; i < bytes; ++i) {
    out[i] =
        static_cast<uint16_t>(static_cast<uint16_t>(a[i] * wa) + static_cast<uint16_t>(b[i] * wb));
  }
}

TARN_VECTORISED void blend3(const uint8_t* a, const uint8_t* b, const uint8_t* c, uint16_t wa,
                            uint16_t wb, uint16_t wc, size_t bytes, uint16_t* out) {
  for (size_t i = 0; i < bytes; ++i) {
    out[i] =
        static_cast<uint16_t>(static_cast<uint16_t>(a[i] * wa) + static_cast<uint16_t>(b[i] * wb) +
                              static_cast<uint16_t>(c[i] * wc));
  }
}

TARN_VECTORISED void blend4(const uint8_t* const* rows, const uint16_t* w, size_t bytes,
                            uint16_t* out) {
  const uint8_t *a = rows[0], *b = rows[1], *c = rows[2], *d = rows[3];
  const uint16_t wa = w[0], wb = w[1], wc = w[2], wd = w[3];
  for (size_t i = 0; i < bytes; ++i) {
    out[i] =
        static_cast<uint16_t>(static_cast<uint16_t>(a[i] * wa) + static_cast<uint16_t>(b[i] * wb) +
                              static_cast<uint16_t>(c[i] * wc) + static_cast<uint16_t>(d[i] * wd));
  }
}

constexpr uint32_t kWhite = 0xFFFFFF;
constexpr uint32_t kNearlyBlack = 0x010101, kNearlyWhite = 0xFEFEFE;

uint32_t contentOnly(uint32_t rgb) {
  rgb &= kWhite;
  if (rgb == 0) return kNearlyBlack;
  return rgb == kWhite ? kNearlyWhite : rgb;
}

/// One cell of a colour row, as 0x00BBGGRR.
uint32_t gatherColour(const uint16_t* pixels, const uint16_t* weights, int taps) {
#if defined(__SSE2__)
  __m128i sum = _mm_set1_epi16(128);
  for (int k = 0; k < taps; ++k) {
    const __m128i p = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(pixels + 3 * k));
    const __m128i w = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(weights + 4 * k));
    sum = _mm_add_epi16(sum, _mm_mulhi_epu16(p, w));
  }
  sum = _mm_srli_epi16(sum, 8);
  return static_cast<uint32_t>(_mm_cvtsi128_si32(_mm_packus_epi16(sum, sum)));
#else
  uint32_t sums[3] = {128, 128, 128};
  for (int k = 0; k < taps; ++k) {
    for (int c = 0; c < 3; ++c) sums[c] += (uint32_t{pixels[3 * k + c]} * weights[4 * k]) >> 16;
  }
  return sums[0] >> 8 | (sums[1] >> 8) << 8 | (sums[2] >> 8) << 16;
#endif
}

template <int kTaps>
void gatherColourRow(const uint16_t* row, const int* start, const uint16_t* weights, int taps,
                     int cells, uint8_t* out) {
  const int count = kTaps > 0 ? kTaps : taps;
  for (int i = 0; i < cells; ++i) {
    const uint32_t rgb =
        contentOnly(gatherColour(row + 3 * static_cast<size_t>(start[i]),
                                 weights + 4 * static_cast<size_t>(i) * count, count));
    // The fourth byte is the next cell's first and written again with it.
    std::memcpy(out + 3 * static_cast<size_t>(i), &rgb, i + 1 < cells ? 4 : 3);
  }
}

void gatherGrayRow(const uint16_t* row, const int* start, const uint16_t* weights, int taps,
                   int cells, uint8_t* out) {
  for (int i = 0; i < cells; ++i) {
    uint32_t sum = 128;
    for (int k = 0; k < taps; ++k) {
      sum += (uint32_t{row[start[i] + k]} * weights[4 * (static_cast<size_t>(i) * taps + k)]) >> 16;
    }
    std::memset(out + 3 * static_cast<size_t>(i), static_cast<int>(std::clamp(sum >> 8, 1U, 254U)),
                3);
  }
}

}  // namespace

void blendRows(const uint8_t* const* rows, const uint16_t* weights, int count, size_t bytes,
               uint16_t* out) {
  switch (count) {
    case 1:
      return blend1(rows[0], bytes, out);
    case 2:
      return blend2(rows[0], rows[1], weights[0], weights[1], bytes, out);
    case 3:
      return blend3(rows[0], rows[1], rows[2], weights[0], weights[1], weights[2], bytes, out);
    default:
      return blend4(rows, weights, bytes, out);
  }
}

TARN_VECTORISED void addRow(const uint8_t* row, float weight, size_t bytes, float* sums) {
  for (size_t i = 0; i < bytes; ++i) sums[i] += weight * static_cast<float>(row[i]);
}

void addRowWithoutKeys(const uint8_t* row, float weight, size_t pixels, int channels, float* sums,
                       float* cover) {
  if (channels == 1) {
    for (size_t i = 0; i < pixels; ++i) {
      const float w = row[i] == 0 || row[i] == 255 ? 0.0F : weight;
      sums[i] += w * static_cast<float>(row[i]);
      cover[i] += w;
    }
    return;
  }
  for (size_t i = 0; i < pixels; ++i) {
    const uint8_t* p = row + 3 * i;
    const int high = p[0] | p[1] | p[2], low = p[0] & p[1] & p[2];
    const float w = high == 0 || low == 255 ? 0.0F : weight;
    sums[3 * i] += w * static_cast<float>(p[0]);
    sums[3 * i + 1] += w * static_cast<float>(p[1]);
    sums[3 * i + 2] += w * static_cast<float>(p[2]);
    cover[i] += w;
  }
}

void gatherCells(const uint16_t* row, const int* start, const uint16_t* weights, int taps,
                 int cells, int channels, uint8_t* out) {
  if (channels == 1) return gatherGrayRow(row, start, weights, taps, cells, out);
  switch (taps) {
    case 2:
      return gatherColourRow<2>(row, start, weights, taps, cells, out);
    case 3:
      return gatherColourRow<3>(row, start, weights, taps, cells, out);
    default:
      return gatherColourRow<0>(row, start, weights, taps, cells, out);
  }
}

void storeContent(const float* sum, int channels, float scale, uint8_t* out) {
  uint32_t rgb = 0;
  for (int c = 0; c < 3; ++c) {
    const float value = std::clamp(sum[channels == 1 ? 0 : c] * scale + 0.5F, 0.0F, 255.0F);
    rgb |= static_cast<uint32_t>(value) << (8 * c);
  }
  rgb = contentOnly(rgb);
  for (int c = 0; c < 3; ++c) out[c] = static_cast<uint8_t>(rgb >> (8 * c));
}

}  // namespace tarn::raster
