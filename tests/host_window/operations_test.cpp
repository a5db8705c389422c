// Forms, tasks and progress windows over a running host.
#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>

#include "acedads.h"
#include "host/editor/operationview.h"
#include "host/window/progresspart.h"
#include "tarnform.h"
#include "tarnhost.h"
#include "windowfixture.h"

namespace tarn::test {
namespace {

using host::durationText;
using host::timesText;

QWidget* shownWindow(const char* name) {
  for (QWidget* widget : QApplication::topLevelWidgets())
    if (widget->objectName() == name && widget->isVisible()) return widget;
  return nullptr;
}

TarnForm exampleForm() {
  TarnForm form;
  form.title = "Example";
  form.accept = "Go";
  form.fields.resize(6);
  form.fields[0].kind = TarnFormField::Kind::kFiles;
  form.fields[0].values = {"/data/a.tif"};
  form.fields[1].kind = TarnFormField::Kind::kChoice;
  form.fields[1].choices = {"one", "two"};
  form.fields[1].value = "0";
  form.fields[2].kind = TarnFormField::Kind::kText;
  form.fields[2].label = "Text";
  form.fields[0].label = "Files";
  form.fields[1].label = "Choice";
  form.fields[3].kind = TarnFormField::Kind::kFolder;
  form.fields[3].label = "Folder";
  form.fields[4].kind = TarnFormField::Kind::kTable;
  form.fields[4].label = "Table";
  form.fields[4].choices = {"a", "b"};
  form.fields[5].kind = TarnFormField::Kind::kNumber;
  form.fields[5].label = "Number";
  form.check = [](const std::vector<TarnFormField>& fields) {
    return fields[2].value.empty() ? std::string("A text is needed.") : std::string();
  };
  return form;
}

class OperationTest : public WindowTest {};

TEST_F(OperationTest, AFormIsAcceptedOnlyWhenItsAnswersDo) {
  TarnForm form = exampleForm();
  QString reason;
  bool accepted = false;
  play({[&] { accepted = tarnHostAskForm(form); },
        [&] {
          QWidget* dialog = shownWindow("form");
          ASSERT_NE(dialog, nullptr);
          auto* go = dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok);
          EXPECT_EQ(go->text(), "Go");
          expectNames(*dialog);
          EXPECT_TRUE(state().startsWith("Waiting for your choice")) << state().toStdString();
          QTest::mouseClick(go, Qt::LeftButton);
          reason = dialog->findChild<QLabel*>("reason")->text();
          EXPECT_TRUE(dialog->isVisible());
          dialog->findChild<QComboBox*>()->setCurrentIndex(1);
          QTest::keyClicks(dialog->findChild<QLineEdit*>("field2"), "ready");
          EXPECT_EQ(dialog->findChild<QListWidget*>("files")->count(), 1);
          QTest::mouseClick(go, Qt::LeftButton);
        }});
  EXPECT_EQ(reason, "A text is needed.");
  EXPECT_TRUE(accepted);
  EXPECT_EQ(form.fields[0].values, std::vector<std::string>{"/data/a.tif"});
  EXPECT_EQ(form.fields[1].value, "1");
  EXPECT_EQ(form.fields[2].value, "ready");
}

TEST_F(OperationTest, ProgressHasAWindowWhoseButtonCancelsWhileTheHostComputes) {
  bool painted = false, cancelled = false;
  play({[&] {
    frontEnd_.cancelHandled();
    tarnHostBeginProgress("金字塔 a.tif", 0, 100);
    EXPECT_EQ(shownWindow("progressWindow"), nullptr) << "what is over at once gets no window";
    for (int i = 1; i <= 100 && !cancelled; ++i) {
      QTest::qSleep(40);
      tarnHostMoveProgress(i);
      cancelled = tarnHostCancelWanted();
      QWidget* shown = shownWindow("progressWindow");
      if (shown == nullptr || painted) continue;
      painted = true;
      EXPECT_EQ(shown->findChild<QLabel*>("operationLabel")->text(), "金字塔 a.tif");
      EXPECT_EQ(shown->findChild<QProgressBar*>("operationBar")->value(), i);
      // A click that waits in the queue of the window system, as a user's does.
      auto* button = shown->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Cancel);
      const QPointF at(button->rect().center());
      for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        QApplication::postEvent(
            button, new QMouseEvent(type, at, Qt::LeftButton, Qt::LeftButton, Qt::NoModifier));
      }
    }
    tarnHostEndProgress();
    EXPECT_EQ(shownWindow("progressWindow"), nullptr);
    tarnHostBeginProgress("b.tif", 0, 100);
    tarnHostMoveProgress(50);
    EXPECT_EQ(shownWindow("progressWindow"), nullptr) << "each operation has its own time";
    tarnHostEndProgress();
  }});
  EXPECT_TRUE(painted);
  EXPECT_TRUE(cancelled);
  EXPECT_EQ(shownWindow("progressWindow"), nullptr);
  frontEnd_.cancelHandled();
}

