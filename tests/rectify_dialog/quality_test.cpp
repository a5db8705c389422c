// What the dialog says of a fit, and what it offers to do about it.
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QRegularExpression>

#include <cmath>

#include "_image/docdata.h"
#include "_image/rectify/placementrecord.h"
#include "base/file.h"
#include "base/text.h"
#include "commoncode/fitreport/fittext.h"
#include "tests/rectify_dialog/dialogfixture.h"

namespace {

using kel::RectifyFault;
using kel::RectifyHint;
using kel::RectifyQuality;
using ::testing::HasSubstr;

QString qualityText(const RectifyQuality& quality, const std::vector<size_t>& places) {
  return tarn::fitreport::fitText(quality, places, tarn::fitreport::Language::kChinese);
}

TEST(QualityText, IsChineseForEveryFaultAndNamesRowsOfTheTable) {
  struct Row {
    RectifyFault fault;
    kel::List<int> points;
    kel::List<kel::List<int>> lines;
    const char* says;
  };
  const Row table[] = {
      {RectifyFault::kTooFew, {}, {}, "需要 10 个点，现有 4 个"},
      {RectifyFault::kNotFinite, {1}, {}, "第 4 点"},
      {RectifyFault::kNoExtent, {0, 1}, {}, "源坐标相同"},
      {RectifyFault::kTargetsFlat, {}, {}, "没有面积"},
      {RectifyFault::kOnLine, {0, 1}, {}, "近似在一条直线"},
      {RectifyFault::kOnLine, {0, 1}, {{0, 1}}, "都在一条直线"},
      {RectifyFault::kAlongAxis, {0, 1}, {}, "与坐标轴平行"},
      {RectifyFault::kOnConic, {}, {{0, 1}, {2, 3}}, "2 条直线上（1、4；5、6）"},
      {RectifyFault::kOnConic, {}, {}, "二次曲线"},
      {RectifyFault::kOnCubic, {}, {}, "三次曲线"},
      {RectifyFault::kTooFewPlaces, {2, 3}, {}, "第 5、6 点与其他点位置重复"},
      {RectifyFault::kCornerFar, {}, {}, "放大 147 倍"},
      {RectifyFault::kFolds, {}, {}, "折叠"},
      {RectifyFault::kSourceLost, {3}, {}, "第 6 点"},
  };
  // The table's second and third rows only check.
  const std::vector<size_t> places = {0, 3, 4, 5};
  const auto expect = [&](const RectifyQuality& quality, const char* says) {
    const QString text = qualityText(quality, places);
    EXPECT_THAT(text.toStdString(), HasSubstr(says));
    EXPECT_FALSE(QString(text).remove("s0").contains(QRegularExpression("[A-Za-z]")))
        << text.toStdString();
  };
  for (const Row& row : table) {
    RectifyQuality quality;
    quality.fault = row.fault;
    quality.faultPoints = row.points;
    quality.lines = row.lines;
    quality.pointsNeeded = 10;
    quality.pointsThere = 4;
    quality.cornerFactor = 147.2;
    expect(quality, row.says);
  }
  RectifyQuality good;
  good.status = 0;
  good.fault = RectifyFault::kNone;
  EXPECT_EQ(qualityText(good, places), "");
  good.hint = RectifyHint::kNoCheck;
  expect(good, "没有检核");
  good.hint = RectifyHint::kSpreadPoints;
  good.cornerFactor = 35;
  good.suggested = {{40500000.25, 3, 0}, {1}, {5, 6, 0}};
  good.worstPoint = 3;
  good.s0WithoutWorst = 0.25;
  good.repair = {{{3, true, true, 0, 0}}, 12, 0.5, false};
  for (const char* says : {"放大 35 倍", "(40500000.25, 3.00)、(5.00, 6.00)",
                           "去掉第 6 点后 s0 降为 0.25", "第 6 点的目标东、北坐标好像互换了"})
    expect(good, says);
}

class Offers : public tarn::test::DialogTest {
 protected:
  void SetUp() override {
    DialogTest::SetUp();
    path_ = makeImage("a.tif", {{50, 50}, {350, 50}, {50, 250}, {350, 250}, {200, 150}});
    add(path_);
    ASSERT_NE(open(), nullptr);
    find<QComboBox>("rectifyMethod").setCurrentIndex(4);
  }
  std::string advice() { return find<QLabel>("label_advice").text().toStdString(); }
  static std::vector<std::pair<double, double>> corners() {
    return {{1050.5, 2249.5}, {1350.5, 2249.5}, {1050.5, 2049.5}, {1350.5, 2049.5}};
  }
  std::string path_;
};

TEST_F(Offers, ToExchangeEastAndNorthOfTargets) {
  for (const auto& [x, y] : corners()) addPair(x, y, y + 10, x - 20);
  EXPECT_TRUE(find<QPushButton>("repairPoints").isHidden());
  press("calError");
  EXPECT_FALSE(find<QPushButton>("repairPoints").isHidden());
  EXPECT_THAT(advice(), HasSubstr("互换"));
  press("repairPoints");
  EXPECT_TRUE(find<QPushButton>("repairPoints").isHidden());
  EXPECT_EQ(cell(0, 3) + " " + cell(0, 4), "1030.5 2259.5");
  for (int row = 0; row < 4; ++row) EXPECT_LT(std::stod(cell(row, 5)), 1e-6);
  press("undoTable");
  EXPECT_EQ(cell(0, 3) + " " + cell(0, 4), "2259.5 1030.5");
}

// Rows that only check stand between those that are mended.
TEST_F(Offers, ToMendSingleRowsByTheirPlacesInTheTable) {
  size_t row = 0;
  for (const auto& [x, y] : corners()) {
    const double prefix = row == 2 ? 0 : 40e6;
    addPair(x, y, prefix + 500000 + x, y);
    if (row++ == 0) {
      addPair(x + 3, y + 3, prefix + 500000 + x, y);
      table().selectRow(1);
      press("checkPoint");
    }
  }
  press("calError");
  EXPECT_THAT(advice(), HasSubstr("第 4 点的目标东坐标好像缺少带号 40"));
  press("repairPoints");
  EXPECT_EQ(cell(3, 3), "40501050.5");
  EXPECT_EQ(cell(1, 3), "40501050.5");
  EXPECT_LT(std::stod(cell(3, 5)), 1e-6);
}

TEST_F(Offers, ToCheckByPointsThatAreKeptOutOfTheFit) {
  for (const auto& [x, y] : corners()) addPair(x, y, x + 10, y);
  addPair(1200.5, 2149.5, 1200.5 + 13, 2149.5 + 4);
  table().selectRow(4);
  press("checkPoint");
  press("calError");
  EXPECT_LT(std::stod(cell(0, 5)), 1e-6);
  EXPECT_NEAR(std::stod(cell(4, 5)), 5, 1e-6);
  press("checkPoint");
  press("calError");
  EXPECT_GT(std::stod(cell(0, 5)), 0.5);
  EXPECT_THAT(advice(), HasSubstr("去掉第 5 点后"));
}

TEST_F(Offers, ThePointsOfTheFileWhenTheDrawingsRecordCannotBeRead) {
  for (const auto& [x, y] : corners()) addPair(x, y, x + 25, y + 10);
  press("calRectify");
  expectDot(1225.5, 2159.5);
  dialog().close();
  QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  ASSERT_TRUE(
      tarn::image::storePlacement(record().database(), tarn::toWide(path_), {77.0, 1.0, 2.0}));
  const std::string drawing = tarn::joinPath(tarn::folderOf(host_->folder), "unreadable.dxf");
  host_->ui.files = {{drawing}, {drawing}};
  host_->run("SAVEAS");
  host_->run("CLOSE");
  host_->run("NEW");
  host_->printed();
  host_->run("OPEN");
  EXPECT_THAT(host_->printed(), HasSubstr("a.tif"));
  host_->run("ZOOM C 1200,2150 600");
  expectDot(1200.5, 2149.5);
  ASSERT_NE(open(), nullptr);
  EXPECT_EQ(table().rowCount(), 4);
  EXPECT_EQ(find<QComboBox>("rectifyMethod").currentIndex(), 4);
  EXPECT_EQ(cell(0, 1) + " " + cell(0, 3), "1050.5 1075.5");
  EXPECT_TRUE(tarn::removeAll(drawing));
}

}  // namespace
