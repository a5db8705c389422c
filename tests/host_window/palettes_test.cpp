// Layers and properties in their docks: what is clicked there changes the drawing, a step each.
#include <QDockWidget>
#include <QTableWidget>
#include <QTest>

#include "host/editor/documents.h"
#include "host/editor/entities.h"
#include "host/editor/entityvalues.h"
#include "host/editor/layeredits.h"
#include "windowfixture.h"

namespace tarn::test {
namespace {

class PaletteTest : public WindowTest {
 protected:
  enum Column { kCurrent, kName, kOn, kThawed, kLock, kColor };

  QTableWidget& table(const char* dock, int digit) {
    auto* list = window_->findChild<QDockWidget*>(dock);
    if (!list->isVisible()) {
      QTest::keyClick(keyboardOwner(), static_cast<Qt::Key>(digit), Qt::ControlModifier);
      wait(50);
    }
    return *list->findChild<QTableWidget*>();
  }
  QTableWidget& layers() { return table("layers", Qt::Key_2); }
  QTableWidget& properties() { return table("properties", Qt::Key_1); }

  void click(QTableWidget& list, int row, int column) {
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {},
                      list.visualItemRect(list.item(row, column)).center());
  }
  host::HostDocument& drawing() { return app_->documents().current(); }
  host::LayerEntry layer(size_t index) {
    const auto all = host::layersOf(*drawing().database());
    return index < all.size() ? all[index] : host::LayerEntry();
  }
  size_t layerCount() { return host::layersOf(*drawing().database()).size(); }

  /// The row of a value; -1 when it is not shown.
  int rowOf(const QString& name) {
    QTableWidget& list = properties();
    for (int row = 0; row < list.rowCount(); ++row) {
      if (list.item(row, 0)->text() == name) return row;
    }
    return -1;
  }
  QString valueOf(const QString& name) {
    const int row = rowOf(name);
    return row < 0 ? QString("none") : properties().item(row, 1)->text();
  }
  void choose(const QString& lines) {
    play({[&] { enter("LINE " + lines); }, [&] { key(Qt::Key_Return); }});
    auto& chosen = drawing().selection().pickFirst;
    chosen = host::currentSpaceEntities(drawing());
    frontEnd_.tellState();
  }
};

TEST_F(PaletteTest, LayersAreSwitchedAndEachClickIsAStep) {
  QTableWidget& list = layers();
  ASSERT_EQ(list.rowCount(), 1);
  EXPECT_TRUE(host::addLayer(*app_));
  frontEnd_.tellState();
  ASSERT_EQ(list.rowCount(), 2);
  EXPECT_EQ(list.item(1, kName)->text(), "Layer1");
  const struct {
    Column column;
    bool host::LayerEntry::*state;
  } switches[] = {{kOn, &host::LayerEntry::isOff},
                  {kThawed, &host::LayerEntry::isFrozen},
                  {kLock, &host::LayerEntry::isLocked}};
  for (const auto& one : switches) {
    click(list, 1, one.column);
    EXPECT_TRUE(layer(1).*one.state) << one.column;
    enter("U");
    EXPECT_FALSE(layer(1).*one.state) << one.column;
  }
  click(list, 1, kCurrent);
  EXPECT_TRUE(layer(1).isCurrent);
  click(list, 1, kThawed);
  EXPECT_FALSE(layer(1).isFrozen);
  EXPECT_TRUE(history().contains("The current layer cannot be frozen.")) << history().toStdString();
  // The keyboard does the same.
  list.setCurrentCell(0, kOn);
  QTest::keyClick(&list, Qt::Key_Space);
  EXPECT_TRUE(layer(0).isOff);
}

TEST_F(PaletteTest, LayersAreRenamedWithWhatIsOnThemAndDeletedOnlyWhenEmpty) {
  ASSERT_TRUE(host::addLayer(*app_));
  const AcDbObjectId id = layer(1).id;
  ASSERT_TRUE(host::setCurrentLayer(*app_, id));
  choose("0,0 100,0");
  QTableWidget& list = layers();
  frontEnd_.tellState();
  list.item(1, kName)->setText("地块 1");
  EXPECT_EQ(layer(1).name, "地块 1");
  EXPECT_EQ(valueOf("Layer"), "地块 1");
  for (const char* bad : {"a*b", "0"}) {
    list.item(1, kName)->setText(bad);
    EXPECT_EQ(layer(1).name, "地块 1") << bad;
    EXPECT_EQ(list.item(1, kName)->text(), "地块 1") << bad;
  }
  EXPECT_FALSE(host::deleteLayer(*app_, id));
  ASSERT_TRUE(host::setCurrentLayer(*app_, layer(0).id));
  EXPECT_EQ(host::deleteLayer(*app_, id).message(),
            "Layer \"地块 1\" cannot be deleted: 1 entity is on it.");
  enter("ERASE");
  EXPECT_TRUE(host::deleteLayer(*app_, id));
  EXPECT_EQ(layerCount(), 1U);
  enter("U");
  EXPECT_EQ(layerCount(), 2U);
}

TEST_F(PaletteTest, ValuesOfTheChosenAreShownAndChanged) {
  properties();
  choose("40500000.125,3512000.25 40500003.125,3512004.25");
  EXPECT_EQ(valueOf("Start X"), "40500000.125");
  EXPECT_EQ(valueOf("Length"), "5");
  ASSERT_GE(rowOf("End Y"), 0);
  properties().item(rowOf("End Y"), 1)->setText("3512008.25");
  EXPECT_EQ(valueOf("End Y"), "3512008.25");
  EXPECT_NE(valueOf("Length"), "5");
  properties().item(rowOf("Colour"), 1)->setText("#ff8000");
  EXPECT_EQ(valueOf("Colour"), "#ff8000");
  properties().item(rowOf("Colour"), 1)->setText("red");
  EXPECT_TRUE(history().contains("\"red\" is no colour")) << history().toStdString();
  properties().item(rowOf("Start X"), 1)->setText("east");
  EXPECT_TRUE(history().contains("Start X needs a number, not \"east\"."));
  choose("0,0 7,0");
  EXPECT_EQ(valueOf("Length"), "") << "two lengths";
  EXPECT_EQ(valueOf("Layer"), "0");
  EXPECT_EQ(properties().item(rowOf("Kind"), 1)->flags() & Qt::ItemIsEditable, 0);
}

}  // namespace
}  // namespace tarn::test
