#include "host/graphics/blit.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "base/parallel.h"

namespace tarn::host {

namespace {

constexpr double kSameCell = 1e-6;
/// Twisted cells from this size on (device pixels) are shown with their edges.
constexpr double kLargeTwistedCell = 2.0;

struct Frame {
  PixelPoint topLeft;
  GroundVector column;  ///< device vector of one image column, y down
  GroundVector row;     ///< device vector of one image row
};

Frame deviceFrame(const ImageItem& item, const ViewState& view) {
  const double unit = view.unitsPerPixel();
  const double c = std::cos(view.twist) / unit;
  const double s = std::sin(view.twist) / unit;
  const auto toDevice = [&](double x, double y) {
    return GroundVector{x * c - y * s, -(x * s + y * c)};
  };
  Frame frame;
  const GroundVector corner = toDevice((item.origin.x - view.centerX) + item.v.x,
                                       (item.origin.y - view.centerY) + item.v.y);
  frame.topLeft = {view.pixelWidth / 2.0 + corner.x, view.pixelHeight / 2.0 + corner.y};
  const int w = item.image.width();
  const int h = item.image.height();
  frame.column = toDevice(item.u.x / w, item.u.y / w);
  frame.row = toDevice(-item.v.x / h, -item.v.y / h);
  return frame;
}

bool isUpright(const Frame& f, int w, int h) {
  // Less than a hundredth of a pixel over the whole picture counts as straight.
  return f.column.x > 0 && f.row.y > 0 && std::fabs(f.column.y) * w < 0.01 &&
         std::fabs(f.row.x) * h < 0.01;
}

BlitMode chooseMode(const Frame& f, int w, int h) {
  const double cellX = std::hypot(f.column.x, f.column.y);
  const double cellY = std::hypot(f.row.x, f.row.y);
  if (!isUpright(f, w, h)) {
    return std::min(cellX, cellY) >= kLargeTwistedCell ? BlitMode::kNearest : BlitMode::kBilinear;
  }
  if (std::fabs(cellX - 1) <= kSameCell && std::fabs(cellY - 1) <= kSameCell) {
    return BlitMode::kExact;
  }
  return std::min(cellX, cellY) > 1 - kSameCell ? BlitMode::kNearest : BlitMode::kBilinear;
}

/// Device pixels whose centres may lie inside the picture, clipped to the device.
QRect coveredPixels(const BlitPlan& plan, int imageWidth, int imageHeight, int width, int height) {
  const double det = plan.ix * plan.jy - plan.iy * plan.jx;
  double minX = 1e300, minY = 1e300, maxX = -1e300, maxY = -1e300;
  for (int corner = 0; corner < 4; ++corner) {
    const double i = (corner % 2 == 0 ? 0 : imageWidth) - plan.i0;
    const double j = (corner < 2 ? 0 : imageHeight) - plan.j0;
    const double x = (i * plan.jy - j * plan.iy) / det;
    const double y = (j * plan.ix - i * plan.jx) / det;
    minX = std::min(minX, x);
    maxX = std::max(maxX, x);
    minY = std::min(minY, y);
    maxY = std::max(maxY, y);
  }
  const int left = static_cast<int>(std::floor(std::clamp(minX, 0.0, width * 1.0)));
  const int top = static_cast<int>(std::floor(std::clamp(minY, 0.0, height * 1.0)));
  const int right = static_cast<int>(std::ceil(std::clamp(maxX, 0.0, width * 1.0)));
  const int bottom = static_cast<int>(std::ceil(std::clamp(maxY, 0.0, height * 1.0)));
  return {left, top, right - left, bottom - top};
}

/// Four premultiplied pixels weighted with eighths of bits (weights 0 to 256).
inline std::uint32_t mix(std::uint32_t a, std::uint32_t b, std::uint32_t weightB) {
  const std::uint32_t weightA = 256 - weightB;
  const std::uint32_t low =
      (((a & 0xff00ff) * weightA + (b & 0xff00ff) * weightB + 0x800080) >> 8) & 0xff00ff;
  const std::uint32_t high =
      (((a >> 8) & 0xff00ff) * weightA + ((b >> 8) & 0xff00ff) * weightB + 0x800080) & 0xff00ff00;
  return low | high;
}

class Sampler {
 public:
  explicit Sampler(const QImage& image)
      : bits_(reinterpret_cast<const std::uint32_t*>(image.constBits())),
        stride_(image.bytesPerLine() / 4),
        width_(image.width()),
        height_(image.height()) {}

