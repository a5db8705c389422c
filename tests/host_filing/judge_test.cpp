// Saved drawings before the eyes of another reader.
#include <gtest/gtest.h>

#include "base/file.h"
#include "base/path.h"
#include "base/text.h"
#include "dbblockref.h"
#include "dbcurve.h"
#include "dbobjptr.h"
#include "dbpl.h"
#include "dbsymtb.h"
#include "dbtext.h"
#include "host/database/layouts.h"
#include "host/filing/drawingfile.h"
#include "tests/host_filing/drawingfixture.h"
#include "tests/host_filing/judging.h"
#include "tests/host_filing/realdrawings.h"
#include "tests/support/program.h"

namespace tarn::host {
namespace {

class Judge : public Judging {};

TEST_F(Judge, newDrawingsAreWithoutErrors) {
  const auto file = DrawingFile::createNew();
  const std::string empty = write("empty.dxf", file->bytes().take());
  AcDbDatabase& database = file->database();
  appendToModel(database, new AcDbLine({1, 2, 3}, {40500123.456, 5, 6}));
  appendToModel(database, new AcDbArc({1, 1, 0}, AcGeVector3d::kZAxis, 2, 0.5, 1.5));
  appendToModel(database, new AcDbCircle({1, 1, 0}, AcGeVector3d::kZAxis, 2));
  appendToModel(database, new AcDbPoint({7, 8, 9}));
  appendToModel(database, new AcDbText({1, 1, 0}, L"面积", 2.5, 0.25));
  auto* flat = new AcDbPolyline;
  for (int i = 0; i < 3; ++i) flat->addVertex(i, i * i, i == 1 ? 0.5 : 0);
  appendToModel(database, flat);
  auto* inSpace = new AcDbPolyline;
  inSpace->setInSpace(true);
  inSpace->addVertex(1, 2);
  inSpace->addVertex(3, 4);
  appendToModel(database, inSpace);
  auto* note = new AcDbMText;
  note->setContents(L"one\\Ptwo");
  appendToModel(database, note);
  ASSERT_TRUE(addLayout(database, "Sheet 7"));
  const std::string full = write("full.dxf", file->bytes().take());
  OpeningState state = file->state();
  state.isTiled = false;
  state.frontSheet = layoutNamed(database, "Sheet 7").block;
  const std::string other = write("front.dxf", file->bytes(state).take());
  ASSERT_TRUE(deleteLayout(database, "Layout1"));
  const std::string fewer = write("fewer.dxf", file->bytes().take());
  const test::Outcome audit = judge({"audit", empty, full, other, fewer});
  EXPECT_EQ(audit.exitCode, 0);
  EXPECT_EQ(audit.output, "");
}

TEST_F(Judge, onlyTheChangedObjectIsAnother) {
  const std::string path = joinPath(TARN_DATA_DIR, "mozman/ezdxf/examples_dxf/visibility.dxf");
  if (fileKind(path) != FileKind::kRegular) GTEST_SKIP() << path << " is not there";
  auto file = DrawingFile::open(path);
  ASSERT_TRUE(file) << file.message();
  AcDbDatabase& database = file.value()->database();
  const AcDbObjectIdArray ids = modelEntities(database);
  ASSERT_GT(ids.length(), 2);
  {
    const AcDbObjectPointer<AcDbEntity> moved(ids[0], AcDb::kForWrite);
    EXPECT_EQ(moved->transformBy(AcGeMatrix3d::translation({1, 2, 0})), Acad::eOk);
  }
  appendToModel(database, new AcDbLine({1, 2, 3}, {4, 5, 6}));
  touchEverything(database, bytesOf(path));
  const std::string saved = write("saved.dxf", file.value()->bytes().take());
  const test::Outcome found = judge({"differences", path, saved});
  EXPECT_EQ(found.exitCode, 0) << found.output;
  const auto lines = split(found.output, '\n');
  ASSERT_EQ(lines.size(), 3U) << found.output;
  EXPECT_EQ(lines[0].rfind("changed ", 0), 0U) << found.output;
  EXPECT_EQ(lines[1].rfind("new LINE ", 0), 0U) << found.output;
}

TEST_F(Judge, realDrawingsWrittenAnewAreTheSame) {
  std::vector<std::string> arguments = {"differences"};
  for (const std::string& path : realDrawings()) {
    auto file = DrawingFile::open(path);
    if (!file || fileTimes(path).size > 40000) continue;
    touchEverything(file.value()->database(), file.value()->bytes().take());
    const std::string name = std::to_string(arguments.size()) + nameOf(path);
    arguments.push_back(path);
    arguments.push_back(write(name, file.value()->bytes().take()));
  }
  const test::Outcome found = judge(arguments);
  EXPECT_EQ(found.exitCode, 0);
  EXPECT_EQ(found.output, "");
}

/// How many features of each kind another library counts in a drawing.
std::string featuresOf(const std::string& path) {
  return test::runProgram("/usr/bin/ogrinfo", {"-q", "-dialect", "SQLite", "-sql",
                                               "SELECT Layer, Linetype, Text, "
                                               "ST_AsText(geometry) FROM entities",
                                               path})
      .output;
}

TEST_F(Judge, drawingsOfR12BecomeOnesOfR2000WithTheSameEntities) {
  std::vector<std::string> sources = {scratch_.at("made.dxf")};
  ASSERT_EQ(judge({"old", sources[0]}).output, "");
  for (const std::string& path : realDrawings()) sources.push_back(path);
  std::vector<std::string> arguments = {"converted"};
  int refused = 0;
  for (const std::string& path : sources) {
    auto opened = DrawingFile::open(path);
    if (!opened || !opened.value()->isOld()) continue;
    SCOPED_TRACE(path);
    DrawingFile& file = *opened.value();
    ASSERT_TRUE(file.setForm({file.form().version, false}));
    const int before = modelEntities(file.database()).length();
    EXPECT_EQ(file.reasonAgainstVersion(), "");
    const Status made = file.makeModern();
    if (!made) ++refused;
    if (!made) continue;
    EXPECT_FALSE(file.isOld());
    const std::string bytes = file.bytes().take();
    arguments.push_back(path);
    arguments.push_back(write(std::to_string(arguments.size()) + ".dxf", bytes));
    // The other library reads no binary drawings.
    if (bytesOf(path).compare(0, 7, "AutoCAD") != 0) {
      EXPECT_EQ(featuresOf(path), featuresOf(arguments.back()));
    }
    // The session goes on with it, and everything is found where it stands now.
    EXPECT_EQ(modelEntities(file.database()).length(), before);
    touchEverything(file.database(), bytes);
    EXPECT_TRUE(sameTags(bytes, file.bytes().take()));
    appendToModel(file.database(), new AcDbLine({1, 2, 3}, {4, 5, 6}));
    const auto again = DrawingFile::fromBytes(file.bytes().take(), path);
    ASSERT_TRUE(again) << again.message();
    EXPECT_EQ(modelEntities(again.value()->database()).length(), before + 1);
  }
  EXPECT_LE(refused, 2) << "broken sections, and objects in R12";
  const test::Outcome found = judge(arguments);
  EXPECT_EQ(found.exitCode, 0);
  EXPECT_EQ(found.output, "");
}

}  // namespace
}  // namespace tarn::host
