// Moving, scaling, rotating and mirroring: exact, combined, undone, kept with the drawing.
#include <QApplication>
#include <QTransform>
#include <cmath>

#include "base/file.h"
#include "base/text.h"
#include "tests/rectify_dialog/dialogfixture.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr double kPi = 3.14159265358979323846;
/// Where the placement's six numbers stand in the stored ones.
constexpr size_t kPlacementAt = 9;

class Placement : public tarn::test::DialogTest {
 protected:
  void SetUp() override {
    DialogTest::SetUp();
    path_ = makeImage("a.tif", dots_);
    add(path_);
    ASSERT_NE(open(), nullptr);
  }
  void pick(const char* button, std::deque<std::optional<std::string>> points) {
    host_->frontEnd.answers = std::move(points);
    press(button);
  }
  void move(const QString& x, const QString& y) {
    choose("radioButton_moveImgage");
    type("lineEdit_X_move", x);
    type("lineEdit_Y_move", y);
    press("calRectify");
  }
  void scale(const QString& x, const QString& y) {
    choose("radioButton_zoom_image");
    type("lineEdit_scaling_X", x);
    type("lineEdit_scaling_Y", y);
    press("calRectify");
  }
  void rotate(const QString& degrees) {
    choose("radioButton_rotate_image");
    type("lineEdit_rotate_degree", degrees);
    press("calRectify");
  }
  void expectDots(const QTransform& placed) {
    for (const auto& [column, row] : dots_) {
      const QPointF at = placed.map(QPointF(kLeft + column + 0.5, kTop - row - 0.5));
      expectDot(at.x(), at.y());
    }
  }
  /// The numbers kept in the drawing are those of the matrix.
  void expectStored(const QTransform& placed) {
    const std::vector<double> numbers = stored(path_);
    ASSERT_GT(numbers.size(), kPlacementAt + 6);
    const double wanted[] = {placed.dx(),  placed.dy(),  placed.m11(),
                             placed.m21(), placed.m12(), placed.m22()};
    for (size_t i = 0; i < 6; ++i) {
      EXPECT_NEAR(numbers[kPlacementAt + i], wanted[i], i < 2 ? 1e-8 : 1e-12) << i;
    }
  }
  void closeDialog() {
    dialog().close();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }

  const std::vector<std::pair<int, int>> dots_ = {{60, 40}, {300, 60}, {200, 250}};
  std::string path_;
};

QTransform about(double x, double y, const QTransform& change) {
  return QTransform::fromTranslate(-x, -y) * change * QTransform::fromTranslate(x, y);
}

QTransform rotation(double degrees) {
  const double c = std::cos(degrees * kPi / 180), s = std::sin(degrees * kPi / 180);
  return {c, s, -s, c, 0, 0};
}

TEST_F(Placement, ChangesAreSeenAtOnceCombinedAndUndoneOneByOne) {
  QTransform placed;
  expectDots(placed);
  std::vector<QTransform> steps = {placed};
  const auto done = [&](const QTransform& change) {
    placed *= change;
    steps.push_back(placed);
    expectDots(placed);
    expectStored(placed);
  };
  move("12.5", " -7 ");
  done(QTransform::fromTranslate(12.5, -7));

  // Without a base point about the upper left corner of the image as it lies now.
  scale("0.8", "1.25");
  done(about(kLeft + 12.5, kTop - 7, QTransform::fromScale(0.8, 1.25)));

  choose("radioButton_rotate_image");
  pick("pushButton_pick_rotate_point", {"1180,2120"});
  rotate("-33");
  done(about(1180, 2120, rotation(-33)));

  choose("radioButton_mirror");
  pick("selMirrorLine", {"1200,2000", "1230,2300"});
  press("calRectify");
  const double angle = std::atan2(300, 30) * 180 / kPi;
  done(about(1200, 2000, rotation(-angle) * QTransform::fromScale(1, -1) * rotation(angle)));

  choose("radioButton_zoom_image");
  pick("pushButton_get_zoom_point", {"1250,2200"});
  scale("1.1", "0.9");
  done(about(1250, 2200, QTransform::fromScale(1.1, 0.9)));

  rotate("400");
  done(about(1180, 2120, rotation(40)));

  closeDialog();
  for (size_t i = steps.size() - 1; i-- > 0;) {
    host_->run("U");
    expectDots(steps[i]);
  }
  EXPECT_THAT(stored(path_), IsEmpty());
  for (size_t i = 1; i < steps.size(); ++i) {
    host_->run("REDO");
    expectDots(steps[i]);
    expectStored(steps[i]);
  }
}

