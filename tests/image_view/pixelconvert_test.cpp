#include "_image/view/pixelconvert.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace {

using Bytes = std::vector<uint8_t>;

Bytes reference(const Bytes& rgb) {
  Bytes out;
  for (size_t i = 0; i + 2 < rgb.size(); i += 3) {
    const bool black = rgb[i] == 0 && rgb[i + 1] == 0 && rgb[i + 2] == 0;
    const bool white = rgb[i] == 255 && rgb[i + 1] == 255 && rgb[i + 2] == 255;
    const uint8_t alpha = black || white ? 0 : 255;
    for (const uint8_t byte : {rgb[i + 2], rgb[i + 1], rgb[i], alpha}) out.push_back(byte);
  }
  return out;
}

TEST(PixelConvert, EqualsTheSlowWayAtEveryLength) {
  std::mt19937 random(11);
  const uint8_t values[] = {0, 1, 254, 255, 255, 0, 90};
  for (size_t count = 0; count < 70; ++count) {
    // Exactly as long as is read, on the heap: a sanitizer sees a byte too many.
    Bytes rgb(3 * count);
    for (uint8_t& byte : rgb) byte = values[random() % 7];
    Bytes out(4 * count, 77);
    tarn::image::convertRgbToBgra(rgb.data(), count, out.data());
    EXPECT_EQ(out, reference(rgb)) << count;
  }
}

TEST(PixelConvert, OnlyPureBlackAndPureWhiteAreTransparent) {
  for (const Bytes& opaque : {Bytes{255, 255, 254}, Bytes{0, 0, 1}, Bytes{0, 1, 0},
                              Bytes{255, 0, 0}, Bytes{254, 255, 255}}) {
    Bytes out(4);
    tarn::image::convertRgbToBgra(opaque.data(), 1, out.data());
    EXPECT_EQ(out, (Bytes{opaque[2], opaque[1], opaque[0], 255}));
  }
}

TEST(PixelConvert, LimitsLeaveTheFarCornerAsItIs) {
  const Bytes input{10, 20, 30, 40, 50, 60, 70, 80, 90, 100, 110, 120};
  Bytes all(16, 9);
  tarn::image::convertRgbToBgraWithin(input.data(), 2, 2, 3, 3, all.data());
  EXPECT_EQ(all, (Bytes{30, 20, 10, 255, 60, 50, 40, 255, 90, 80, 70, 255, 120, 110, 100, 255}));
  Bytes some(16, 9);
  tarn::image::convertRgbToBgraWithin(input.data(), 2, 2, 1, 1, some.data());
  EXPECT_EQ(some, (Bytes{30, 20, 10, 255, 60, 50, 40, 255, 90, 80, 70, 255, 9, 9, 9, 9}));
}

}  // namespace
