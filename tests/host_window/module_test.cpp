// The window over the real module: its commands, images of several drawings, closing.
#include <QAbstractButton>
#include <QApplication>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QTabBar>
#include <QTest>
#include <QTimer>
#include <QToolBar>
#include <QTreeWidget>
#include <set>

#include "base/file.h"
#include "base/text.h"
#include "host/editor/documents.h"
#include "host/editor/modules.h"
#include "host/editor/picking.h"
#include "host/window/commandwords.h"
#include "tests/support/rasters.h"
#include "windowfixture.h"

namespace tarn::test {
namespace {

constexpr const char* kModules[] = {"adapter_autocad.arx", "image.arx"};

class ModuleTest : public WindowTest {
 protected:
  void SetUp() override {
    const std::string system = folder_.filePath("system").toStdString();
    ASSERT_TRUE(makeFolders(system));
    ASSERT_TRUE(writeFileAtomically(system + "/tarnconfig.db", ""));
    WindowTest::SetUp();
    if (HasFatalFailure()) return;
    for (const char* name : kModules) {
      const Status loaded = host::loadModule(std::string(TARN_BIN_DIR "/") + name);
      ASSERT_TRUE(loaded) << loaded.message();
    }
    app_->runQueued();
  }
  void TearDown() override {
    host::unloadModule(kModules[1]);
    host::unloadModule(kModules[0]);
    WindowTest::TearDown();
  }

