#include "_image/view/pixelconvert.h"

#include <algorithm>

#if defined(__x86_64__) && defined(__GNUC__)
#include <tmmintrin.h>
#define TARN_HAVE_SSSE3 1
#endif

namespace tarn::image {
namespace {

void convertPlain(const uint8_t* rgb, size_t count, uint8_t* bgra) {
  for (size_t i = 0; i < count; ++i) {
    const uint8_t r = rgb[3 * i];
    const uint8_t g = rgb[3 * i + 1];
    const uint8_t b = rgb[3 * i + 2];
    const int sum = r + g + b;
    bgra[4 * i] = b;
    bgra[4 * i + 1] = g;
    bgra[4 * i + 2] = r;
    bgra[4 * i + 3] = sum == 0 || sum == 3 * 255 ? 0 : 255;
  }
}

#ifdef TARN_HAVE_SSSE3
/// Four pixels a step; returns how many pixels were done. A step loads 16 bytes for its 12, so it
/// ends where those would reach past the input.
__attribute__((target("ssse3"))) size_t convertBy4(const uint8_t* rgb, size_t count,
                                                   uint8_t* bgra) {
  const __m128i order = _mm_setr_epi8(2, 1, 0, -1, 5, 4, 3, -1, 8, 7, 6, -1, 11, 10, 9, -1);
  const __m128i black = _mm_setzero_si128();
  const __m128i white = _mm_set1_epi32(0x00FFFFFF);
  const __m128i opaque = _mm_set1_epi32(static_cast<int>(0xFF000000U));
  size_t i = 0;
  for (; i + 6 <= count; i += 4) {
    const __m128i input = _mm_loadu_si128(reinterpret_cast<const __m128i*>(rgb + 3 * i));
    const __m128i color = _mm_shuffle_epi8(input, order);
    const __m128i key = _mm_or_si128(_mm_cmpeq_epi32(color, black), _mm_cmpeq_epi32(color, white));
    const __m128i pixels = _mm_or_si128(color, _mm_andnot_si128(key, opaque));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(bgra + 4 * i), pixels);
  }
  return i;
}
#endif

}  // namespace

void convertRgbToBgra(const uint8_t* rgb, size_t count, uint8_t* bgra) {
  size_t done = 0;
#ifdef TARN_HAVE_SSSE3
  static const bool isFast = __builtin_cpu_supports("ssse3");
  if (isFast) done = convertBy4(rgb, count, bgra);
#endif
  convertPlain(rgb + 3 * done, count - done, bgra + 4 * done);
}

void convertRgbToBgraWithin(const uint8_t* rgb, int width, int height, int limitWidth,
                            int limitHeight, uint8_t* bgra) {
  if (width <= 0) return;
  for (int r = 0; r < height; ++r) {
    const int converted = r < limitHeight ? width : std::clamp(limitWidth, 0, width);
    convertRgbToBgra(rgb, static_cast<size_t>(converted), bgra);
    rgb += 3 * static_cast<size_t>(converted);
    bgra += 4 * static_cast<size_t>(width);
  }
}

}  // namespace tarn::image
