// What a drawing is opened with: tab, limits, layouts.
#include <gtest/gtest.h>

#include "base/text.h"
#include "dbmain.h"
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

TEST(OpeningState, tabAndLimitsAreWrittenWhereTheyDiffer) {
  const std::string fresh = newDrawingBytes("AC1015");
  // Some programs leave it out.
  const std::string bare = replaceAll(fresh, "  9\n$TILEMODE\n 70\n1\n", "");
  ASSERT_LT(bare.size(), fresh.size());
  for (const std::string& bytes : {fresh, bare, replaceAll(fresh, "\n", "\r\n")}) {
    const auto file = opened(bytes);
    OpeningState state = file->state();
    EXPECT_TRUE(state.isTiled);
    EXPECT_EQ(state.upperLimit.x, 420);
    EXPECT_EQ(file->bytes(state).take(), bytes) << "equal values keep their text";
    state.isTiled = false;
    state.lowerLimit = {40500000.125, 3512000};
    state.upperLimit = {40501000, 3513000.5};
    const std::string changed = file->bytes(state).take();
    const OpeningState again = opened(changed)->state();
    EXPECT_FALSE(again.isTiled);
    EXPECT_EQ(again.lowerLimit.x, 40500000.125);
    EXPECT_EQ(again.upperLimit.y, 3513000.5);
    EXPECT_EQ(file->bytes(file->state()).take(), bytes) << "and back";
  }
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

}  // namespace
}  // namespace tarn::host
