// The five fits against numbers that others have computed, and what must hold for any points.
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <map>
#include <random>
#include <sstream>

#include "components/rectify/chain.h"
#include "components/rectify/foldedplaces.h"
#include "components/rectify/quality.h"

namespace {

using namespace tarn::rectify;

using Pairs = std::vector<PointPair>;

PointPair pair(double x, double y, double X, double Y) {
  return {{x, y}, {X, Y}};
}

Pairs points4() {
  return {pair(288, 1126, 321210, 130280), pair(2352, 716, 322698, 129979),
          pair(2067, 2398, 322501, 192061), pair(1102, 2209, 321803, 192198)};
}

Pairs points6() {
  Pairs pairs = points4();
  pairs.resize(3);
  pairs.push_back(pair(2100, 1500, 322550, 149979));
  pairs.push_back(pair(1102, 2209, 321803, 192198));
  pairs.push_back(pair(300, 1550, 321310, 145979));
  return pairs;
}

Pairs points10() {
  Pairs pairs = points6();
  pairs.push_back(pair(300, 850, 321310, 131979));
  pairs.push_back(pair(1000, 830, 321703, 131579));
  pairs.push_back(pair(900, 1450, 321603, 145979));
  pairs.push_back(pair(700, 1550, 321003, 146179));
  return pairs;
}

Pairs moved(Pairs pairs, double x, double y) {
  for (PointPair& p : pairs) {
    for (PlanePoint* q : {&p.source, &p.target}) *q = {q->x + x, q->y + y};
  }
  return pairs;
}

constexpr double kEast = 40500000, kNorth = 3500000;

struct Expected {
  Method method;
  Pairs pairs;
  PlanePoint first, second;  // of (288, 1000) and (2352, 1150)
  double rmse;
  double digits;
};

TEST(Fit, NumbersOfOtherPrograms) {
  const Expected table[] = {{Method::kLinear,
                             points4(),
                             {321212.326847, 135047.429532},
                             {322702.684921, 141437.483546},
                             6900.86484,
                             5e-6},
                            {Method::kHelmert,
                             points4(),
                             {302325.245463, 145676.756202},
                             {340495.193773, 155540.681928},
                             23170.0151,
                             5e-5},
                            {Method::kAffine,
                             points4(),
                             {321209.272016, 128732.119647},
                             {322700.263397, 146403.852285},
                             5260.01762,
                             5e-6},
                            {Method::kQuadratic,
                             points6(),
                             {321175.365480, 126837.555258},
                             {322763.555003, 135026.067079},
                             0,
                             1e-7},
                            {Method::kCubic,
                             points10(),
                             {321202.591955, 129364.580726},
                             {318595.839322, 101765.364798},
                             0,
                             1e-6}};
  for (const Expected& e : table) {
    for (const double far : {0.0, 1.0}) {
      const double x = far * kEast, y = far * kNorth;
      const Pairs pairs = moved(e.pairs, x, y);
      const Assessment a = assess(e.method, pairs, ImageOutline::around(pairs));
      ASSERT_TRUE(a.solution.fit) << static_cast<int>(e.method);
      const PlanePoint p = a.solution.fit->at({288 + x, 1000 + y});
      const PlanePoint q = a.solution.fit->at({2352 + x, 1150 + y});
      EXPECT_NEAR(p.x - x, e.first.x, 1e-6) << static_cast<int>(e.method) << ' ' << far;
      EXPECT_NEAR(p.y - y, e.first.y, 1e-6) << static_cast<int>(e.method) << ' ' << far;
      EXPECT_NEAR(q.x - x, e.second.x, 1e-6) << static_cast<int>(e.method) << ' ' << far;
      EXPECT_NEAR(q.y - y, e.second.y, 1e-6) << static_cast<int>(e.method) << ' ' << far;
      EXPECT_NEAR(a.quality.rmse, e.rmse, e.digits) << static_cast<int>(e.method) << ' ' << far;
    }
  }
}

class Textbooks : public testing::TestWithParam<double> {
 protected:
  /// The pairs with the origin of a zone added.
  Pairs far(const Pairs& pairs) const { return moved(pairs, x_, y_); }
  PlanePoint at(const Fit& fit, PlanePoint p) const {
    const PlanePoint q = fit.at({p.x + x_, p.y + y_});
    return {q.x - x_, q.y - y_};
  }
  const double x_ = GetParam() * kEast;
  const double y_ = GetParam() * kNorth;
  const Pairs linear_ = {pair(0, 0, 10, 5), pair(10, 0, 16, 5), pair(0, 30, 10, 8),
                         pair(10, 30, 16, 8)};
  const Pairs affine_ = {pair(0, 0, 440720, 3751320), pair(0, 20, 440720, 3750120),
                         pair(20, 0, 441920, 3751320), pair(20, 20, 441920, 3750120)};
};
INSTANTIATE_TEST_SUITE_P(NearAndFar, Textbooks, testing::Values(0.0, 1.0));

TEST_P(Textbooks, LinearAffineAndHelmert) {
  constexpr double kRounding = 3e-8;  // of coordinates beyond 40,000,000
  const PlanePoint linear = at(*solve(Method::kLinear, far(linear_)).fit, {9, 25});
  EXPECT_NEAR(linear.x, 15.4, kRounding);
  EXPECT_NEAR(linear.y, 7.5, kRounding);
  const PlanePoint affine = at(*solve(Method::kAffine, far(affine_)).fit, {20, 10});
  EXPECT_NEAR(affine.x, 441920, kRounding);
  EXPECT_NEAR(affine.y, 3750720, kRounding);

  const Pairs helmert = far({pair(121.622, -128.066, 1049422.40, 51089.20),
                             pair(141.228, 187.718, 1049413.95, 49659.30),
                             pair(175.802, 135.728, 1049244.95, 49884.95)});
  const Assessment a = assess(Method::kHelmert, helmert, ImageOutline::around(helmert));
  const Slope slope = a.solution.fit->slopeAt(helmert[0].source);
  EXPECT_NEAR(std::hypot(slope.ux, slope.vx), 4.51962052, 5e-9);
  EXPECT_NEAR(std::fmod(std::atan2(slope.vx, slope.ux) * 180 / M_PI + 360, 360), 183.2180612, 5e-8);
  const double residuals[3][2] = {{.003838, -.029133}, {.100867, -.076742}, {-.104704, .105875}};
  for (int i = 0; i < 3; ++i) {
    EXPECT_NEAR(a.residuals[i].dx, residuals[i][0], 6e-7);
    EXPECT_NEAR(a.residuals[i].dy, residuals[i][1], 6e-7);
  }
  // A mirrored linear fit is one.
  const Pairs mirrored = far({pair(0, 0, 0, 0), pair(10, 10, 10, -10)});
  EXPECT_NEAR(at(*solve(Method::kLinear, mirrored).fit, {5, 5}).y, -5, kRounding);
}

TEST_P(Textbooks, AreInvertedToThePixel) {
  struct Row {
    Method method;
    Pairs pairs;
    PlanePoint source;
    PlanePoint target;
  };
  const Row table[] = {{Method::kLinear, linear_, {9, 25}, {15.4, 7.5}},
                       {Method::kAffine, affine_, {20, 10}, {441920, 3750720}},
                       {Method::kLinear, points4(), {288, 1000}, {321212.326847, 135047.429532}},
                       {Method::kHelmert, points4(), {2352, 1150}, {340495.193773, 155540.681928}},
                       {Method::kAffine, points4(), {2352, 1150}, {322700.263397, 146403.852285}}};
  for (const Row& row : table) {
    const Chain chain({x_, 1, 0, y_, 0, 1}, 2400, 2400, {},
                      {{*solve(row.method, far(row.pairs)).fit, {}}});
    const auto found = chain.pixelOf({row.target.x + x_, row.target.y + y_});
    ASSERT_TRUE(found);
    // Targets are printed to a millionth of ground, where a pixel is hundreds.
    EXPECT_NEAR(found->x, row.source.x, 1e-6);
    EXPECT_NEAR(found->y, row.source.y, 1e-6);
  }
}

// One point far away bends an image until it lies over itself.
TEST(Fit, FoldedImagesAreFoundOnTheSheetThatIsNotTurnedOver) {
  constexpr int kWidth = 1000, kHeight = 800, kFrame = 300;
  for (const Method method : {Method::kQuadratic, Method::kCubic}) {
    Pairs pairs;
    for (int i = 0; i < 25; ++i) {
      const PlanePoint p{i % 5 * 250.0, i / 5 * 200.0};
      pairs.push_back({p, {kEast + p.x, kNorth + p.y}});
    }
    pairs[18].target.x += 9000;
    const Chain chain({0, 1, 0, kHeight, 0, -1}, kWidth, kHeight, {},
                      {{*solve(method, pairs).fit, {}}});
    ASSERT_TRUE(foldsOver(chain));
    PlanePoint low{INFINITY, INFINITY}, high{-INFINITY, -INFINITY};
    std::vector<PlanePoint> unturned;
    for (int y = 0; y <= kHeight; y += 20) {
      for (int x = 0; x <= kWidth; x += 20) {
        const PlanePoint pixel{x + 0.0, y + 0.0}, place = chain.at(pixel);
        low = {std::min(low.x, place.x), std::min(low.y, place.y)};
        high = {std::max(high.x, place.x), std::max(high.y, place.y)};
        if (chain.slopeAt(pixel).determinant() * chain.orientation() > 0) unturned.push_back(place);
      }
    }
    const double cellX = (high.x - low.x) / kFrame, cellY = (high.y - low.y) / kFrame;
    const FoldedPlaces places(chain, {low.x, cellX, 0, high.y, 0, -cellY}, kFrame, kFrame);
    size_t found = 0;
    for (const PlanePoint& place : unturned) {
      const PlanePoint at{(place.x - low.x) / cellX, (high.y - place.y) / cellY};
      const auto pixel = places.at(chain, at.x, at.y);
      if (!pixel) continue;
      ++found;
      EXPECT_NEAR(chain.at(*pixel).x, place.x, 0.1 * cellX);
      EXPECT_NEAR(chain.at(*pixel).y, place.y, 0.1 * cellY);
      EXPECT_GT(chain.slopeAt(*pixel).determinant() * chain.orientation(), 0);
    }
    // Right at a fold the net's straight sides miss a little.
    EXPECT_GT(found, unturned.size() * 95 / 100);
    EXPECT_GT(unturned.size(), 200U);
  }
}

/// Rows of a table with a head: text of each column by its name.
std::vector<std::map<std::string, std::string>> rowsOf(const std::string& path) {
  std::vector<std::map<std::string, std::string>> rows;
  std::ifstream file(path);
  const auto cellsOf = [](std::string line) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    std::stringstream stream(line);
    std::vector<std::string> cells;
    for (std::string cell; std::getline(stream, cell, ',');) cells.push_back(cell);
    return cells;
  };
  std::string line;
  if (!std::getline(file, line)) return rows;
  const std::vector<std::string> head = cellsOf(line);
  while (std::getline(file, line)) {
    const std::vector<std::string> cells = cellsOf(line);
    rows.emplace_back();
    for (size_t i = 0; i < cells.size() && i < head.size(); ++i) rows.back()[head[i]] = cells[i];
  }
  return rows;
}

