// Slips of the pen: which are found, what is said of them, and tables without one.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>

#include "commoncode/fitreport/fittext.h"
#include "components/rectify/quality.h"
#include "components/rectify/repair.h"

namespace {

using namespace tarn::rectify;
using kel::RectifyChange;
using kel::RectifyRepair;
using ::testing::HasSubstr;

using Table = std::vector<PointPair>;

constexpr double kPrefix = 40e6;

/// Points of a survey of 400 m with errors of some millimetres; sources about their place.
Table survey(double east, double north, size_t count = 6) {
  const PlanePoint places[] = {{0, 0}, {390, 12}, {401, 296}, {8, 305}, {203, 148}, {97, 211}};
  Table table;
  for (size_t i = 0; i < count; ++i) {
    const PlanePoint p = places[i];
    const double noise = 0.004 * std::sin(5.0 * static_cast<double>(i + 1));
    table.push_back({{east + p.x, north + p.y},
                     {east + 6 + 1.001 * p.x - 0.02 * p.y + noise,
                      north - 4 + 0.02 * p.x + 1.001 * p.y - noise}});
  }
  return table;
}

void swapTarget(PointPair& pair) {
  std::swap(pair.target.x, pair.target.y);
}
void swapSource(PointPair& pair) {
  std::swap(pair.source.x, pair.source.y);
}
void dropPrefix(PointPair& pair) {
  pair.target.x -= kPrefix;
}

ImageOutline imageAt(double east, double north) {
  return ImageOutline::rectangle({east - 20, north - 20}, {east + 420, north + 320});
}

std::string said(const Table& table, const RectifyRepair& repair,
                 tarn::fitreport::Language language) {
  kel::RectifyQuality quality;
  quality.fault = kel::RectifyFault::kNone;
  quality.pointCount = static_cast<int>(table.size());
  quality.repair = repair;
  return tarn::fitreport::fitText(quality, {}, language).toStdString();
}

double distanceOf(const Table& a, const Table& b) {
  double most = 0;
  for (size_t i = 0; i < a.size(); ++i)
    most = std::max({most, std::hypot(a[i].source.x - b[i].source.x, a[i].source.y - b[i].source.y),
                     std::hypot(a[i].target.x - b[i].target.x, a[i].target.y - b[i].target.y)});
  return most;
}

struct Slip {
  const char* name;
  double east, north;
  std::function<void(Table&)> make;
  size_t changes;
  const char* chinese;
  const char* english;
};

TEST(Repair, BringsBackWhatWasMeant) {
  constexpr double kEast = 40500100, kPlain = 500100, kNorth = 3512300;
  const auto all = [](void (*slip)(PointPair&)) {
    return [slip](Table& table) {
      for (PointPair& pair : table) slip(pair);
    };
  };
  const auto rows = [](std::vector<size_t> which, void (*slip)(PointPair&)) {
    return [which = std::move(which), slip](Table& table) {
      for (const size_t row : which) slip(table[row]);
    };
  };
  const Slip slips[] = {
      {"all targets", kEast, kNorth, all(swapTarget), 6, "目标东、北坐标好像互换了：",
       "East and north of the targets seem"},
      {"all sources", kEast, kNorth, all(swapSource), 6, "源东、北坐标好像互换了：",
       "East and north of the sources seem"},
      {"all targets, small numbers", 1000, 2300, all(swapTarget), 6, "互换", "exchanged"},
      {"one target", kEast, kNorth, rows({2}, swapTarget), 1, "第 3 点的目标东、北坐标好像互换了",
       "the targets of points 3"},
      {"one source", kEast, kNorth, rows({4}, swapSource), 1, "第 5 点的源东、北坐标好像互换了",
       "the sources of points 5"},
      {"two targets, small numbers", 1000, 2300, rows({0, 5}, swapTarget), 2, "第 1、6 点", "1, 6"},
      {"all but two targets", kEast, kNorth, rows({0, 1, 3, 4}, swapTarget), 4, "第 1、2、4、5 点",
       "1, 2, 4, 5"},
      {"prefix missing in one", kEast, kNorth, rows({1}, dropPrefix), 1,
       "第 2 点的目标东坐标好像缺少带号 40",
       "points 2 seem to lack the zone prefix 40 in the east"},
      {"prefix missing in half", kEast, kNorth, rows({0, 2, 4}, dropPrefix), 3, "缺少带号 40",
       "lack"},
      {"prefix too much in one", kPlain, kNorth, [](Table& table) { table[3].target.x += kPrefix; },
       1, "第 4 点的目标东坐标好像多了带号 40", "have the zone prefix 40 too much"},
      {"prefix missing in a source", kEast, kNorth,
       [](Table& table) { table[3].source.x -= kPrefix; }, 1, "第 4 点的源东坐标好像缺少带号 40",
       "he sources of points 4 seem to lack"},
      {"all prefixes missing", kEast, kNorth, all(dropPrefix), 6,
       "目标东坐标好像缺少带号 40（与影像现在的位置相比）", "beside where the image is now"},
      {"all prefixes too much", kPlain, kNorth,
       [](Table& table) {
         for (PointPair& pair : table) pair.target.x += kPrefix;
       },
       6, "多了带号 40", "too much"},
      {"one exchanged and without its prefix", kEast, kNorth,
       [](Table& table) {
         dropPrefix(table[2]);
         swapTarget(table[2]);
       },
       1, "第 3 点的目标东、北坐标好像互换了，换回后东坐标缺少带号 40", "and then lack"},
      {"one of each", kEast, kNorth,
       [](Table& table) {
         dropPrefix(table[2]);
         swapTarget(table[5]);
       },
       2, "；", "; "},
      {"all exchanged, one without its prefix", kEast, kNorth,
       [](Table& table) {
         dropPrefix(table[1]);
         for (PointPair& pair : table) swapTarget(pair);
       },
       6, "缺少带号 40", "exchanged"},
  };
  for (const Slip& slip : slips) {
    SCOPED_TRACE(slip.name);
    const Table meant = survey(slip.east, slip.north);
    Table table = meant;
    slip.make(table);
    const RectifyRepair repair = findRepair(table, imageAt(slip.east, slip.north), HUGE_VAL);
    EXPECT_EQ(repair.changes.size(), slip.changes);
    const std::string chinese = said(table, repair, tarn::fitreport::Language::kChinese);
    const std::string english = said(table, repair, tarn::fitreport::Language::kEnglish);
    EXPECT_THAT(chinese, HasSubstr(slip.chinese));
    EXPECT_THAT(english, HasSubstr(slip.english));
    for (const RectifyChange& change : repair.changes) {
      PointPair& pair = table[static_cast<size_t>(change.row)];
      PlanePoint& place = change.isTarget ? pair.target : pair.source;
      change.applyTo(place.x, place.y);
    }
    EXPECT_LT(distanceOf(table, meant), 1e-6);
    // And then there is nothing more to be mended.
    EXPECT_TRUE(findRepair(table, imageAt(slip.east, slip.north), HUGE_VAL).changes.empty());
  }
}

TEST(Repair, IsOfferedForThreePointsAndManyPoints) {
  Table three = survey(40500100, 3512300, 3);
  swapTarget(three[1]);
  EXPECT_EQ(findRepair(three, imageAt(40500100, 3512300), HUGE_VAL).changes.size(), 1U);
  Table many;
  for (int i = 0; i < 500; ++i) {
    const double x = 37.0 * (i % 25) + i % 7, y = 41.0 * (i / 25.0) + i % 11;
    many.push_back({{40500000 + x, 3500000 + y}, {40500003 + x, 3500001 + y}});
  }
  for (const size_t row : {3, 77, 499}) dropPrefix(many[row]);
  const RectifyRepair repair = findRepair(many, ImageOutline::around(many), HUGE_VAL);
  ASSERT_EQ(repair.changes.size(), 3U);
  EXPECT_EQ(repair.changes[1].row, 77);
}

TEST(Repair, IsNotOfferedWithoutReason) {
  const auto like = [](const std::vector<PlanePoint>& sources,
                       const std::function<PlanePoint(PlanePoint)>& map) {
    Table table;
    for (const PlanePoint p : sources) table.push_back({p, map(p)});
    return table;
  };
  const std::vector<PlanePoint> square = {{0, 0}, {100, 0}, {100, 100}, {0, 100}};
  const std::vector<PlanePoint> grid = {{0, 0}, {50, 0}, {100, 0}, {0, 70}, {50, 70}, {100, 70}};
  const auto noisy = [](double size) {
    return [size](PlanePoint p) {
      return PlanePoint{p.x + size * std::sin(7 * p.x + p.y), p.y + size * std::cos(p.x + 9 * p.y)};
    };
  };
  Table blunder = survey(40500100, 3512300);
  blunder[3].target.x += 57;
  Table typo = survey(40500100, 3512300);
  typo[3].target.x -= 1e6;
  Table boundary = survey(500100, 999900);
  Table scanned = like(grid, [](PlanePoint p) { return PlanePoint{40500000 + p.x, 3.5e6 + p.y}; });
  const struct {
    const char* name;
    Table table;
  } tables[] = {
      {"exact", like(grid, [](PlanePoint p) { return p; })},
      {"a line along the diagonal",
       like({{0, 0}, {10, 10}, {35, 35}, {70, 70}}, [](PlanePoint p) { return p; })},
      {"nearly the diagonal", like({{0, 0}, {10, 10.02}, {35, 34.99}, {70, 70}}, noisy(0.01))},
      {"a square about the diagonal", like(square, noisy(0.2))},
      {"a square with east and north alike", like(square,
                                                  [](PlanePoint p) {
                                                    return PlanePoint{500000 + p.x, 500000 + p.y};
                                                  })},
      {"noise", like(grid, noisy(3))},
      {"two scales", like(grid,
                          [](PlanePoint p) {
                            return PlanePoint{2 * p.x, p.y};
                          })},
      {"sheared", like(grid,
                       [](PlanePoint p) {
                         return PlanePoint{p.x + 0.4 * p.y, p.y};
                       })},
      {"bent", like(grid,
                    [](PlanePoint p) {
                      return PlanePoint{p.x + p.x * p.y / 300, p.y};
                    })},
      {"turned", like(grid,
                      [](PlanePoint p) {
                        return PlanePoint{500 - p.y, 700 + p.x};
                      })},
      {"a blunder", blunder},
      {"another zone's number in one row", typo},
      {"across a million", boundary},
      {"a scan in pixels", scanned},
      {"moved far on purpose", like(grid,
                                    [](PlanePoint p) {
                                      return PlanePoint{p.x + 3e6, p.y};
                                    })},
      {"two points", {survey(40500100, 3512300, 2)}},
  };
  for (const auto& row : tables)
    EXPECT_TRUE(findRepair(row.table, ImageOutline::around(row.table), HUGE_VAL).changes.empty())
        << row.name;
  // Mirrored by factors of its own, which the linear method may have.
  Table mirrored = like(grid, [](PlanePoint p) { return PlanePoint{p.x, 500 - p.y}; });
  const ImageOutline outline = ImageOutline::around(mirrored);
  EXPECT_TRUE(assess(Method::kLinear, mirrored, outline).quality.repair.changes.empty());
  const RectifyRepair repair = assess(Method::kHelmert, mirrored, outline).quality.repair;
  EXPECT_EQ(repair.changes.size(), 6U);
  EXPECT_TRUE(repair.isMirroredToo);
}

}  // namespace
