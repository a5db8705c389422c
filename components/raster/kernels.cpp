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

/// The sum (times 256) of cell i, for one byte of its pixels.
uint32_t sumOf(const uint16_t* row, const int* start, const uint16_t* weights, int taps, int i,
               int channels, int channel) {
  uint32_t sum = 0;
  for (int k = 0; k < taps; ++k) {
    const size_t at = 16 * (static_cast<size_t>(i / 4) * taps + k) + 4 * (i % 4);
    const size_t pixel = static_cast<size_t>(start[i]) + k;
    sum += (uint32_t{row[pixel * channels + channel]} * weights[at]) >> 16;
  }
  return sum;
}

constexpr uint32_t kHalfCover = uint32_t{kFullCover} * 4999 / 10000;
// Rounding takes away this much at most from a full cover.
constexpr uint32_t kNearlyFullCover = kFullCover - 16;

void storeCovered(const uint32_t* sums, uint32_t cover, uint8_t* out) {
  uint32_t rgb = 0;
  if (cover >= kHalfCover) {
    for (int c = 0; c < 3; ++c) {
      const uint32_t value = (sums[c] * 255 + cover / 2) / cover;
      rgb |= std::min(value, 255U) << (8 * c);
    }
    rgb = contentOnly(rgb);
  }
  for (int c = 0; c < 3; ++c) out[c] = static_cast<uint8_t>(rgb >> (8 * c));
}

#if defined(__SSE2__)
__m128i loadTwo(const uint16_t* low, const uint16_t* high) {
  const __m128i first = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(low));
  return _mm_unpacklo_epi64(first, _mm_loadl_epi64(reinterpret_cast<const __m128i*>(high)));
}

/// Four cells R, G, B from their sums (times 256); writes two bytes more than the twelve.
void storeFour(__m128i first, __m128i second, uint8_t* out) {
  __m128i rgb = _mm_packus_epi16(_mm_srli_epi16(first, 8), _mm_srli_epi16(second, 8));
  const __m128i white = _mm_set1_epi32(kWhite), one = _mm_set1_epi32(kNearlyBlack);
  rgb = _mm_and_si128(rgb, white);
  const __m128i isBlack = _mm_cmpeq_epi32(rgb, _mm_setzero_si128());
  const __m128i isWhite = _mm_cmpeq_epi32(rgb, white);
  rgb = _mm_add_epi32(rgb, _mm_and_si128(isBlack, one));
  rgb = _mm_sub_epi32(rgb, _mm_and_si128(isWhite, one));
  const __m128i low = _mm_and_si128(rgb, _mm_set1_epi64x(0xFFFFFF));
  const __m128i high = _mm_and_si128(_mm_srli_epi64(rgb, 8), _mm_set1_epi64x(0xFFFFFF000000));
  const __m128i six = _mm_or_si128(low, high);
  _mm_storel_epi64(reinterpret_cast<__m128i*>(out), six);
  _mm_storel_epi64(reinterpret_cast<__m128i*>(out + 6), _mm_unpackhi_epi64(six, six));
}

/// The sums (times 256) of four cells, three and one unused number each.
struct FourSums {
  __m128i first;
  __m128i second;
};

FourSums sumFour(const uint16_t* row, const int* start, const uint16_t* weights, int taps,
                 int bias) {
  const uint16_t* p[4];
  for (int i = 0; i < 4; ++i) p[i] = row + 3 * static_cast<size_t>(start[i]);
  FourSums sums;
  sums.first = sums.second = _mm_set1_epi16(static_cast<short>(bias));
  for (int k = 0; k < taps; ++k) {
    const auto* w = reinterpret_cast<const __m128i*>(weights + 16 * k);
    const size_t at = 3 * static_cast<size_t>(k);
    sums.first = _mm_add_epi16(sums.first,
                               _mm_mulhi_epu16(loadTwo(p[0] + at, p[1] + at), _mm_loadu_si128(w)));
    sums.second = _mm_add_epi16(
        sums.second, _mm_mulhi_epu16(loadTwo(p[2] + at, p[3] + at), _mm_loadu_si128(w + 1)));
  }
  return sums;
}

void gatherFour(const uint16_t* row, const int* start, const uint16_t* weights, int taps,
                uint8_t* out) {
  const FourSums sums = sumFour(row, start, weights, taps, 128);
  storeFour(sums.first, sums.second, out);
}
/// Four cells of rows of which some pixels are nothing. True when that was done for all four at
/// once, because they are all content or all nothing.
bool gatherFourAlike(const FourSums& sums, const FourSums& cover, uint8_t* out) {
  const __m128i least = _mm_set1_epi16(static_cast<short>(kNearlyFullCover));
  const auto isFull = [&](__m128i covers) {
    return _mm_movemask_epi8(_mm_cmpeq_epi16(_mm_subs_epu16(least, covers), _mm_setzero_si128()));
  };
  constexpr int kFirstNumbers = 0x3F3F;
  if ((isFull(cover.first) & isFull(cover.second) & kFirstNumbers) == kFirstNumbers) {
    const __m128i half = _mm_set1_epi16(128);
    storeFour(_mm_add_epi16(sums.first, half), _mm_add_epi16(sums.second, half), out);
    return true;
  }
  const __m128i any = _mm_or_si128(cover.first, cover.second);
  const int nothing = _mm_movemask_epi8(_mm_cmpeq_epi16(any, _mm_setzero_si128()));
  if ((nothing & kFirstNumbers) != kFirstNumbers) return false;
  std::memset(out, 0, 12);
  return true;
}

