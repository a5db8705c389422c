#include "components/raster/bilinear.h"

#if defined(__x86_64__) && defined(__GNUC__)
#include <immintrin.h>
#define TARN_AVX2 __attribute__((target("avx2")))
#endif

namespace tarn::raster {

#if defined(TARN_AVX2)
namespace {

constexpr int kGroup = 8;

/// What is the same for all groups.
struct Constants {
  __m256i pairs;
  __m256i bias;
  __m256i rounding;
  __m256i white;
  __m256i least;
  __m256i packed;
  __m256i tap[4];
};

TARN_AVX2 inline __m256i bothHalves(__m128i half) {
  return _mm256_broadcastsi128_si256(half);
}

TARN_AVX2 Constants makeConstants() {
  Constants c;
  // R R' of the upper row, R R' of the lower one, then green, blue and red once more.
  c.pairs = bothHalves(_mm_setr_epi8(0, 3, 8, 11, 1, 4, 9, 12, 2, 5, 10, 13, 0, 3, 8, 11));
  c.bias = _mm256_set1_epi8(static_cast<char>(0x80));
  c.rounding = _mm256_set1_epi32((128 << kBlendBits) + kBlendHalf);
  c.white = _mm256_set1_epi32(0xFFFFFF);
  c.least = _mm256_set1_epi32(0x010101);
  c.packed = bothHalves(_mm_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1));
  for (int k = 0; k < 4; ++k)
    c.tap[k] = _mm256_set1_epi32((4 * k) | (4 * k + 1) << 8 | (4 * k) << 16 | (4 * k + 1) << 24);
  return c;
}

/// The four pixels around two positions, one in each half.
TARN_AVX2 inline __m256i fourAround(const Constants& c, const uint8_t* p, const uint8_t* q,
                                    size_t stride) {
  const auto six = [](const uint8_t* at) { return reinterpret_cast<const __m128i*>(at); };
  const __m128i first = _mm_castps_si128(_mm_loadh_pi(_mm_castsi128_ps(_mm_loadl_epi64(six(p))),
                                                      reinterpret_cast<const __m64*>(p + stride)));
  const __m128i second = _mm_castps_si128(_mm_loadh_pi(_mm_castsi128_ps(_mm_loadl_epi64(six(q))),
                                                       reinterpret_cast<const __m64*>(q + stride)));
  return _mm256_shuffle_epi8(_mm256_inserti128_si256(_mm256_castsi128_si256(first), second, 1),
                             c.pairs);
}

/// -1 in each byte of the first number whose pixel is pure black or white; in all four numbers.
TARN_AVX2 inline __m256i keysOf(__m256i around) {
  const __m256i second = _mm256_shuffle_epi32(around, 0x49);
  const __m256i third = _mm256_shuffle_epi32(around, 0x92);
  const __m256i any = _mm256_or_si256(around, _mm256_or_si256(second, third));
  const __m256i all = _mm256_and_si256(around, _mm256_and_si256(second, third));
  return _mm256_or_si256(_mm256_cmpeq_epi8(any, _mm256_setzero_si256()),
                         _mm256_cmpeq_epi8(all, _mm256_set1_epi8(-1)));
}

/// Of eight positions: their weights, of which each number has two.
struct Shares {
  __m256i across;
  __m256i down;
};

TARN_AVX2 inline Shares sharesOf(const int32_t* share) {
  const __m256i both = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(share));
  const __m256i fx = _mm256_and_si256(_mm256_srli_epi32(both, 1), _mm256_set1_epi32(127));
  const __m256i fy = _mm256_srli_epi32(both, 8);
  // What the second one has is taken from the first.
  return {_mm256_add_epi32(_mm256_sub_epi32(_mm256_slli_epi32(fx, 8), fx), _mm256_set1_epi32(128)),
          _mm256_add_epi32(_mm256_sub_epi32(_mm256_slli_epi32(fy, 16), fy),
                           _mm256_set1_epi32(kWholeShare))};
}

