// Entities on pixels: 10 pixels a unit, y up, so that a place of the drawing is a pixel.
#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>

#include "dbblockref.h"
#include "dbhatch.h"
#include "dbpl.h"
#include "dbtext.h"
#include "dbtrace.h"
#include "host/graphics/recorder.h"
#include "host/graphics/renderer.h"

namespace tarn::host {
namespace {

constexpr int kSide = 200;
constexpr int kPerUnit = 10;

class Picture {
 public:
  explicit Picture(AcDbEntity& entity) : image_(kSide, kSide, QImage::Format_RGB32) {
    DisplayList list;
    WorldDrawRecorder recorder(list, nullptr, 1, 256);
    entity.worldDraw(&recorder);
    Scene scene;
    scene.set(1, std::move(list));
    ViewState view;
    view.centerX = view.centerY = 10;
    view.height = 20;
    view.pixelWidth = view.pixelHeight = kSide;
    QPainter painter(&image_);
    RenderStyle style;
    style.background = 0xff000000;
    render(painter, scene, view, style);
  }
  /// Something is drawn in the pixel at a place of the drawing.
  bool at(double x, double y) const {
    const int column = static_cast<int>(x * kPerUnit);
    const int row = kSide - 1 - static_cast<int>(y * kPerUnit);
    return image_.pixel(column, row) != 0xff000000;
  }
  /// The same for a line along the border of two pixels.
  bool near(double x, double y) const {
    return at(x - 0.05, y - 0.05) || at(x + 0.05, y + 0.05) || at(x - 0.05, y + 0.05) ||
           at(x + 0.05, y - 0.05);
  }
  /// The part of the pixels of a rectangle that is drawn.
  double share(double x0, double y0, double x1, double y1) const {
    int all = 0;
    int drawn = 0;
    for (double x = x0 + 0.05; x < x1; x += 0.1) {
      for (double y = y0 + 0.05; y < y1; y += 0.1) {
        ++all;
        drawn += at(x, y) ? 1 : 0;
      }
    }
    return static_cast<double>(drawn) / all;
  }

