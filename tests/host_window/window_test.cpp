// What stands around the canvas: menus, tool bars, tabs, completion, language, colours.
#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QTabBar>
#include <QTest>
#include <QTimer>
#include <QToolBar>
#include <set>

#include "host/editor/documents.h"
#include "host/editor/sysvars.h"
#include "host/ui/menumodel.h"
#include "host/window/appearance.h"
#include "host/window/hostwords.h"
#include "host/window/icons.h"
#include "host/window/statusarea.h"
#include "host/window/windowsettings.h"
#include "windowfixture.h"

namespace tarn::test {
namespace {

class AroundTest : public WindowTest {
 protected:
  QString title(int menu) const { return window_->menuBar()->actions()[menu]->text(); }
};

TEST_F(AroundTest, EveryEntryOfABarHasAnIcon) {
  EXPECT_GT(window_->findChildren<QToolBar*>().size(), 4);
  for (const QToolBar* bar : window_->findChildren<QToolBar*>()) {
    for (const QAction* action : bar->actions()) {
      if (action->isSeparator()) continue;
      EXPECT_FALSE(action->icon().isNull()) << action->text().toStdString();
      EXPECT_FALSE(action->toolTip().isEmpty());
    }
  }
  EXPECT_TRUE(host::makeIcon("no such drawing", Qt::black).isNull());
}

TEST_F(AroundTest, NoTwoEntriesOfAMenuShareALetter) {
  for (const char* locale : {"ENU", "CHS"}) {
    app_->variables().set("LOCALE", std::string(locale));
    frontEnd_.tellState();
    std::vector<QList<QAction*>> groups = {window_->menuBar()->actions()};
    for (QAction* top : window_->menuBar()->actions()) groups.push_back(top->menu()->actions());
    for (const auto& group : groups) {
      std::set<QChar> letters;
      for (const QAction* action : group) {
        const int mark = action->text().indexOf('&');
        if (mark < 0) continue;
        EXPECT_TRUE(letters.insert(action->text()[mark + 1].toLower()).second)
            << locale << ": " << action->text().toStdString();
      }
    }
  }
}

TEST_F(AroundTest, TheLanguageFollowsTheVariable) {
  app_->variables().set("LOCALE", std::string("CHS"));
  frontEnd_.tellState();
  EXPECT_EQ(title(0), "文件(&F)");
  EXPECT_EQ(state(), "就绪");
  EXPECT_EQ(host::hostWords("a.dxf has changes that are not saved."), "a.dxf 有未保存的更改。");
  EXPECT_EQ(host::hostWords("\"x\": this is no HOST or HOST:PORT."),
            "\"x\"：这不是“主机”或“主机:端口”。");
  EXPECT_EQ(host::hostWords("A module's own text."), "A module's own text.");
  enter("SETVAR LOCALE ENU");
  EXPECT_EQ(title(0), "&File");
  EXPECT_EQ(state(), "Ready");
}

TEST_F(AroundTest, DrawingsAndSheetsAreTabs) {
  auto* drawings = window_->findChild<QTabBar*>("drawings");
  auto* sheets = window_->findChild<QTabBar*>("sheets");
  ASSERT_NE(drawings, nullptr);
  ASSERT_NE(sheets, nullptr);
  EXPECT_EQ(sheets->tabText(0), "Model");
  const auto* first = &app_->documents().current();
  play({[&] { enter("LINE 0,0 10,0"); }, [&] { key(Qt::Key_Return); }});
  EXPECT_TRUE(drawings->tabText(0).endsWith('*'));
  enter("NEW");
  ASSERT_EQ(drawings->count(), 2);
  EXPECT_EQ(drawings->currentIndex(), 1);
  window_->resize(window_->width() - 100, window_->height() - 50);
  wait(3 * host::Canvas::kSettleMilliseconds);
  drawings->setCurrentIndex(0);
  wait(20);
  EXPECT_EQ(&app_->documents().current(), first);
  EXPECT_EQ(app_->view().pixelWidth,
            qRound(window_->canvas().width() * window_->devicePixelRatioF()))
      << "the window has another size since";
  sheets->setCurrentIndex(1);
  wait(20);
  EXPECT_EQ(app_->documents().current().space().tab().name, sheets->tabText(1).toStdString());
  drawings->setCurrentIndex(1);
  wait(20);
  EXPECT_EQ(sheets->currentIndex(), 0) << "the other drawing shows its model";
  enter("CLOSE");
  EXPECT_EQ(drawings->count(), 1);
}

TEST_F(AroundTest, CommandsAreOfferedWhileTheirNameIsTyped) {
  type("l");
  auto* list = window_->findChild<QListWidget*>("suggestions");
  ASSERT_NE(list, nullptr);
  EXPECT_TRUE(list->isVisible());
  EXPECT_EQ(list->item(0)->text(), "L   LINE  –  draw straight lines");
  QStringList texts;
  for (int i = 0; i < list->count(); ++i) texts << list->item(i)->text().section(' ', 0, 0);
  EXPECT_TRUE(texts.contains("LAYER")) << texts.join(' ').toStdString();
  QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                    list->visualItemRect(list->item(texts.indexOf("LIST"))).center());
  EXPECT_EQ(window_->commandLine().input().text(), "LIST");
  key(Qt::Key_Escape);
  EXPECT_FALSE(list->isVisible());
  play({[&] { enter("l 0,0 10,0"); }, [&] { key(Qt::Key_Return); }});
  EXPECT_TRUE(app_->documents().current().isModified()) << "the short name draws";
  play({[&] { key(Qt::Key_Space); }, [&] { EXPECT_TRUE(frontEnd_.reading()) << "a blank repeats"; },
        [&] { key(Qt::Key_Escape); }});
}

TEST_F(AroundTest, OrthoTakesAPointStraightBeside) {
  host::ViewState view = app_->view();
  view.centerX = view.centerY = 0;
  view.height = 200;
  app_->setView(view);
  QTest::keyClick(keyboardOwner(), Qt::Key_F8);
  EXPECT_EQ(app_->variables().shortOf("ORTHOMODE"), 1);
  const QPoint middle = window_->canvas().rect().center();
  play({[&] { enter("LINE 0,0"); },
        [&] { QTest::mouseClick(&window_->canvas(), Qt::LeftButton, {}, middle + QPoint(90, 30)); },
        [&] { key(Qt::Key_Return); }});
  enter("ZOOM E");
  EXPECT_NEAR(app_->view().centerY, 0, 1e-9);
  EXPECT_GT(app_->view().centerX, 1);
}

TEST_F(AroundTest, AnOpenMenuIsNoWork) {
  QString seen;
  QTimer::singleShot(100, window_.get(), [&] {
    seen = state();
    if (auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget())) menu->close();
  });
  window_->session().perform([this] {
    host::MenuModel model;
    model.items.emplace_back();
    model.items.back().text = L"影像";
    dialogs_.popupMenu(model, {300, 300});
  });
  EXPECT_TRUE(seen.startsWith("Waiting for your choice")) << seen.toStdString();
  EXPECT_EQ(state(), "Ready");
}

