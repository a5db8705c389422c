// The picture of a cloud against an independent sum of where its points fall.
#include <QImage>
#include <QPainter>
#include <cmath>
#include <map>
#include <random>
#include <set>

#include "tests/host_pointcloud/cloudfixture.h"

namespace tarn::host {
namespace {

using test::LasPointSpec;
using test::LasSpec;

constexpr QRgb kBackground = 0xff102030U;

struct Placed {
  double x = 0, y = 0;  // insertion
  double scale = 1;
  double rotation = 0;  // degrees
};

class Pictures : public CloudTest {
 protected:
  void SetUp() override {
    CloudTest::SetUp();
    host_.app().setBackground(kBackground & 0xffffffU);
  }
  QImage picture() {
    const ViewState view = host_.app().view();
    QImage image(view.pixelWidth, view.pixelHeight, QImage::Format_RGB32);
    QPainter painter(&image);
    host_.app().renderTo(painter, view.pixelWidth, view.pixelHeight);
    return image;
  }
  void show(double x, double y, double height, double twist) {
    ViewState view = host_.app().view();
    view.centerX = x;
    view.centerY = y;
    view.height = height;
    view.twist = twist * M_PI / 180;
    host_.app().setView(view);
    host_.app().regenerate();
  }
  /// Pixel of a point of the file, by the definitions of file, placement and view.
  std::pair<int, int> pixelOf(const LasSpec& spec, const Placed& placed, const LasPointSpec& p) {
    const long double fx = p.x * static_cast<long double>(spec.scale[0]) + spec.offset[0];
    const long double fy = p.y * static_cast<long double>(spec.scale[1]) + spec.offset[1];
    const long double turn = placed.rotation * std::acos(-1.0L) / 180;
    const long double gx = placed.x + placed.scale * (fx * std::cos(turn) - fy * std::sin(turn));
    const long double gy = placed.y + placed.scale * (fx * std::sin(turn) + fy * std::cos(turn));
    const ViewState view = host_.app().view();
    const long double dx = gx - view.centerX;
    const long double dy = gy - view.centerY;
    const long double c = std::cos(static_cast<long double>(view.twist));
    const long double s = std::sin(static_cast<long double>(view.twist));
    const long double unit = static_cast<long double>(view.height) / view.pixelHeight;
    return {static_cast<int>(std::floor(view.pixelWidth / 2.0L + (dx * c - dy * s) / unit)),
            static_cast<int>(std::floor(view.pixelHeight / 2.0L - (dx * s + dy * c) / unit))};
  }
  static QRgb colorOf(const LasPointSpec& p) { return qRgb(p.red, p.green, p.blue); }
};

LasSpec scattered(int count, int width, int height, unsigned seed) {
  std::mt19937 random(seed);
  LasSpec spec;
  for (int i = 0; i < count; ++i) {
    spec.points.push_back({static_cast<int>(random() % static_cast<unsigned>(width)),
                           static_cast<int>(random() % static_cast<unsigned>(height)),
                           i * 37 % count,  // no two alike
                           1 + i % 255, i / 255 % 256, i / 65025 % 256});
  }
  return spec;
}

TEST_F(Pictures, EachPixelShowsTheHighestOfItsPoints) {
  const LasSpec spec = scattered(200003, 30000, 20000, 3);
  const std::string path = write("a.las", spec);
  const struct {
    const char* name;
    Placed placed;
    double x, y, height, twist;
  } cases[] = {
      {"whole", {}, 40500150.0137, 3512100.0071, 206.3719, 0},
      {"beside", {}, 40500010.3, 3512190.7, 150, 0},
      {"twisted", {}, 40500120, 3512090, 180, 33},
      {"turned", {-40000000, -3000000, 1, 90}, -43512100.0137, 37500150.0071, 190.3719, 0},
      {"half size", {100, 50, 0.5, 0}, 40500150 * 0.5 + 100, 3512100 * 0.5 + 50, 95, -20},
  };
  for (const auto& one : cases) {
    SCOPED_TRACE(one.name);
    host_.run({"-POINTCLOUDATTACH", path.c_str(), formatPoint(one.placed.x, one.placed.y).c_str(),
               std::to_string(one.placed.scale).c_str(),
               std::to_string(one.placed.rotation).c_str()});
    show(one.x, one.y, one.height, one.twist);
    std::map<std::pair<int, int>, const LasPointSpec*> expected;
    const ViewState view = host_.app().view();
    for (const LasPointSpec& p : spec.points) {
      const auto at = pixelOf(spec, one.placed, p);
      if (at.first < 0 || at.second < 0 || at.first >= view.pixelWidth ||
          at.second >= view.pixelHeight) {
        continue;
      }
      const LasPointSpec*& top = expected[at];
      if (top == nullptr || top->z < p.z) top = &p;
    }
    ASSERT_GT(expected.size(), 20000U);
    const QImage image = picture();
    int wrong = 0;
    for (int y = 0; y < image.height(); ++y) {
      for (int x = 0; x < image.width(); ++x) {
        const auto found = expected.find({x, y});
        wrong +=
            image.pixel(x, y) != (found == expected.end() ? kBackground : colorOf(*found->second));
      }
    }
    // A point on the edge of two pixels may come out on either side.
    EXPECT_LE(wrong, 4);
    host_.run({"ERASE", "ALL", ""});
  }
}

TEST_F(Pictures, CloseUpsDrawDotsOfThreePixels) {
  LasSpec spec = scattered(50, 30000, 20000, 5);
  spec.points[0] = {15000, 10000, 5000, 250, 5, 5};
  attach(write("a.las", spec));
  show(40500150, 3512100, 2, 0);
  const QImage image = picture();
  for (int y = -2; y <= 2; ++y) {
    for (int x = -2; x <= 2; ++x) {
      const bool isDot = std::abs(x) <= 1 && std::abs(y) <= 1;
      EXPECT_EQ(image.pixel(200 + x, 150 + y), isDot ? qRgb(250, 5, 5) : kBackground) << x << y;
    }
  }
}

/// Three million points in rows of a grid, as a scanner writes them, each with a colour that tells
/// its place.
LasSpec grid(int columns, int rows) {
  LasSpec spec;
  spec.points.reserve(static_cast<size_t>(columns) * rows);
  for (int y = 0; y < rows; ++y) {
    for (int x = 0; x < columns; ++x) {
      spec.points.push_back({x * 10, y * 10, (x * 7919 + y * 104729) % 1000003, 1 + x % 255,
                             y % 256, (x / 255 * 16 + y / 256) % 256});
    }
  }
  return spec;
}

TEST_F(Pictures, ManyPointsAreThinnedAndReadAgainWhenNear) {
  const LasSpec spec = grid(2000, 1500);
  attach(write("big.las", spec));
  ASSERT_TRUE(host_.app().zoomExtents());
  const QImage whole = picture();
  std::map<std::pair<int, int>, std::set<QRgb>> candidates;
  for (const LasPointSpec& p : spec.points) candidates[pixelOf(spec, {}, p)].insert(colorOf(p));
  int covered = 0;
  int foreign = 0;
  for (const auto& [at, colors] : candidates) {
    const QRgb pixel = whole.pixel(at.first, at.second);
    covered += pixel != kBackground;
    foreign += pixel != kBackground && colors.count(pixel) == 0;
  }
  EXPECT_GT(covered, 0.97 * static_cast<double>(candidates.size()));
  EXPECT_LT(foreign, 0.001 * static_cast<double>(candidates.size()));

  // Near, where each point has a pixel of its own, every one of them is there.
  show(40500100, 3512075, 300 * 0.05, 10);
  const QImage near = picture();
  int shown = 0;
  int wrong = 0;
  for (const LasPointSpec& p : spec.points) {
    const auto [x, y] = pixelOf(spec, {}, p);
    if (x < 0 || y < 0 || x >= near.width() || y >= near.height()) continue;
    ++shown;
    wrong += near.pixel(x, y) != colorOf(p);
  }
  EXPECT_GT(shown, 25000);
  EXPECT_LE(wrong, 4);

  // Without a regeneration in between a pan shows what is in memory.
  host_.app().panBy(2000, 0);
  int drawnPixels = 0;
  const QImage panned = picture();
  for (int x = 0; x < panned.width(); ++x) drawnPixels += panned.pixel(x, 150) != kBackground;
  EXPECT_GT(drawnPixels, 10);
}

}  // namespace
}  // namespace tarn::host