void gatherFourCovered(const uint16_t* row, const uint16_t* cover, const int* start,
                       const uint16_t* weights, int taps, uint8_t* out) {
  const FourSums sums = sumFour(row, start, weights, taps, 0);
  const FourSums covers = sumFour(cover, start, weights, taps, 0);
  if (gatherFourAlike(sums, covers, out)) return;
  alignas(16) uint16_t s[16], c[16];
  _mm_store_si128(reinterpret_cast<__m128i*>(s), sums.first);
  _mm_store_si128(reinterpret_cast<__m128i*>(s + 8), sums.second);
  _mm_store_si128(reinterpret_cast<__m128i*>(c), covers.first);
  _mm_store_si128(reinterpret_cast<__m128i*>(c + 8), covers.second);
  for (int i = 0; i < 4; ++i) {
    const uint32_t cell[3] = {s[4 * i], s[4 * i + 1], s[4 * i + 2]};
    storeCovered(cell, c[4 * i], out + 3 * i);
  }
}
#else
void gatherFour(const uint16_t* row, const int* start, const uint16_t* weights, int taps,
                uint8_t* out) {
  for (int i = 0; i < 4; ++i) {
    uint32_t rgb = 0;
    for (int c = 0; c < 3; ++c) {
      rgb |= ((128 + sumOf(row, start, weights, taps, i, 3, c)) >> 8) << (8 * c);
    }
    rgb = contentOnly(rgb);
    for (int c = 0; c < 3; ++c) out[3 * i + c] = static_cast<uint8_t>(rgb >> (8 * c));
  }
}

void gatherFourCovered(const uint16_t* row, const uint16_t* cover, const int* start,
                       const uint16_t* weights, int taps, uint8_t* out) {
  for (int i = 0; i < 4; ++i) {
    uint32_t sums[3];
    for (int c = 0; c < 3; ++c) sums[c] = sumOf(row, start, weights, taps, i, 3, c);
    storeCovered(sums, sumOf(cover, start, weights, taps, i, 3, 0), out + 3 * i);
  }
}
#endif

/// `kTaps` 0: any number of taps.
template <int kTaps>
void gatherColourRow(const uint16_t* row, const int* start, const uint16_t* weights, int taps,
                     int cells, uint8_t* out) {
  const int count = kTaps > 0 ? kTaps : taps;
  const size_t step = size_t{16} * count;
  int i = 0;
  for (; i + 4 < cells; i += 4, weights += step, out += 12)
    gatherFour(row, start + i, weights, count, out);
  uint8_t last[16];
  gatherFour(row, start + i, weights, count, last);
  std::memcpy(out, last, 3 * static_cast<size_t>(cells - i));
}

void gatherGrayRow(const uint16_t* row, const int* start, const uint16_t* weights, int taps,
                   int cells, uint8_t* out) {
  for (int i = 0; i < cells; ++i) {
    const uint32_t sum = 128 + sumOf(row, start, weights, taps, i, 1, 0);
    std::memset(out + 3 * static_cast<size_t>(i), static_cast<int>(std::clamp(sum >> 8, 1U, 254U)),
                3);
  }
}

TARN_VECTORISED void splitGray(const uint8_t* row, size_t pixels, uint8_t* content, uint8_t* mask) {
  for (size_t i = 0; i < pixels; ++i) {
    mask[i] = row[i] == 0 || row[i] == 255 ? 0 : 255;
    content[i] = row[i] & mask[i];
  }
}

TARN_VECTORISED void splitColour(const uint8_t* row, size_t pixels, uint8_t* content,
                                 uint8_t* mask) {
  for (size_t i = 0; i < pixels; ++i) {
    const uint8_t r = row[3 * i], g = row[3 * i + 1], b = row[3 * i + 2];
    const uint8_t any = r | g | b, all = r & g & b;
    const uint8_t keep = any == 0 || all == 255 ? 0 : 255;
    mask[3 * i] = mask[3 * i + 1] = mask[3 * i + 2] = keep;
    content[3 * i] = r & keep;
    content[3 * i + 1] = g & keep;
    content[3 * i + 2] = b & keep;
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

void splitKeys(const uint8_t* row, size_t pixels, int channels, uint8_t* content, uint8_t* mask) {
  if (channels == 1) return splitGray(row, pixels, content, mask);
  splitColour(row, pixels, content, mask);
}

void gatherCoveredCells(const uint16_t* row, const uint16_t* cover, const int* start,
                        const uint16_t* weights, int taps, int cells, int channels, uint8_t* out) {
  if (channels == 1) {
    for (int i = 0; i < cells; ++i) {
      const uint32_t sum = sumOf(row, start, weights, taps, i, 1, 0);
      const uint32_t sums[3] = {sum, sum, sum};
      storeCovered(sums, sumOf(cover, start, weights, taps, i, 1, 0), out + 3 * i);
    }
    return;
  }
  const size_t step = size_t{16} * taps;
  int i = 0;
  for (; i + 4 < cells; i += 4, weights += step, out += 12)
    gatherFourCovered(row, cover, start + i, weights, taps, out);
  uint8_t last[16];
  gatherFourCovered(row, cover, start + i, weights, taps, last);
  std::memcpy(out, last, 3 * static_cast<size_t>(cells - i));
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
