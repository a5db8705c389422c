// What a drawing is opened with: tab, limits, layouts.
#include <gtest/gtest.h>

#include "base/text.h"
#include "dbents.h"
#include "dbmain.h"
#include "dbobjptr.h"
#include "dbsymtb.h"
#include "host/database/layouts.h"
#include "host/filing/drawingfile.h"
#include "tests/host_filing/drawingfixture.h"

namespace tarn::host {
namespace {

std::unique_ptr<DrawingFile> opened(const std::string& bytes) {
  auto file = DrawingFile::fromBytes(bytes, "test.dxf");
  EXPECT_TRUE(file) << file.message();
  return file.take();
}

TEST(OpeningState, tabAndVariablesAreWrittenWhereTheyDiffer) {
  const std::string fresh = newDrawingBytes("AC1015");
  // Some programs leave it out.
  const std::string bare = replaceAll(fresh, "  9\n$TILEMODE\n 70\n1\n", "");
  ASSERT_LT(bare.size(), fresh.size());
  for (const std::string& bytes : {fresh, bare, replaceAll(fresh, "\n", "\r\n")}) {
    const auto file = opened(bytes);
    OpeningState state = file->state();
    EXPECT_TRUE(state.isTiled);
    AcDbDatabase& database = file->database();
    EXPECT_EQ(database.limmax().x, 420);
    EXPECT_EQ(file->bytes(state).take(), bytes) << "equal values keep their text";
    state.isTiled = false;
    EXPECT_EQ(database.setLimmin({40500000.125, 3512000}), Acad::eOk);
    EXPECT_EQ(database.setLimmax({40501000, 3513000.5}), Acad::eOk);
    EXPECT_EQ(database.setLtscale(2.5), Acad::eOk);
    EXPECT_EQ(database.setPdmode(34), Acad::eOk);
    const std::string changed = file->bytes(state).take();
    const auto again = opened(changed);
    EXPECT_FALSE(again->state().isTiled);
    EXPECT_EQ(again->database().limmin().x, 40500000.125);
    EXPECT_EQ(again->database().limmax().y, 3513000.5);
    EXPECT_EQ(again->database().ltscale(), 2.5);
    EXPECT_EQ(again->database().pdmode(), 34);
    database.setLimmin({0, 0});
    database.setLimmax({420, 297});
    database.setLtscale(1);
    database.setPdmode(0);
    EXPECT_EQ(file->bytes(file->state()).take(), bytes) << "and back";
  }
}

TEST(OpeningState, variablesThatCannotBeStayInTheFileAndAMissingHeaderIsMade) {
  const std::string odd =
      "  0\nSECTION\n  2\nHEADER\n  9\n$LTSCALE\n 40\n0.0\n  9\n$PDMODE\n 70\n     7\n"
      "  9\n$PDSIZE\n 40\nnan\n  9\n$LIMMAX\n 10\n1.0\n  0\nENDSEC\n";
  const std::string entities =
      "  0\nSECTION\n  2\nENTITIES\n  0\nPOINT\n  8\n0\n 10\n1.0\n 20\n2.0\n  0\nENDSEC\n  "
      "0\nEOF\n";
  const auto file = opened(odd + entities);
  EXPECT_EQ(file->database().ltscale(), 1);
  EXPECT_EQ(file->database().pdmode(), 0);
  EXPECT_EQ(file->bytes(file->state()).take(), odd + entities);
  EXPECT_EQ(file->database().setLtscale(7), Acad::eOk);
  EXPECT_EQ(file->bytes().take(), replaceAll(odd, "0.0", "7.0") + entities);
  const auto bare = opened(entities);
  EXPECT_EQ(bare->bytes(bare->state()).take(), entities);
  EXPECT_EQ(bare->database().setPdmode(3), Acad::eOk);
  const auto again = opened(bare->bytes(bare->state()).take());
  EXPECT_EQ(again->database().pdmode(), 3);
  EXPECT_TRUE(again->isOld());
}

TEST(OpeningState, layoutsAreRenamedAndAddedInTheFile) {
  const auto file = opened(newDrawingBytes("AC1015"));
  AcDbDatabase& database = file->database();
  ASSERT_TRUE(renameLayout(database, "Layout1", "图纸 one"));
  ASSERT_TRUE(addLayout(database, "two"));
  ASSERT_TRUE(addLayout(database, "three"));
  ASSERT_TRUE(renameLayout(database, "three", "third"));
  const auto names = [](DrawingFile& of) {
    std::string all;
    for (const LayoutEntry& entry : layoutsOf(of.database())) {
      EXPECT_EQ(layoutNamed(of.database(), entry.name).id, entry.id);
      all += entry.name + "|";
    }
    return all;
  };
  const auto again = opened(file->bytes().take());
  EXPECT_EQ(names(*again), "Model|图纸 one|two|third|");
}

/// The sheets of a drawing in the order of their tabs, the one in front in brackets, each with how
/// many entities it has.
std::string sheetsOf(DrawingFile& file) {
  std::string all;
  for (const LayoutEntry& entry : layoutsOf(file.database())) {
    if (entry.isModel) continue;
    const AcDbObjectPointer<AcDbBlockTableRecord> block(entry.block, AcDb::kForRead);
    const ACHAR* name = L"";
    block->getName(name);
    const bool front = equalsIgnoreCase(std::wstring_view(name), ACDB_PAPER_SPACE);
    all += (front ? "[" : "") + entry.name + (front ? "]" : "") + " " +
           std::to_string(block->entityIds().length()) + "|";
  }
  return all;
}

/// Three sheets with one, two and three lines, saved and opened again.
std::unique_ptr<DrawingFile> withSheets() {
  const auto file = opened(newDrawingBytes("AC1015"));
  int lines = 0;
  for (const char* name : {"Layout1", "two", "three"}) {
    if (lines > 0) {
      EXPECT_TRUE(addLayout(file->database(), name));
    }
    const AcDbObjectPointer<AcDbBlockTableRecord> block(layoutNamed(file->database(), name).block,
                                                        AcDb::kForWrite);
    for (int i = 0; i <= lines; ++i) {
      auto* line = new AcDbLine({0, 1.0 * i, 0}, {5, 1.0 * i, 0});
      EXPECT_EQ(block->appendAcDbEntity(line), Acad::eOk);
      line->close();
    }
    ++lines;
  }
  return opened(file->bytes().take());
}

TEST(OpeningState, theSheetThatWasCurrentIsInFront) {
  auto file = withSheets();
  ASSERT_EQ(sheetsOf(*file), "[Layout1] 1|two 2|three 3|");
  const std::string before = file->bytes().take();
  OpeningState state = file->state();
  state.isTiled = false;
  state.frontSheet = layoutNamed(file->database(), "three").block;
  for (const char* found : {"Layout1 1|two 2|[three] 3|", "[Layout1] 1|two 2|three 3|"}) {
    file = opened(file->bytes(state).take());
    EXPECT_EQ(sheetsOf(*file), found);
    EXPECT_FALSE(file->state().isTiled);
    state.frontSheet = layoutNamed(file->database(), "Layout1").block;
  }
  // There and back again everything stands where it stood.
  state.isTiled = true;
  EXPECT_EQ(file->bytes(state).take(), before);
}

TEST(OpeningState, deletedLayoutsStayDeleted) {
  const auto file = withSheets();
  struct Case {
    std::vector<const char*> gone;
    const char* left;
  };
  for (const Case& each : {Case{{"two"}, "[Layout1] 1|three 3|"},
                           {{"Layout1"}, "[two] 2|three 3|"},
                           {{"Layout1", "two"}, "[three] 3|"}}) {
    // Something in each sheet that nobody here knows.
    const std::string strange = "  0\nSTRANGE\n100\nAcDbEntity\n 67\n1\n  8\n0\n";
    std::string bytes = file->bytes().take();
    for (const char* place : {"  0\nENDBLK\n", "  0\nLINE\n"}) {
      for (size_t at = bytes.find(place); at != std::string::npos;
           at = bytes.find(place, at + strange.size() + 1)) {
        bytes.insert(at, strange);
      }
    }
    const auto changed = opened(bytes);
    for (const char* name : each.gone) EXPECT_TRUE(deleteLayout(changed->database(), name));
    const auto again = opened(changed->bytes().take());
    EXPECT_EQ(sheetsOf(*again), each.left);
    EXPECT_EQ(again->notes().size(), 1U);
    EXPECT_EQ(opened(again->bytes().take())->notes(), again->notes());
  }
}

/// Also where the drawing has no object that says so.
TEST(OpeningState, framesOfImagesStayHidden) {
  const std::string bare =
      "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1015\n9\n$HANDSEED\n5\nFF\n0\nENDSEC\n0\nSECTION\n"
      "2\nENTITIES\n0\nENDSEC\n0\nEOF\n";
  for (const std::string& before : {bare, newDrawingBytes("AC1021")}) {
    auto file = DrawingFile::fromBytes(before, "frames.dxf").take();
    ASSERT_EQ(file->database().setImageFrame(0), Acad::eOk);
    ASSERT_EQ(file->database().setWipeoutFrame(2), Acad::eOk);
    const std::string first = file->bytes().take();
    EXPECT_TRUE(file->bytes().take() == first);
    file = DrawingFile::fromBytes(first, "frames.dxf").take();
    EXPECT_EQ(file->database().imageFrame(), 0);
    EXPECT_EQ(file->database().wipeoutFrame(), 2);
    EXPECT_TRUE(file->bytes().take() == first);
    ASSERT_EQ(file->database().setImageFrame(1), Acad::eOk);
    file = DrawingFile::fromBytes(file->bytes().take(), "frames.dxf").take();
    EXPECT_EQ(file->database().imageFrame(), 1);
  }
}

}  // namespace
}  // namespace tarn::host
