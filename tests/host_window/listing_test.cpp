// Images chosen from a listing in its dialog.
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QTest>
#include <QTreeWidget>

#include "tarnlisting.h"
#include "windowfixture.h"

namespace tarn::test {
namespace {

QWidget* dialog() {
  for (QWidget* widget : QApplication::topLevelWidgets())
    if (widget->objectName() == "listing" && widget->isVisible()) return widget;
  return nullptr;
}

/// "top.tif", and "east" with "a.tif" and "b.tif", which lie side by side.
TarnListing exampleListing() {
  TarnListing listing;
  listing.title = "Images";
  listing.read = [](const std::string& folder, std::vector<TarnListingEntry>& entries) {
    const auto add = [&](const std::string& name, double left) {
      TarnListingEntry entry;
      entry.name = name;
      entry.key = folder + "|" + name;
      entry.isFolder = left < 0;
      entry.hasFootprint = left >= 0;
      entry.left = left;
      entry.right = left + 100;
      entry.top = 100;
      entries.push_back(entry);
    };
    if (folder.empty()) {
      add("top.tif", 500);
      add("east", -1);
      return std::string();
    }
    if (folder != "|east") return std::string("unknown folder");
    add("a.tif", 0);
    add("b.tif", 100);
    return std::string();
  };
  return listing;
}

class ListingTest : public WindowTest {
 protected:
  /// What is chosen after the step, which works in the open dialog.
  std::vector<std::string> choose(const std::function<void(QWidget&)>& step) {
    const TarnListing listing = exampleListing();
    std::vector<std::string> chosen;
    play({[&] { chosen = tarnHostChooseFromListing(listing); },
          [&] {
            QWidget* shown = dialog();
            ASSERT_NE(shown, nullptr);
            QCoreApplication::processEvents();
            step(*shown);
          }});
    return chosen;
  }
  static void search(QWidget& in, const char* text) {
    auto* line = in.findChild<QLineEdit*>("search");
    QTest::keyClicks(line, text);
    QTest::keyClick(line, Qt::Key_Return);
  }
};

TEST_F(ListingTest, KeysFindAndTakeAnImage) {
  const auto chosen = choose([](QWidget& shown) {
    expectNames(shown);
    search(shown, "EAST b");
    auto* images = shown.findChild<QTreeWidget*>("images");
    ASSERT_EQ(images->topLevelItemCount(), 1);
    EXPECT_EQ(images->topLevelItem(0)->text(0), "east/b.tif");
    QTest::keyClick(images, Qt::Key_Return);
  });
  EXPECT_EQ(chosen, std::vector<std::string>{"|east|b.tif"});
}

TEST_F(ListingTest, FootprintsAreClickedAndSeveralAreTaken) {
  const auto chosen = choose([](QWidget& shown) {
    search(shown, "east");
    auto* map = shown.findChild<QWidget*>("map");
    auto* images = shown.findChild<QTreeWidget*>("images");
    QTest::mouseClick(shown.findChild<QWidget*>("showFootprints"), Qt::LeftButton);
    const QPoint middle(map->width() / 2, map->height() / 2);
    QTest::mouseClick(map, Qt::LeftButton, {}, middle - QPoint(20, 0));
    EXPECT_TRUE(images->topLevelItem(0)->isSelected());
    EXPECT_FALSE(images->topLevelItem(1)->isSelected());
    QTest::mouseClick(map, Qt::LeftButton, Qt::ControlModifier, middle + QPoint(20, 0));
    QTest::keyClick(images, Qt::Key_Return);
  });
  EXPECT_EQ(chosen, (std::vector<std::string>{"|east|a.tif", "|east|b.tif"}));
}

TEST_F(ListingTest, EscapeTakesNothing) {
  EXPECT_TRUE(choose([](QWidget& shown) {
                EXPECT_EQ(shown.findChild<QLabel*>("remark")->text(), "1 image");
                shown.findChild<QTreeWidget*>("images")->selectAll();
                QTest::keyClick(&shown, Qt::Key_Escape);
              }).empty());
}

}  // namespace
}  // namespace tarn::test
