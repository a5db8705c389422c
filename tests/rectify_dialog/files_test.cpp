// Import of control points and export of the rectified image through the dialog.
#include <QApplication>
#include <QComboBox>
#include <QLabel>

#include "base/file.h"
#include "tests/rectify_dialog/dialogfixture.h"

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class Files : public tarn::test::DialogTest {
 protected:
  void SetUp() override {
    DialogTest::SetUp();
    path_ = makeImage("a.tif", {{50, 50}});
    add(path_);
    ASSERT_NE(open(), nullptr);
    host_->ui.requests.clear();
  }
  std::string write(const std::string& name, const std::string& text) {
    const std::string path = tarn::joinPath(host_->folder, name);
    EXPECT_TRUE(tarn::writeFileAtomically(path, text));
    return path;
  }
  void import(const std::string& path) {
    host_->ui.files = {{path}};
    press("_contrl_point_input_button");
  }
  void exportTo(const std::string& path) {
    host_->ui.files = {{path}};
    host_->ui.boxes.clear();
    press("_out_rectify_image");
    EXPECT_TRUE(dialog().isVisible());
  }
  std::string note() { return find<QLabel>("label_advice").text().toStdString(); }

  std::string path_;
};

TEST_F(Files, ImportReplacesTheTable) {
  addPair(9, 9, 9, 9);
  import(write("a.txt", "1 2 3 4\n40500123.456,2,3,4\n"));
  EXPECT_THAT(sources(), ElementsAre("1 2", "40500123.456 2"));
  EXPECT_EQ(cell(1, 0), "2");
  ASSERT_EQ(host_->ui.requests.size(), 1U);
  const tarn::host::FileRequest& request = host_->ui.requests[0];
  EXPECT_TRUE(request.open);
  EXPECT_EQ(request.filter, "导入控制点文件(*.txt)|*.txt||");
  EXPECT_EQ(request.defaultExtension, "*.txt");
  // The first valid line is the last of the file, and the old rows are gone all the same.
  import(write("b.txt", "a\n\nb c d e\n5 6 7 8"));
  EXPECT_THAT(sources(), ElementsAre("5 6"));
  press("undoTable");
  EXPECT_THAT(sources(), ElementsAre("1 2", "40500123.456 2"));
}

TEST_F(Files, ImportThatGivesNothingLeavesTheTable) {
  addPair(9, 9, 9, 9);
  import(tarn::joinPath(host_->folder, "missing.txt"));
  EXPECT_EQ(note(), "");
  import(host_->folder);
  host_->ui.files.clear();
  press("_contrl_point_input_button");
  import(write("a.txt", "no point\n1, 2, 3, 4\nnan 1 2 3\n1,5 2,5 3,5 4,5\n"));
  EXPECT_THAT(note(), HasSubstr("没有有效的控制点"));
  import(write("big.txt", std::string(10 << 20, 'x')));
  import(write("binary.txt", std::string("\0\xff\xfe\x01", 4)));
  EXPECT_THAT(sources(), ElementsAre("9 9"));
}

TEST_F(Files, ImportTakesTwentyOnePoints) {
  std::string text;
  for (int i = 0; i < 30; ++i) text += std::to_string(i) + " 2 3 4\n";
  import(write("a.txt", text));
  EXPECT_EQ(table().rowCount(), 21);
  EXPECT_EQ(sources().back(), "20 2");
  EXPECT_THAT(note(), HasSubstr("其后的行未读取"));
}

TEST_F(Files, ExportNeedsPointsAKnownFormatAndAYes) {
  const std::string target = tarn::joinPath(host_->folder, "out.tif");
  exportTo(target);
  EXPECT_THAT(host_->ui.boxes, ElementsAre("错误，没有足够的控制点。"));
  const tarn::host::FileRequest& request = host_->ui.requests[0];
  EXPECT_FALSE(request.open);
  EXPECT_EQ(request.title, "导出影像");
  EXPECT_EQ(request.filter, "数据格式(*.tif)|*.tif|数据格式(*.img)|*.img|");

  addPair(1000, 2300, 1000, 2300);
  addPair(1400, 2000, 1400, 2000);
  find<QComboBox>("rectifyMethod").setCurrentIndex(4);
  for (const char* name : {"out.png", "out", "out.tif.bak"}) {
    exportTo(tarn::joinPath(host_->folder, name));
    ASSERT_EQ(host_->ui.boxes.size(), 1U);
    EXPECT_THAT(host_->ui.boxes[0], HasSubstr(name));
  }
  {
    tarn::test::BoxAnswers boxes("No");
    exportTo(target);
    EXPECT_THAT(boxes.seen, ElementsAre("导出提示|是否继续？"));
  }
  EXPECT_EQ(tarn::fileKind(target), tarn::FileKind::kMissing);
  EXPECT_THAT(stored(path_), IsEmpty());

  // All points equal: nothing to export, and no question.
  addPair(1000, 2300, 1001, 2300);
  while (table().rowCount() > 0) {
    table().selectRow(0);
    press("deletePoints");
  }
  addPair(1, 1, 5, 5);
  addPair(1, 1, 6, 6);
  tarn::test::BoxAnswers boxes;
  exportTo(target);
  EXPECT_THAT(boxes.seen, ElementsAre("纠正错误|当前所选点不能正确计算纠正转换参数，请重新选点！"));
}

TEST_F(Files, ExportThatCannotBeWrittenSaysSo) {
  addPair(1000, 2300, 1000, 2300);
  addPair(1400, 2000, 1400, 2000);
  find<QComboBox>("rectifyMethod").setCurrentIndex(4);
  const tarn::test::BoxAnswers boxes("Yes");
  exportTo(tarn::joinPath(host_->folder, "no such folder/out.tif"));
  EXPECT_THAT(boxes.seen, ElementsAre("导出提示|是否继续？", "提示|导出纠正影像失败！"));
  EXPECT_EQ(table().rowCount(), 2);
}

}  // namespace
