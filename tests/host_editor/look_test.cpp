// How things look, by pixels of a window of 400 x 400 on 40 x 40 units: weights, transparency,
// wipeouts, fills, patterns of lines, marks of points, blocks on layers.
#include <gtest/gtest.h>

#include <QDir>
#include <QImage>
#include <QPainter>
#include <QTemporaryDir>
#include <cmath>

#include "base/file.h"
#include "base/path.h"
#include "tests/host_editor/scriptedhost.h"

namespace tarn::host {
namespace {

constexpr int kSide = 400;
constexpr double kPerUnit = 10;
constexpr QRgb kGround = 0xff212830;

/// "0 LINE 8 0 10 1.5" as the tags of a drawing file; "_" is a blank.
std::string tags(const std::string& words) {
  std::string text = words;
  for (char& c : text) c = c == ' ' ? '\n' : c;
  for (char& c : text) c = c == '_' ? ' ' : c;
  return text.empty() ? text : text + "\n";
}

std::string section(const std::string& name, const std::string& body) {
  return tags("0 SECTION 2 " + name) + body + tags("0 ENDSEC");
}

const char* const kLayers =
    "0 TABLE 2 LTYPE 0 LTYPE 2 GAPS 70 0 3 gaps 72 65 73 2 40 2.0 49 1.0 49 -1.0 0 ENDTAB "
    "0 TABLE 2 LAYER 0 LAYER 2 0 70 0 62 7 6 CONTINUOUS 0 LAYER 2 BLUE 70 0 62 5 6 CONTINUOUS "
    "0 LAYER 2 AWAY 70 0 62 -3 6 CONTINUOUS 0 LAYER 2 THICK 70 0 62 7 6 CONTINUOUS 370 200 "
    "0 LAYER 2 CLEAR 70 0 62 7 6 CONTINUOUS 1001 AcCmTransparency 1071 33554432 0 ENDTAB";
const char* const kBlocks =
    "0 BLOCK 2 SIGN 70 0 10 0 20 0 "
    "0 SOLID 8 0 10 0 20 0 11 2 21 0 12 0 22 2 13 2 23 2 "
    "0 SOLID 8 0 62 0 10 3 20 0 11 5 21 0 12 3 22 2 13 5 23 2 "
    "0 SOLID 8 BLUE 10 6 20 0 11 8 21 0 12 6 22 2 13 8 23 2 "
    "0 SOLID 8 0 440 16777216 62 1 10 9 20 0 11 11 21 0 12 9 22 2 13 11 23 2 "
    "0 LINE 8 0 370 -2 10 0 20 4 11 8 21 4 0 ENDBLK";

class Looks : public testing::Test {
 protected:
  /// The picture of a drawing with these variables and entities.
  QImage picture(const std::string& header, const std::string& entities,
                 std::initializer_list<const char*> lines = {}) {
    const std::string path = joinPath(folder_.path().toStdString(), "looks.dxf");
    const std::string bytes = section("HEADER", tags("9 $ACADVER 1 AC1021" + header)) +
                              section("TABLES", tags(kLayers)) + section("BLOCKS", tags(kBlocks)) +
                              section("ENTITIES", tags(entities)) + tags("0 EOF");
    EXPECT_TRUE(writeFileAtomically(path, bytes));
    ScriptedHost host;
    host.app().resizeView(kSide, kSide);
    host.run({"OPEN", path.c_str(), "ZOOM C 20,20 40"});
    EXPECT_TRUE(host.good());
    host.run(lines);
    QImage image(kSide, kSide, QImage::Format_RGB32);
    QPainter painter(&image);
    host.app().renderTo(painter, kSide, kSide);
    return image;
  }
  static QRgb at(const QImage& image, double x, double y) {
    return image.pixel(static_cast<int>(x * kPerUnit), kSide - 1 - static_cast<int>(y * kPerUnit));
  }
  /// How many pixels of a column around the height `y` are not ground.
  static int thickness(const QImage& image, double x, double y) {
    int count = 0;
    for (double d = -2; d <= 2; d += 0.1) count += at(image, x, y + d) != kGround ? 1 : 0;
    return count;
  }
  QTemporaryDir folder_;
};

TEST_F(Looks, weightsOfEntitiesLayersAndBlocks) {
  const std::string lines =
      "0 LINE 8 0 370 200 10 1 20 5 11 39 21 5 0 LINE 8 THICK 10 1 20 15 11 39 21 15 "
      "0 LINE 8 0 10 1 20 25 11 39 21 25 0 LINE 8 THICK 370 0 10 1 20 35 11 39 21 35";
  // Two millimetres at 96 pixels an inch.
  const int wide = static_cast<int>(std::lround(2 * 96 / 25.4));
  const QImage off = picture("", lines);
  const QImage on = picture("", lines, {"LWDISPLAY 1"});
  const QImage kept = picture(" 9 $LWDISPLAY 290 1", lines);
  for (const double y : {5.0, 15.0, 25.0, 35.0}) {
    EXPECT_EQ(thickness(off, 20, y), 1) << y;
    EXPECT_NEAR(thickness(on, 20, y), y < 20 ? wide : 1, 1) << y;
    EXPECT_EQ(thickness(on, 20, y), thickness(kept, 20, y)) << y;
  }
}

TEST_F(Looks, transparencyOfEntitiesAndLayers) {
  const QImage image =
      picture("",
              "0 SOLID 8 0 10 0 20 0 11 40 21 0 12 0 22 40 13 40 23 40 62 5 "
              "0 SOLID 8 0 440 33554559 62 1 10 5 20 5 11 15 21 5 12 5 22 15 13 15 23 15 "
              "0 SOLID 8 0 440 33554431 62 1 10 25 20 5 11 35 21 5 12 25 22 15 13 35 23 15 "
              "0 SOLID 8 CLEAR 62 1 10 5 20 25 11 15 21 25 12 5 22 35 13 15 23 35");
  EXPECT_EQ(at(image, 20, 20), qRgb(0, 0, 255));
  const QRgb half = at(image, 10, 10);
  EXPECT_NEAR(qRed(half), 127, 2);
  EXPECT_NEAR(qBlue(half), 128, 2);
  EXPECT_NEAR(qRed(at(image, 30, 10)), 255, 1);
  EXPECT_EQ(at(image, 10, 30), qRgb(0, 0, 255));  // a layer that nothing is seen of
}

/// On layer 0 a block's parts are as the insertion's layer, by block as the insertion; a layer that
/// is off takes away the first only.
TEST_F(Looks, blocksFollowTheirInsertionAndItsLayer) {
  const QRgb blue = qRgb(0, 0, 255);
  const QRgb red = qRgb(255, 0, 0);
  const struct {
    const char* insertion;
    QRgb onZero, byBlock, own;
  } cases[] = {{"8 BLUE 62 1", blue, red, blue},
               {"8 BLUE", blue, blue, blue},
               {"8 AWAY 62 1", kGround, kGround, blue},
               {"8 0 62 1", qRgb(255, 255, 255), red, blue}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.insertion);
    const QImage image =
        picture("", std::string("0 INSERT ") + c.insertion + " 2 SIGN 10 10 20 10");
    EXPECT_EQ(at(image, 11, 11), c.onZero);
    EXPECT_EQ(at(image, 14, 11), c.byBlock);
    EXPECT_EQ(at(image, 17, 11), c.own);
  }
}

TEST_F(Looks, weightAndTransparencyByBlock) {
  const QImage image =
      picture("", "0 INSERT 8 0 370 200 440 33554559 2 SIGN 10 10 20 10", {"LWDISPLAY 1"});
  EXPECT_NEAR(thickness(image, 12.5, 14), 8, 1);
  EXPECT_NEAR(qRed(at(image, 20, 11)), (255 + qRed(kGround)) / 2, 3);
  EXPECT_NEAR(qGreen(at(image, 20, 11)), qGreen(kGround) / 2, 3);
}

/// Ten pixels a millimetre: a line of two, and one without a weight of 0.18.
TEST_F(Looks, weightsOnPaper) {
  const std::string file = joinPath(folder_.path().toStdString(), "looks.png");
  picture("",
          "0 LINE 8 0 370 200 10 0 20 15 11 80 21 15 0 LINE 8 0 10 0 20 0 11 80 21 0 "
          "0 LINE 8 0 10 0 20 30 11 80 21 30",
          {"PLOT", "Yes", "Model", "PNG", "100x60", "Millimeters", "Landscape", "0", "Extents",
           "Fit", "Center", "254", file.c_str(), "Yes", "Yes"});
  const QImage paper(QString::fromStdString(file));
  ASSERT_FALSE(paper.isNull());
  std::vector<int> runs;
  bool before = false;
  for (int row = 0; row < paper.height(); ++row) {
    const bool on = qGray(paper.pixel(paper.width() / 2, row)) < 128;
    if (on && !before) runs.push_back(0);
    if (on) ++runs.back();
    before = on;
  }
  ASSERT_EQ(runs.size(), 3u);
  for (size_t i = 0; i < 3; ++i) EXPECT_NEAR(runs[i], i == 1 ? 20 : 2, 1) << i;
}

/// Dashes of a unit, and gaps as long, all around a circle and along a line.
TEST_F(Looks, patternsOfLinesGoAlongArcs) {
  const QImage image = picture(
      "", "0 CIRCLE 8 0 6 GAPS 10 20 20 20 40 10 0 LINE 8 0 6 GAPS 10 1 20 2.05 11 39 21 2.05");
  const auto seen = [&](double along) {
    const double angle = along / 10;
    for (const double r : {9.9, 10.0, 10.1}) {
      if (at(image, 20 + r * std::cos(angle), 20 + r * std::sin(angle)) != kGround) return true;
    }
    return false;
  };
  for (double along = 0.5; along < 62; along += 2) {
    EXPECT_TRUE(seen(along) || seen(along - 0.1) || seen(along + 0.1)) << along;
    EXPECT_FALSE(seen(along + 1)) << along;
  }
  EXPECT_NE(at(image, 1.5, 2), kGround);
  EXPECT_EQ(at(image, 2.5, 2), kGround);
  EXPECT_NE(at(image, 3.5, 2), kGround);
}

TEST_F(Looks, pointsHaveMarks) {
  const std::string point = "0 POINT 8 0 10 20.05 20 20.05";
  const struct {
    const char* header;
    bool centre, arm, circle, corner;  // what is seen there
  } cases[] = {{"", true, false, false, false},
               {" 9 $PDMODE 70 1 9 $PDSIZE 40 4", false, false, false, false},
               {" 9 $PDMODE 70 2 9 $PDSIZE 40 4", true, true, false, false},
               {" 9 $PDMODE 70 35 9 $PDSIZE 40 4", true, false, true, false},
               {" 9 $PDMODE 70 66 9 $PDSIZE 40 -10", true, true, false, true},
               {" 9 $PDMODE 70 97 9 $PDSIZE 40 4", false, false, true, true}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.header);
    const QImage image = picture(c.header, point);
    const auto near = [&](double x, double y) {
      for (const double dx : {-0.1, 0.0, 0.1}) {
        for (const double dy : {-0.1, 0.0, 0.1}) {
          if (at(image, x + dx, y + dy) != kGround) return true;
        }
      }
      return false;
    };
    EXPECT_EQ(near(20.05, 20.05), c.centre);
    EXPECT_EQ(near(23.5, 20.05), c.arm);
    EXPECT_EQ(near(20.05 + 2 * std::cos(0.5), 20.05 + 2 * std::sin(0.5)), c.circle);
    EXPECT_EQ(near(22.05, 21.0), c.corner);
  }
  const QImage later = picture("", point, {"PDMODE 2", "PDSIZE 4"});
  EXPECT_NE(at(later, 23.5, 20.05), kGround);
}

