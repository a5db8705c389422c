// The table of control points: adding, changing, deleting, undo, check points, recovery.
#include <QApplication>
#include <QLineEdit>

#include "base/file.h"
#include "host/editor/documents.h"
#include "tests/rectify_dialog/dialogfixture.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Rows : public tarn::test::DialogTest {
 protected:
  void SetUp() override {
    DialogTest::SetUp();
    path_ = makeImage("a.tif", {{50, 50}});
    add(path_);
    ASSERT_NE(open(), nullptr);
  }
  std::vector<std::string> numbers() {
    std::vector<std::string> texts;
    for (int row = 0; row < table().rowCount(); ++row) texts.push_back(cell(row, 0));
    return texts;
  }
  std::vector<std::string> edits() {
    std::vector<std::string> texts;
    for (const char* name : {"oldEast", "oldNorth", "newEast", "newNorth"}) {
      texts.push_back(find<QLineEdit>(name).text().toStdString());
    }
    return texts;
  }
  size_t lines() { return host_->app->documents().current().temporaryVectors().lines.size(); }

  std::string path_;
};

TEST_F(Rows, AreAddedWithEveryDigitAndOnlyWhenAllFourAreNumbers) {
  for (const char* bad : {"", "x", "1,5", "nan", "inf"}) {
    type("oldEast", "1");
    type("oldNorth", "2");
    type("newEast", bad);
    type("newNorth", "4");
    press("addPoints");
    EXPECT_EQ(table().rowCount(), 0) << bad;
    EXPECT_EQ(find<QLineEdit>("newEast").text(), bad);
  }
  type("oldEast", " 40500123.456 ");
  type("oldNorth", "-0.0000001");
  type("newEast", "5572094.155411");
  type("newNorth", "1e3");
  press("addPoints");
  ASSERT_EQ(table().rowCount(), 1);
  EXPECT_EQ(cell(0, 0), "1");
  EXPECT_EQ(cell(0, 1), "40500123.456");
  EXPECT_EQ(cell(0, 2), "-0.0000001");
  EXPECT_EQ(cell(0, 3), "5572094.155411");
  EXPECT_EQ(cell(0, 4), "1000");
  EXPECT_EQ(cell(0, 5), "");
  EXPECT_THAT(edits(), ElementsAre("", "", "", ""));
  EXPECT_EQ(table().item(0, 1)->flags(), Qt::ItemIsSelectable | Qt::ItemIsEnabled);
}

TEST_F(Rows, RefuseAPairThatIsThereAlready) {
  tarn::test::BoxAnswers boxes;
  addPair(1, 2, 3, 4);
  addPair(1.000009, 2, 3, 3.999991);
  EXPECT_THAT(boxes.seen, ElementsAre("影像纠正|该点对已经存在，请勿重复添加！"));
  addPair(1, 2, 3, 4.00002);
  addPair(1, 2, 3.5, 4);
  EXPECT_EQ(boxes.seen.size(), 1U);
  EXPECT_THAT(numbers(), ElementsAre("1", "2", "3"));
}

TEST_F(Rows, AreChangedAndDeletedWhereSelected) {
  for (int i = 1; i <= 3; ++i) addPair(i, 0, 0, 0);
  const size_t marks = lines();
  press("updatePoints");
  press("deletePoints");
  EXPECT_EQ(table().rowCount(), 3);

  table().selectRow(1);
  dialog().on_table_item_double_clicked(nullptr);
  EXPECT_THAT(edits(), ElementsAre("2", "0", "0", "0"));
  type("newNorth", "x");
  press("updatePoints");
  EXPECT_EQ(cell(1, 4), "0");
  type("newNorth", "7.25");
  press("updatePoints");
  EXPECT_EQ(cell(1, 4), "7.25");
  // The markers stay where they were drawn.
  EXPECT_EQ(lines(), marks);

  table().selectRow(1);
  press("deletePoints");
  EXPECT_THAT(numbers(), ElementsAre("1", "2"));
  EXPECT_THAT(sources(), ElementsAre("1 0", "3 0"));
  EXPECT_LT(lines(), marks);
  table().clearSelection();
  type("oldEast", "kept");
  dialog().on_table_item_double_clicked(nullptr);
  EXPECT_EQ(edits()[0], "kept");
}

TEST_F(Rows, CanBeUndoneAndRedone) {
  addPair(1, 0, 0, 0);
  addPair(2, 0, 0, 0);
  table().selectRow(0);
  press("checkPoint");
  table().selectRow(0);
  press("deletePoints");
  EXPECT_THAT(sources(), ElementsAre("2 0"));
  press("undoTable");
  EXPECT_THAT(sources(), ElementsAre("1 0", "2 0"));
  EXPECT_TRUE(table().item(0, 1)->font().italic());
  press("undoTable");
  EXPECT_FALSE(table().item(0, 1)->font().italic());
  press("undoTable");
  press("undoTable");
  EXPECT_THAT(sources(), IsEmpty());
  EXPECT_EQ(lines(), 0U);
  EXPECT_FALSE(find<QPushButton>("undoTable").isEnabled());
  for (int i = 0; i < 4; ++i) press("redoTable");
  EXPECT_THAT(sources(), ElementsAre("2 0"));
  EXPECT_FALSE(find<QPushButton>("redoTable").isEnabled());
}

TEST_F(Rows, AreThereAgainAfterACrash) {
  addPair(40500123.456, 0.5, 1, 2);
  addPair(3, 4, 5, 6);
  const std::string folder = tarn::joinPath(host_->folder, "rectify_points");
  ASSERT_EQ(tarn::listFolder(folder).size(), 1U);
  const std::string kept = tarn::joinPath(folder, tarn::listFolder(folder)[0]);
  const std::string text = tarn::readFile(kept, 10000).take();
  dialog().close();
  QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_THAT(tarn::listFolder(folder), IsEmpty());

  // A dialog that did not end in order leaves its file.
  ASSERT_TRUE(tarn::writeFileAtomically(kept, text));
  ASSERT_NE(open(), nullptr);
  EXPECT_EQ(table().rowCount(), 0);
  EXPECT_FALSE(find<QPushButton>("recoverPoints").isHidden());
  press("recoverPoints");
  EXPECT_THAT(sources(), ElementsAre("40500123.456 0.5", "3 4"));
  EXPECT_TRUE(find<QPushButton>("recoverPoints").isHidden());
  dialog().close();
  QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  // What is damaged is passed over.
  ASSERT_TRUE(tarn::writeFileAtomically(kept, text.substr(0, text.size() - 3) + "\nnonsense\n"));
  ASSERT_NE(open(), nullptr);
  press("recoverPoints");
  EXPECT_THAT(sources(), ElementsAre("40500123.456 0.5"));
}

TEST_F(Rows, MarkersComeBackAfterEveryChangeOfTheView) {
  addPair(1100, 2200, 1150, 2250);
  const size_t marks = lines();
  EXPECT_GT(marks, 10U);
  host_->app->regenerate();
  EXPECT_EQ(lines(), marks);
  host_->app->zoomAt({10, 10}, 2);
  EXPECT_EQ(lines(), marks);
  dialog().close();
  QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_EQ(lines(), 0U);
}

}  // namespace