/// The blends of the positions k and k + 4: red, green and blue in each half, as numbers of 32
/// bits.
template <int k, bool kHasKeys>
TARN_AVX2 inline __m256i blendPair(const Constants& c, const uint8_t* pixels, size_t stride,
                                   const int32_t* offset, const Shares& shares, __m256i& keys) {
  const __m256i around = fourAround(c, pixels + offset[k], pixels + offset[k + 4], stride);
  if (kHasKeys) keys = _mm256_blend_epi32(keys, keysOf(around), 0x11 << k);
  const __m256i rows = _mm256_maddubs_epi16(_mm256_shuffle_epi8(shares.across, c.tap[k]),
                                            _mm256_xor_si256(around, c.bias));
  const __m256i sums = _mm256_madd_epi16(rows, _mm256_shuffle_epi32(shares.down, k * 0x55));
  return _mm256_srli_epi32(_mm256_add_epi32(sums, c.rounding), kBlendBits);
}

/// Makes the pixels black that have keys alone, and returns which are mixed.
TARN_AVX2 inline int takeKeys(__m256i keys, __m256i& values) {
  if (_mm256_testz_si256(keys, keys)) return 0;
  const __m256i only = _mm256_cmpeq_epi32(keys, _mm256_set1_epi32(-1));
  const __m256i none = _mm256_cmpeq_epi32(keys, _mm256_setzero_si256());
  values = _mm256_andnot_si256(only, values);
  return ~_mm256_movemask_ps(_mm256_castsi256_ps(_mm256_or_si256(only, none))) & 0xFF;
}

/// Eight pixels from the i-th on as 24 bytes, with four more behind them; returns which are mixed.
template <bool kHasKeys, bool kAllInside>
TARN_AVX2 inline int coloursOf(const Constants& c, const uint8_t* pixels, size_t stride,
                               const RowSources& from, int i, uint8_t* out) {
  const Shares shares = sharesOf(from.share + i);
  const int32_t* offset = from.offset + i;
  __m256i keys = _mm256_setzero_si256();
  const __m256i v0 = blendPair<0, kHasKeys>(c, pixels, stride, offset, shares, keys);
  const __m256i v1 = blendPair<1, kHasKeys>(c, pixels, stride, offset, shares, keys);
  const __m256i v2 = blendPair<2, kHasKeys>(c, pixels, stride, offset, shares, keys);
  const __m256i v3 = blendPair<3, kHasKeys>(c, pixels, stride, offset, shares, keys);
  __m256i rgb = _mm256_packus_epi16(_mm256_packs_epi32(v0, v1), _mm256_packs_epi32(v2, v3));
  rgb = _mm256_and_si256(rgb, c.white);
  rgb = _mm256_or_si256(rgb,
                        _mm256_and_si256(_mm256_cmpeq_epi32(rgb, _mm256_setzero_si256()), c.least));
  rgb = _mm256_xor_si256(rgb, _mm256_and_si256(_mm256_cmpeq_epi32(rgb, c.white), c.least));
  if (!kAllInside) {
    const __m256i inside = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from.inside + i));
    rgb = _mm256_and_si256(rgb, inside);
    keys = _mm256_and_si256(keys, inside);
  }
  const int mixed = kHasKeys ? takeKeys(keys, rgb) : 0;
  rgb = _mm256_shuffle_epi8(rgb, c.packed);
  // Each half leaves four bytes behind its twelve, which what follows overwrites.
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm256_castsi256_si128(rgb));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 12), _mm256_extracti128_si256(rgb, 1));
  return mixed;
}