  std::string makeImage(const char* name, double left) {
    const std::string path = folder_.filePath(name).toStdString();
    const Raster raster =
        makeRaster(64, 64, left, 3512600, 1, [](int column, int row, uint8_t* rgb) {
          rgb[0] = static_cast<uint8_t>(50 + column);
          rgb[1] = static_cast<uint8_t>(50 + row);
          rgb[2] = 90;
        });
    EXPECT_TRUE(writeRaster(raster, path));
    return path;
  }
  /// The images that the panel lists, as it stands.
  QStringList listed() const {
    QStringList names;
    const auto* tree = window_->findChild<QTreeWidget*>();
    const QTreeWidgetItem* root = tree != nullptr ? tree->topLevelItem(0) : nullptr;
    for (int i = 0; root != nullptr && i < root->childCount(); ++i) {
      names << root->child(i)->text(0).section('/', -1);
    }
    names.sort();
    return names;
  }
  /// Presses buttons of the questions that come, one after the other; what they asked.
  QStringList answer(const QStringList& buttons, const std::function<void()>& act) {
    QStringList questions;
    int next = 0;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, window_.get(), [&] {
      auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
      if (box == nullptr || next >= buttons.size()) return;
      questions << box->text();
      for (QAbstractButton* button : box->buttons()) {
        if (button->text().remove('&') == buttons[next]) {
          ++next;
          return button->click();
        }
      }
      ADD_FAILURE() << "no button " << buttons[next].toStdString();
      box->reject();
    });
    look.start(20);
    act();
    wait(100);
    return questions;
  }
};

void collect(const QList<QAction*>& actions, std::vector<QAction*>& into) {
  for (QAction* action : actions) {
    if (action->menu() != nullptr) {
      emit action->menu()->aboutToShow();
      collect(action->menu()->actions(), into);
    }
    into.push_back(action);
  }
}

std::set<std::string> commandsOf(const std::vector<QAction*>& actions) {
  std::set<std::string> names;
  for (const QAction* action : actions) {
    for (const QString& text : {action->toolTip().section('\n', -1), action->text()}) {
      names.insert(toLower(text.section(' ', 0, 0).toStdString()));
    }
  }
  return names;
}

TEST_F(ModuleTest, EveryCommandStandsInAMenuAndOnABar) {
  std::vector<QAction*> inMenus;
  collect(window_->menuBar()->actions(), inMenus);
  // Menus that fill themselves have new entries the next time.
  const std::set<std::string> menus = commandsOf(inMenus);
  std::vector<QAction*> onBars;
  for (const QToolBar* bar : window_->findChildren<QToolBar*>()) collect(bar->actions(), onBars);
  const std::set<std::string> bars = commandsOf(onBars);
  // Entries with an act of their own, and parts of the mouse and of scripts.
  const std::set<std::string> apart = {"addimage", "regen", "quit", "grip_stretch", "uiclick"};
  // What finds faults of the module, and what others of its commands do better.
  const std::set<std::string> apartToo = {"tarnimage", "testimage", "drawimage",
                                          "delimage",  "iotest",    "showimage"};
  const auto needsNoWords = [&](const std::string& name) {
    return apartToo.count(name) != 0 || name.rfind("_image", 0) == 0;
  };
  int modules = 0;
  for (const std::string& command : app_->commandsBeginningWith("")) {
    const std::string name = toLower(command);
    if (apart.count(name) == 0) {
      EXPECT_EQ(menus.count(name), 1U) << command;
      EXPECT_EQ(bars.count(name), 1U) << command;
    }
    const bool isPart = name == "grip_stretch" || name == "uiclick" || needsNoWords(name);
    EXPECT_EQ(host::meaningOf(command).isEmpty(), isPart) << command;
    modules += name == "rectifyimage" || name == "openimagelist" ? 1 : 0;
  }
  EXPECT_EQ(modules, 2) << "the module's own are among them";
}

TEST_F(ModuleTest, ThePanelIsReachedByKeysAndItsControlsHaveNames) {
  enter("OpenImageList");
  window_->commandLine().input().setFocus();
  wait(50);
  expectNames(*window_);
  const auto* tree = window_->findChild<QTreeWidget*>();
  ASSERT_NE(tree, nullptr);
  for (int i = 0; i < 4 && QApplication::focusWidget() != tree; ++i) {
    QTest::keyClick(window_->windowHandle(), Qt::Key_F6);
    QCoreApplication::processEvents();
  }
  EXPECT_EQ(QApplication::focusWidget(), tree);
}

TEST_F(ModuleTest, EachDrawingHasItsImagesAndClosingAsksForEach) {
  auto* drawings = window_->findChild<QTabBar*>("drawings");
  enter("OpenImageList");
  window_->addFiles({makeImage("a.tif", 40500000), folder_.filePath("notes.txt").toStdString(),
                     makeImage("b.tif", 40500100), "/data/plan.dwg"});
  wait(50);
  EXPECT_EQ(listed(), (QStringList{"a.tif", "b.tif"}));
  EXPECT_TRUE(history().contains("notes.txt: only drawings")) << history().toStdString();
  EXPECT_TRUE(history().contains("/data/plan.dwg: "));
  // What is shown as chosen is what one sees, not the entity's corners for grips.
  enter("ZOOM E");
  const host::EntityIds chosen =
      host::entitiesInWindow(*app_, {40499900, 3512400}, {40500300, 3512700}, true);
  ASSERT_EQ(chosen.size(), 1U);
  for (const host::Outline& outline :
       host::highlightOf(app_->documents().current(), chosen.front())) {
    for (const host::PixelPoint& point : outline.points) {
      EXPECT_TRUE(point.x > -2 && point.x < app_->view().pixelWidth + 2) << point.x;
      EXPECT_TRUE(point.y > -2 && point.y < app_->view().pixelHeight + 2) << point.y;
    }
  }
  enter("NEW");
  wait(50);
  EXPECT_EQ(listed(), QStringList());
  window_->addFiles({makeImage("c.tif", 40500200)});
  wait(50);
  EXPECT_EQ(listed(), QStringList{"c.tif"});
  drawings->setCurrentIndex(0);
  wait(100);
  EXPECT_EQ(listed(), (QStringList{"a.tif", "b.tif"})) << "the list follows the tab";

  QStringList asked = answer({"Discard", "Cancel"}, [&] { window_->close(); });
  EXPECT_EQ(asked.size(), 2) << asked.join('\n').toStdString();
  EXPECT_NE(asked.value(0), asked.value(1)) << "each drawing is named";
  EXPECT_TRUE(window_->isVisible()) << "Cancel keeps the window";
  asked = answer({"Discard", "Discard"}, [&] { window_->close(); });
  EXPECT_TRUE(QTest::qWaitFor([&] { return !window_->isVisible(); }))
      << asked.join('\n').toStdString();
}

}  // namespace
}  // namespace tarn::test
