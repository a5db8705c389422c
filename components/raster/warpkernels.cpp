#include "components/raster/warpkernels.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "components/raster/kernels.h"
#include "components/raster/vectorised.h"

namespace tarn::raster {
namespace {

constexpr int kOne = kWholeShare;
constexpr uint32_t kWhite = 0xFFFFFF;

struct Weights {
  int w[4];
};

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

inline bool keysAroundGray(const uint8_t* p, size_t stride) {
  return isKey(p, 1) || isKey(p + 1, 1) || isKey(p + stride, 1) || isKey(p + stride + 1, 1);
}

/// One pixel of a position inside the image.
inline void sampleOne(const PixelPatch& patch, const uint8_t* p, int share, uint8_t* out) {
  const size_t stride = patch.stride();
  const bool gray = patch.channels == 1;
  if (patch.hasKeys && (gray ? keysAroundGray(p, stride) : keysAround(p, stride))) {
    blendContent(p, stride, patch.channels, share, out);
  } else if (gray) {
    *out = static_cast<uint8_t>(std::clamp(blendGray(p, stride, share), 1, 254));
  } else {
    const uint32_t rgb = contentOnly(blendColours(p, stride, share));
    std::memcpy(out, &rgb, 3);
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

void sampleRow(const PixelPatch& patch, const RowSources& from, int count, uint8_t* out) {
  const auto channels = static_cast<size_t>(patch.channels);
  const uint8_t* pixels = patch.pixels.get();
  std::vector<uint8_t> mixed(patch.hasKeys ? (static_cast<size_t>(count) + 7) / 8 : 0);
  const int done = blendManyPixels(pixels, patch.stride(), patch.channels, from, count, out,
                                   patch.hasKeys, mixed.data());
  for (int i = 0; i < done && patch.hasKeys; i += 8) {
    for (int left = mixed[i / 8], k = i; left != 0; left >>= 1, ++k) {
      if ((left & 1) != 0)
        blendContent(pixels + from.offset[k], patch.stride(), patch.channels, from.share[k],
                     out + channels * k);
    }
  }
  for (int i = done; i < count; ++i) {
    uint8_t* target = out + channels * i;
    if (from.inside && from.inside[i] == 0) {
      std::memset(target, 0, channels);
    } else {
      sampleOne(patch, pixels + from.offset[i], from.share[i], target);
    }
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