/// The same for gray, 8 bytes and none behind them.
template <bool kHasKeys, bool kAllInside>
TARN_AVX2 inline int graysOf(const Constants& c, const uint8_t* pixels, size_t stride,
                             const RowSources& from, int i, uint8_t* out) {
  const Shares shares = sharesOf(from.share + i);
  const __m256i offset = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from.offset + i));
  const auto row = [](const uint8_t* at) { return reinterpret_cast<const int*>(at); };
  const __m256i top = _mm256_i32gather_epi32(row(pixels), offset, 1);
  const __m256i bottom = _mm256_i32gather_epi32(row(pixels + stride), offset, 1);
  // Each number: two pixels of the upper row, two of the lower one.
  const __m256i around = _mm256_blend_epi16(top, _mm256_slli_epi32(bottom, 16), 0xAA);
  const __m256i across = _mm256_or_si256(shares.across, _mm256_slli_epi32(shares.across, 16));
  const __m256i rows = _mm256_maddubs_epi16(across, _mm256_xor_si256(around, c.bias));
  const __m256i sums = _mm256_madd_epi16(rows, shares.down);
  __m256i values = _mm256_srli_epi32(_mm256_add_epi32(sums, c.rounding), kBlendBits);
  values = _mm256_min_epi32(_mm256_max_epi32(values, _mm256_set1_epi32(1)), _mm256_set1_epi32(254));
  __m256i keys = _mm256_or_si256(_mm256_cmpeq_epi8(around, _mm256_setzero_si256()),
                                 _mm256_cmpeq_epi8(around, _mm256_set1_epi8(-1)));
  if (!kAllInside) {
    const __m256i inside = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from.inside + i));
    values = _mm256_and_si256(values, inside);
    keys = _mm256_and_si256(keys, inside);
  }
  const int mixed = kHasKeys ? takeKeys(keys, values) : 0;
  const __m256i words = _mm256_packs_epi32(values, values);
  const __m256i bytes = _mm256_packus_epi16(words, words);
  const int32_t halves[2] = {_mm_cvtsi128_si32(_mm256_castsi256_si128(bytes)),
                             _mm_cvtsi128_si32(_mm256_extracti128_si256(bytes, 1))};
  std::memcpy(out, halves, sizeof halves);
  return mixed;
}

template <int kChannels, bool kHasKeys, bool kAllInside>
TARN_AVX2 inline int groupOf(const Constants& c, const uint8_t* pixels, size_t stride,
                             const RowSources& from, int i, uint8_t* out) {
  if constexpr (kChannels == 3)
    return coloursOf<kHasKeys, kAllInside>(c, pixels, stride, from, i, out);
  return graysOf<kHasKeys, kAllInside>(c, pixels, stride, from, i, out);
}

template <int kChannels, bool kHasKeys, bool kAllInside>
TARN_AVX2 int blendGroups(const uint8_t* pixels, size_t stride, const RowSources& from, int count,
                          uint8_t* out, uint8_t* mixed) {
  constexpr auto kBytes = static_cast<size_t>(kChannels);
  const Constants c = makeConstants();
  // Two more pixels take the bytes that are stored beyond a group.
  int i = 0;
  for (; i + kGroup + 2 <= count; i += kGroup) {
    const int left =
        groupOf<kChannels, kHasKeys, kAllInside>(c, pixels, stride, from, i, out + kBytes * i);
    if (kHasKeys) mixed[i / kGroup] = static_cast<uint8_t>(left);
  }
  while (i < count) {
    // The last ones once more with as many before them as make a group.
    const int first = count - i < kGroup ? count - kGroup : i;
    uint8_t bytes[kBytes * kGroup + 8];
    const int left =
        groupOf<kChannels, kHasKeys, kAllInside>(c, pixels, stride, from, first, bytes);
    const size_t known = kBytes * (i - first);
    std::memcpy(out + kBytes * i, bytes + known, kBytes * kGroup - known);
    if (kHasKeys) mixed[i / kGroup] = static_cast<uint8_t>(left >> (i - first));
    i = first + kGroup;
  }
  return count;
}

template <int kChannels>
int blendMany(const uint8_t* pixels, size_t stride, const RowSources& from, int count, uint8_t* out,
              bool keys, uint8_t* mixed) {
  const auto blend =
      keys ? from.inside ? blendGroups<kChannels, true, false> : blendGroups<kChannels, true, true>
      : from.inside ? blendGroups<kChannels, false, false>
                    : blendGroups<kChannels, false, true>;
  return blend(pixels, stride, from, count, out, mixed);
}

const bool kHasAvx2 = __builtin_cpu_supports("avx2") != 0;

}  // namespace

int blendManyPixels(const uint8_t* pixels, size_t stride, int channels, const RowSources& from,
                    int count, uint8_t* out, bool keys, uint8_t* mixed) {
  if (!kHasAvx2 || count < kGroup) return 0;
  return channels == 3 ? blendMany<3>(pixels, stride, from, count, out, keys, mixed)
                       : blendMany<1>(pixels, stride, from, count, out, keys, mixed);
}
#else
int blendManyPixels(const uint8_t*, size_t, int, const RowSources&, int, uint8_t*, bool, uint8_t*) {
  return 0;
}
#endif

}  // namespace tarn::raster
