#include "tests/host_window/windowfixture.h"

#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QTabBar>
#include <QTest>
#include <QTimer>
#include <QWheelEvent>
#include <cmath>
#include <cstdint>

#include "host/editor/sysvars.h"
#include "host/window/appearance.h"
#include "rxmfcapi.h"

namespace tarn::test {

namespace {

/// One a process, made when the first window is wanted.
QApplication& application() {
  static int count = 1;
  static char name[] = "host_window_test";
  static char* arguments[] = {name, nullptr};
  static QApplication instance = [] {
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    return QApplication(count, arguments);
  }();
  return instance;
}

std::vector<Seen>& seenMessages() {
  static std::vector<Seen> all;
  return all;
}

void watch(const MSG* message) {
  const auto wheel = static_cast<std::int16_t>(message->wParam >> 16);
  seenMessages().push_back({message->message, host::HostApp::instance()->view(), wheel});
}

}  // namespace

QString testProgram() {
  application();
  return QCoreApplication::applicationFilePath();
}

void expectNames(const QWidget& whole) {
  int count = 0;
  for (QWidget* part : whole.findChildren<QWidget*>()) {
    const bool isButton = qobject_cast<QAbstractButton*>(part) != nullptr;
    if (part->focusPolicy() == Qt::NoFocus && !isButton) continue;
    // The toolkit's own parts of a field speak through the field.
    if (part->objectName().startsWith("qt_") || part->inherits("QComboBoxListView") ||
        part->inherits("QTableCornerButton")) {
      continue;
    }
    const QWidget* parent = part->parentWidget();
    if (qobject_cast<const QComboBox*>(parent) || qobject_cast<const QAbstractSpinBox*>(parent) ||
        qobject_cast<const QLineEdit*>(parent) || qobject_cast<const QTabBar*>(parent)) {
      continue;
    }
    ++count;
    QAccessibleInterface* heard = QAccessible::queryAccessibleInterface(part);
    ASSERT_NE(heard, nullptr);
    const QString name = heard->text(QAccessible::Name);
    EXPECT_FALSE(name.isEmpty()) << part->metaObject()->className() << " \""
                                 << part->objectName().toStdString() << "\" in "
                                 << parent->metaObject()->className() << " \""
                                 << parent->objectName().toStdString() << "\"";
  }
  EXPECT_GT(count, 1);
}

std::vector<Seen>& WindowTest::seen() {
  return seenMessages();
}

void WindowTest::SetUp() {
  host::applyAppearance(application());
  app_ = std::make_unique<host::HostApp>(frontEnd_, dialogs_, folder_.path().toStdString());
  app_->setStatistics(true);
  // Whatever the system speaks.
  app_->variables().set("LOCALE", std::string("ENU"));
  window_ = std::make_unique<host::MainWindow>(*app_, frontEnd_, dialogs_);
  window_->show();
  ASSERT_TRUE(QTest::qWaitForWindowActive(window_.get()));
  wait(2 * host::Canvas::kSettleMilliseconds);
  acedRegisterWatchWinMsg(watch);
  seenMessages().clear();
}

void WindowTest::TearDown() {
  acedRemoveWatchWinMsg(watch);
  window_.reset();
  app_.reset();
}

QWidget* WindowTest::keyboardOwner() const {
  // Without a window manager nothing gives the focus back after a dialog.
  QWidget* owner = QApplication::focusWidget();
  return owner != nullptr ? owner : window_->focusWidget();
}

void WindowTest::type(const QString& text) {
  QWidget* target = keyboardOwner();
  ASSERT_NE(target, nullptr);
  QTest::keyClicks(target, text);
}

void WindowTest::key(int key) {
  QWidget* target = keyboardOwner();
  ASSERT_NE(target, nullptr);
  QTest::keyClick(target, static_cast<Qt::Key>(key));
}

void WindowTest::enter(const QString& text) {
  type(text);
  key(Qt::Key_Return);
}

void WindowTest::play(std::vector<std::function<void()>> steps) {
  // A real screen takes longer to show what a step did.
  const int stepMilliseconds = QGuiApplication::platformName() == "offscreen" ? 30 : 150;
  constexpr int kLongest = 20000;
  size_t begun = 0;
  size_t ended = 0;
  std::function<void()> next = [&] {
    const std::function<void()>& step = steps[begun++];
    // None is left behind: what it would call ends with this function.
    if (begun < steps.size()) QTimer::singleShot(stepMilliseconds, window_.get(), next);
    step();
    ++ended;
  };
  QTimer::singleShot(0, window_.get(), next);
  EXPECT_TRUE(QTest::qWaitFor([&] { return ended == steps.size(); }, kLongest));
}

void WindowTest::move(QPoint to, Qt::MouseButtons held) {
  host::Canvas& canvas = window_->canvas();
  QMouseEvent event(QEvent::MouseMove, to, canvas.mapToGlobal(to), Qt::NoButton, held, {});
  QApplication::sendEvent(&canvas, &event);
}

void WindowTest::doubleClick(QPoint at) {
  host::Canvas* canvas = &window_->canvas();
  QTest::mouseClick(canvas, Qt::MiddleButton, {}, at);
  QTest::mouseDClick(canvas, Qt::MiddleButton, {}, at);
  QTest::mouseRelease(canvas, Qt::MiddleButton, {}, at);
}

void WindowTest::drag(QPoint from, QPoint to, int steps) {
  host::Canvas* canvas = &window_->canvas();
  QTest::mousePress(canvas, Qt::MiddleButton, {}, from);
  for (int i = 1; i < steps; ++i) move(from + (to - from) * i / steps, Qt::MiddleButton);
  QTest::mouseRelease(canvas, Qt::MiddleButton, {}, to);
}

void WindowTest::wheel(QPoint at, int notches) {
  host::Canvas& canvas = window_->canvas();
  QWheelEvent event(at, canvas.mapToGlobal(at), {}, {0, 120 * notches}, Qt::NoButton,
                    Qt::NoModifier, Qt::NoScrollPhase, false);
  QApplication::sendEvent(&canvas, &event);
}

void WindowTest::wait(int milliseconds) {
  QTest::qWait(milliseconds);
}

QString WindowTest::childText(const char* name) const {
  const auto* label = window_->findChild<QLabel*>(name);
  return label != nullptr ? label->text() : QString();
}

QString WindowTest::state() const {
  return childText("state");
}

int WindowTest::regenerations() const {
  return history().count("\n{\"ms\"") + (history().startsWith("{\"ms\"") ? 1 : 0);
}

host::GroundPoint WindowTest::groundUnder(QPoint local) const {
  const double ratio = window_->devicePixelRatioF();
  return groundFromPixel(
      app_->view(), {std::floor(local.x() * ratio) + 0.5, std::floor(local.y() * ratio) + 0.5});
}

}  // namespace tarn::test
