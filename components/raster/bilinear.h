// Bilinear blends of pixels, the same numbers whichever processor works them out.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace tarn::raster {

/// Where the pixels of one row come from: for each the byte in the patch at which the upper left of
/// the four pixels around it begins, how far it lies between them (256ths to the right, and to the
/// bottom times 256), and -1 where there is an image, else 0. Without `inside` there is one
/// everywhere.
struct RowSources {
  int32_t* offset = nullptr;
  int32_t* share = nullptr;
  int32_t* inside = nullptr;
};

constexpr int kWholeShare = 256;

inline int acrossOf(int share) {
  return share & (kWholeShare - 1);
}

inline int downOf(int share) {
  return share >> 8;
}

/// Blends go by 128ths across, so that the products fit registers of 16 bits, and by 256ths down.
constexpr int kBlendBits = 15;
constexpr int kBlendHalf = 1 << (kBlendBits - 1);

#if defined(__SSE2__)
/// The blend of the four pixels of three bytes at `p`, as red + 256 green + 65536 blue; reads two
/// bytes more than they have.
inline uint32_t blendColours(const uint8_t* p, size_t stride, int share) {
  const __m128i zero = _mm_setzero_si128();
  const int fx = acrossOf(share) >> 1, fy = downOf(share);
  const __m128i across = _mm_set1_epi32(fx << 16 | (128 - fx));
  const auto row = [&](const uint8_t* at) {
    const __m128i six = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(at));
    const __m128i pairs = _mm_unpacklo_epi8(six, _mm_srli_si128(six, 3));
    return _mm_madd_epi16(_mm_unpacklo_epi8(pairs, zero), across);
  };
  const __m128i rows = _mm_packs_epi32(row(p), row(p + stride));
  const __m128i pairs = _mm_unpacklo_epi16(rows, _mm_srli_si128(rows, 8));
  const __m128i sums = _mm_madd_epi16(pairs, _mm_set1_epi32(fy << 16 | (kWholeShare - fy)));
  const __m128i values = _mm_srli_epi32(_mm_add_epi32(sums, _mm_set1_epi32(kBlendHalf)), 15);
  const __m128i words = _mm_packs_epi32(values, values);
  return static_cast<uint32_t>(_mm_cvtsi128_si32(_mm_packus_epi16(words, words))) & 0xFFFFFF;
}
#else
inline uint32_t blendColours(const uint8_t* p, size_t stride, int share) {
  const int fx = acrossOf(share) >> 1, fy = downOf(share);
  uint32_t rgb = 0;
  for (int c = 0; c < 3; ++c) {
    const int top = p[c] * (128 - fx) + p[c + 3] * fx;
    const int bottom = p[stride + c] * (128 - fx) + p[stride + c + 3] * fx;
    const int sum = top * (kWholeShare - fy) + bottom * fy;
    rgb |= static_cast<uint32_t>((sum + kBlendHalf) >> kBlendBits) << (8 * c);
  }
  return rgb;
}
#endif

/// The same of gray pixels.
inline int blendGray(const uint8_t* p, size_t stride, int share) {
  const int fx = acrossOf(share) >> 1, fy = downOf(share);
  const int top = p[0] * (128 - fx) + p[1] * fx;
  const int bottom = p[stride] * (128 - fx) + p[stride + 1] * fx;
  return (top * (kWholeShare - fy) + bottom * fy + kBlendHalf) >> kBlendBits;
}

/// Blends as many pixels of a row of `count`, of one or three bytes, at once as this processor can,
/// from the first on, and returns how many that were: all or none. Results are never pure black or
/// white where there is an image, and black elsewhere. With `keys`, those for which some of the
/// four pixels are pure black or white are left to the caller: their bytes are not defined, and bit
/// (i % 8) of mixed[i / 8] is set; where all four are, the result is black. Reads three bytes
/// behind the pixels.
int blendManyPixels(const uint8_t* pixels, size_t stride, int channels, const RowSources& from,
                    int count, uint8_t* out, bool keys, uint8_t* mixed);

}  // namespace tarn::raster