TEST(Fit, PublishedSetsOfPoints) {
  const std::string folder = std::string(TARN_DATA_DIR) + "/gcp_truth/";
  std::map<std::string, Pairs> sets;
  for (auto& row : rowsOf(folder + "gcp_sets.csv")) {
    sets[row["set_id"]].push_back(pair(std::stod(row["src_x"]), std::stod(row["src_y"]),
                                       std::stod(row["dst_x"]), std::stod(row["dst_y"])));
  }
  if (sets.empty()) GTEST_SKIP() << "no published points at " << folder;
  const std::map<std::string, Method> methods = {{"linear", Method::kLinear},
                                                 {"helmert", Method::kHelmert},
                                                 {"affine", Method::kAffine},
                                                 {"quadratic", Method::kQuadratic},
                                                 {"cubic", Method::kCubic}};
  int compared = 0;
  for (auto& row : rowsOf(folder + "gcp_expected.csv")) {
    const auto method = methods.find(row["method"]);
    if (method == methods.end() || row["direction"] != "fwd") continue;
    const Solution solution = solve(method->second, sets[row["set_id"]]);
    if (row["set_id"] == "qgis10id" && method->second == Method::kCubic) {
      // 38 times as high as wide: too thin for a cubic.
      EXPECT_GT(solution.condition, 1e6);
      continue;
    }
    ASSERT_TRUE(solution.fit) << row["set_id"] << ' ' << row["method"];
    const PlanePoint p = solution.fit->at({std::stod(row["in_x"]), std::stod(row["in_y"])});
    const double tolerance = std::stod(row["tolerance"]);
    EXPECT_NEAR(p.x, std::stod(row["expected_x"]), tolerance) << row["set_id"] << row["method"];
    EXPECT_NEAR(p.y, std::stod(row["expected_y"]), tolerance) << row["set_id"] << row["method"];
    ++compared;
  }
  EXPECT_GT(compared, 20);
}

