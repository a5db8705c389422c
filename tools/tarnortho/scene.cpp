#include "tools/tarnortho/scene.h"

#include <algorithm>
#include <cmath>

namespace tarn::ortho {
namespace {

constexpr double kBlockWidth = 150;   // metres between lanes running north
constexpr double kBlockHeight = 110;  // metres between lanes running east
constexpr double kHousePlot = 26;

float smooth(float t) {
  return t * t * (3 - 2 * t);
}

/// Value noise in [-1, 1] with features of about `size` metres.
float valueNoise(double x, double y, double size, uint32_t seed) {
  const double gx = x / size;
  const double gy = y / size;
  const auto ix = static_cast<int32_t>(std::floor(gx));
  const auto iy = static_cast<int32_t>(std::floor(gy));
  const float fx = smooth(static_cast<float>(gx - ix));
  const float fy = smooth(static_cast<float>(gy - iy));
  const float low = hashNoise(ix, iy, seed) * (1 - fx) + hashNoise(ix + 1, iy, seed) * fx;
  const float high = hashNoise(ix, iy + 1, seed) * (1 - fx) + hashNoise(ix + 1, iy + 1, seed) * fx;
  return 2 * (low * (1 - fy) + high * fy) - 1;
}

Rgb shade(Rgb c, float factor) {
  return {c.r * factor, c.g * factor, c.b * factor};
}
Rgb add(Rgb c, float amount) {
  return {c.r + amount, c.g + amount, c.b + amount};
}
Rgb mix(Rgb a, Rgb b, float t) {
  return {a.r + (b.r - a.r) * t, a.g + (b.g - a.g) * t, a.b + (b.b - a.b) * t};
}

double riverCentre(double y) {
  return 330 + 95 * std::sin(y / 210) + 38 * std::sin(y / 67 + 1.3);
}

double highwayCentre(double x) {
  return 250 + 60 * std::sin(x / 300) + 0.06 * x;
}

/// A tree crown with its shadow to the south-east, when one stands near this place.
bool tree(double x, double y, double spacing, float share, uint32_t seed, Rgb& color) {
  const auto ix = static_cast<int32_t>(std::floor(x / spacing));
  const auto iy = static_cast<int32_t>(std::floor(y / spacing));
  if (hashNoise(ix, iy, seed) > share) return false;
  const double cx = (ix + 0.3 + 0.4 * hashNoise(ix, iy, seed + 1)) * spacing;
  const double cy = (iy + 0.3 + 0.4 * hashNoise(ix, iy, seed + 2)) * spacing;
  const double radius = spacing * (0.16 + 0.12 * hashNoise(ix, iy, seed + 3));
  const double d = std::hypot(x - cx, y - cy);
  if (d < radius) {
    const float light = 1.0F + 0.35F * static_cast<float>((cx - x + y - cy) / (2 * radius));
    color = shade({52, 84, 42}, light * (1 + 0.25F * valueNoise(x, y, 0.8, seed + 4)));
    return true;
  }
  if (std::hypot(x - cx - 0.5 * radius, y - cy + 0.5 * radius) < radius) {
    color = shade(color, 0.5F);
    return true;
  }
  return false;
}

Rgb roofColor(float kind) {
  if (kind < 0.45F) return {168, 84, 64};
  if (kind < 0.7F) return {112, 110, 116};
  if (kind < 0.88F) return {86, 104, 132};
  return {196, 192, 184};
}

/// Houses with gable roofs, shadows, yards and paths.
Rgb village(double x, double y) {
  const auto ix = static_cast<int32_t>(std::floor(x / kHousePlot));
  const auto iy = static_cast<int32_t>(std::floor(y / kHousePlot));
  Rgb color = mix({126, 130, 92}, {150, 140, 118}, 0.5F + 0.5F * valueNoise(x, y, 9, 40));
  const double u0 = x - (ix + 0.5) * kHousePlot;
  const double v0 = y - (iy + 0.5) * kHousePlot;
  if (std::fabs(u0) > kHousePlot / 2 - 0.35 || std::fabs(v0) > kHousePlot / 2 - 0.35) {
    return {176, 170, 158};  // the wall between two plots
  }
  if (hashNoise(ix, iy, 41) < 0.12F) {
    tree(x, y, 7, 0.7F, 42, color);
    return color;
  }
  const double angle = (hashNoise(ix, iy, 43) - 0.5) * 0.5;
  const double co = std::cos(angle);
  const double si = std::sin(angle);
  const double halfWidth = 5.5 + 3.0 * hashNoise(ix, iy, 44);
  const double halfDepth = 4.0 + 2.0 * hashNoise(ix, iy, 45);
  const double u = u0 * co + v0 * si;
  const double v = v0 * co - u0 * si;
  if (std::fabs(u) < halfWidth && std::fabs(v) < halfDepth) {
    Rgb roof = roofColor(hashNoise(ix, iy, 46));
    roof = shade(roof, v > 0 ? 1.12F : 0.82F);
    if (std::fmod(std::fabs(v), 0.6) < 0.15) roof = shade(roof, 0.92F);
    if (std::fabs(v) < 0.15) roof = add(roof, 25);
    return roof;
  }
  if (std::fabs(u - 2.2) < halfWidth && std::fabs(v + 2.2) < halfDepth) return shade(color, 0.45F);
  if (u0 > halfWidth && u0 < halfWidth + 2.2) color = {178, 172, 160};
  tree(x, y, 6, 0.25F, 47, color);
  return color;
}

Rgb fieldColor(double x, double y, int32_t block, int32_t strip) {
  const float kind = hashNoise(block, strip, 50);
  Rgb color{92, 122, 66};
  if (kind > 0.82F) {
    color = {166, 142, 108};
  } else if (kind > 0.6F) {
    color = {178, 168, 96};
  } else if (kind > 0.35F) {
    color = {122, 142, 78};
  }
  color = add(color, 26 * (hashNoise(block, strip, 51) - 0.5F));
  const bool alongX = hashNoise(block, strip, 52) < 0.5F;
  const double across = alongX ? y : x;
  const double period = 0.9 + 1.6 * hashNoise(block, strip, 53);
  const auto rows = static_cast<float>(std::sin(across * 2 * 3.14159265 / period));
  return add(color, 7 * rows + 11 * valueNoise(x, y, 17, 54) + 6 * valueNoise(x, y, 2.3, 55));
}

/// Blocks between lanes: villages, woods or strips of field.
Rgb countryside(double x, double y) {
  const double u = x * 0.978 + y * 0.208;
  const double v = y * 0.978 - x * 0.208;
  const auto ix = static_cast<int32_t>(std::floor(u / kBlockWidth));
  const auto iy = static_cast<int32_t>(std::floor(v / kBlockHeight));
  const double inX = u - ix * kBlockWidth;
  const double inY = v - iy * kBlockHeight;
  const double edge = std::min(std::min(inX, kBlockWidth - inX), std::min(inY, kBlockHeight - inY));
  if (edge < 2.1) {
    return add({172, 164, 150},
               (edge < 1.4 && edge > 0.8 ? 10.F : 0.F) + 8 * valueNoise(x, y, 1.5, 60));
  }
  if (edge < 3.6) return add({86, 104, 62}, 14 * valueNoise(x, y, 1.1, 61));
  const float kind = hashNoise(ix, iy, 62);
  if (kind < 0.28F) return village(u, v);
  if (kind > 0.9F) {
    Rgb wood = add({64, 88, 50}, 18 * valueNoise(x, y, 6, 63));
    tree(x, y, 6, 0.85F, 64, wood);
    return wood;
  }
  const int strips = 2 + static_cast<int>(5 * hashNoise(ix, iy, 65));
  const double width = kBlockWidth / strips;
  const auto strip = static_cast<int32_t>(inX / width);
  if (std::fabs(inX - strip * width) < 0.5) return {104, 116, 74};
  return fieldColor(x, y, ix * 131 + iy, strip);
}

bool water(double x, double y, Rgb& color) {
  const double river = std::fabs(x - riverCentre(y)) - 14 - 3 * valueNoise(x, y, 40, 70);
  const double lake =
      std::hypot((x - 610) / 95, (y - 470) / 62) - 1 - 0.12 * valueNoise(x, y, 45, 71);
  const double bank = std::min(river, lake * 60);
  if (bank > 5) return false;
  if (bank > 0) {
    color = mix({142, 132, 102}, {74, 98, 54}, static_cast<float>(bank / 5));
    if (bank > 1.5) tree(x, y, 7, 0.5F, 72, color);
    return true;
  }
  const auto depth = static_cast<float>(std::min(1.0, -bank / 10));
  color = mix({104, 118, 104}, {44, 74, 86}, depth);
  color = add(color, 4 * valueNoise(x, y, 3, 73) + 3 * valueNoise(x, y, 0.9, 74));
  return true;
}

bool highway(double x, double y, Rgb& color) {
  const double d = y - highwayCentre(x);
  const double a = std::fabs(d);
  if (a > 7.5) return false;
  if (a > 5.5) {
    color = add({96, 108, 70}, 10 * valueNoise(x, y, 1.3, 80));
    return true;
  }
  color = add({98, 98, 102}, 7 * valueNoise(x, y, 2, 81));
  const bool dash = std::fmod(std::fabs(x), 12.0) < 6.0;
  if ((a < 0.12 && dash) || std::fabs(a - 4.9) < 0.12) color = {226, 226, 220};
  const auto car = static_cast<int32_t>(std::floor(x / 35));
  const double carX = (car + 0.2 + 0.6 * hashNoise(car, 1, 82)) * 35;
  const double lane = hashNoise(car, 2, 82) < 0.5F ? -2.5 : 2.5;
  if (std::fabs(x - carX) < 2.3 && std::fabs(d - lane) < 0.9 && hashNoise(car, 3, 82) < 0.6F) {
    const float light = 60 + 160 * hashNoise(car, 4, 82);
    color = {light, light * (0.5F + 0.5F * hashNoise(car, 5, 82)), light * 0.8F};
  }
  return true;
}

}  // namespace

float hashNoise(int32_t x, int32_t y, uint32_t seed) {
  uint32_t h = static_cast<uint32_t>(x) * 0x9E3779B1U ^ static_cast<uint32_t>(y) * 0x85EBCA77U ^
               seed * 0xC2B2AE3DU;
  h = (h ^ (h >> 15)) * 0x2C1B3C6DU;
  h = (h ^ (h >> 12)) * 0x297A2D39U;
  h ^= h >> 15;
  return static_cast<float>(h >> 8) * (1.0F / 16777216.0F);
}

Rgb sceneColor(double x, double y) {
  Rgb color;
  if (highway(x, y, color)) return color;
  if (water(x, y, color)) return color;
  return add(countryside(x, y), 7 * valueNoise(x, y, 130, 90));
}

}  // namespace tarn::ortho
