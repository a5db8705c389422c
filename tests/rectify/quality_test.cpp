// Which layouts of points are trusted, and what is said about the others.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "commoncode/fitreport/fittext.h"
#include "components/rectify/quality.h"

namespace {

using namespace tarn::rectify;
using kel::RectifyFault;
using ::testing::HasSubstr;

using Points = std::vector<PlanePoint>;

std::string adviceOf(const kel::RectifyQuality& quality) {
  return tarn::fitreport::fitText(quality, {}, tarn::fitreport::Language::kEnglish).toStdString();
}

const ImageOutline kImage = ImageOutline::rectangle({0, 0}, {1000, 700});

/// Columns by rows of points over a rectangle.
Points grid(int columns, int rows, PlanePoint low, PlanePoint high) {
  Points points;
  for (int j = 0; j < rows; ++j)
    for (int i = 0; i < columns; ++i)
      points.push_back({low.x + (high.x - low.x) * i / (columns - 1),
                        low.y + (high.y - low.y) * j / (rows - 1)});
  return points;
}

/// Targets that each method can meet.
std::vector<PointPair> paired(const Points& sources) {
  std::vector<PointPair> pairs;
  for (const PlanePoint p : sources) pairs.push_back({p, {500000 + p.x, 4000000 + p.y}});
  return pairs;
}

Points turned(const Points& points, double degrees, double roundTo) {
  Points result;
  const double c = std::cos(degrees * M_PI / 180), s = std::sin(degrees * M_PI / 180);
  for (const PlanePoint p : points)
    result.push_back({std::round((c * p.x - s * p.y) / roundTo) * roundTo,
                      std::round((s * p.x + c * p.y) / roundTo) * roundTo});
  return result;
}

/// Along the diagonal, the two in the middle above and below it.
Points nearDiagonal(double off) {
  return {{0, 0}, {1000 / 3.0, 700 / 3.0 + off}, {2000 / 3.0, 1400 / 3.0 - off}, {1000, 700}};
}

/// Spread evenly and in no rows, over the left half.
Points spreadLeft(int count) {
  const auto reversed = [](int i, int base) {
    double value = 0, digit = 1.0 / base;
    for (; i > 0; i /= base, digit /= base) value += digit * (i % base);
    return value;
  };
  Points points;
  for (int i = 1; i <= count; ++i) points.push_back({500 * reversed(i, 2), 700 * reversed(i, 3)});
  return points;
}

constexpr double kInfinite = std::numeric_limits<double>::infinity();

TEST(Quality, LayoutsOfPoints) {
  const Points corners = grid(2, 2, {0, 0}, {1000, 700});
  struct Row {
    const char* name;
    Method method;
    Points points;
    double condition, factor;  // to the digits given; below 0: not compared
    int status;
    bool advises;
  };
  const Row table[] = {
      {"affine, corners", Method::kAffine, corners, 1.4, 0.87, 0, false},
      {"affine, middle tenth", Method::kAffine, grid(2, 2, {450, 315}, {550, 385}), 1.4, 7.1, 0,
       false},
      {"affine, middle fiftieth", Method::kAffine, grid(2, 2, {490, 343}, {510, 357}), 1.4, 35, 0,
       true},
      {"affine, diagonal, 10 off", Method::kAffine, nearDiagonal(10), 90, 52, 0, true},
      {"affine, diagonal, 3.5 off", Method::kAffine, nearDiagonal(3.5), 256, 147, 2, true},
      {"quadratic, 2 x 3", Method::kQuadratic, grid(3, 2, {0, 0}, {1000, 700}), kInfinite, -1, 1,
       true},
      {"quadratic, 3 x 3", Method::kQuadratic, grid(3, 3, {0, 0}, {1000, 700}), 5.9, 0.9, 0, false},
      {"cubic, 3 x 4", Method::kCubic, grid(4, 3, {0, 0}, {1000, 700}), kInfinite, -1, 1, true},
      {"the same turned", Method::kCubic, turned(grid(4, 3, {0, 0}, {1000, 700}), 30, 0.001), -1,
       -1, 1, true},
      {"cubic, 4 x 4", Method::kCubic, grid(4, 4, {0, 0}, {1000, 700}), 19, 0.9, 0, false},
      {"cubic, left half", Method::kCubic, grid(3, 7, {0, 0}, {500, 700}), -1, -1, 1, true},
      {"cubic, 21 in the left half", Method::kCubic, spreadLeft(21), -1, -1, 0, true}};
  for (const Row& row : table) {
    const Assessment a = assess(row.method, paired(row.points), kImage);
    EXPECT_EQ(a.quality.status, row.status) << row.name << ' ' << adviceOf(a.quality);
    EXPECT_EQ(!a.quality.suggested.empty(), row.advises) << row.name;
    if (row.condition > 0 && std::isfinite(row.condition)) {
      EXPECT_NEAR(a.quality.condition / row.condition, 1, 0.06) << row.name;
    } else if (row.condition > 0) {
      EXPECT_GT(a.quality.condition, 1e12) << row.name;
    }
    if (row.factor > 0) {
      EXPECT_NEAR(a.quality.cornerFactor / row.factor, 1, 0.06) << row.name;
    }
    EXPECT_EQ(a.solution.fit.has_value(), row.status != 1) << row.name;
    EXPECT_EQ(std::isnan(a.residuals[0].length()), row.status == 1) << row.name;
    if (row.status == 0) continue;
    // What is suggested does help.
    Points more = row.points;
    for (const auto& p : a.quality.suggested) more.push_back({p[0], p[1]});
    EXPECT_EQ(assess(row.method, paired(more), kImage).quality.status, 0) << row.name;
  }
}

TEST(Quality, FaultsAreNamed) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const Points line = {{0, 0}, {100, 50}, {300, 150}, {900, 450}};
  Points circle;
  for (int i = 0; i < 9; ++i)
    circle.push_back({500 + 300 * std::cos(i * 0.7), 350 + 300 * std::sin(i * 0.7)});
  const Points repeated = {{10, 10}, {900, 600}, {10, 10}, {900, 600}};
  struct Row {
    const char* name;
    Method method;
    std::vector<PointPair> pairs;
    RectifyFault fault;
    const char* text;
  };
  std::vector<PointPair> notANumber = paired(grid(2, 2, {0, 0}, {1000, 700}));
  notANumber[2].target.y = nan;
  std::vector<PointPair> flat = paired(grid(2, 2, {0, 0}, {1000, 700}));
  for (PointPair& p : flat) p.target.y = 7;
  std::vector<PointPair> folded = paired(grid(3, 3, {0, 0}, {1000, 700}));
  for (PointPair& p : folded)
    p.target.x = (p.source.x - 600) * (p.source.x - 600) / 1000 + p.source.y / 10;
  const Row table[] = {
      {"too few", Method::kCubic, paired(line), RectifyFault::kTooFew, "needs 10 points"},
      {"none", Method::kHelmert, {}, RectifyFault::kTooFew, "there are 0"},
      {"not a number", Method::kAffine, notANumber, RectifyFault::kNotFinite, "Point 3"},
      {"one place", Method::kHelmert, paired({{5, 5}, {5, 5}, {5, 5}}), RectifyFault::kNoExtent,
       "same source"},
      {"flat targets", Method::kAffine, flat, RectifyFault::kTargetsFlat, "no area"},
      {"line", Method::kAffine, paired(line), RectifyFault::kOnLine, "one line"},
      {"along an axis", Method::kLinear, paired({{5, 5}, {50, 5}, {500, 5}}),
       RectifyFault::kAlongAxis, "along an axis"},
      {"repeated", Method::kAffine, paired(repeated), RectifyFault::kTooFewPlaces, "(3, 4)"},
      {"two rows", Method::kQuadratic, paired(grid(3, 2, {0, 0}, {1000, 700})),
       RectifyFault::kOnConic, "2 lines (1, 2, 3; 4, 5, 6)"},
      {"circle", Method::kQuadratic, paired(circle), RectifyFault::kOnConic, "second order"},
      {"three rows", Method::kCubic, paired(grid(4, 3, {0, 0}, {1000, 700})),
       RectifyFault::kOnCubic, "3 lines"},
      {"folds", Method::kQuadratic, folded, RectifyFault::kFolds, "fold"}};
  for (const Row& row : table) {
    const Assessment a = assess(row.method, row.pairs, kImage);
    EXPECT_EQ(a.quality.fault, row.fault) << row.name << ' ' << adviceOf(a.quality);
    EXPECT_THAT(adviceOf(a.quality), HasSubstr(row.text)) << row.name;
    EXPECT_NE(a.quality.status, 0) << row.name;
  }
}

