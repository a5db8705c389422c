// The model through the viewports of a sheet, by the judges of model space.
#include <QRect>
#include <cmath>

#include "base/text.h"
#include "tests/flow/flowfixture.h"

namespace tarn::test {
namespace {

/// A viewport of a sheet: its corners in millimetres of the sheet, and what it shows.
struct Window {
  double left, bottom, right, top;
  double reduction;
  double column, row;
  double twist;
};

struct Sheet {
  const char* name;
  Window windows[2];
  const char* current;  // script lines
};

const Sheet kSheets[] = {
    {"two scales, one twisted, the sheet current",
     {{10, 20, 210.3, 180.7, 2.5, 4000.2, 3000.4, 0}, {220, 30, 400, 250, 4, 4100, 3100, 30}},
     "PSPACE\n"},
    {"two scales, one twisted, a viewport current",
     {{10, 20, 210.3, 180.7, 2.5, 4000.2, 3000.4, 0}, {220, 30, 400, 250, 8, 3900, 3000, -30}},
     "MSPACE\n"},
    {"enlarged and turned",
     {{5, 10, 200, 150, 0.5, 4001.3, 3002.7, 0}, {210, 40, 390, 240, 3, 4000, 3000, 90}},
     "PSPACE\n"},
    {"partly outside the screen, far reduced",
     {{-60, 20, 190, 180, 3.7, 3500.1, 2900.9, 0}, {200, 0, 480, 290, 10, 4100, 3100, 0}},
     "PSPACE\n"},
};
constexpr double kSheetX = 205;  // of the sheet in the middle of the screen
constexpr double kSheetY = 143.5;
constexpr double kSheetHeight = 320;  // millimetres over the screen
constexpr int kScreenWidth = 960;
constexpr int kScreenHeight = 720;
constexpr double kPerPixel = kSheetHeight / kScreenHeight;

double viewHeightOf(const Window& w) {
  return (w.top - w.bottom) / kPerPixel * w.reduction * kPixel;
}

std::string scriptOf(const Sheet& sheet) {
  std::string script = "LAYOUT Set\nLayout1\nERASE L\n\n";
  for (const Window& w : sheet.windows) {
    script += "MVIEW " + formatDouble(w.left) + "," + formatDouble(w.bottom) + " " +
              formatDouble(w.right) + "," + formatDouble(w.top) + "\n";
  }
  script += "MSPACE\n";
  for (int i = 0; i < 2; ++i) {
    const Window& w = sheet.windows[i];
    script += "SETVAR CVPORT " + std::to_string(2 + i) + "\nZOOM C " +
              formatDouble(kLeft + w.column * kPixel) + "," + formatDouble(kTop - w.row * kPixel) +
              " " + formatDouble(viewHeightOf(w)) + "\nTWIST " + formatDouble(w.twist) + "\n";
  }
  return script + "PSPACE\nZOOM C " + formatDouble(kSheetX) + "," + formatDouble(kSheetY) + " " +
         formatDouble(kSheetHeight) + "\n" + sheet.current;
}

/// The part of the screen inside the viewport's frame, and the view that it must show there.
QRect insideOf(const Window& w, View& view) {
  const double left = kScreenWidth / 2.0 + (w.left - kSheetX) / kPerPixel;
  const double right = kScreenWidth / 2.0 + (w.right - kSheetX) / kPerPixel;
  const double top = kScreenHeight / 2.0 - (w.top - kSheetY) / kPerPixel;
  const double bottom = kScreenHeight / 2.0 - (w.bottom - kSheetY) / kPerPixel;
  View whole;
  whole.width = kScreenWidth;
  whole.screenHeight = kScreenHeight;
  whole.height = kScreenHeight * w.reduction * kPixel;
  whole.twist = w.twist;
  whole.centerX = kLeft + w.column * kPixel;
  whole.centerY = kTop - w.row * kPixel;
  double x = 0;
  double y = 0;
  whole.toGround((left + right) / 2, (top + bottom) / 2, x, y);
  whole.centerX += whole.centerX - x;
  whole.centerY += whole.centerY - y;
  constexpr int kFrame = 4;
  const QRect inside =
      QRect(QPoint(static_cast<int>(std::ceil(left)), static_cast<int>(std::ceil(top))),
            QPoint(static_cast<int>(right) - 1, static_cast<int>(bottom) - 1))
          .adjusted(kFrame, kFrame, -kFrame, -kFrame) &
      QRect(0, 0, kScreenWidth, kScreenHeight);
  view = whole;
  whole.toGround(inside.left() + inside.width() / 2.0, inside.top() + inside.height() / 2.0,
                 view.centerX, view.centerY);
  view.width = inside.width();
  view.screenHeight = inside.height();
  view.height = whole.unitsPerPixel() * inside.height();
  return inside;
}

TEST_F(Flow, ThroughTheViewportsOfASheetAsInModelSpace) {
  View screen;
  screen.width = kScreenWidth;
  screen.screenHeight = kScreenHeight;
  screen.centerX = kLeft + 400;
  screen.centerY = kTop - 300;
  screen.height = 600;
  for (const Sheet& sheet : kSheets) {
    SCOPED_TRACE(sheet.name);
    const QImage smooth = picture({scratch_->at("smooth.tif")}, screen, scriptOf(sheet));
    const QImage checks = picture({scratch_->at("checks.tif")}, screen, scriptOf(sheet));
    for (const Window& window : sheet.windows) {
      SCOPED_TRACE(window.reduction);
      View view;
      const QRect inside = insideOf(window, view);
      const Difference d = compare(smooth.copy(inside), *smooth_, view);
      EXPECT_GT(d.compared, 10000);
      EXPECT_LE(d.beyond * 1000, d.compared)
          << d.beyond << " of " << d.compared << ", largest " << d.largest;
      const int channel = window.reduction <= 4 ? 0 : 1;
      for (const bool vertical : {true, false}) {
        const Edges edges =
            visitEdges(checks.copy(inside), view, channel == 0 ? 40 : 400, channel, vertical);
        EXPECT_GT(edges.found, 3);
        EXPECT_LE(edges.worst, 0.5) << (vertical ? "vertical sides" : "horizontal sides");
      }
    }
  }
}

}  // namespace
}  // namespace tarn::test