TEST(Fit, RicherModelsFitBetterAndFarOriginsChangeNothing) {
  std::mt19937 random(7);
  std::uniform_real_distribution<double> place(0, 1000), noise(-3, 3);
  for (int round = 0; round < 20; ++round) {
    Pairs pairs;
    for (int i = 0; i < 14; ++i) {
      const double x = place(random), y = place(random);
      pairs.push_back(pair(x, y, 0.9 * x - 0.2 * y + 1e-4 * x * y + noise(random),
                           0.25 * x + 1.1 * y + noise(random)));
    }
    const ImageOutline outline = ImageOutline::rectangle({0, 0}, {1000, 1000});
    const auto rmse = [&](Method m) { return assess(m, pairs, outline).quality.rmse; };
    const double affine = rmse(Method::kAffine), trace = 1 + 1e-12;
    EXPECT_LE(affine, rmse(Method::kHelmert) * trace);
    EXPECT_LE(affine, rmse(Method::kLinear) * trace);
    EXPECT_LE(rmse(Method::kQuadratic), affine * trace);
    EXPECT_LE(rmse(Method::kCubic), rmse(Method::kQuadratic) * trace);
    const Pairs far = moved(pairs, kEast, kNorth);
    for (int m = 0; m < 5; ++m) {
      const Assessment near = assess(methodOf(m), pairs, outline);
      const Assessment away = assess(methodOf(m), far, ImageOutline::around(far));
      for (size_t i = 0; i < pairs.size(); ++i) {
        EXPECT_NEAR(near.residuals[i].dx, away.residuals[i].dx, 1e-6);
        EXPECT_NEAR(near.residuals[i].dy, away.residuals[i].dy, 1e-6);
      }
      // What leaving a point out gives is what a fit without it gives.
      if (near.quality.worstPoint >= 0) {
        Pairs rest = pairs;
        rest.erase(rest.begin() + near.quality.worstPoint);
        EXPECT_NEAR(assess(methodOf(m), rest, outline).quality.s0, near.quality.s0WithoutWorst,
                    1e-9);
      }
    }
  }
}

}  // namespace
