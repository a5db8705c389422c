// What is made of a fit: the survey report and the arrows in the drawing.
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QProcess>

#include <cmath>

#include "_image/docdata.h"
#include "base/file.h"
#include "base/path.h"
#include "base/text.h"
#include "dbblockref.h"
#include "dbobjptr.h"
#include "dbsymtb.h"
#include "tests/rectify_dialog/dialogfixture.h"
#include "tests/support/system.h"

namespace {

using ::testing::HasSubstr;
using ::testing::Not;

/// The text of a PDF as a reader of ours that nobody here wrote finds it.
std::string textOf(const std::string& path) {
  QProcess reader;
  reader.start("pdftotext", {"-layout", QString::fromStdString(path), "-"});
  EXPECT_TRUE(reader.waitForFinished());
  return reader.readAllStandardOutput().toStdString();
}

class Results : public tarn::test::DialogTest {
 protected:
  void SetUp() override {
    DialogTest::SetUp();
    path_ = makeImage("正射影像.tif", {{200, 150}});
    add(path_);
    ASSERT_NE(open(), nullptr);
    find<QComboBox>("rectifyMethod").setCurrentIndex(4);
    const double places[][4] = {{1050.5, 2249.5, 1060.6, 2249.5},
                                {1350.5, 2049.5, 1360.5, 2049.4},
                                {1050.5, 2049.5, 1060.5, 2049.5},
                                {1350.5, 2249.5, 1360.5, 2249.6},
                                {1200.5, 2149.5, 1210.9, 2149.2}};
    for (const auto& p : places) addPair(p[0], p[1], p[2], p[3]);
    table().selectRow(4);
    press("checkPoint");
  }
  std::string report(const std::string& name) {
    const std::string file = tarn::joinPath(host_->folder, name);
    host_->ui.files = {{file}};
    press("writeReport");
    return file;
  }
  std::string advice() { return find<QLabel>("label_advice").text().toStdString(); }
  /// Insertions on the layer of the arrows, and what stands in their block.
  std::vector<std::string> drawn() {
    std::vector<std::string> found;
    AcDbBlockTable* blocks = nullptr;
    AcDbObjectId model;
    record().database()->getBlockTable(blocks, AcDb::kForRead);
    blocks->getAt(ACDB_MODEL_SPACE, model);
    blocks->close();
    const AcDbObjectPointer<AcDbBlockTableRecord> space(model, AcDb::kForRead);
    for (const AcDbObjectId& id : space->entityIds()) {
      const AcDbObjectPointer<AcDbBlockReference> reference(id, AcDb::kForRead);
      if (reference.openStatus() != Acad::eOk) continue;
      const AcDbObjectPointer<AcDbBlockTableRecord> block(reference->blockTableRecord(),
                                                          AcDb::kForRead);
      const AcDbObjectPointer<AcDbLayerTableRecord> layer(reference->layerId(), AcDb::kForRead);
      const ACHAR* name = nullptr;
      layer->getName(name);
      found.push_back(tarn::toUtf8(name) + " " + std::to_string(block->entityIds().length()));
    }
    return found;
  }
  std::string path_;
};

TEST_F(Results, AreReportedInBothLanguages) {
  const std::string first = report("报告.pdf");
  EXPECT_THAT(advice(), HasSubstr("报告.pdf"));
  EXPECT_EQ(tarn::readFile(first, 10 << 20).take().substr(0, 5), "%PDF-");
  if (!tarn::test::hasJudges()) GTEST_SKIP() << "nothing here reads a PDF";
  const std::string chinese = textOf(first);
  for (const char* text :
       {"影像纠正精度报告", "正射影像.tif", "赫尔默特", "tx", "旋转角", "0.0814531 m",
        "检核点中误差", "误差 0.2 m", "1060.600", "0.480234 m", "第 1 页", "误差放大"})
    EXPECT_THAT(chinese, HasSubstr(text));
  host_->run("SETVAR LOCALE ENU");
  const std::string english = textOf(report("report.pdf"));
  for (const char* text : {"Rectification report", "正射影像.tif", "Redundancy", "5 check",
                           "Rotation (counter-clockwise)", "Page 1", "Residuals ×"})
    EXPECT_THAT(english, HasSubstr(text));
  // The sources are those that the parameters speak of, also when the image has gone to its place.
  press("calRectify");
  EXPECT_EQ(textOf(report("again.pdf")), english);
}

TEST_F(Results, OfAnUnwritableFileOrTooFewPointsAreRefused) {
  const std::string file = report("missing/report.pdf");
  EXPECT_THAT(advice(), HasSubstr("missing"));
  EXPECT_FALSE(tarn::fileKind(file) == tarn::FileKind::kRegular);
  const std::string old = tarn::joinPath(host_->folder, "old.pdf");
  ASSERT_TRUE(tarn::writeFileAtomically(old, "as it was"));
  find<QComboBox>("rectifyMethod").setCurrentIndex(0);
  const tarn::test::BoxAnswers boxes;
  report("old.pdf");
  EXPECT_THAT(boxes.seen, testing::ElementsAre("错误|没有足够的控制点。"));
  EXPECT_EQ(tarn::readFile(old, 99).value(), "as it was");
}

TEST_F(Results, AreArrowsThatAreOneEntityAndOneStep) {
  EXPECT_FALSE(find<QPushButton>("eraseArrows").isEnabled());
  press("drawArrows");
  // Five arrows of three lines and their texts, and the scale's.
  EXPECT_THAT(drawn(), testing::ElementsAre("TARN_RESIDUALS 24"));
  EXPECT_THAT(advice(), HasSubstr("TARN_RESIDUALS"));
  type("arrowFactor", "100");
  press("drawArrows");
  EXPECT_EQ(drawn().size(), 1U);
  EXPECT_THAT(advice(), HasSubstr("100"));
  press("eraseArrows");
  EXPECT_THAT(drawn(), testing::IsEmpty());
  EXPECT_FALSE(find<QPushButton>("eraseArrows").isEnabled());
  type("arrowFactor", "-3");
  press("drawArrows");
  EXPECT_THAT(drawn(), testing::IsEmpty());
  type("arrowFactor", "50");
  press("drawArrows");
  EXPECT_EQ(drawn().size(), 1U);
  dialog().close();
  QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  host_->run("U");
  EXPECT_THAT(drawn(), testing::IsEmpty());
  host_->run("U");
  EXPECT_EQ(drawn().size(), 1U) << "the erased ones are back";
  host_->run("U");
  host_->run("U");
  EXPECT_THAT(drawn(), testing::IsEmpty());
  host_->run("MREDO ALL");
  // They are kept with the drawing.
  const std::string file = tarn::joinPath(tarn::folderOf(host_->folder), "arrows.dxf");
  host_->ui.files = {{file}, {file}};
  host_->run("SAVEAS");
  host_->run("CLOSE");
  host_->run("NEW");
  host_->run("OPEN");
  EXPECT_THAT(drawn(), testing::ElementsAre("TARN_RESIDUALS 24"));
  EXPECT_TRUE(tarn::removeAll(file));
}

}  // namespace
