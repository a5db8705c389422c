#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>
#include <cmath>

#include "base/file.h"
#include "base/path.h"
#include "host/editor/regenerator.h"
#include "windowfixture.h"

namespace tarn::test {
namespace {

class PlotDialogTest : public WindowTest {
 protected:
  void SetUp() override {
    WindowTest::SetUp();
    if (HasFatalFailure()) return;
    file_ = folder_.filePath("plot.png");
    enter("setvar osmode 0");
  }

  void drawLine(const std::string& points) {
    play({
        [&] { enter(QString::fromStdString("line " + points)); },
        [&] { key(Qt::Key_Return); },
    });
  }
  /// As play(); a dialog that is still open at the end is a failure and goes.
  void work(std::vector<std::function<void()>> steps) {
    steps.emplace_back([] {
      QWidget* left = QApplication::activeModalWidget();
      EXPECT_EQ(left, nullptr) << "the dialog is still there";
      if (left != nullptr) left->close();
    });
    play(std::move(steps));
  }
  /// The dialog that is open now.
  QDialog& dialog() {
    auto* found = window_->findChild<QDialog*>("plotDialog");
    EXPECT_NE(found, nullptr);
    return *found;
  }
  template <typename Widget>
  Widget& field(const char* name) {
    auto* found = dialog().findChild<Widget*>(name);
    EXPECT_NE(found, nullptr) << name;
    return *found;
  }
  /// As a user does: the signal of a choice comes only by hand.
  void choose(const char* name, const QString& text) {
    auto& combo = field<QComboBox>(name);
    const int index = combo.findText(text, Qt::MatchStartsWith);
    EXPECT_GE(index, 0) << text.toStdString();
    combo.setCurrentIndex(index);
    emit combo.activated(index);
  }
  void press(const char* name) { field<QPushButton>(name).click(); }
  QString message() { return field<QLabel>("message").text(); }
  void chooseSmallPage() {
    choose("device", "PNG");
    choose("paper", "Custom");
    field<QDoubleSpinBox>("width").setValue(110);
    field<QDoubleSpinBox>("height").setValue(60);
    field<QSpinBox>("dpi").setValue(127);  // five pixels a millimetre
    field<QLineEdit>("file").setText(file_);
  }
  static bool darkNear(const QImage& image, int x, int y) {
    for (int dy = -2; dy <= 2; ++dy) {
      for (int dx = -2; dx <= 2; ++dx) {
        if (image.valid(x + dx, y + dy) && qGray(image.pixel(x + dx, y + dy)) < 128) return true;
      }
    }
    return false;
  }

