// What people type, import and pull away under the dialog: it says so, and nothing else changes.
#include <QApplication>
#include <QComboBox>
#include <QLabel>

#include <cstdio>

#include "base/file.h"
#include "tests/rectify_dialog/dialogfixture.h"

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

enum Method { kCubic, kQuadratic, kLinear, kAffine, kHelmert };

class BadInput : public tarn::test::DialogTest {
 protected:
  void SetUp() override {
    DialogTest::SetUp();
    path_ = makeImage("a.tif", {{50, 50}, {350, 250}});
    add(path_);
    ASSERT_NE(open(), nullptr);
    image_ = tarn::readFile(path_, 10 << 20).take();
  }
  void method(int index) { find<QComboBox>("rectifyMethod").setCurrentIndex(index); }
  std::string note() { return find<QLabel>("label_advice").text().toStdString(); }
  std::string pointFile() const { return path_.substr(0, path_.size() - 3) + "FTWx"; }
  void import(const std::string& text) {
    const std::string path = tarn::joinPath(host_->folder, "points.txt");
    ASSERT_TRUE(tarn::writeFileAtomically(path, text));
    host_->ui.files = {{path}};
    press("_contrl_point_input_button");
  }
  void abort() {
    press("abort");
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    expectDot(1050.5, 2249.5);
    EXPECT_THAT(stored(path_), IsEmpty());
    EXPECT_EQ(tarn::readFile(path_, 10 << 20).value(), image_);
  }
  std::string path_;
  std::string image_;
};

std::string repeated(const std::string& line, size_t bytes) {
  std::string text;
  text.reserve(bytes + line.size());
  while (text.size() < bytes) text += line;
  return text;
}

TEST_F(BadInput, PointFilesOfEveryKind) {
  const struct {
    const char* name;
    std::string text;
    size_t rows;  // 1: the row that was there
    const char* note;
  } cases[] = {
      {"decimal commas", "1,5 2,5 3,5 4,5\n5,5 6,5 7,5 8,5\n", 1, "没有有效的控制点"},
      {"not finite", "nan 1 2 3\ninf 1 2 3\n-inf,1,2,3\n1e999 1 2 3\n", 1, "没有有效的控制点"},
      {"two bytes a letter",
       std::string("\xFF\xFE"
                   "1\0 \0002\0 \0003\0 \0004\0\n\0",
                   18),
       1, "已导入 1 个控制点"},
      {"a mark of eight bits",
       "\xEF\xBB\xBF"
       "1 2 3 4\n",
       1, "已导入 1 个控制点"},
      {"letters of another encoding", "\xB5\xE3\xBA\xC5 x y\n1 2 3 4\n", 1,
       "已导入 1 个控制点，跳过 1 行"},
      {"ten million bytes of points", repeated("1.25 2.5 3 4\n", 10 << 20), 21, "其后的行未读取"},
      {"ten million bytes of others", repeated("a line of words\n", 10 << 20), 1,
       "没有有效的控制点"},
      {"a million empty lines", repeated("\n", 1 << 20), 1, "没有有效的控制点"},
  };
  for (const auto& one : cases) {
    SCOPED_TRACE(one.name);
    table().setRowCount(0);
    addPair(9, 9, 9, 9);
    import(one.text);
    EXPECT_EQ(static_cast<size_t>(table().rowCount()), one.rows);
    EXPECT_THAT(note(), HasSubstr(one.note));
    const bool replaced = std::string(one.note).find("没有") == std::string::npos;
    EXPECT_EQ(cell(0, 1) == "9", !replaced);
  }
  abort();
}

// The targets of an image of 400 units lie far away, all of them or one.
TEST_F(BadInput, TargetsThatAreVeryFarAway) {
  constexpr double kFar = 1e12;
  const std::vector<std::pair<double, double>> places = {
      {1000, 2300}, {1130, 2300}, {1270, 2290}, {1400, 2300}, {1000, 2200}, {1400, 2200},
      {1000, 2100}, {1130, 2110}, {1270, 2090}, {1000, 2000}, {1130, 2000}, {1400, 2000}};
  for (const int index : {kCubic, kQuadratic, kLinear, kAffine, kHelmert}) {
    for (const bool all : {true, false}) {
      SCOPED_TRACE(testing::Message() << index << ' ' << all);
      if (!rectifyDialog::instance()) {
        ASSERT_NE(open(), nullptr);
      }
      table().setRowCount(0);
      method(index);
      for (size_t i = 0; i < places.size(); ++i) {
        const auto& [x, y] = places[i];
        const double far = all || i == 3 ? kFar : 0;
        addPair(x, y, x + far, y - far);
      }
      tarn::test::BoxAnswers boxes;
      press("calError");
      host_->app->regenerate();
      press("calRectify");
      host_->app->regenerate();
      EXPECT_EQ(table().rowCount(), static_cast<int>(places.size()));
      if (all) {
        EXPECT_THAT(boxes.seen, IsEmpty());
        EXPECT_LT(std::stod(cell(0, 5)), 1e-2);
      } else {
        ASSERT_EQ(boxes.seen.size(), 1U);
        // From so far the others look like one place.
        const bool isFlat = index != kLinear && index != kHelmert;
        EXPECT_THAT(note(), HasSubstr(isFlat ? "第 4 点的目标坐标离其他点太远" : "去掉第 4 点后"));
        EXPECT_THAT(note(), Not(HasSubstr("附近加点")));
      }
      abort();
    }
  }
}

TEST_F(BadInput, ARecordFileThatCannotBeWritten) {
  ASSERT_TRUE(tarn::makeFolders(pointFile()));
  addPair(1000, 2300, 1100, 2300);
  addPair(1400, 2000, 1500, 2000);
  method(kHelmert);
  host_->printed();
  press("calRectify");
  EXPECT_THAT(host_->printed(), HasSubstr("a.FTWx"));
  EXPECT_THAT(note(), HasSubstr("a.FTWx"));
  EXPECT_EQ(table().rowCount(), 2);
  EXPECT_FALSE(stored(path_).empty());
  expectDot(1150.5, 2249.5);
  abort();
  EXPECT_EQ(tarn::fileKind(pointFile()), tarn::FileKind::kFolder);
}

TEST_F(BadInput, AnImageThatVanished) {
  addPair(1000, 2300, 1100, 2300);
  addPair(1400, 2000, 1500, 2000);
  method(kHelmert);
  const std::string away = path_ + ".away";
  ASSERT_EQ(std::rename(path_.c_str(), away.c_str()), 0);
  host_->printed();
  press("calError");
  host_->app->regenerate();
  EXPECT_THAT(host_->printed(), HasSubstr("a.tif: is not there any more"));
  EXPECT_THAT(sources(), ElementsAre("1000 2300", "1400 2000"));
  press("abort");
  QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_EQ(open(), nullptr);
  EXPECT_THAT(host_->printed(), HasSubstr("a.tif"));
  ASSERT_EQ(std::rename(away.c_str(), path_.c_str()), 0);
  ASSERT_NE(open(), nullptr);
  abort();
}

}  // namespace