  bool holds(double i, double j) const { return i >= 0 && j >= 0 && i < width_ && j < height_; }

  const std::uint32_t* row(int j) const { return bits_ + static_cast<ptrdiff_t>(j) * stride_; }

  std::uint32_t nearest(double i, double j) const {
    return at(static_cast<int>(i), static_cast<int>(j));
  }

  /// Between the four nearest pixel centres; at the rim the rim's pixels are repeated.
  std::uint32_t bilinear(double i, double j) const {
    const double x = i - 0.5;
    const double y = j - 0.5;
    const int left = static_cast<int>(std::floor(x));
    const int top = static_cast<int>(std::floor(y));
    const auto wx = static_cast<std::uint32_t>((x - left) * 512 + 1) >> 1;
    const auto wy = static_cast<std::uint32_t>((y - top) * 512 + 1) >> 1;
    const int l = std::max(left, 0);
    const int r = std::min(left + 1, width_ - 1);
    const int t = std::max(top, 0);
    const int b = std::min(top + 1, height_ - 1);
    return mix(mix(at(l, t), at(r, t), wx), mix(at(l, b), at(r, b), wx), wy);
  }

 private:
  std::uint32_t at(int i, int j) const { return bits_[static_cast<ptrdiff_t>(j) * stride_ + i]; }