/// A wipeout takes away what was before it, not what comes behind; the variable takes its frame.
TEST_F(Looks, wipeoutsCoverWhatWasDrawnBefore) {
  const std::string drawing =
      "0 SOLID 8 BLUE 10 0 20 0 11 40 21 0 12 0 22 40 13 40 23 40 "
      "0 WIPEOUT 8 0 62 1 100 AcDbEntity 100 AcDbWipeout 90 0 10 10 20 10 30 0 11 20 21 0 31 0 "
      "12 0 22 20 32 0 13 1 23 1 70 7 280 1 281 50 282 50 283 0 71 1 91 2 14 -0.5 24 -0.5 14 0.5 "
      "24 0.5 "
      "0 LINE 8 0 62 3 10 15 20 20.05 11 25 21 20.05";
  const QImage framed = picture("", drawing);
  EXPECT_EQ(at(framed, 5, 5), qRgb(0, 0, 255));
  EXPECT_EQ(at(framed, 12, 15), kGround);
  EXPECT_EQ(at(framed, 20, 20), qRgb(0, 255, 0));
  const auto frameSeen = [](const QImage& image) {
    for (double x = 9.7; x < 10.3; x += 0.1) {
      if (at(image, x, 15) == qRgb(255, 0, 0)) return true;
    }
    return false;
  };
  EXPECT_TRUE(frameSeen(framed));
  const QImage bare = picture("", drawing, {"WIPEOUTFRAME 0"});
  EXPECT_FALSE(frameSeen(bare));
  EXPECT_EQ(at(bare, 12, 15), kGround);
}