 private:
  QImage image_;
};

TEST(EntityPixels, polylinesHaveWidthsAndArcs) {
  AcDbPolyline line;
  std::vector<AcDbPolylineVertex> vertices(3);
  vertices[0].point = {2, 2, 0};
  vertices[1].point = {12, 2, 0};
  vertices[2].point = {12, 12, 0};
  for (AcDbPolylineVertex& vertex : vertices) vertex.startWidth = vertex.endWidth = 2;
  vertices[1].bulge = 1;  // half a circle about (12, 7), to the right
  line.setVertices(vertices);
  const Picture picture(line);
  EXPECT_TRUE(picture.at(5, 2.8) && picture.at(5, 1.2) && !picture.at(5, 3.3));
  EXPECT_TRUE(picture.at(17.8, 7) && picture.at(16.2, 7) && !picture.at(15.7, 7) &&
              !picture.at(12, 7));
  // A mitre fills the corner; a taper is wide at one end only.
  vertices[1].bulge = 0;
  line.setVertices(vertices);
  EXPECT_TRUE(Picture(line).at(12.8, 1.2));
  vertices.resize(2);
  vertices[0].endWidth = 0;
  line.setVertices(vertices);
  const Picture taper(line);
  EXPECT_TRUE(taper.at(2.5, 2.8) && !taper.at(10, 2.4));
}

TEST(EntityPixels, solidsGoRoundByTheirThirdAndFourthPoint) {
  AcDbSolid solid;
  solid.setOwn({AcGePoint3d(2, 2, 0), {12, 2, 0}, {2, 12, 0}, {12, 12, 0}}, AcGeVector3d::kZAxis);
  const Picture square(solid);
  EXPECT_EQ(square.share(2.2, 2.2, 11.8, 11.8), 1);
  EXPECT_FALSE(square.at(13, 7));
  // Looked at from behind it lies on the other side.
  solid.setOwn({AcGePoint3d(-2, 2, 0), {-12, 2, 0}, {-2, 12, 0}, {-2, 12, 0}}, {0, 0, -1});
  const Picture triangle(solid);
  EXPECT_TRUE(triangle.at(4, 4) && !triangle.at(11, 11));
  AcDbFace face;
  face.setOwn({AcGePoint3d(2, 2, 0), {12, 2, 5}, {12, 12, 5}, {2, 12, 0}}, AcGeVector3d::kZAxis);
  face.setHiddenEdges(2);
  const Picture rim(face);
  EXPECT_TRUE(rim.near(7, 2) && rim.near(2, 7) && !rim.at(7, 7) && !rim.near(12, 7));
}

AcDbHatchLoop rectangle(double x0, double y0, double x1, double y1) {
  AcDbHatchLoop loop;
  loop.flags = 2;
  loop.vertices = {{x0, y0, 0}, {x1, y0, 0}, {x1, y1, 0}, {x0, y1, 0}};
  return loop;
}

TEST(EntityPixels, hatchesLeaveEverySecondAreaOut) {
  AcDbHatch hatch;
  AcDbHatch::Values values;
  values.loops = {rectangle(1, 1, 19, 19), rectangle(4, 4, 16, 16), rectangle(8, 8, 12, 12)};
  hatch.setValues(values);
  const Picture islands(hatch);
  EXPECT_TRUE(islands.at(2, 10) && !islands.at(6, 10) && islands.at(10, 10));
  EXPECT_EQ(islands.share(4.2, 4.2, 7.8, 15.8), 0);
  // A rim of arcs, of which one goes clockwise: a half moon.
  AcDbHatchLoop moon;
  AcDbHatchEdge outer;
  outer.kind = AcDbHatchEdge::kArc;
  outer.first = {10, 10, 0};
  outer.ratio = 8;
  outer.start = 0;
  outer.end = 3.141592653589793;
  AcDbHatchEdge inner = outer;
  inner.ratio = 8;
  inner.first = {10, 6, 0};
  inner.counterClockwise = false;
  inner.start = -3.141592653589793 * 5 / 6;
  inner.end = -3.141592653589793 / 6;
  moon.edges = {outer, inner};
  values.loops = {moon};
  hatch.setValues(values);
  const Picture crescent(hatch);
  EXPECT_TRUE(crescent.at(10, 16) && !crescent.at(10, 11) && !crescent.at(10, 5));
}

TEST(EntityPixels, patternsAreLinesOrTheRimWhenThereAreTooMany) {
  AcDbHatch hatch;
  AcDbHatch::Values values;
  values.solid = false;
  values.loops = {rectangle(2, 2, 18, 18)};
  AcDbHatchLines lines;
  lines.base = {0.5, 0.55, 0};
  lines.offset = {0, 1, 0};
  lines.dashes = {2, -1};
  values.lines = {lines};
  hatch.setValues(values);
  const Picture dashed(hatch);
  // 16 lines of a pixel in 16 units of ten pixels, two thirds of each.
  EXPECT_NEAR(dashed.share(2, 2, 18, 18), 0.1 * 2 / 3, 0.01);
  EXPECT_FALSE(dashed.at(1, 10.55));
  values.lines[0].offset = {0, 1e-6, 0};
  hatch.setValues(values);
  const Picture rim(hatch);
  EXPECT_TRUE(rim.near(10, 2) && rim.near(2, 10) && !rim.at(10, 10));
}

/// A mirrored block shows its texts mirrored: an "L" has its foot on the other side.
TEST(EntityPixels, textsStandLeanAndAreMirrored) {
  AcDbText text({5, 5, 0}, L"L", 10, 0);
  const Picture upright(text);
  EXPECT_GT(upright.share(5, 5, 12, 7), 2 * upright.share(5, 13, 12, 15));
  AcDbTextLine line = text.line();
  line.generation = 4;  // upside down
  line.position.y = 15;
  text.setLine(line);
  const Picture turned(text);
  EXPECT_GT(turned.share(5, 13, 12, 15), 2 * turned.share(5, 5, 12, 7));
  line = AcDbTextLine();
  line.position = {-15, 5, 0};
  line.normal = {0, 0, -1};
  line.height = 10;
  line.text = L"L";
  text.setLine(line);
  const Picture behind(text);  // from (15, 5) to the left
  EXPECT_GT(behind.share(13, 5, 15, 14), 3 * behind.share(8, 8, 10, 14));
}

}  // namespace
}  // namespace tarn::host
