#include "components/raster/placement.h"

#include <gtest/gtest.h>

#include <cmath>

namespace tarn::raster {
namespace {

GeoCandidate byTransform(const GeoTransform& t) {
  return {"a.tfw", t, {}, -1};
}

/// Every way in which a transform cannot place an image; the image is shown at the origin.
TEST(Placement, WhatCannotPlaceAnImageIsIgnoredWithANote) {
  const double nan = std::nan("");
  struct Case {
    const char* name;
    GeoCandidate candidate;
    const char* note;
  };
  std::vector<ControlPoint> folded, line, bad{{0, 0, 1, 1}, {9, 0, nan, 1}, {0, 9, 1, 2}};
  for (int i = 0; i < 12; ++i) {
    const double column = 100.0 * (i % 4) / 3, row = 100.0 * (i / 4) / 2;
    folded.push_back({column, row, (column - 50) * (column - 50), -row});
    line.push_back({column, row, column, column});
  }
  const Case cases[] = {
      {"no area", byTransform({0, 1, 1, 0, 1, 1}), "not usable"},
      {"no number", byTransform({0, nan, 0, 0, 0, -1}), "not usable"},
      {"nearly no area", byTransform({0, 1, 0.9999999, 0, 1, 1}), "distort"},
      {"one point", {"x", {}, {{1, 1, 1, 1}}, -1}, "only control point"},
      {"points no numbers", {"x", {}, bad, -1}, "no number"},
      {"points on a line", {"x", {}, line, -1}, "control points"},
      {"points fold the image", {"x", {}, folded, -1}, "control points"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const Placement placed = placeImage({c.candidate}, 100, 100);
    EXPECT_TRUE(placed.isAsStored());
    EXPECT_EQ(placed.transform.y0, 100);
    ASSERT_EQ(placed.notes.size(), 2U);
    EXPECT_NE(placed.notes[0].find(c.note), std::string::npos) << placed.notes[0];
    // The next one counts.
    const Placement next = placeImage({c.candidate, byTransform({7, 1, 0, 8, 0, -1})}, 100, 100);
    EXPECT_EQ(next.transform.x0, 7);
    EXPECT_EQ(next.notes.size(), 1U);
  }
}

TEST(Placement, GridHoldsTheImageAndItsDetail) {
  struct Case {
    const char* name;
    GeoTransform transform;
    double pixelX, pixelY;
  };
  const double c = std::cos(0.3), s = std::sin(0.3);
  const Case cases[] = {
      {"upright", {5, 2, 0, 9, 0, -3}, 2, 3},
      {"a trace of rotation", {5, 2, 1e-9, 9, -1e-9, -3}, 2, 3},
      {"square and rotated", {5, 2 * c, 2 * s, 9, 2 * s, -2 * c}, 2, 2},
      {"long rows, large numbers", {4.05e7, 0.1 * c, 0.1 * s, 3.5e6, 0.1 * s, -0.1 * c}, 0.1, 0.1},
      {"sheared", {0, 1, 0.5, 0, 0, -1}, 1, 1 / std::hypot(1, 0.5)},
      // Of oblong pixels the short side decides in every direction that meets it.
      {"oblong, half a right angle",
       {0, M_SQRT1_2, 10 * M_SQRT1_2, 0, M_SQRT1_2, -10 * M_SQRT1_2},
       M_SQRT2 / std::sqrt(1.01),
       M_SQRT2 / std::sqrt(1.01)},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(each.name);
    const int width = 3000, height = 500;
    const Placement p = placeImage({byTransform(each.transform)}, width, height);
    EXPECT_NEAR(p.transform.a, each.pixelX, 1e-9);
    EXPECT_NEAR(-p.transform.e, each.pixelY, 1e-9);
    EXPECT_EQ(p.transform.b, 0);
    EXPECT_EQ(p.transform.d, 0);
    double least[2] = {1e9, 1e9}, most[2] = {-1e9, -1e9};
    const GeoTransform& t = each.transform;
    for (const int column : {0, width}) {
      for (const int row : {0, height}) {
        const double i = (t.x0 + t.a * column + t.b * row - p.transform.x0) / p.transform.a;
        const double j = (t.y0 + t.d * column + t.e * row - p.transform.y0) / p.transform.e;
        least[0] = std::min(least[0], i), most[0] = std::max(most[0], i);
        least[1] = std::min(least[1], j), most[1] = std::max(most[1], j);
        if (!p.resampling) continue;
        const PlanePoint pixel = p.resampling->at(i, j);
        EXPECT_NEAR(pixel.x, column, 1e-5);
        EXPECT_NEAR(pixel.y, row, 1e-5);
      }
    }
    EXPECT_NEAR(least[0], 0, 1e-5);
    EXPECT_NEAR(least[1], 0, 1e-5);
    EXPECT_LE(most[0], p.width + 1e-5);
    EXPECT_LE(most[1], p.height + 1e-5);
    EXPECT_GT(most[0], p.width - 1);
    EXPECT_GT(most[1], p.height - 1);
  }
}

}  // namespace
}  // namespace tarn::raster
