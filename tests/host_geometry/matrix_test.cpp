#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "acarray.h"
#include "dbextents.h"
#include "gemat3d.h"

namespace {

constexpr double kPi = 3.14159265358979323846;

TEST(Matrix, MovesPointsAndDirections) {
  struct Case {
    const char* name;
    AcGeMatrix3d matrix;
    AcGePoint3d from, to;
    AcGeVector3d xAxis;
  };
  const AcGePoint3d centre(40500000.0, 3500000.0, 0.0);
  const Case cases[] = {
      {"translation", AcGeMatrix3d::translation({1, 2, 3}), {10, 20, 30}, {11, 22, 33}, {1, 0, 0}},
      {"quarter turn",
       AcGeMatrix3d::rotation(kPi / 2, AcGeVector3d::kZAxis),
       {1, 0, 5},
       {0, 1, 5},
       {0, 1, 0}},
      {"turn about y",
       AcGeMatrix3d::rotation(kPi / 2, {0, 3, 0}),
       {1, 7, 0},
       {0, 7, -1},
       {0, 0, -1}},
      {"turn about a far centre",
       AcGeMatrix3d::rotation(kPi, AcGeVector3d::kZAxis, centre),
       centre + AcGeVector3d(100, 50, 0),
       centre + AcGeVector3d(-100, -50, 0),
       {-1, 0, 0}},
      {"scaling about a far centre",
       AcGeMatrix3d::scaling(2.0, centre),
       centre + AcGeVector3d(3, 4, 5),
       centre + AcGeVector3d(6, 8, 10),
       {2, 0, 0}},
      {"right factor first",
       AcGeMatrix3d::translation({10, 0, 0}) * AcGeMatrix3d::rotation(kPi / 2, {0, 0, 1}),
       {1, 0, 0},
       {10, 1, 0},
       {0, 1, 0}}};
  AcGeTol tolerance;
  tolerance.setEqualPoint(1e-8).setEqualVector(1e-12);
  for (const Case& c : cases) {
    EXPECT_TRUE((c.matrix * c.from).isEqualTo(c.to, tolerance)) << c.name;
    EXPECT_TRUE((c.matrix * AcGeVector3d::kXAxis).isEqualTo(c.xAxis, tolerance)) << c.name;
    EXPECT_TRUE((c.matrix.inverse() * c.to).isEqualTo(c.from, tolerance)) << c.name;
    EXPECT_FALSE(c.matrix.isSingular()) << c.name;
  }
}

TEST(Matrix, SingularStaysAndSkewInverts) {
  const AcGeMatrix3d flat = AcGeMatrix3d::scaling(0.0);
  EXPECT_TRUE(flat.isSingular());
  EXPECT_EQ(flat.inverse(), flat);
  AcGeMatrix3d skew;
  skew.setCoordSystem({5, -2, 1}, {2, 1, 0}, {0, 3, 1}, {1, 0, 4});
  EXPECT_TRUE((skew * skew.inverse()).isEqualTo(AcGeMatrix3d::kIdentity));
  EXPECT_NEAR(skew.det(), 25.0, 1e-12);
}

TEST(Extents, GrowAndRefuse) {
  AcDbExtents box;
  EXPECT_TRUE(box.isEmpty());
  AcDbExtents sum;
  EXPECT_EQ(sum.addExt(box), Acad::eInvalidExtents);
  EXPECT_EQ(box.set({1, 0, 0}, {0, 1, 1}), Acad::eInvalidExtents);
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(box.set({0, 0, 0}, {nan, 1, 1}), Acad::eInvalidExtents);
  EXPECT_TRUE(box.isEmpty());
  box.addPoint({-5, 3, 0});
  box.addPoint({2, -1, 0});
  EXPECT_EQ(sum.addExt(box), Acad::eOk);
  EXPECT_EQ(sum.minPoint(), AcGePoint3d(-5, -1, 0));
  sum.transformBy(AcGeMatrix3d::rotation(kPi / 2, AcGeVector3d::kZAxis));
  EXPECT_EQ(sum.minPoint(), AcGePoint3d(-3, -5, 0));
  EXPECT_EQ(sum.maxPoint(), AcGePoint3d(1, 2, 0));
}

TEST(Array, HostOperations) {
  AcArray<int> values;
  for (int i = 0; i < 5; ++i) EXPECT_EQ(values.append(i * 10), i);
  values.append(values);
  EXPECT_EQ(values.length(), 10);
  EXPECT_EQ(values.find(20, 3), 7);
  int at = 0;
  EXPECT_TRUE(values.find(40, at, 0));
  EXPECT_EQ(at, 4);
  EXPECT_TRUE(values.remove(0));
  EXPECT_FALSE(values.remove(99));
  values.insertAt(0, 99).removeLast();
  EXPECT_EQ(values.first(), 99);
  EXPECT_EQ(values.last(), 30);
  values.setLogicalLength(2);
  EXPECT_EQ(values.reverse().first(), 10);
}

}  // namespace
