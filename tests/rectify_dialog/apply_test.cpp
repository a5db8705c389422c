// Rectification by control points through the dialog and the component: checks, warnings, picture,
// what the drawing and the file beside the image keep.
#include <QApplication>
#include <QComboBox>
#include <QLabel>

#include "base/file.h"
#include "base/text.h"
#include "tests/rectify_dialog/dialogfixture.h"

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

enum Method { kCubic, kQuadratic, kLinear, kAffine, kHelmert };

class Apply : public tarn::test::DialogTest {
 protected:
  void SetUp() override {
    DialogTest::SetUp();
    path_ = makeImage("a.tif", {{50, 50}, {350, 50}, {50, 250}, {350, 250}, {200, 150}});
    add(path_);
    ASSERT_NE(open(), nullptr);
  }
  void method(int index) { find<QComboBox>("rectifyMethod").setCurrentIndex(index); }
  /// Four pairs at the dots, moved by (dx, dy) and enlarged about (1200, 2150).
  void addCorners(double dx, double dy, double factor) {
    for (const auto& [x, y] : corners_) {
      addPair(x, y, 1200 + (x - 1200) * factor + dx, 2150 + (y - 2150) * factor + dy);
    }
  }
  void expectCorners(double dx, double dy, double factor) {
    for (const auto& [x, y] : corners_) {
      expectDot(1200 + (x - 1200) * factor + dx, 2150 + (y - 2150) * factor + dy);
    }
  }
  void closeDialog() {
    dialog().close();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
  std::string pointFile() {
    auto text = tarn::readFile(path_.substr(0, path_.size() - 3) + "FTWx", 10000);
    return text ? text.take() : "(none)";
  }
  std::string label(const char* name) { return find<QLabel>(name).text().toStdString(); }

  const std::vector<std::pair<double, double>> corners_ = {
      {1050.5, 2249.5}, {1350.5, 2249.5}, {1050.5, 2049.5}, {1350.5, 2049.5}};
  std::string path_;
};

TEST_F(Apply, NeedsAsManyPointsAsTheMethod) {
  addCorners(0, 0, 1);
  tarn::test::BoxAnswers boxes;
  for (const int index : {kCubic, kQuadratic}) {
    method(index);
    for (const char* button : {"calError", "calRectify"}) {
      boxes.seen.clear();
      press(button);
      EXPECT_THAT(boxes.seen, ElementsAre("错误|没有足够的控制点。"));
    }
  }
  EXPECT_EQ(cell(0, 5), "");
  // Points that only check do not count.
  method(kHelmert);
  for (int row = 0; row < 3; ++row) {
    table().selectRow(row);
    press("checkPoint");
  }
  boxes.seen.clear();
  press("calRectify");
  EXPECT_THAT(boxes.seen, ElementsAre("错误|没有足够的控制点。"));
  EXPECT_THAT(stored(path_), IsEmpty());
}

TEST_F(Apply, ShowsResidualsAndAPreviewThatCancellingTakesBack) {
  addCorners(10, -5, 0.9);
  method(kHelmert);
  press("calError");
  for (int row = 0; row < 4; ++row) EXPECT_LT(std::stod(cell(row, 5)), 1e-6);
  expectCorners(10, -5, 0.9);
  EXPECT_THAT(stored(path_), IsEmpty());
  EXPECT_EQ(pointFile(), "(none)");
  press("abort");
  QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  expectCorners(0, 0, 1);

  // Closing takes a preview back as well, and so does picking a source.
  ASSERT_NE(open(), nullptr);
  addCorners(10, -5, 0.9);
  method(kAffine);
  press("calError");
  expectCorners(10, -5, 0.9);
  host_->frontEnd.answers = {std::nullopt};
  press("pickOld");
  expectCorners(0, 0, 1);
  press("calError");
  closeDialog();
  expectCorners(0, 0, 1);
}

TEST_F(Apply, ResidualsAreWrittenInTheShortestForm) {
  for (const auto& [x, y] : corners_) addPair(x, y, x, y);
  addPair(1200, 2150, 1200, 2155);
  table().selectRow(4);
  press("checkPoint");
  method(kHelmert);
  press("calError");
  // The check point stays out of the fit and shows its own distance.
  EXPECT_EQ(cell(4, 5), "5");
  EXPECT_THAT(label("label_rmse"), HasSubstr("RMSE：0"));
}

TEST_F(Apply, RefusesPointsThatGiveNoTransformation) {
  tarn::test::BoxAnswers boxes;
  for (int i = 0; i < 4; ++i) addPair(1010 + i * 100, 2200, 5 + i, 10 + i);
  method(kAffine);
  press("calRectify");
  EXPECT_THAT(boxes.seen, ElementsAre("纠正错误|当前所选点不能正确计算纠正转换参数，请重新选点！"));
  EXPECT_NE(cell(0, 5), "");
  EXPECT_NE(label("label_advice"), "");
  EXPECT_THAT(stored(path_), IsEmpty());
  expectCorners(0, 0, 1);

  // Near the diagonal an error of picking grows more than a hundredfold.
  boxes.seen.clear();
  table().setRowCount(0);
  dialog().ClearPointPair();
  for (const double t : {0.1, 0.4, 0.6, 0.9}) {
    const double off = t < 0.5 ? 1 : -1;
    addPair(1000 + 400 * t + off, 2300 - 300 * t, 1000 + 400 * t + off, 2300 - 300 * t);
  }
  press("calRectify");
  EXPECT_THAT(boxes.seen, ElementsAre("纠正警告|当前所选点不能准确计算纠正转换参数，请重新选点！"));
  EXPECT_THAT(stored(path_), IsEmpty());
}

TEST_F(Apply, WarnsOfLargeResidualsAndGoesOn) {
  addCorners(0, 0, 1);
  addPair(1200.5, 2149.5, 1200.5, 2199.5);
  method(kHelmert);
  tarn::test::BoxAnswers boxes;
  press("calRectify");
  EXPECT_THAT(boxes.seen, ElementsAre("纠正警告|纠正误差过大！"));
  EXPECT_EQ(std::stod(cell(4, 5)), 40);
  EXPECT_FALSE(stored(path_).empty());
  EXPECT_THAT(label("label_advice"), HasSubstr("去掉第 5 点后"));
  expectDot(1200.5, 2149.5 + 10);
}

TEST_F(Apply, ResidualsOfTenTimesTheScaleDoNotWarn) {
  // Pairs of opposite targets about the same place leave residuals of exactly this length.
  for (const double residual : {10.0, 10.001}) {
    table().setRowCount(0);
    dialog().ClearPointPair();
    for (const auto& [x, y] : corners_) {
      addPair(x, y, x + residual, y);
      addPair(x, y, x - residual, y);
    }
    method(kAffine);
    tarn::test::BoxAnswers boxes;
    press("calRectify");
    EXPECT_EQ(boxes.seen.size(), residual > 10 ? 1U : 0U);
  }
}

TEST_F(Apply, IsSeenKeptAndUndone) {
  addCorners(25, 10, 0.8);
  method(kAffine);
  tarn::test::BoxAnswers boxes;
  press("calRectify");
  EXPECT_THAT(boxes.seen, IsEmpty());
  expectCorners(25, 10, 0.8);
  const std::string text = pointFile();
  EXPECT_THAT(text, HasSubstr("3\n0,o,1050.500000,2249.500000\n1,o,"));
  EXPECT_THAT(text, HasSubstr("\n0,n,1105.400000,2239.600000\n"));

  // The sources are where the image lies now, so nothing changes the second time.
  press("calRectify");
  expectCorners(25, 10, 0.8);
  closeDialog();
  host_->run("U");
  expectCorners(0, 0, 1);
  EXPECT_THAT(stored(path_), IsEmpty());
  host_->run("REDO");
  expectCorners(25, 10, 0.8);

  // The dialog is filled again; a further point on the image as it lies now refines it.
  ASSERT_NE(open(), nullptr);
  EXPECT_EQ(table().rowCount(), 4);
  EXPECT_EQ(find<QComboBox>("rectifyMethod").currentIndex(), kAffine);
  EXPECT_NEAR(std::stod(cell(0, 1)), 1105.4, 1e-6);
  EXPECT_EQ(cell(0, 3), "1105.4");
  addPair(1200.4 + 25, 2149.6 + 10, 1200.4 + 25, 2149.6 + 10);
  press("calRectify");
  expectCorners(25, 10, 0.8);
  EXPECT_THAT(boxes.seen, IsEmpty());
}

TEST_F(Apply, ASecondRectificationGoesOnTopOfAFirstAndOfAMove) {
  addCorners(0, 0, 0.8);
  method(kHelmert);
  press("calRectify");
  choose("radioButton_moveImgage");
  type("lineEdit_X_move", "30");
  type("lineEdit_Y_move", "-20");
  press("calRectify");
  expectCorners(30, -20, 0.8);
  // Points of their own, taken on the image as it lies now, that move it by (-50, 5).
  choose("radioButton_by_control_point");
  while (table().rowCount() > 0) {
    table().selectRow(0);
    press("deletePoints");
  }
  for (const auto& [x, y] : corners_) {
    const double sx = 1200 + (x - 1200) * 0.8 + 30, sy = 2150 + (y - 2150) * 0.8 - 20;
    addPair(sx + 3, sy, sx + 3 - 50, sy + 5);
  }
  method(kAffine);
  press("calRectify");
  expectCorners(-20, -15, 0.8);
  press("abort");
  QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  expectCorners(0, 0, 1);
  EXPECT_THAT(stored(path_), IsEmpty());
  EXPECT_EQ(pointFile(), "(none)");
}

TEST_F(Apply, ComesBackWithTheDrawingAndWithItsPoints) {
  addCorners(25, 10, 0.8);
  method(kHelmert);
  press("calRectify");
  closeDialog();
  const std::string drawing = tarn::joinPath(tarn::folderOf(host_->folder), "rectified.dxf");
  host_->ui.files = {{drawing}, {drawing}};
  host_->run("SAVEAS");
  host_->run("CLOSE");
  host_->run("NEW");
  host_->run("OPEN");
  host_->run("ZOOM C 1200,2150 600");
  expectCorners(25, 10, 0.8);
  ASSERT_NE(open(), nullptr);
  EXPECT_EQ(table().rowCount(), 4);
  EXPECT_EQ(find<QComboBox>("rectifyMethod").currentIndex(), kHelmert);
  press("abort");
  QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  expectCorners(25, 10, 0.8);
  EXPECT_TRUE(tarn::removeAll(drawing));
}

TEST_F(Apply, AnotherDrawingDoesNotReadTheFileBesideTheImage) {
  addCorners(25, 10, 0.8);
  method(kHelmert);
  press("calRectify");
  closeDialog();
  host_->run("NEW");
  add(path_);
  expectCorners(0, 0, 1);
  ASSERT_NE(open(), nullptr);
  EXPECT_EQ(table().rowCount(), 0);
}

}  // namespace
