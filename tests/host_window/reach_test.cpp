// What is reached by keys alone and heard by those who do not see the window, and what the window
// keeps for the next session.
#include <QApplication>
#include <QClipboard>
#include <QDockWidget>
#include <QFile>
#include <QLineEdit>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTabBar>
#include <QTest>
#include <QTextCursor>
#include <QToolBar>

#include "host/editor/documents.h"
#include "host/editor/sysvars.h"
#include "host/window/appearance.h"
#include "windowfixture.h"

namespace tarn::test {
namespace {

class ReachTest : public WindowTest {
 protected:
  void press(int key, Qt::KeyboardModifiers held = Qt::NoModifier) {
    QTest::keyClick(window_->windowHandle(), static_cast<Qt::Key>(key), held);
    QCoreApplication::processEvents();
  }
  template <typename Widget>
  Widget& part(const char* name) {
    return *window_->findChild<Widget*>(name);
  }
  /// As closing the program and starting it again.
  void reopen(const QByteArray* settings = nullptr) {
    window_->close();
    window_.reset();
    app_.reset();
    if (settings != nullptr) {
      QFile file(folder_.filePath("window.ini"));
      ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
      file.write(*settings);
    }
    app_ = std::make_unique<host::HostApp>(frontEnd_, dialogs_, folder_.path().toStdString());
    window_ = std::make_unique<host::MainWindow>(*app_, frontEnd_, dialogs_);
    window_->show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window_.get()));
    wait(50);
  }
};

TEST_F(ReachTest, EveryControlHasANameInBothLanguages) {
  for (const char* locale : {"ENU", "CHS"}) {
    app_->variables().set("LOCALE", std::string(locale));
    frontEnd_.tellState();
    expectNames(*window_);
  }
}

TEST_F(ReachTest, KeysGoThroughTheParts) {
  press(Qt::Key_1, Qt::ControlModifier);
  press(Qt::Key_2, Qt::ControlModifier);
  QStringList way;
  for (int i = 0; i < 5; ++i) {
    press(Qt::Key_F6);
    const QWidget* now = QApplication::focusWidget();
    ASSERT_NE(now, nullptr);
    const QWidget* dock = now;
    while (dock != nullptr && qobject_cast<const QDockWidget*>(dock) == nullptr) {
      dock = dock->parentWidget();
    }
    way << (dock != nullptr ? dock->objectName() : now->objectName());
  }
  EXPECT_EQ(way[0], "history");
  QStringList docks = way.mid(1, 2);
  docks.sort();
  EXPECT_EQ(docks, (QStringList{"layers", "properties"}));
  EXPECT_EQ(way[3], "input");
  EXPECT_EQ(way[4], "history");
  press(Qt::Key_F6, Qt::ShiftModifier);
  EXPECT_EQ(QApplication::focusWidget(), &window_->commandLine().input());

  enter("NEW");
  auto& drawings = part<QTabBar>("drawings");
  auto& sheets = part<QTabBar>("sheets");
  ASSERT_EQ(drawings.currentIndex(), 1);
  press(Qt::Key_Tab, Qt::ControlModifier);
  EXPECT_EQ(drawings.currentIndex(), 0);
  press(Qt::Key_PageDown, Qt::ControlModifier);
  EXPECT_EQ(sheets.currentIndex(), 1);
  press(Qt::Key_PageUp, Qt::ControlModifier);
  EXPECT_EQ(sheets.currentIndex(), 0);
}

TEST_F(ReachTest, TheTextWindowScrollsAndCopies) {
  for (int i = 0; i < 6; ++i) enter("HELP");
  const int usual = window_->commandLine().height();
  press(Qt::Key_F2);
  EXPECT_GT(window_->commandLine().height(), 2 * usual);
  auto& text = part<QPlainTextEdit>("history");
  ASSERT_TRUE(QTest::qWaitFor([&] { return text.height() > 3 * usual / 2; }));
  const int end = text.verticalScrollBar()->value();
  press(Qt::Key_PageUp);
  EXPECT_LT(text.verticalScrollBar()->value(), end);
  press(Qt::Key_PageDown);
  EXPECT_GE(text.verticalScrollBar()->value(), end);
  QTextCursor cursor(text.document());
  cursor.select(QTextCursor::LineUnderCursor);
  text.setTextCursor(cursor);
  text.setFocus();
  press(Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QApplication::clipboard()->text(), cursor.selectedText());
  EXPECT_FALSE(app_->commandActive()) << "entities were copied instead";
  press(Qt::Key_F2);
  EXPECT_EQ(window_->commandLine().height(), usual);
}

TEST_F(ReachTest, BarsDocksPlaceAndChoicesComeBack) {
  const QString file = folder_.filePath("kept.dxf");
  part<QDockWidget>("layers").show();
  window_->addDockWidget(Qt::LeftDockWidgetArea, &part<QDockWidget>("layers"));
  window_->addToolBar(Qt::BottomToolBarArea, &part<QToolBar>("draw"));
  part<QToolBar>("images").hide();
  window_->resize(900, 640);
  app_->variables().set("LOCALE", std::string("CHS"));
  enter("SETVAR OSMODE 3");
  enter("SETVAR FILEDIA 0");
  enter("SAVEAS " + file);
  wait(30);
  reopen();
  EXPECT_EQ(window_->dockWidgetArea(&part<QDockWidget>("layers")), Qt::LeftDockWidgetArea);
  EXPECT_TRUE(part<QDockWidget>("layers").isVisible());
  EXPECT_FALSE(part<QDockWidget>("properties").isVisible());
  EXPECT_EQ(window_->toolBarArea(&part<QToolBar>("draw")), Qt::BottomToolBarArea);
  EXPECT_FALSE(part<QToolBar>("images").isVisible());
  EXPECT_EQ(window_->size(), QSize(900, 640));
  EXPECT_EQ(window_->menuBar()->actions()[0]->text(), "文件(&F)");
  EXPECT_EQ(app_->variables().shortOf("OSMODE"), 3);
  EXPECT_EQ(host::WindowSettings(folder_.path().toStdString()).recentFiles().value(0), file);
  window_->showMaximized();
  wait(50);
  reopen();
  EXPECT_TRUE(window_->isMaximized());
}

TEST_F(ReachTest, ABrokenFileOfSettingsGivesTheUsualWindow) {
  const QSize usual = window_->size();
  const short snaps = app_->variables().shortOf("OSMODE");
  for (const QByteArray& content :
       {QByteArray("[General]\nplace=@ByteArray(\\x1\\xd9junk)\nbars=@ByteArray(\\0\\0\\xff)\n"
                   "appearance=purple\nsnaps=40000\northo=-7\nlightDrawing=perhaps\n"
                   "guideClosed=no\nrecent=@Variant(\\0\\0\\0\\x7f)\n"),
        QByteArray("\xff\xfe no settings at all ]][[ = = \n\n["), QByteArray()}) {
    reopen(&content);
    EXPECT_EQ(window_->size(), usual) << content.toStdString();
    EXPECT_TRUE(part<QToolBar>("tools").isVisible());
    EXPECT_FALSE(part<QDockWidget>("layers").isVisible());
    EXPECT_EQ(app_->variables().shortOf("OSMODE"), snaps);
    EXPECT_EQ(app_->variables().shortOf("ORTHOMODE"), 0);
    enter("ID 3,4");
    EXPECT_TRUE(history().contains("X = 3  Y = 4")) << history().toStdString();
  }
}

}  // namespace
}  // namespace tarn::test
