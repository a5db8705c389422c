#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>

#include "host/window/filefilters.h"
#include "host/window/frame.h"
#include "host/window/mousemessage.h"
#include "host/window/statusarea.h"

namespace tarn::host {
namespace {

TEST(Filters, HostFormBecomesDialogForm) {
  const struct {
    const char* given;
    const char* expected;  ///< joined by '|'
  } cases[] = {
      {"tif文件(*.tif)|*.tif|img文件(*.img)|*.img|jpg文件(*.jpg)|*.jpg||",
       "tif文件 (*.tif *.TIF)|img文件 (*.img *.IMG)|jpg文件 (*.jpg *.JPG)"},
      {"Images|*.tif; *.IMG||", "Images (*.tif *.TIF *.img *.IMG)"},
      {"数据格式(*.tif)|*.tif|数据格式(*.img)|*.img|",
       "数据格式 (*.tif *.TIF)|数据格式 (*.img *.IMG)"},
      {"All Files (*.*)|*.*||", "All Files (*)"},
      {"Points (x y)|*.txt||", "Points (x y) (*.txt *.TXT)"},
      {"text without a pattern|", ""},
      {"", ""},
  };
  for (const auto& c : cases) EXPECT_EQ(dialogFilters(c.given).join('|').toStdString(), c.expected);
}

TEST(Filters, ExtensionLosesWhatIsNotPartOfIt) {
  for (const char* given : {"tif", ".tif", "*.tif"}) {
    EXPECT_EQ(plainExtension(given).toStdString(), "tif");
  }
  EXPECT_TRUE(plainExtension("*.*").isEmpty());
  EXPECT_TRUE(plainExtension("").isEmpty());
}

TEST(Filters, DroppedFilesAreToldApart) {
  const DroppedFiles sorted =
      sortDropped({"/a/b.TIF", "/a/文件.jpeg", "/a/b.dxf", "/a/tif", "/a/b.img.txt", "/a.tif/b"});
  EXPECT_EQ(sorted.images, (std::vector<std::string>{"/a/b.TIF", "/a/文件.jpeg"}));
  EXPECT_EQ(sorted.drawings, std::vector<std::string>{"/a/b.dxf"});
  EXPECT_EQ(sorted.others, (std::vector<std::string>{"/a/tif", "/a/b.img.txt", "/a.tif/b"}));
}

TEST(MouseMessages, ParametersArePacked) {
  MouseState state;
  state.canvas = {300, 200};
  state.screen = {1300, -5};
  state.buttons = Qt::MiddleButton;
  state.modifiers = Qt::ControlModifier;
  state.wheelDelta = -120;
  const MSG down = mouseMessage(WM_MBUTTONDOWN, state);
  EXPECT_EQ(down.message, 0x0207U);
  EXPECT_EQ(down.wParam, 0x18U);
  EXPECT_EQ(down.lParam, 200 << 16 | 300);
  EXPECT_EQ(down.pt.x, 1300);
  const MSG wheel = mouseMessage(WM_MOUSEWHEEL, state);
  EXPECT_EQ(static_cast<short>(wheel.wParam >> 16), -120);
  EXPECT_EQ(wheel.wParam & 0xffff, 0x18U);
  EXPECT_EQ(static_cast<short>(wheel.lParam >> 16), -5);
}

TEST(Coordinates, KeepThreeDecimals) {
  EXPECT_EQ(coordinateText({40500123.456, 3512345.678}).toStdString(), "40500123.456, 3512345.678");
}

ViewState farView() {
  ViewState view;
  view.centerX = 40500123.456;
  view.centerY = 3512345.678;
  view.height = 77.7;
  view.twist = 0.3;
  view.pixelWidth = 200;
  view.pixelHeight = 120;
  return view;
}

TEST(Frame, OnlyPansByWholePixelsAreShifts) {
  const ViewState view = farView();
  EXPECT_EQ(wholePixelShift(view, pannedBy(view, 17, -5)), QPoint(17, -5));
  EXPECT_EQ(wholePixelShift(view, view), QPoint(0, 0));
  EXPECT_FALSE(wholePixelShift(view, pannedBy(view, 17.5, 0)));
  EXPECT_FALSE(wholePixelShift(view, pannedBy(view, 200, 0)));
  EXPECT_FALSE(wholePixelShift(view, zoomedAt(view, {0, 0}, 1.01)));
}

/// Ground squares of many colours, one painter unit a pixel.
void paintSquares(QPainter& painter, const ViewState& view) {
  painter.fillRect(0, 0, view.pixelWidth, view.pixelHeight, Qt::black);
  for (int i = -30; i < 30; ++i) {
    for (int j = -30; j < 30; ++j) {
      const PixelPoint at = pixelFromGround(view, {40500123.0 + 5 * i, 3512345.0 + 5 * j});
      painter.fillRect(QRectF(at.x, at.y, 6, 4), QColor(128 + 4 * i, 128 + 4 * j, 200));
    }
  }
}

TEST(Frame, PanningGivesThePictureThatPaintingAnewGives) {
  ViewState view = farView();
  Frame panned;
  int painted = 0;
  const auto paint = [&](QPainter& painter) {
    ++painted;
    paintSquares(painter, view);
  };
  panned.update(view, paint);
  for (const QPoint by : {QPoint(13, 0), QPoint(-40, 25), QPoint(0, -119), QPoint(3, 3)}) {
    view = pannedBy(view, by.x(), by.y());
    panned.update(view, paint);
    Frame whole;
    whole.update(view, [&](QPainter& painter) { paintSquares(painter, view); });
    EXPECT_EQ(panned.image(), whole.image()) << by.x() << ' ' << by.y();
  }
  EXPECT_EQ(painted, 7) << "once whole, once for each bare strip";
  panned.update(view, paint);
  EXPECT_EQ(painted, 7) << "up to date already";
  panned.invalidate();
  panned.update(view, paint);
  EXPECT_EQ(painted, 8);
}

}  // namespace
}  // namespace tarn::host