TEST(Quality, ABlunderIsFound) {
  std::vector<PointPair> pairs;
  for (const PlanePoint p : grid(4, 3, {0, 0}, {1000, 700}))
    pairs.push_back({p, {40500000 + 0.9 * p.x - 0.1 * p.y, 3500000 + 0.1 * p.x + 0.9 * p.y}});
  pairs[7].target.x += 25;
  const Assessment a = assess(Method::kAffine, pairs, kImage);
  EXPECT_EQ(a.quality.worstPoint, 7);
  EXPECT_LT(a.quality.s0WithoutWorst, 1e-3);
  EXPECT_GT(a.quality.s0, 1);
  EXPECT_TRUE(a.quality.repair.changes.empty());
}

// The formula that needs no fit anew beside one fit without each point.
TEST(Quality, TheWorstPointIsTheOneWhoseRemovalHelpsMost) {
  Points places = spreadLeft(24);
  for (PlanePoint& p : places) p.x *= 2;
  std::vector<PointPair> pairs;
  for (size_t i = 0; i < places.size(); ++i) {
    const PlanePoint p = places[i];
    const double noise = std::sin(7.0 * static_cast<double>(i * i));
    pairs.push_back({p,
                     {40500000 + 0.9 * p.x - 0.1 * p.y + noise,
                      3500000 + 0.1 * p.x + 0.9 * p.y + std::cos(5.0 * noise)}});
  }
  pairs[11].target.y -= 6;
  for (const Method method :
       {Method::kCubic, Method::kQuadratic, Method::kLinear, Method::kAffine, Method::kHelmert}) {
    const kel::RectifyQuality found = assess(method, pairs, kImage).quality;
    int worst = -1;
    double least = found.s0;
    for (size_t i = 0; i < pairs.size(); ++i) {
      std::vector<PointPair> others = pairs;
      others.erase(others.begin() + static_cast<std::ptrdiff_t>(i));
      const double s0 = assess(method, others, kImage).quality.s0;
      if (s0 >= least) continue;
      least = s0;
      worst = static_cast<int>(i);
    }
    EXPECT_EQ(found.worstPoint, worst) << static_cast<int>(method);
    EXPECT_NEAR(found.s0WithoutWorst, least, 1e-6 * least) << static_cast<int>(method);
  }
}

}  // namespace
