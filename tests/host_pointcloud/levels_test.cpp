// Thinning: bounded, the highest point of each place, nothing lost that a view would show.
#include "host/pointcloud/cloudlevels.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <random>

namespace tarn::host {
namespace {

using Point = AcGiPointCloud::Point;
using Box = AcGiPointCloud::Box;

std::vector<Point> visited(const CloudLevels& levels, const Box& box, double spacing) {
  std::vector<Point> points;
  levels.visit(box, spacing, [&](const Point* run, size_t count, double) {
    for (size_t i = 0; i < count; ++i) {
      if (run[i].color != 0) points.push_back(run[i]);
    }
  });
  return points;
}

bool isIn(const Box& box, const Point& p) {
  return p.x >= box.minX && p.x <= box.maxX && p.y >= box.minY && p.y <= box.maxY;
}

TEST(CloudLevels, FewPointsAreAllThere) {
  std::mt19937 random(7);
  CloudLevels levels({0, 0, 9999, 4999});
  std::vector<Point> all;
  for (int i = 0; i < 50000; ++i) {
    all.push_back({static_cast<int>(random() % 10000), static_cast<int>(random() % 5000), i,
                   0xff000000U | static_cast<unsigned>(i)});
    levels.add(all.back());
  }
  levels.finish();
  EXPECT_TRUE(levels.isComplete());
  for (const Box& box : {Box{0, 0, 9999, 4999}, Box{-500, 100, 320, 160}, Box{9999, 0, 9999, 1e9},
                         Box{4000, 4000, 4100, 4100}, Box{20000, 0, 30000, 100}}) {
    std::map<unsigned, int> found;
    for (const Point& p : visited(levels, box, 1)) ++found[p.color];
    for (const Point& p : all) {
      if (!isIn(box, p)) continue;
      ASSERT_EQ(found[p.color], 1);
    }
  }
}

TEST(CloudLevels, ManyPointsLeaveTheHighestOfEachPlace) {
  constexpr int kColumns = 2000;
  constexpr int kRows = 1500;  // 3,000,000 places, one point each
  const auto height = [](int x, int y) { return (x * 7919 + y * 104729) % 1000003; };
  CloudLevels levels({0, 0, kColumns * 10.0, kRows * 10.0});
  for (int y = 0; y < kRows; ++y) {
    for (int x = 0; x < kColumns; ++x) levels.add({x * 10, y * 10, height(x, y), 0xff000001U});
  }
  levels.finish();
  EXPECT_FALSE(levels.isComplete());
  EXPECT_EQ(levels.added(), 3000000U);
  const Box all = levels.box();
  EXPECT_LE(visited(levels, all, 1).size(), 2 * CloudLevels::kMostPoints);
  for (const double spacing : {40.0, 90.0, 300.0}) {
    SCOPED_TRACE(spacing);
    const std::vector<Point> points = visited(levels, all, spacing);
    const double places = (all.maxX / spacing) * (all.maxY / spacing);
    EXPECT_LT(static_cast<double>(points.size()), 9 * places);
    // Nearly every place of that size has a point; the highest of each four by four is there.
    std::map<std::pair<int, int>, int> highest;
    for (const Point& p : points) {
      int& z =
          highest[{static_cast<int>(p.x / (4 * spacing)), static_cast<int>(p.y / (4 * spacing))}];
      z = std::max(z, p.z);
    }
    int wrong = 0;
    for (const auto& [place, z] : highest) {
      int truth = 0;
      const int x0 = static_cast<int>(std::ceil(place.first * 4 * spacing / 10));
      const int y0 = static_cast<int>(std::ceil(place.second * 4 * spacing / 10));
      for (int y = y0; y * 10 < (place.second + 1) * 4 * spacing && y < kRows; ++y) {
        for (int x = x0; x * 10 < (place.first + 1) * 4 * spacing && x < kColumns; ++x) {
          truth = std::max(truth, height(x, y));
        }
      }
      wrong += truth != z;
    }
    EXPECT_EQ(wrong, 0);
  }
}

TEST(CloudLevels, ThinShapesStayBounded) {
  for (const Box& box : {Box{0, 0, 4e9, 0}, Box{5, -2e9, 5, 2e9}, Box{3, 3, 3, 3}}) {
    CloudLevels levels(box);
    const auto count = static_cast<int>(CloudLevels::kMostPoints + 10);
    for (int i = 0; i < count; ++i) {
      levels.add({static_cast<int>(std::min(box.minX + i, box.maxX)),
                  static_cast<int>(std::min(box.minY + i, box.maxY)), i, 0xff000001U});
    }
    levels.finish();
    const size_t most = 2 * CloudLevels::kMostPoints + 2;
    EXPECT_LE(visited(levels, box, 1e-9).size(), most);
    EXPECT_GE(visited(levels, box, 1e-9).size(), 1U);
  }
}

}  // namespace
}  // namespace tarn::host
