#include "components/raster/halving.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "components/raster/tile.h"
#include "components/raster/vectorised.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace tarn::raster {
namespace {

TARN_VECTORISED void addRows(const uint8_t* a, const uint8_t* b, size_t bytes, uint16_t* sums) {
  for (size_t i = 0; i < bytes; ++i) sums[i] = static_cast<uint16_t>(a[i] + b[i]);
}

/// Pairs of pixels of a row of sums. The row is readable two numbers behind its last pair.
void addPairs(const uint16_t* sums, int pairs, int channels, int bias, uint8_t* out) {
  int i = 0;
#if defined(__SSE2__)
  if (channels == 3) {
    const __m128i add = _mm_set1_epi16(static_cast<short>(bias));
    // The fourth byte written is the next pixel's first; the last pixel is left to the plain loop.
    for (; i + 1 < pairs; ++i) {
      const __m128i two = _mm_loadu_si128(reinterpret_cast<const __m128i*>(sums + 6 * i));
      __m128i sum = _mm_add_epi16(_mm_add_epi16(two, _mm_srli_si128(two, 6)), add);
      sum = _mm_srli_epi16(sum, 2);
      const int rgb = _mm_cvtsi128_si32(_mm_packus_epi16(sum, sum));
      std::memcpy(out + 3 * i, &rgb, 4);
    }
  }
#endif
  for (; i < pairs; ++i) {
    for (int c = 0; c < channels; ++c) {
      const int sum = sums[2 * i * channels + c] + sums[(2 * i + 1) * channels + c];
      out[i * channels + c] = static_cast<uint8_t>((sum + bias) >> 2);
    }
  }
}

bool isKey(const uint8_t* p, int channels) {
  if (channels == 1) return p[0] == 0 || p[0] == 255;
  const int high = p[0] | p[1] | p[2], low = p[0] & p[1] & p[2];
  return high == 0 || low == 255;
}

void makeContent(uint8_t* p, int channels) {
  if (!isKey(p, channels)) return;
  const uint8_t value = p[0] == 0 ? 1 : 254;
  std::fill_n(p, channels, value);
}

void averageWithoutKeys(const uint8_t* const* pixels, const PictureView& source, bool roundUp,
                        uint8_t* out) {
  const int channels = source.channels;
  int sums[3] = {0, 0, 0}, count = 0;
  for (int i = 0; i < 4; ++i) {
    if (isKey(pixels[i], channels)) continue;
    ++count;
    for (int c = 0; c < channels; ++c) sums[c] += pixels[i][c];
  }
  if (count < source.leastContent) {
    std::fill_n(out, channels, uint8_t{0});
    return;
  }
  const int half = roundUp ? count / 2 : (count - 1) / 2;
  for (int c = 0; c < channels; ++c) out[c] = static_cast<uint8_t>((sums[c] + half) / count);
  makeContent(out, channels);
}

void halveRowWithKeys(const uint8_t* a, const uint8_t* b, const PictureView& source, bool roundUp,
                      uint8_t* out) {
  const int width = source.width, channels = source.channels;
  for (int x = 0; x < width; x += 2) {
    const int right = std::min(x + 1, width - 1);
    const uint8_t* pixels[4] = {a + x * channels, a + right * channels, b + x * channels,
                                b + right * channels};
    averageWithoutKeys(pixels, source, roundUp, out + x / 2 * channels);
  }
}

}  // namespace

bool halve(const PictureView& source, bool hasKeys, bool roundUp, uint8_t* out, size_t stride) {
  const int channels = source.channels, width = (source.width + 1) / 2;
  const size_t rowBytes = static_cast<size_t>(source.width) * channels;
  std::vector<uint16_t> sums(hasKeys ? 0 : (static_cast<size_t>(width) * 2 + 2) * channels);
  bool keys = false;
  for (int y = 0; y < source.height; y += 2) {
    const uint8_t* a = source.pixels + y * source.stride;
    const uint8_t* b = y + 1 < source.height ? a + source.stride : a;
    uint8_t* row = out + static_cast<size_t>(y / 2) * stride;
    if (hasKeys) {
      halveRowWithKeys(a, b, source, roundUp, row);
      keys = keys || findKeys(row, width, channels);
      continue;
    }
    addRows(a, b, rowBytes, sums.data());
    if (source.width % 2 == 1) std::copy_n(&sums[rowBytes - channels], channels, &sums[rowBytes]);
    addPairs(sums.data(), width, channels, roundUp ? 2 : 1, row);
    if (findKeys(row, width, channels)) {
      for (int x = 0; x < width; ++x) makeContent(row + x * channels, channels);
    }
  }
  return keys;
}

}  // namespace tarn::raster