  QString file_;
};

TEST_F(PlotDialogTest, PlotsWhatItShowsWithoutDrawingTheScreen) {
  drawLine("0,0 100,50");
  enter("zoom e");
  const host::Regenerator& regenerator = app_->regenerator();
  const long long before = regenerator.screenDrawings();
  work({
      [&] { QTest::keyClick(window_->windowHandle(), Qt::Key_P, Qt::ControlModifier); },
      [&] {
        EXPECT_EQ(app_->commandNames(), "PLOT");
        expectNames(dialog());
        chooseSmallPage();
        choose("area", "Extents");
        EXPECT_TRUE(field<QCheckBox>("fit").isChecked());
        EXPECT_TRUE(message().startsWith("100 × 50 mm are plotted at 1 drawing units"))
            << message().toStdString();
        EXPECT_TRUE(message().contains("550 × 300 pixels"));
        press("plot");
      },
  });
  EXPECT_FALSE(app_->commandActive());
  EXPECT_TRUE(history().contains("plot.png written.")) << history().toStdString();
  EXPECT_EQ(regenerator.screenDrawings(), before);
  const QImage page(file_);
  ASSERT_EQ(page.size(), QSize(550, 300));
  for (const int mm : {1, 20, 50, 80, 99}) {
    EXPECT_TRUE(darkNear(page, (5 + mm) * 5, 300 - (5 + mm / 2) * 5 - 2)) << mm;
  }
  EXPECT_FALSE(darkNear(page, 100, 100));
}

TEST_F(PlotDialogTest, AWindowIsPickedInTheDrawing) {
  const QPoint first(150, 320);
  const QPoint second(350, 220);
  const host::GroundPoint a = groundUnder(first);
  const host::GroundPoint b = groundUnder(second);
  drawLine(host::formatPoint(a.x, a.y) + " " + host::formatPoint(b.x, b.y));
  work({
      [&] { enter("plot"); },
      [&] {
        chooseSmallPage();
        choose("area", "Window");
        EXPECT_FALSE(field<QPushButton>("plot").isEnabled()) << "no window yet";
        press("pick");
      },
      [&] { QTest::mouseClick(&window_->canvas(), Qt::LeftButton, {}, first); },
      [&] { QTest::mouseClick(&window_->canvas(), Qt::LeftButton, {}, second); },
      [&] {
        EXPECT_EQ(field<QComboBox>("area").currentText(), "Window");
        EXPECT_EQ(field<QDoubleSpinBox>("width").value(), 110) << "what was chosen stays";
        press("plot");
      },
  });
  const QImage page(file_);
  ASSERT_EQ(page.size(), QSize(550, 300)) << history().toStdString();
  // The window is twice as wide as high, as the printable part: its diagonal is the line.
  for (const double part : {0.02, 0.5, 0.98}) {
    EXPECT_TRUE(darkNear(page, qRound(25 + 500 * part), qRound(275 - 250 * part))) << part;
  }
}

TEST_F(PlotDialogTest, WhatCannotBePlottedIsSaidAndEscapeLeavesNothing) {
  const struct {
    const char* field;
    const char* text;
    const char* message;
  } wrong[] = {
      {"file", "", "needs a file name"},
      {"file", "/no/such/folder/a.png", "there is no folder /no/such/folder"},
      {"scale", "1=0", "\"1=0\" is no scale"},
  };
  work({
      [&] { enter("plot"); },
      [&] {
        chooseSmallPage();
        field<QCheckBox>("fit").setChecked(false);
        for (const auto& one : wrong) {
          auto* edit = dialog().findChild<QLineEdit*>(one.field);
          if (edit == nullptr) edit = field<QComboBox>(one.field).lineEdit();
          const QString good = edit->text();
          edit->setText(one.text);
          EXPECT_TRUE(message().contains(one.message)) << message().toStdString();
          EXPECT_FALSE(field<QPushButton>("plot").isEnabled());
          edit->setText(good);
          EXPECT_TRUE(field<QPushButton>("plot").isEnabled()) << message().toStdString();
        }
        QTest::keyClick(&dialog(), Qt::Key_Escape);
      },
  });
  EXPECT_TRUE(history().endsWith("*Cancel*")) << history().toStdString();
  EXPECT_EQ(fileKind(file_.toStdString()), FileKind::kMissing);
}

TEST_F(PlotDialogTest, SettingsStayWithTheLayoutAndCmddiaAsksByPrompts) {
  enter("setvar tilemode 0");
  work({
      [&] { enter("plot"); },
      [&] {
        EXPECT_EQ(field<QComboBox>("layout").currentText(), "Layout1");
        chooseSmallPage();
        choose("rotation", "90");
        field<QCheckBox>("keeps").setChecked(true);
        press("plot");
      },
  });
  EXPECT_TRUE(history().contains("plot.png written.")) << history().toStdString();
  enter("setvar cmddia 0");
  work({
      [&] { enter("plot"); },
      [&] { enter("yes"); },
      [&] { enter(""); },
      [&] { enter("png"); },
      [&] { enter(""); },
      [&] { enter(""); },
      [&] { enter(""); },
      [&] { key(Qt::Key_Escape); },
  });
  EXPECT_TRUE(history().contains("<110x60>")) << history().toStdString();
  EXPECT_TRUE(history().contains("[0/90/180/270] <90>"));
}

}  // namespace
}  // namespace tarn::test
