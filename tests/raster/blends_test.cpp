// Many pixels blended at once are those that are blended one by one.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "components/raster/warpkernels.h"

namespace {

using namespace tarn::raster;

std::mt19937 random_(7);

int below(int limit) {
  return static_cast<int>(random_() % static_cast<unsigned>(limit));
}

/// With a few bytes behind it, as a patch has.
PixelPatch makePatch(int channels, bool keys) {
  PixelPatch patch;
  patch.width = 1 + below(40);
  patch.height = 1 + below(20);
  patch.channels = channels;
  patch.hasKeys = keys;
  Tile room;
  room.allocate(patch.width, patch.height + 9, channels);
  std::generate_n(room.pixels.get(), room.bytes(), [&] {
    const int kind = keys ? below(4) : 3;
    return static_cast<uint8_t>(kind == 0 ? 0 : kind == 1 ? 255 : 1 + below(254));
  });
  patch.pixels = std::move(room.pixels);
  return patch;
}

TEST(Blends, OfManyPixelsAreThoseOfEach) {
  for (int round = 0; round < 400; ++round) {
    const int channels = round % 2 == 0 ? 1 : 3, count = 1 + round / 10;
    const PixelPatch patch = makePatch(channels, round % 4 > 1);
    std::vector<int32_t> offset, share, inside;
    for (int i = 0; i < count; ++i) {
      offset.push_back((below(patch.height) * patch.width + below(patch.width)) * channels);
      share.push_back(below(65536));
      inside.push_back(below(3) == 0 ? 0 : -1);
    }
    const bool hasOutside = round % 8 > 3;
    const auto sources = [&](int i) {
      return RowSources{&offset[i], &share[i], hasOutside ? &inside[i] : nullptr};
    };
    std::vector<uint8_t> together(static_cast<size_t>(count) * channels), each = together;
    sampleRow(patch, sources(0), count, together.data());
    for (int i = 0; i < count; ++i)
      sampleRow(patch, sources(i), 1, &each[static_cast<size_t>(i) * channels]);
    EXPECT_EQ(together, each) << round;
  }
}

}  // namespace