/// Meshes are nets of lines, and a dimension that no block was made for is drawn from its points.
/// The file has two sections of entities, as damaged ones do.
TEST_F(Looks, netsAndDimensionsWithoutBlocks) {
  const QImage image = picture(
      "",
      "0 POLYLINE 8 0 66 1 70 17 71 3 72 2 0 VERTEX 8 0 70 64 10 2 20 2 0 VERTEX 8 0 70 64 10 6 20 "
      "2 "
      "0 VERTEX 8 0 70 64 10 2 20 6 0 VERTEX 8 0 70 64 10 6 20 6 "
      "0 VERTEX 8 0 70 64 10 2 20 10 0 VERTEX 8 0 70 64 10 6 20 12 0 SEQEND "
      "0 POLYLINE 8 0 66 1 70 64 0 VERTEX 8 0 70 192 10 12 20 2 0 VERTEX 8 0 70 192 10 18 20 2 "
      "0 VERTEX 8 0 70 192 10 12 20 8 0 VERTEX 8 0 70 128 71 1 72 -2 73 3 0 SEQEND "
      "0 ENDSEC 0 SECTION 2 ENTITIES "
      "0 MESH 8 0 100 AcDbEntity 100 AcDbSubDMesh 71 2 72 0 91 0 92 3 10 22 20 2 30 0 10 28 20 2 "
      "30 0 "
      "10 22 20 8 30 0 93 4 90 3 90 0 90 1 90 2 94 0 "
      "0 DIMENSION 8 0 70 0 10 30 20 30 13 10 23 20 14 30 24 20 3 STANDARD");
  const auto seen = [&](double x, double y) {
    for (const double dx : {-0.1, 0.0, 0.1}) {
      for (const double dy : {-0.1, 0.0, 0.1}) {
        if (at(image, x + dx, y + dy) != kGround) return true;
      }
    }
    return false;
  };
  EXPECT_TRUE(seen(4, 2) && seen(4, 6) && seen(4, 11) && seen(6, 8));
  EXPECT_FALSE(seen(4, 4));
  EXPECT_TRUE(seen(15, 2) && seen(12, 5));
  EXPECT_FALSE(seen(15, 5));  // the edge that the face hides
  EXPECT_TRUE(seen(25, 2) && seen(22, 5) && seen(25, 5));
  EXPECT_TRUE(seen(20, 30) && seen(10, 25) && seen(30, 31) && seen(11.5, 30.1));
  EXPECT_FALSE(seen(10, 20.3) || seen(10, 31.8));
  int letters = 0;
  for (double x = 15; x < 25; x += 0.1) letters += at(image, x, 32.5) != kGround ? 1 : 0;
  EXPECT_GT(letters, 8);
}

}  // namespace
}  // namespace tarn::host