TEST_F(OperationTest, TasksShowTheirStatesAndTheReportStaysUntilItIsClosed) {
  QString states, report;
  // A slow screen lets the second step in while the first one still works.
  std::function<void()> closeIt = [&] {
    QWidget* window = shownWindow("taskWindow");
    ASSERT_NE(window, nullptr);
    QWidget* close = window->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Close);
    if (close == nullptr) return QTimer::singleShot(30, window_.get(), closeIt);
    const auto* list = window->findChild<QTreeWidget*>("tasks");
    for (int i = 0; i < list->topLevelItemCount(); ++i) {
      for (int c = 0; c < 3; ++c) states += list->topLevelItem(i)->text(c) + "|";
    }
    report = window->findChild<QLabel*>("report")->text();
    QTest::mouseClick(close, Qt::LeftButton);
  };
  play({[&] {
          tarnHostBeginTasks("Conversion", {"/data/a.tif", "/data/b.tif"});
          tarnHostBeginProgress("Conversion", 0, 2);
          tarnHostSetTask(0, TarnTaskState::kDone, "");
          tarnHostSetTask(1, TarnTaskState::kFailed, "/data/b.tif: is no image");
          tarnHostMoveProgress(2);
          EXPECT_EQ(shownWindow("progressWindow"), nullptr) << "the tasks' window has the bar";
          tarnHostEndProgress();
          tarnHostEndTasks("1 done, 1 failed");
        },
        closeIt});
  EXPECT_TRUE(QTest::qWaitFor([&] { return !report.isEmpty(); }));
  EXPECT_EQ(states, "a.tif|done||b.tif|failed|is no image|");
  EXPECT_EQ(report, "1 done, 1 failed");
  EXPECT_EQ(shownWindow("taskWindow"), nullptr);
}

TEST_F(OperationTest, TheHostsMeterIsTheStatusBars) {
  acedSetStatusBarProgressMeter(L"影像", 0, 10);
  acedSetStatusBarProgressMeterPos(7);
  const auto* meter = window_->findChild<QProgressBar*>("progress");
  EXPECT_EQ(meter->value(), 7);
  EXPECT_EQ(childText("progressLabel"), "影像");
  EXPECT_EQ(shownWindow("progressWindow"), nullptr);
  acedRestoreStatusBar();
  EXPECT_FALSE(meter->isVisible());
}

TEST(OperationTimes, ReadAsPeopleSayThem) {
  EXPECT_EQ(durationText(9.4), "9 s");
  EXPECT_EQ(durationText(125), "2:05 min");
  EXPECT_EQ(durationText(3725), "1:02:05 h");
  EXPECT_EQ(timesText(0.5, 0.5), "1 s gone");
  EXPECT_EQ(timesText(10, 0.25), "10 s gone, about 30 s left");
  EXPECT_EQ(timesText(10, 0), "10 s gone");
}

}  // namespace
}  // namespace tarn::test
