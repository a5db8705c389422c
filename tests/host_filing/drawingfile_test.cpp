// Drawings that are read, changed and written again.
#include "host/filing/drawingfile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "acutmem.h"
#include "base/text.h"
#include "dbblockref.h"
#include "dbcurve.h"
#include "dbdict.h"
#include "dbobjptr.h"
#include "dbpl.h"
#include "dbsymtb.h"
#include "dbtext.h"
#include "dbxrecrd.h"
#include "host/filing/binarydrawing.h"
#include "tests/host_filing/drawingfixture.h"
#include "tests/host_filing/realdrawings.h"

namespace tarn::host {
namespace {

TEST(DrawingFile, eachRealDrawingIsTheSameAfterOpeningAndSaving) {
  const std::vector<std::string> drawings = realDrawings();
  if (drawings.empty()) GTEST_SKIP() << "no real files at " TARN_DATA_DIR;
  for (const std::string& path : drawings) {
    SCOPED_TRACE(path);
    auto file = DrawingFile::open(path);
    if (nameOf(path).rfind("clusterfuzz", 0) == 0) {
      EXPECT_FALSE(file);
      continue;
    }
    ASSERT_TRUE(file) << file.message();
    auto saved = file.value()->bytes();
    ASSERT_TRUE(saved) << saved.message();
    const std::string before = bytesOf(path);
    if (nameOf(path) == "recover01.dxf") {
      EXPECT_EQ(saved.value(), before + "  0\nEOF\n");
    } else if (nameOf(path) == "header_extended.dxf") {
      EXPECT_EQ(saved.value(), before + "  0\nENDSEC\n  0\nEOF\n");
    } else {
      EXPECT_TRUE(saved.value() == before) << "not the same bytes";
    }
  }
}

TEST(DrawingFile, blocksOfR12MayInsertBlocksFurtherDown) {
  const std::string block = "  0\nBLOCK\n  2\n%\n 10\n0.0\n 20\n0.0\n";
  const std::string end = "  0\nENDBLK\n";
  const auto insertOf = [](const std::string& name) {
    return "  0\nINSERT\n  8\n0\n  2\n" + name + "\n 10\n1.0\n 20\n2.0\n";
  };
  const std::string bytes =
      "  0\nSECTION\n  2\nHEADER\n  9\n$ACADVER\n  1\nAC1009\n  0\nENDSEC\n"
      "  0\nSECTION\n  2\nBLOCKS\n" +
      replaceAll(block, "%", "ONE") + insertOf("TWO") + end + replaceAll(block, "%", "TWO") +
      "  0\nCIRCLE\n  8\n0\n 10\n0.0\n 20\n0.0\n 40\n3.0\n" + end +
      "  0\nENDSEC\n  0\nSECTION\n  2\nENTITIES\n" + insertOf("ONE") + "  0\nENDSEC\n  0\nEOF\n";
  auto file = DrawingFile::fromBytes(bytes, "blocks.dxf");
  ASSERT_TRUE(file) << file.message();
  EXPECT_EQ(file.value()->notes(), std::vector<std::string>()) << "all are drawn";
  const AcDbObjectIdArray entities = modelEntities(file.value()->database());
  ASSERT_EQ(entities.length(), 1);
  const AcDbObjectPointer<AcDbEntity> insert(entities[0], AcDb::kForRead);
  AcDbExtents box;
  ASSERT_EQ(insert->getGeomExtents(box), Acad::eOk);
  EXPECT_EQ(box.minPoint(), AcGePoint3d(-1, 1, 0));
  EXPECT_EQ(box.maxPoint(), AcGePoint3d(5, 7, 0));
}

TEST(DrawingFile, readingALargeDrawingTellsHowFarItIs) {
  std::string bytes = newDrawingBytes("AC1015");
  std::string lines;
  for (int i = 0; i < 30000; ++i) lines += "  0\nPOINT\n  8\n0\n 10\n1.0\n 20\n2.0\n";
  bytes.insert(bytes.find("ENTITIES\n") + 9, lines);
  std::vector<int> told;
  ASSERT_TRUE(DrawingFile::fromBytes(bytes, "large", [&](int share) { told.push_back(share); }));
  EXPECT_GE(told.size(), 4U);
  EXPECT_TRUE(std::is_sorted(told.begin(), told.end()));
  EXPECT_LE(told.back(), 100);
}

TEST(DrawingFile, writingEachObjectAnewKeepsEveryValue) {
  const std::vector<std::string> drawings = realDrawings();
  if (drawings.empty()) GTEST_SKIP() << "no real files at " TARN_DATA_DIR;
  for (const std::string& path : drawings) {
    SCOPED_TRACE(path);
    auto file = DrawingFile::open(path);
    if (!file) continue;
    ASSERT_TRUE(file.value()->setForm({file.value()->form().version, false}));
    const std::string before = file.value()->bytes().take();
    touchEverything(file.value()->database(), before);
    const auto after = file.value()->bytes();
    ASSERT_TRUE(after) << after.message();
    EXPECT_TRUE(sameTags(before, after.value()));
  }
}

}  // namespace
}  // namespace tarn::host
