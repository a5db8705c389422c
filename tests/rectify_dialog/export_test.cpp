// Exports through the dialog beside gdalwarp's, and everything that may go wrong with them.
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QProcess>
#include <QStandardPaths>

#include <array>
#include <cmath>
#include <sstream>

#include "base/file.h"
#include "tests/rectify_dialog/dialogfixture.h"
#include "tests/support/system.h"

namespace {

using tarn::test::Raster;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

constexpr double kLeft = 1000, kTop = 2300;
constexpr int kWidth = 400, kHeight = 300;

struct Pair {
  double x, y, X, Y;
};

/// A map that polynomials of its order give exactly in both directions.
struct Case {
  const char* target;
  const char* worldFile;
  int method;
  int order;
  int side;
  int tolerance;  // in steps of colour, of which a pixel is up to nine
  Pair (*map)(double x, double y);
};

const Case kCases[] = {{"turned.tif", "turned.tfw", 3, 1, 2, 0,
                        [](double x, double y) {
                          return Pair{x, y, 5000 - (y - kTop), 7000 + (x - kLeft)};
                        }},
                       {"bent.img", "bent.igw", 1, 2, 3, 2,
                        [](double x, double y) {
                          return Pair{x, y, x + 100 + 1e-4 * (y - 2150) * (y - 2150), y + 50};
                        }},
                       {"cubic.TIF", "cubic.tfw", 0, 3, 4, 2, [](double x, double y) {
                          const double v = y - 2150;
                          return Pair{x, y, x - 250.5 + 5e-7 * v * v * v, y + 0.25};
                        }}};

std::vector<Pair> pairsOf(const Case& one) {
  std::vector<Pair> pairs;
  for (int j = 0; j < one.side; ++j)
    for (int i = 0; i < one.side; ++i)
      pairs.push_back(
          one.map(kLeft + kWidth * i / (one.side - 1.0), kTop - kHeight * j / (one.side - 1.0)));
  return pairs;
}

QString text(double value) {
  return QString::number(value, 'g', 17);
}

/// gdalwarp's picture on the grid of ours.
Raster warped(const std::string& image, const Case& one, const std::array<double, 6>& world,
              const Raster& ours) {
  const QString between = QString::fromStdString(image + ".points.vrt");
  const QString target = QString::fromStdString(image + ".warped.tif");
  QStringList points{"-q", "-of", "VRT"};
  for (const Pair& p : pairsOf(one))
    points << "-gcp" << text(p.x - kLeft) << text(kTop - p.y) << text(p.X) << text(p.Y);
  points << QString::fromStdString(image) << between;
  EXPECT_EQ(QProcess::execute("gdal_translate", points), 0);
  const double left = world[4] - world[0] / 2, top = world[5] - world[3] / 2;
  EXPECT_EQ(QProcess::execute("gdalwarp", QStringList{"-q",
                                                      "-overwrite",
                                                      "-order",
                                                      QString::number(one.order),
                                                      "-et",
                                                      "0",
                                                      "-r",
                                                      "bilinear",
                                                      "-ovr",
                                                      "NONE",
                                                      "-te",
                                                      text(left),
                                                      text(top + ours.height * world[3]),
                                                      text(left + ours.width * world[0]),
                                                      text(top),
                                                      "-ts",
                                                      QString::number(ours.width),
                                                      QString::number(ours.height),
                                                      between,
                                                      target}),
            0);
  return tarn::test::readRaster(target.toStdString());
}

/// Content is never so dark.
bool isEmpty(const Raster& raster, int column, int row) {
  const uint8_t* p = raster.at(column, row);
  return p[0] + p[1] + p[2] < 60;
}

bool isWholeAround(const Raster& raster, int column, int row) {
  for (int y = row - 1; y <= row + 1; ++y)
    for (int x = column - 1; x <= column + 1; ++x)
      if (isEmpty(raster, x, y)) return false;
  return true;
}

class Exports : public tarn::test::DialogTest {
 protected:
  void SetUp() override {
    DialogTest::SetUp();
    path_ = tarn::joinPath(host_->folder, "a.tif");
    const Raster raster = tarn::test::makeRaster(
        kWidth, kHeight, kLeft, kTop, 1, [](int column, int row, uint8_t* rgb) {
          rgb[0] = static_cast<uint8_t>(40 + column / 3);
          rgb[1] = static_cast<uint8_t>(60 + row / 2);
          rgb[2] = static_cast<uint8_t>(128 + 60 * std::sin(column / 9.0) * std::cos(row / 7.0));
        });
    ASSERT_TRUE(tarn::test::writeRaster(raster, path_));
    add(path_);
    ASSERT_NE(open(), nullptr);
  }
  void addPairs(const Case& one) {
    while (table().rowCount() > 0) {
      table().selectRow(0);
      press("deletePoints");
    }
    find<QComboBox>("rectifyMethod").setCurrentIndex(one.method);
    for (const Pair& p : pairsOf(one)) addPair(p.x, p.y, p.X, p.Y);
  }
  /// Presses the button, says yes, and gives what the boxes said.
  std::vector<std::string> exportTo(const std::string& target) {
    const tarn::test::BoxAnswers boxes("Yes");
    host_->ui.files = {{target}};
    host_->printed();
    press("_out_rectify_image");
    EXPECT_TRUE(dialog().isVisible());
    return boxes.seen;
  }
  std::string path_;
};

TEST_F(Exports, ShowTheSamePixelsAsGdalwarp) {
  if (QStandardPaths::findExecutable("gdalwarp").isEmpty()) GTEST_SKIP() << "gdalwarp is missing";
  for (const Case& one : kCases) {
    SCOPED_TRACE(one.target);
    addPairs(one);
    const std::string target = tarn::joinPath(host_->folder, one.target);
    EXPECT_THAT(exportTo(target), ElementsAre("导出提示|是否继续？", "提示|成功导出纠正影像！"));
    const Raster ours = tarn::test::readRaster(target);
    ASSERT_GT(ours.width, 200);
    auto side = tarn::readFile(tarn::joinPath(host_->folder, one.worldFile), 999);
    ASSERT_TRUE(side) << side.message();
    std::istringstream lines(side.value());
    std::array<double, 6> world{};
    for (double& number : world) lines >> number;
    const Raster theirs = warped(path_, one, world, ours);
    ASSERT_EQ(theirs.width, ours.width);
    ASSERT_EQ(theirs.height, ours.height);
    int compared = 0, differing = 0, most = 0;
    for (int y = 1; y + 1 < ours.height; ++y) {
      for (int x = 1; x + 1 < ours.width; ++x) {
        differing += isEmpty(ours, x, y) != isEmpty(theirs, x, y) ? 1 : 0;
        if (!isWholeAround(ours, x, y) || !isWholeAround(theirs, x, y)) continue;
        ++compared;
        for (int c = 0; c < 3; ++c)
          most = std::max(most, std::abs(ours.at(x, y)[c] - theirs.at(x, y)[c]));
      }
    }
    EXPECT_GT(compared, 390 * 290);
    EXPECT_LE(differing, one.tolerance == 0 ? 0 : ours.height * 2);
    EXPECT_LE(most, one.tolerance);
  }
}

TEST_F(Exports, ThatFailLeaveImageTableAndOldFilesAlone) {
  addPairs(kCases[0]);
  const std::vector<std::string> rows = sources();
  const std::string old = tarn::joinPath(host_->folder, "old.tif");
  const std::string before = "what stood here";
  ASSERT_TRUE(tarn::writeFileAtomically(old, before));
  const auto image = tarn::readFile(path_, 10 << 20);
  const auto expectFailure = [&](const std::string& target, const char* why) {
    SCOPED_TRACE(target);
    EXPECT_THAT(exportTo(target), ElementsAre("导出提示|是否继续？", "提示|导出纠正影像失败！"));
    EXPECT_THAT(host_->printed(), HasSubstr(why));
    EXPECT_EQ(sources(), rows);
    EXPECT_EQ(tarn::readFile(old, 999).value(), before);
    for (const std::string& name : tarn::listFolder(host_->folder))
      EXPECT_EQ(name.find(".tarnbuild"), std::string::npos) << name;
  };
  expectFailure(path_, "a.tif: is the image itself");
  const std::string nowhere = tarn::joinPath(host_->folder, "nowhere/out.tif");
  expectFailure(nowhere, (nowhere + ": ").c_str());
  ASSERT_TRUE(tarn::makeFolders(tarn::joinPath(host_->folder, "folder.img")));
  expectFailure(tarn::joinPath(host_->folder, "folder.img"), "is not a file");
  if (const tarn::test::FileSizeLimit full(200000); full.holds())
    expectFailure(old, "old.tif: cannot be");
  EXPECT_EQ(tarn::readFile(path_, 10 << 20).value(), image.value());

  // The image vanishes while the dialog is open.
  const std::string away = path_ + ".away";
  ASSERT_TRUE(tarn::replaceFile(path_, away));
  expectFailure(old, "a.tif: is not there any more");
  press("calError");
  EXPECT_EQ(sources(), rows);
  press("abort");
  QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_TRUE(stored(path_).empty());
  ASSERT_TRUE(tarn::replaceFile(away, path_));
  EXPECT_EQ(tarn::readFile(path_, 10 << 20).value(), image.value());
}

}  // namespace
