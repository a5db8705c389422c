// Entities chosen with the mouse: clicks, windows, grips, snaps, keys.
#include <QImage>
#include <QPainter>
#include <QTest>

#include "host/editor/documents.h"
#include "host/editor/sysvars.h"
#include "tests/host_editor/drawnlines.h"
#include "windowfixture.h"

namespace tarn::test {
namespace {

class PickTest : public WindowTest {
 protected:
  void SetUp() override {
    WindowTest::SetUp();
    if (HasFatalFailure()) return;
    host::ViewState view = app_->view();
    view.centerX = 50;
    view.centerY = 50;
    view.height = 200;
    app_->setView(view);
    draw("0,0 100,0");
    draw("0,50 100,50");
    wait(2 * host::Canvas::kSettleMilliseconds);
  }
  void draw(const QString& points) {
    play({[&] { enter("LINE " + points); }, [&] { key(Qt::Key_Return); }});
  }
  QPoint at(double x, double y) const {
    const double ratio = window_->devicePixelRatioF();
    const host::PixelPoint pixel = pixelFromGround(app_->view(), {x, y});
    return {int(pixel.x / ratio), int(pixel.y / ratio)};
  }
  void click(double x, double y, Qt::KeyboardModifiers keys = {}) {
    QTest::mouseClick(&window_->canvas(), Qt::LeftButton, keys, at(x, y));
  }
  void dragLeft(double x, double y, double toX, double toY) {
    host::Canvas* canvas = &window_->canvas();
    QTest::mousePress(canvas, Qt::LeftButton, {}, at(x, y));
    move(at((x + toX) / 2, (y + toY) / 2), Qt::LeftButton);
    QTest::mouseRelease(canvas, Qt::LeftButton, {}, at(toX, toY));
  }
  size_t chosen() { return app_->documents().current().selection().pickFirst.size(); }
  std::string lines() { return host::drawnLines(*app_); }
};

TEST_F(PickTest, ClicksAndWindowsChooseAndEscapeLetsGo) {
  click(50, 0);
  EXPECT_EQ(chosen(), 1U);
  click(50, 50);
  EXPECT_EQ(chosen(), 2U);
  click(50, 50, Qt::ShiftModifier);
  EXPECT_EQ(chosen(), 1U);
  key(Qt::Key_Escape);
  EXPECT_EQ(chosen(), 0U);
  dragLeft(-10, 60, 110, -10);
  EXPECT_EQ(chosen(), 2U) << "both lie in the window";
  key(Qt::Key_Escape);
  dragLeft(-10, 10, 50, -10);
  EXPECT_EQ(chosen(), 0U) << "from left to right only what lies wholly inside";
  dragLeft(50, 10, -10, -10);
  EXPECT_EQ(chosen(), 1U) << "from right to left what is touched";
  key(Qt::Key_Escape);
  click(-20, 20);
  click(120, -20);
  EXPECT_EQ(chosen(), 1U) << "two clicks make a window too";
}

TEST_F(PickTest, KeysAndCommandsWorkOnWhatWasChosen) {
  click(50, 0);
  key(Qt::Key_Delete);
  wait(20);
  EXPECT_EQ(lines(), "0,50>100,50");
  QTest::keyClick(keyboardOwner(), Qt::Key_Z, Qt::ControlModifier);
  wait(20);
  EXPECT_EQ(lines(), "0,0>100,0 0,50>100,50");
  click(50, 0);
  play({[&] { enter("MOVE 0,0"); }, [&] { enter("0,10"); }});
  EXPECT_EQ(lines(), "0,10>100,10 0,50>100,50");
  EXPECT_EQ(chosen(), 0U);
  play({[&] { enter("ERASE"); }, [&] { dragLeft(60, 60, 40, 5); }, [&] { key(Qt::Key_Return); }});
  EXPECT_EQ(lines(), "");
}

TEST_F(PickTest, AGripIsDraggedOrClicked) {
  click(50, 0);
  dragLeft(100, 0, 100, -20);
  const QStringList ends = QString::fromStdString(lines()).split(' ');
  const QStringList moved = ends[0].split('>')[1].split(',');
  EXPECT_NEAR(moved[0].toDouble(), 100, 1) << lines();
  EXPECT_NEAR(moved[1].toDouble(), -20, 1) << lines();
  EXPECT_EQ(chosen(), 1U) << "the grips stay";
  key(Qt::Key_Escape);
  click(50, 50);
  play({[&] { click(0, 50); }, [&] { enter("-10,60"); }});
  EXPECT_TRUE(QString::fromStdString(lines()).endsWith("-10,60>100,50")) << lines();
}

TEST_F(PickTest, RunningSnapsGiveExactPoints) {
  app_->variables().set("OSMODE", short{1});
  play({[&] { enter("LINE"); }, [&] { click(1, 1); }, [&] { click(99, 49); },
        [&] { key(Qt::Key_Return); }});
  EXPECT_TRUE(QString::fromStdString(lines()).endsWith("0,0>100,50")) << lines();
}

TEST_F(PickTest, WhatIsChosenIsSeen) {
  const auto blue = [&] {
    const QImage shot = window_->canvas().grab().toImage();
    int count = 0;
    for (int y = 0; y < shot.height(); ++y) {
      for (int x = 0; x < shot.width(); ++x) {
        const QColor color = shot.pixelColor(x, y);
        if (color.blue() > color.red() + 100) ++count;
      }
    }
    return count;
  };
  const int before = blue();
  click(50, 0);
  wait(20);
  EXPECT_GT(blue(), before + 100);
  key(Qt::Key_Escape);
  wait(20);
  EXPECT_EQ(blue(), before);
}

}  // namespace
}  // namespace tarn::test
