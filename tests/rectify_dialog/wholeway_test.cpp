// From a file of control points to the exported image and the saved drawing.
#include <QComboBox>

#include <cmath>

#include "base/file.h"
#include "base/path.h"
#include "tests/rectify_dialog/dialogfixture.h"

namespace tarn::test {
namespace {

constexpr int kQuadratic = 1;

/// Where the image belongs: moved, and bent by up to three units.
std::pair<double, double> placeOf(double x, double y) {
  return {x + 120 + 1e-4 * (y - 2150) * (y - 2150), y - 80 + 5e-5 * (x - 1200) * (y - 2150)};
}

class WholeWay : public DialogTest {
 protected:
  void SetUp() override {
    DialogTest::SetUp();
    // tests/win32 compares what is left in a folder that it names.
    const QString named = qEnvironmentVariable("TARN_TEST_FOLDER");
    folder_ = named.isEmpty() ? joinPath(host_->folder, "测区 一") : named.toStdString();
    ASSERT_TRUE(makeFolders(folder_));
    ASSERT_TRUE(writeRaster(raster_, at("正射.tif")));
    std::string points;
    for (const double x : {1010.0, 1200.0, 1390.0}) {
      for (const double y : {2010.0, 2150.0, 2290.0}) {
        const auto [u, v] = placeOf(x, y);
        for (const double value : {x, y, u, v})
          points += QString::number(value, 'f', 6).toStdString() + " ";
        points += "\r\n";
      }
    }
    ASSERT_TRUE(writeFileAtomically(at("控制点.txt"), points));
    add(at("正射.tif"));
  }
  std::string at(const char* name) const { return joinPath(folder_, name); }
  std::string exported(const char* name) {
    const BoxAnswers boxes("Yes");
    host_->ui.files = {{at(name)}};
    press("_out_rectify_image");
    EXPECT_THAT(boxes.seen, testing::ElementsAre("导出提示|是否继续？", "提示|成功导出纠正影像！"));
    return at(name);
  }

  const Raster raster_ =
      makeRaster(kWidth, kHeight, kLeft, kTop, 1, [](int column, int row, uint8_t* rgb) {
        rgb[0] = static_cast<uint8_t>(30 + column / 2);
        rgb[1] = static_cast<uint8_t>(40 + row / 2);
        rgb[2] = static_cast<uint8_t>(60 + (column + row) / 4);
      });
  std::string folder_;
};

TEST_F(WholeWay, ImportedPointsPlaceTheImageAndItsExports) {
  ASSERT_NE(open(), nullptr);
  host_->ui.files = {{at("控制点.txt")}};
  press("_contrl_point_input_button");
  ASSERT_EQ(table().rowCount(), 9);
  find<QComboBox>("rectifyMethod").setCurrentIndex(kQuadratic);
  press("calRectify");
  for (int row = 0; row < 9; ++row) EXPECT_LT(std::stod(cell(row, 5)), 1e-4);
  for (const char* name : {"导出.tif", "导出.img"}) {
    const Raster seen = readRaster(exported(name));
    ASSERT_GT(seen.width, 0) << name;
    for (int row = 20; row < kHeight; row += 52) {
      for (int column = 20; column < kWidth; column += 72) {
        const auto [x, y] = placeOf(kLeft + column + 0.5, kTop - row - 0.5);
        const uint8_t* found = seen.at(static_cast<int>((x - seen.left) / seen.pixel),
                                       static_cast<int>((seen.top - y) / seen.pixel));
        for (int c = 0; c < 3; ++c) EXPECT_NEAR(found[c], raster_.at(column, row)[c], 2);
      }
    }
  }
  dialog().close();
  host_->ui.files = {{at("纠正.dxf")}};
  host_->run("SAVEAS");
  EXPECT_EQ(fileKind(at("纠正.dxf")), FileKind::kRegular);
}

}  // namespace
}  // namespace tarn::test