TEST_F(Placement, OfLargeCoordinatesKeepsItsDigits) {
  choose("radioButton_rotate_image");
  pick("pushButton_pick_rotate_point", {"40500123.456,3500000.125"});
  rotate("90");
  const std::vector<double> numbers = stored(path_);
  ASSERT_GT(numbers.size(), kPlacementAt + 6);
  EXPECT_NEAR(numbers[kPlacementAt], 40500123.456 + 3500000.125, 1e-7);
  EXPECT_NEAR(numbers[kPlacementAt + 1], 3500000.125 - 40500123.456, 1e-7);
}

TEST_F(Placement, InputThatIsNoneIsRefusedAndChangesNothing) {
  tarn::test::BoxAnswers boxes;
  for (const char* factor : {"0", "-1", "-0.5", "", "x", "nan", "inf"}) {
    boxes.seen.clear();
    scale("1", factor);
    EXPECT_THAT(boxes.seen, ElementsAre("错误|缩放比例非零且非负")) << factor;
    boxes.seen.clear();
    scale(factor, "1");
    EXPECT_THAT(boxes.seen, ElementsAre("错误|缩放比例非零且非负")) << factor;
  }
  move("x", "1");
  move("1", "inf");
  host_->ui.boxes.clear();
  rotate("361");
  choose("radioButton_mirror");
  press("calRectify");
  EXPECT_THAT(host_->ui.boxes, ElementsAre("请输入正确的旋转基点", "请输入正确的镜像线"));
  pick("selMirrorLine", {"5,5", "5,5"});
  press("calRectify");
  EXPECT_THAT(stored(path_), IsEmpty());
  expectDots({});

  // The smallest factors are factors, and minus nothing moves by nothing.
  scale("0.000001", "1");
  EXPECT_EQ(stored(path_).empty(), false);
  press("abort");
  QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  ASSERT_NE(open(), nullptr);
  move("-0", "");
  const std::vector<double> numbers = stored(path_);
  ASSERT_GT(numbers.size(), kPlacementAt + 6);
  EXPECT_FALSE(std::signbit(numbers[kPlacementAt]));
}

TEST_F(Placement, CancellingBringsBackWhatWasBeforeTheDialog) {
  move("20", "0");
  closeDialog();
  ASSERT_NE(open(), nullptr);
  expectDots(QTransform::fromTranslate(20, 0));
  move("0", "30");
  expectDots(QTransform::fromTranslate(20, 30));
  press("abort");
  QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_EQ(rectifyDialog::instance(), nullptr);
  expectDots(QTransform::fromTranslate(20, 0));
  expectStored(QTransform::fromTranslate(20, 0));
}

TEST_F(Placement, ComesBackWithTheDrawing) {
  move("20", "-10");
  closeDialog();
  const std::string drawing = tarn::joinPath(tarn::folderOf(host_->folder), "placed.dxf");
  host_->ui.files = {{drawing}, {drawing}};
  host_->run("SAVEAS");
  host_->run("CLOSE");
  host_->run("NEW");
  host_->run("OPEN");
  ASSERT_TRUE(rectifyDialog::instance() == nullptr);
  host_->run("ZOOM C 1200,2150 600");
  expectDots(QTransform::fromTranslate(20, -10));
  expectStored(QTransform::fromTranslate(20, -10));
  EXPECT_TRUE(tarn::removeAll(drawing));
}

TEST_F(Placement, SourcesInTheTableFollowTheImage) {
  addPair(1100, 2200, 5, 6);
  move("1.5", "-2");
  EXPECT_THAT(sources(), ElementsAre("1101.5 2198"));
  EXPECT_EQ(cell(0, 3), "5");
}

}  // namespace
