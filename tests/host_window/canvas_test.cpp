#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QProcess>
#include <QTest>
#include <algorithm>
#include <cmath>

#include "afxwin.h"
#include "windowfixture.h"

namespace tarn::test {
namespace {

using host::GroundPoint;
using host::ViewState;

constexpr int kSettled = 3 * host::Canvas::kSettleMilliseconds;

double apart(GroundPoint a, GroundPoint b, const ViewState& view) {
  return std::hypot(a.x - b.x, a.y - b.y) / view.unitsPerPixel();
}

std::vector<unsigned> messagesOf(const std::vector<Seen>& seen) {
  std::vector<unsigned> out;
  out.reserve(seen.size());
  for (const Seen& s : seen) out.push_back(s.message);
  return out;
}

class CanvasTest : public WindowTest {
 protected:
  void SetUp() override {
    WindowTest::SetUp();
    if (HasFatalFailure()) return;
    ViewState view = app_->view();
    view.centerX = 40500123.456;
    view.centerY = 3512345.678;
    view.height = 800;
    app_->setView(view);
    wait(kSettled);
  }

  /// A LINE command with all its points; Escape ends it.
  void drawLine(const QString& line) {
    play({[&] { enter(line); }, [&] { key(Qt::Key_Escape); }});
  }
};

TEST_F(CanvasTest, ViewHasTheDevicePixelsOfTheCanvas) {
  const double ratio = window_->devicePixelRatioF();
  EXPECT_EQ(app_->view().pixelWidth, qRound(window_->canvas().width() * ratio));
  EXPECT_EQ(app_->view().pixelHeight, qRound(window_->canvas().height() * ratio));
}

TEST_F(CanvasTest, WheelKeepsTheGroundUnderTheCursorAndRegeneratesOnce) {
  const QPoint at(211, 97);
  const GroundPoint before = groundUnder(at);
  const ViewState view = app_->view();
  const int regenerated = regenerations();
  for (int i = 0; i < 4; ++i) wheel(at, 1);
  EXPECT_NEAR(app_->view().height, view.height / std::pow(1.25, 4), 1e-6);
  EXPECT_LT(apart(groundUnder(at), before, app_->view()), 0.01);
  EXPECT_EQ(messagesOf(seen()), std::vector<unsigned>(4, WM_MOUSEWHEEL));
  ASSERT_FALSE(seen().empty());
  EXPECT_EQ(seen().front().wheel, 120);
  EXPECT_EQ(seen().front().view.height, view.height)
      << "watchers hear of it before the view changes";
  EXPECT_EQ(regenerations(), regenerated) << "not while the wheel turns";
  wait(kSettled);
  EXPECT_EQ(regenerations(), regenerated + 1);
}

TEST_F(CanvasTest, MiddleDragPans) {
  const QPoint from(400, 300);
  const QPoint to(137, 222);
  const GroundPoint held = groundUnder(from);
  const ViewState view = app_->view();
  const int regenerated = regenerations();
  drag(from, to, 7);
  EXPECT_LT(apart(groundUnder(to), held, app_->view()), 0.01);
  EXPECT_EQ(app_->view().height, view.height);
  ASSERT_EQ(messagesOf(seen()), (std::vector<unsigned>{WM_MBUTTONDOWN, WM_MBUTTONUP}));
  EXPECT_EQ(seen()[0].view.centerX, view.centerX);
  EXPECT_EQ(seen()[1].view.centerX, app_->view().centerX)
      << "a watcher draws the view it will stay";
  EXPECT_EQ(regenerations(), regenerated + 1);
  wait(kSettled);
  EXPECT_EQ(regenerations(), regenerated + 1);
}

TEST_F(CanvasTest, ClickOfTheMiddleButtonAloneChangesNothing) {
  const int regenerated = regenerations();
  QTest::mouseClick(&window_->canvas(), Qt::MiddleButton, {}, {50, 50});
  wait(kSettled);
  EXPECT_EQ(regenerations(), regenerated);
}

TEST_F(CanvasTest, DoubleMiddleClickShowsEverything) {
  doubleClick({50, 50});
  EXPECT_TRUE(history().contains("empty")) << history().toStdString();
  drawLine("LINE 1000,2000 1300,2100");
  seen().clear();
  doubleClick({50, 50});
  EXPECT_NEAR(app_->view().centerX, 1150, 1e-6);
  EXPECT_NEAR(app_->view().centerY, 2050, 1e-6);
  const ViewState& view = app_->view();
  // The line is 300 wide and 100 high; a low window is filled by its height.
  const double whole = std::max(300.0, 100.0 * view.pixelWidth / view.pixelHeight);
  const double shownWidth = view.unitsPerPixel() * view.pixelWidth;
  EXPECT_GT(shownWidth, whole);
  EXPECT_LT(shownWidth, whole * 320 / 300);
  EXPECT_EQ(messagesOf(seen()),
            (std::vector<unsigned>{WM_MBUTTONDOWN, WM_MBUTTONUP, WM_MBUTTONDOWN, WM_MBUTTONUP}));
}

TEST_F(CanvasTest, PreviousViewGoesBackByWholeGestures) {
  const ViewState start = app_->view();
  for (int i = 0; i < 3; ++i) wheel({200, 100}, 1);
  wait(kSettled);
  const ViewState zoomed = app_->view();
  drag({400, 300}, {137, 222}, 7);
  drag({400, 300}, {437, 322}, 7);
  EXPECT_TRUE(app_->zoomPrevious());
  EXPECT_TRUE(app_->zoomPrevious());
  EXPECT_EQ(app_->view().centerX, zoomed.centerX);
  EXPECT_EQ(app_->view().height, zoomed.height);
  EXPECT_TRUE(app_->zoomPrevious());
  EXPECT_EQ(app_->view().centerX, start.centerX);
  EXPECT_EQ(app_->view().height, start.height);
}

TEST_F(CanvasTest, ResizeKeepsTheScale) {
  const double scale = app_->view().unitsPerPixel();
  const double x = app_->view().centerX;
  const int regenerated = regenerations();
  window_->resize(window_->width() - 120, window_->height() - 60);
  wait(kSettled);
  EXPECT_NEAR(app_->view().unitsPerPixel(), scale, 1e-9);
  EXPECT_EQ(app_->view().centerX, x);
  EXPECT_EQ(app_->view().pixelWidth,
            qRound(window_->canvas().width() * window_->devicePixelRatioF()));
  EXPECT_EQ(regenerations(), regenerated + 1);
}

TEST_F(CanvasTest, PaintsWhatTheHostRendersAlsoWhilePanning) {
  drawLine("LINE 40500000,3512200 40500200,3512500 40500300,3512300");
  for (const QPoint to : {QPoint(300, 200), QPoint(347, 231)}) {
    drag({300, 200}, to, 4);
    const QImage shown = window_->canvas().grab().toImage().convertToFormat(QImage::Format_RGB32);
    QImage expected(app_->view().pixelWidth, app_->view().pixelHeight, QImage::Format_RGB32);
    QPainter painter(&expected);
    app_->renderTo(painter, expected.width(), expected.height());
    painter.end();
    expected.setDevicePixelRatio(shown.devicePixelRatio());
    EXPECT_EQ(shown, expected);
    expected.fill(expected.pixel(0, 0));
    EXPECT_NE(shown, expected) << "the line left no ink";
  }
}

TEST_F(CanvasTest, StatusBarShowsTheGroundUnderTheMouse) {
  const QPoint at(123, 45);
  move(at);
  const GroundPoint ground = groundUnder(at);
  const QString expected =
      QString::number(ground.x, 'f', 3) + ", " + QString::number(ground.y, 'f', 3);
  EXPECT_EQ(childText("ground").toStdString(), expected.toStdString());
}

/// The same tests once more on a screen with two device pixels a unit.
TEST(HighDpi, CanvasTestsHoldAtTwiceTheScale) {
  if (qEnvironmentVariableIsSet("QT_SCALE_FACTOR")) GTEST_SKIP() << "this is the second run";
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert("QT_SCALE_FACTOR", "2");
  QProcess process;
  process.setProcessEnvironment(environment);
  process.setProcessChannelMode(QProcess::MergedChannels);
  process.start(testProgram(), {"--gtest_filter=CanvasTest.*"});
  ASSERT_TRUE(process.waitForFinished(120000));
  const QByteArray output = process.readAll();
  EXPECT_EQ(process.exitCode(), 0) << output.constData();
  EXPECT_TRUE(output.contains("PASSED")) << output.constData();
}

}  // namespace
}  // namespace tarn::test
