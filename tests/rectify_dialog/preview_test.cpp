// The preview seen through: what of it is seen, what that costs, where it ends.
#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QSlider>

#include "host/graphics/viewstate.h"
#include "tests/rectify_dialog/dialogfixture.h"

namespace {

using ::testing::HasSubstr;
using ::testing::Not;

class Preview : public tarn::test::DialogTest {
 protected:
  static constexpr int kGround = 0x30;  ///< blue of the drawing's ground
  static constexpr int kPaper = 90;     ///< of the image

  void SetUp() override {
    DialogTest::SetUp();
    add(makeImage("a.tif", {{200, 150}}));
    begin();
  }
  void begin() {
    ASSERT_NE(open(), nullptr);
    find<QComboBox>("rectifyMethod").setCurrentIndex(4);
    if (table().rowCount() > 0) return;
    addPair(1050.5, 2249.5, 1060.5, 2249.5);
    addPair(1350.5, 2049.5, 1360.5, 2049.5);
    addPair(1050.5, 2049.5, 1060.5, 2049.5);
  }
  void key(int key) {
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
    QApplication::sendEvent(&find<QWidget>("previewOpacity"), &event);
  }
  /// Blue in the middle of the drawing, which is not drawn anew for this.
  int blueShown() {
    const tarn::host::ViewState view = host_->app->screenView();
    QImage image(view.pixelWidth, view.pixelHeight, QImage::Format_RGB32);
    QPainter painter(&image);
    host_->app->renderTo(painter, view.pixelWidth, view.pixelHeight);
    return qBlue(image.pixel(view.pixelWidth / 2 + 40, view.pixelHeight / 2 + 20));
  }
  static int blended(double opacity) {
    return static_cast<int>(kGround + (kPaper - kGround) * opacity + 0.5);
  }
};

TEST_F(Preview, IsSeenThroughWithoutAskingItsSource) {
  EXPECT_FALSE(find<QSlider>("previewOpacity").isEnabled());
  host_->app->setStatistics(true);
  host_->printed();
  press("calError");
  EXPECT_THAT(host_->printed(), HasSubstr("\"tiles"));
  ASSERT_TRUE(find<QSlider>("previewOpacity").isEnabled());
  EXPECT_NEAR(blueShown(), kPaper, 1);
  const struct {
    int key;
    int percent;
  } steps[] = {{Qt::Key_Home, 0},  {Qt::Key_PageUp, 10},   {Qt::Key_Right, 11},
               {Qt::Key_End, 100}, {Qt::Key_PageDown, 90}, {Qt::Key_Left, 89}};
  for (const auto& step : steps) {
    key(step.key);
    EXPECT_EQ(find<QSlider>("previewOpacity").value(), step.percent);
    EXPECT_NEAR(blueShown(), blended(step.percent / 100.0), 2) << step.percent;
    EXPECT_THAT(host_->printed(),
                testing::AllOf(HasSubstr("\"images\":1"), Not(HasSubstr("\"tiles"))));
  }
  // Another view has other pixels, seen through as well.
  host_->run("ZOOM C 1210,2150 300");
  EXPECT_NEAR(blueShown(), blended(0.89), 2);
  // What is applied is no preview any more.
  press("calRectify");
  EXPECT_NEAR(blueShown(), kPaper, 1);
  EXPECT_FALSE(find<QSlider>("previewOpacity").isEnabled());
}

TEST_F(Preview, EndsWithTheDialogAndIsRemembered) {
  for (const auto& [left, begins] : {std::pair(60, 60), std::pair(3, 20)}) {
    press("calError");
    find<QSlider>("previewOpacity").setValue(left);
    EXPECT_NEAR(blueShown(), blended(left / 100.0), 2);
    dialog().close();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_NEAR(blueShown(), kPaper, 1);
    begin();
    EXPECT_EQ(find<QSlider>("previewOpacity").value(), begins);
  }
}

TEST_F(Preview, IsComparedWithTheDialogFoldedAway) {
  const QRect before = dialog().geometry();
  press("compareView");
  QApplication::processEvents();
  EXPECT_LT(dialog().height(), 80);
  EXPECT_FALSE(find<QWidget>("pointsTable").isVisible());
  EXPECT_TRUE(find<QWidget>("previewOpacity").isVisible());
  QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
  QApplication::sendEvent(&dialog(), &escape);
  EXPECT_EQ(dialog().geometry(), before);
  EXPECT_TRUE(find<QWidget>("pointsTable").isVisible());
  EXPECT_FALSE(find<QWidget>("recoverPoints").isVisible());
}

}  // namespace
