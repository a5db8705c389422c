#include "host/graphics/color.h"

#include <array>

#include "acgi.h"

namespace tarn::host {

namespace {

QRgb foregroundOn(QRgb background) {
  return qGray(background) < 128 ? qRgb(255, 255, 255) : qRgb(0, 0, 0);
}

// Indices 10 to 249: 24 hues in steps of 15 degrees, each in five brightnesses, every second index
// half as saturated.
QRgb hueColor(unsigned index) {
  static constexpr std::array<int, 5> kValues = {255, 204, 153, 127, 76};
  const int hue = static_cast<int>(index / 10 - 1) * 15;
  const int value = kValues[(index % 10) / 2];
  return QColor::fromHsv(hue, index % 2 == 0 ? 255 : 128, value).rgb();
}

}  // namespace

QRgb colorOfIndex(unsigned index, QRgb background) {
  static constexpr std::array<QRgb, 10> kFirst = {0xff000000, 0xffff0000, 0xffffff00, 0xff00ff00,
                                                  0xff00ffff, 0xff0000ff, 0xffff00ff, 0xffffffff,
                                                  0xff808080, 0xffc0c0c0};
  static constexpr std::array<int, 6> kGrays = {51, 91, 132, 173, 214, 255};
  constexpr unsigned kTrue = AcGiSubEntityTraits::kTrueColor;
  if ((index & 0xFF000000u) == kTrue) return 0xFF000000u | (index & 0xFFFFFFu);
  if (index == AcGiSubEntityTraits::kGroundColor) return background | 0xFF000000u;
  if (index == 0 || index == 7 || index > 255) return foregroundOn(background);
  if (index < kFirst.size()) return kFirst[index];
  if (index >= 250) return qRgb(kGrays[index - 250], kGrays[index - 250], kGrays[index - 250]);
  return hueColor(index);
}

}  // namespace tarn::host