TEST(Colours, EveryTextCanBeRead) {
  using P = QPalette;
  const std::pair<P::ColorRole, P::ColorRole> pairs[] = {{P::WindowText, P::Window},
                                                         {P::Text, P::Base},
                                                         {P::Text, P::AlternateBase},
                                                         {P::ButtonText, P::Button},
                                                         {P::ToolTipText, P::ToolTipBase},
                                                         {P::HighlightedText, P::Highlight},
                                                         {P::PlaceholderText, P::Base},
                                                         {P::Link, P::Base},
                                                         {P::Link, P::Window}};
  for (const auto appearance : {host::Appearance::kDark, host::Appearance::kLight}) {
    const QPalette palette = host::paletteOf(appearance);
    for (const auto& [text, ground] : pairs) {
      EXPECT_GE(host::contrast(palette.color(text), palette.color(ground)), 4.5)
          << static_cast<int>(appearance) << ": " << text << " on " << ground;
    }
    EXPECT_GE(host::contrast(host::warningOn(palette), palette.color(P::Window)), 4.5);
  }
}

TEST(Status, ScaleAndTwistAsTexts) {
  host::ViewState view;
  view.pixelHeight = 1000;
  const struct {
    double height;
    const char* expected;
  } scales[] = {{132.29, "1 : 500"}, {1, "1 : 3.78"}, {2645833, "1 : 10000000"}, {26.5, "1 : 100"}};
  for (const auto& one : scales) {
    view.height = one.height;
    EXPECT_EQ(host::scaleText(view, 96).toStdString(), one.expected);
  }
  EXPECT_EQ(host::twistText(view), "");
  view.twist = 0.5235987755982988;
  EXPECT_EQ(host::twistText(view), "30°");
}

TEST(Settings, AreKeptBetweenSessions) {
  const QTemporaryDir folder;
  const std::string profile = folder.path().toStdString();
  const QString here = folder.filePath("window.ini");
  {
    host::WindowSettings settings(profile);
    EXPECT_EQ(settings.appearance(), host::Appearance::kDark);
    settings.setAppearance(host::Appearance::kLight);
    settings.setLightDrawing(true);
    settings.addRecentFile(folder.path());
    settings.addRecentFile("/nowhere/gone.dxf");
  }
  host::WindowSettings settings(profile);
  EXPECT_EQ(settings.appearance(), host::Appearance::kLight);
  EXPECT_TRUE(settings.lightDrawing());
  settings.addRecentFile(here);
  EXPECT_EQ(settings.recentFiles(), (QStringList{here, folder.path()}))
      << "what is gone is left out";
  settings.addRecentFile(folder.path());
  EXPECT_EQ(settings.recentFiles().front(), folder.path());
}

}  // namespace
}  // namespace tarn::test