  const std::uint32_t* bits_;
  ptrdiff_t stride_;
  int width_;
  int height_;
};

/// From where along one axis a device pixel takes its colour; the same as a Sampler does.
struct Tap {
  int first = -1;  ///< below zero: nothing there
  int second = 0;
  std::uint32_t weight = 0;  ///< of the second, of 256
};

/// For the device pixels `from` to `from + count`, whose centres lie at step * x + start.
std::vector<Tap> axisTaps(double step, double start, int from, int count, int size, bool smooth) {
  std::vector<Tap> taps(static_cast<size_t>(count));
  for (int k = 0; k < count; ++k) {
    const double at = step * (from + k + 0.5) + start;
    if (!(at >= 0 && at < size)) continue;
    Tap& tap = taps[static_cast<size_t>(k)];
    if (!smooth) {
      tap.first = static_cast<int>(at);
      continue;
    }
    const double x = at - 0.5;
    const int low = static_cast<int>(std::floor(x));
    tap.first = std::max(low, 0);
    tap.second = std::min(low + 1, size - 1);
    tap.weight = static_cast<std::uint32_t>((x - low) * 512 + 1) >> 1;
  }
  return taps;
}

/// One row of an upright picture: rows and columns of both are parallel.
void drawUprightRow(const Sampler& sampler, const std::vector<Tap>& columns, const Tap& row,
                    bool smooth, std::uint32_t* line) {
  if (row.first < 0) {
    std::fill_n(line, columns.size(), 0U);
    return;
  }
  const std::uint32_t* top = sampler.row(row.first);
  if (!smooth) {
    for (size_t k = 0; k < columns.size(); ++k) {
      line[k] = columns[k].first < 0 ? 0 : top[columns[k].first];
    }
    return;
  }
  const std::uint32_t* bottom = sampler.row(row.second);
  for (size_t k = 0; k < columns.size(); ++k) {
    const Tap& tap = columns[k];
    line[k] = tap.first < 0
                  ? 0
                  : mix(mix(top[tap.first], top[tap.second], tap.weight),
                        mix(bottom[tap.first], bottom[tap.second], tap.weight), row.weight);
  }
}

}  // namespace

BlitPlan planBlit(const ImageItem& item, const ViewState& view) {
  BlitPlan plan;
  const int w = item.image.width();
  const int h = item.image.height();
  if (w <= 0 || h <= 0) return plan;
  const Frame f = deviceFrame(item, view);
  const double det = f.column.x * f.row.y - f.row.x * f.column.y;
  if (!std::isfinite(det) || det == 0 || !std::isfinite(f.topLeft.x + f.topLeft.y)) return plan;
  plan.ix = f.row.y / det;
  plan.iy = -f.row.x / det;
  plan.jx = -f.column.y / det;
  plan.jy = f.column.x / det;
  plan.i0 = -(plan.ix * f.topLeft.x + plan.iy * f.topLeft.y);
  plan.j0 = -(plan.jx * f.topLeft.x + plan.jy * f.topLeft.y);
  if (coveredPixels(plan, w, h, view.pixelWidth, view.pixelHeight).isEmpty()) return plan;
  plan.mode = chooseMode(f, w, h);
  if (plan.mode == BlitMode::kExact) {
    plan.exactTarget = {static_cast<int>(std::floor(f.topLeft.x + 0.5)),
                        static_cast<int>(std::floor(f.topLeft.y + 0.5))};
  }
  return plan;
}

QImage resample(const QImage& source, const BlitPlan& plan, const QRect& wanted, QPoint& target) {
  if (plan.mode != BlitMode::kNearest && plan.mode != BlitMode::kBilinear) return {};
  const QRect covered = wanted & coveredPixels(plan, source.width(), source.height(),
                                               wanted.right() + 1, wanted.bottom() + 1);
  if (covered.isEmpty()) return {};
  target = covered.topLeft();
  QImage out(covered.size(), QImage::Format_ARGB32_Premultiplied);
  if (out.isNull()) return out;
  const Sampler sampler(source);
  const bool smooth = plan.mode == BlitMode::kBilinear;
  // Detached once, before the threads write their own rows.
  std::uint32_t* const bits = reinterpret_cast<std::uint32_t*>(out.bits());
  const ptrdiff_t stride = out.bytesPerLine() / 4;
  const bool upright = plan.iy == 0 && plan.jx == 0;
  std::vector<Tap> columns;
  std::vector<Tap> rows;
  if (upright) {
    columns = axisTaps(plan.ix, plan.i0, covered.left(), covered.width(), source.width(), smooth);
    rows = axisTaps(plan.jy, plan.j0, covered.top(), covered.height(), source.height(), smooth);
  }
  const auto drawRow = [&](int row) {
    std::uint32_t* line = bits + row * stride;
    if (upright) {
      return drawUprightRow(sampler, columns, rows[static_cast<size_t>(row)], smooth, line);
    }
    const double y = covered.top() + row + 0.5;
    const double iRow = plan.iy * y + plan.i0;
    const double jRow = plan.jy * y + plan.j0;
    for (int column = 0; column < covered.width(); ++column) {
      const double x = covered.left() + column + 0.5;
      const double i = plan.ix * x + iRow;
      const double j = plan.jx * x + jRow;
      line[column] = !sampler.holds(i, j) ? 0
                     : smooth             ? sampler.bilinear(i, j)
                                          : sampler.nearest(i, j);
    }
  };
  constexpr int kRowsAtOnce = 64;
  const int bands = (covered.height() + kRowsAtOnce - 1) / kRowsAtOnce;
  parallelFor(static_cast<size_t>(bands), [&](size_t band) {
    const int first = static_cast<int>(band) * kRowsAtOnce;
    const int last = std::min(first + kRowsAtOnce, covered.height());
    for (int row = first; row < last; ++row) drawRow(row);
  });
  return out;
}

}  // namespace tarn::host
