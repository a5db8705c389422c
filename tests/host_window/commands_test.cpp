#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QDropEvent>
#include <QFile>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeData>
#include <QProgressBar>
#include <QTest>
#include <QTimer>
#include <QUrl>

#include "accmd.h"
#include "aced.h"
#include "acedads.h"
#include "afxwin.h"
#include "base/path.h"
#include "base/text.h"
#include "tarnhost.h"
#include "windowfixture.h"

namespace tarn::test {
namespace {

QString input(host::MainWindow& window) {
  return window.commandLine().input().text();
}

class CommandTest : public WindowTest {
 protected:
  void SetUp() override {
    WindowTest::SetUp();
    if (HasFatalFailure()) return;
    add(L"TESTLONG", longCommand);
    add(L"ADDIMAGE", fileCommand);
    add(L"TESTBOX", boxCommand);
  }
  void TearDown() override {
    acedRegCmds->removeGroup(L"WINDOWTEST");
    WindowTest::TearDown();
  }

  static void add(const ACHAR* name, AcRxFunctionPtr function) {
    acedRegCmds->addCommand(L"WINDOWTEST", name, name, ACRX_CMD_MODAL, function);
  }
  QString makeFile(const QString& name) {
    QFile file(folder_.filePath(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    return file.fileName();
  }
  /// Computes until it is asked to stop, five seconds at most.
  static void longCommand() {
    acedSetStatusBarProgressMeter(L"金字塔", 0, 100);
    QElapsedTimer timer;
    timer.start();
    bool stopped = false;
    while (!stopped && timer.elapsed() < 5000) {
      acedSetStatusBarProgressMeterPos(42);
      stopped = tarnHostCancelWanted();
    }
    acedRestoreStatusBar();
    host::HostApp::instance()->print(stopped ? "\nstopped\n" : "\nnever stopped\n");
  }
  static void fileCommand() {
    CFileDialog dialog(TRUE, L"tif", nullptr, OFN_ALLOWMULTISELECT, L"tif|*.tif||");
    std::vector<ACHAR> buffer(4000);
    dialog.m_ofn.lpstrFile = buffer.data();
    dialog.m_ofn.nMaxFile = static_cast<DWORD>(buffer.size());
    if (dialog.DoModal() != IDOK) return;
    for (POSITION at = dialog.GetStartPosition(); at != nullptr;) {
      const CString name = dialog.GetNextPathName(at);
      host::HostApp::instance()->print("\nadding " + nameOf(toUtf8(name.GetString())) + "\n");
    }
    acedCommandS(RTSTR, L"LINE", RTSTR, L"0,0", RTSTR, L"100,50", RTSTR, L"", RTNONE);
  }
  static void boxCommand() {
    const int answer = AfxMessageBox(L"影像?", MB_YESNO | MB_ICONQUESTION);
    host::HostApp::instance()->print("\nanswer " + std::to_string(answer) + "\n");
  }
};

TEST_F(CommandTest, TypedCommandIsEchoedRepeatedAndRecalled) {
  // The mouse was used in the drawing, and typing goes on: no click on the input line.
  QTest::mouseClick(&window_->canvas(), Qt::LeftButton, {}, {5, 5});
  enter("nosuch");
  EXPECT_TRUE(history().contains("Command: nosuch\nUnknown command \"NOSUCH\"."))
      << history().toStdString();
  EXPECT_EQ(input(*window_), "");
  const int before = regenerations();
  enter("regen");
  EXPECT_EQ(regenerations(), before + 1);
  enter("");
  EXPECT_EQ(regenerations(), before + 2) << "Enter repeats the last command";
  key(Qt::Key_Up);
  key(Qt::Key_Up);
  key(Qt::Key_Up);
  EXPECT_EQ(input(*window_), "nosuch");
  key(Qt::Key_Down);
  EXPECT_EQ(input(*window_), "regen");
  key(Qt::Key_Escape);
  EXPECT_EQ(input(*window_), "");
  type("testb");
  key(Qt::Key_Tab);
  EXPECT_EQ(input(*window_).toUpper(), "TESTBOX");
}

TEST_F(CommandTest, ClicksGivePointsAndTheViewMovesMeanwhile) {
  const QPoint first(100, 100);
  const host::GroundPoint ground = groundUnder(first);
  play({
      [&] { enter("line"); },
      [&] {
        EXPECT_TRUE(frontEnd_.reading());
        EXPECT_TRUE(state().contains("Click a point")) << state().toStdString();
        QTest::mouseClick(&window_->canvas(), Qt::LeftButton, {}, first);
      },
      [&] {
        wheel({300, 200}, 2);
      },
      [&] {
        drag({300, 200}, {330, 260}, 3);
      },
      [&] { enter("'zoom 0.5x"); },
      [&] {
        EXPECT_TRUE(frontEnd_.reading()) << "the line command still waits";
        enter("10.5,20.25");
      },
      [&] { key(Qt::Key_Escape); },
  });
  EXPECT_FALSE(app_->commandActive());
  EXPECT_EQ(window_->commandLine().promptText(), "Command:");
  EXPECT_EQ(state(), "Ready");
  enter("zoom e");
  EXPECT_NEAR(app_->view().centerX, (ground.x + 10.5) / 2, 1e-6);
  EXPECT_NEAR(app_->view().centerY, (ground.y + 20.25) / 2, 1e-6);
}

TEST_F(CommandTest, WhatComesInTheSameTurnAsAnAnswerIsForTheNextQuestion) {
  const QPoint corner(200, 150);
  const host::GroundPoint ground = groundUnder(corner);
  const std::string end = std::to_string(ground.x) + "," + std::to_string(ground.y);
  play({
      [&] { enter("line"); },
      [&] {
        enter("0,0");
        enter(QString::fromStdString(end));
        enter("");
      },
      [&] { enter("id"); },
      [&] {
        enter("end");
        QTest::mouseClick(&window_->canvas(), Qt::LeftButton, {}, corner + QPoint(3, -2));
      },
  });
  EXPECT_FALSE(app_->commandActive());
  EXPECT_TRUE(
      history().contains(QString::fromStdString("X = " + std::to_string(ground.x).substr(0, 5))))
      << history().toStdString();
  EXPECT_TRUE(history().contains("Point: end\nof ")) << history().toStdString();
}

TEST_F(CommandTest, EscapeCancelsAWaitingCommand) {
  play({
      [&] { enter("line"); },
      [&] {
        EXPECT_TRUE(app_->commandActive());
        type("12,");
        key(Qt::Key_Escape);
      },
  });
  EXPECT_FALSE(app_->commandActive());
  EXPECT_TRUE(history().contains("*Cancel*")) << history().toStdString();
  EXPECT_EQ(input(*window_), "");
}

TEST_F(CommandTest, EscapeStopsAComputationAndKeysWaitForItsEnd) {
  QString label;
  int value = 0;
  bool shown = false;
  QTimer::singleShot(150, window_.get(), [&] {
    label = childText("progressLabel");
    const auto* meter = window_->findChild<QProgressBar*>("progress");
    value = meter->value();
    shown = meter->isVisible();
    wheel({100, 100}, 3);
    for (const char letter : {'n', 'o', 's'}) QTest::keyClick(window_->windowHandle(), letter);
    QTest::keyClick(window_->windowHandle(), Qt::Key_Escape);
  });
  const double height = app_->view().height;
  enter("testlong");
  wait(50);
  EXPECT_EQ(label, "金字塔");
  EXPECT_EQ(value, 42);
  EXPECT_TRUE(shown);
  EXPECT_FALSE(window_->findChild<QProgressBar*>("progress")->isVisible());
  EXPECT_TRUE(history().contains("\nstopped")) << history().toStdString();
  EXPECT_EQ(app_->view().height, height) << "the wheel was not heard";
  EXPECT_EQ(input(*window_), "nos") << "what was typed meanwhile is not lost";
  EXPECT_EQ(state(), "Ready");
}

TEST_F(CommandTest, DroppedImagesAreAddedAndOthersRefusedByName) {
  QMimeData data;
  data.setUrls({QUrl::fromLocalFile(makeFile("影像 one.tif")),
                QUrl::fromLocalFile("/data/plan.pdf"), QUrl::fromLocalFile(makeFile("two.JPG"))});
  QDragEnterEvent enterEvent({50, 50}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(window_.get(), &enterEvent);
  EXPECT_TRUE(enterEvent.isAccepted());
  QDropEvent drop({50, 50}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(window_.get(), &drop);
  EXPECT_TRUE(history().contains("adding 影像 one.tif\nadding two.JPG")) << history().toStdString();
  EXPECT_TRUE(history().contains(QDir::toNativeSeparators("/data/plan.pdf") + ": only drawings"));
  EXPECT_NEAR(app_->view().centerX, 50, 1e-6) << "the first images are shown whole";
  const double height = app_->view().height;
  wheel({10, 10}, 1);
  window_->addFiles({makeFile("three.img").toStdString()});
  EXPECT_NEAR(app_->view().height, height / 1.25, 1e-6) << "further images leave the view alone";
}

TEST_F(CommandTest, DropWhileACommandWaitsCancelsItFirst) {
  play({
      [&] { enter("line"); },
      [&] { window_->addFiles({makeFile("one.tif").toStdString()}); },
  });
  EXPECT_FALSE(app_->commandActive());
  const int cancelled = history().indexOf("*Cancel*");
  EXPECT_GT(cancelled, 0);
  EXPECT_GT(history().indexOf("adding one.tif"), cancelled) << history().toStdString();
}

TEST_F(CommandTest, MessageBoxAnswersWithItsButton) {
  for (const auto& [button, expected] :
       {std::pair{QMessageBox::Yes, "answer 6"}, std::pair{QMessageBox::No, "answer 7"}}) {
    QTimer::singleShot(50, window_.get(), [which = button] {
      auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
      ASSERT_NE(box, nullptr);
      EXPECT_EQ(box->text(), "影像?");
      box->button(which)->click();
    });
    enter("testbox");
    wait(100);
    EXPECT_TRUE(history().endsWith(expected)) << history().toStdString();
  }
}

TEST_F(CommandTest, ClosingWhileACommandWaitsCancelsIt) {
  play({
      [&] { enter("line"); },
      [&] { EXPECT_FALSE(window_->close()) << "the command is still on the stack"; },
  });
  EXPECT_FALSE(app_->commandActive());
  EXPECT_TRUE(QTest::qWaitFor([&] { return !window_->isVisible(); }));
}

TEST_F(CommandTest, ClosingWhileTheHostComputesStopsIt) {
  QTimer::singleShot(100, window_.get(), [this] { window_->close(); });
  enter("testlong");
  EXPECT_TRUE(QTest::qWaitFor([&] { return !window_->isVisible(); }));
  EXPECT_TRUE(history().contains("\nstopped"));
}

TEST_F(CommandTest, QuitClosesTheWindow) {
  enter("quit");
  EXPECT_TRUE(QTest::qWaitFor([&] { return !window_->isVisible(); }));
}

}  // namespace
}  // namespace tarn::test
