// Entities of every kind that is drawn, read from a drawing that another program wrote, changed and
// written, before the eyes of that other program.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <map>
#include <sstream>

#include "base/file.h"
#include "base/text.h"
#include "dbobjptr.h"
#include "dbsymtb.h"
#include "dbtext.h"
#include "host/filing/deepclone.h"
#include "host/filing/drawingfile.h"
#include "host/graphics/recorder.h"
#include "tests/host_filing/drawingfixture.h"
#include "tests/support/program.h"

namespace tarn::host {
namespace {

constexpr double kDegree = 3.141592653589793 / 180;

class Entities : public testing::Test {
 protected:
  void SetUp() override {
    const test::Outcome made = judge({"make", drawing_});
    if (made.exitCode == 77) GTEST_SKIP() << "python3-ezdxf is not installed";
    ASSERT_EQ(made.exitCode, 0) << made.output;
    auto opened = DrawingFile::open(drawing_);
    ASSERT_TRUE(opened) << opened.message();
    file_ = opened.take();
  }
  static test::Outcome judge(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), TARN_SOURCE_DIR "/tests/host_entities/entity_judge.py");
    return test::runProgram("/usr/bin/python3", arguments);
  }
  std::string save(const std::string& name) const {
    const std::string path = scratch_.at(name);
    EXPECT_TRUE(writeFileAtomically(path, file_->bytes().take()));
    return path;
  }

  test::Scratch scratch_{"tarn_entities_"};
  const std::string drawing_ = scratch_.at("kinds.dxf");
  std::unique_ptr<DrawingFile> file_;
};

/// What an attribute is to be is seen in its insertions.
TEST_F(Entities, onlyDefinitionsOfAttributesAreNotDrawn) {
  ASSERT_EQ(file_->notes().size(), 1u);
  EXPECT_EQ(file_->notes().front(), "1 object of kind ATTDEF is kept but not drawn.");
}

/// The extents as the other program computes them, which flattens curves on its own.
TEST_F(Entities, lieWhereAnotherProgramSeesThem) {
  const test::Outcome outcome = judge({"boxes", drawing_});
  ASSERT_EQ(outcome.exitCode, 0) << outcome.output;
  std::istringstream lines(outcome.output);
  std::string handle;
  std::string kind;
  double box[4];
  int seen = 0;
  while (lines >> handle >> kind >> box[0] >> box[1] >> box[2] >> box[3]) {
    AcDbObjectId id;
    const std::wstring digits(handle.begin(), handle.end());
    ASSERT_EQ(file_->database().getAcDbObjectId(id, false, AcDbHandle(digits.c_str())), Acad::eOk);
    const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
    ASSERT_EQ(entity.openStatus(), Acad::eOk) << kind;
    AcDbExtents extents;
    ASSERT_EQ(entity->getGeomExtents(extents), Acad::eOk) << kind;
    const double ours[] = {extents.minPoint().x, extents.minPoint().y, extents.maxPoint().x,
                           extents.maxPoint().y};
    // Rims of splines, arrows, and corners of wide lines are seen differently.
    const bool isRough = kind == "HATCH" || kind == "LEADER" || kind == "LWPOLYLINE";
    const double room = isRough ? 0.4 : 0.01;
    for (int i = 0; i < 4; ++i) EXPECT_NEAR(ours[i], box[i], room) << kind << ' ' << handle;
    ++seen;
  }
  EXPECT_GT(seen, 18);
}

/// Length of all lines that the entity draws, and their first moments.
std::array<double, 3> momentsOf(AcDbEntity& entity) {
  DisplayList list;
  {
    WorldDrawRecorder recorder(list, entity.database(), 1, 1);
    entity.worldDraw(&recorder);
  }
  std::array<double, 3> sums{};
  for (const DisplayItem& item : list) {
    const auto* line = std::get_if<LineItem>(&item);
    for (size_t i = 1; line != nullptr && i < line->points.size(); ++i) {
      const GroundPoint& a = line->points[i - 1];
      const GroundPoint& b = line->points[i];
      const double own = std::hypot(b.x - a.x, b.y - a.y);
      sums[0] += own;
      sums[1] += own * (a.x + b.x) / 2;
      sums[2] += own * (a.y + b.y) / 2;
    }
  }
  return sums;
}

/// Every pattern of the other program, turned, scaled and around an island: as much line, in the
/// same places.
TEST_F(Entities, patternsAreThoseOfAnotherProgram) {
  const std::string path = scratch_.at("patterns.dxf");
  const test::Outcome outcome = judge({"patterns", path});
  if (outcome.exitCode == 77) GTEST_SKIP() << "this python3-ezdxf draws no patterns";
  ASSERT_EQ(outcome.exitCode, 0) << outcome.output;
  file_ = DrawingFile::open(path).take();
  std::istringstream lines(outcome.output);
  std::string handle;
  std::string name;
  double sums[3];
  int seen = 0;
  while (lines >> handle >> name >> sums[0] >> sums[1] >> sums[2]) {
    AcDbObjectId id;
    const std::wstring digits(handle.begin(), handle.end());
    ASSERT_EQ(file_->database().getAcDbObjectId(id, false, AcDbHandle(digits.c_str())), Acad::eOk);
    const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
    const std::array<double, 3> ours = momentsOf(*entity.object());
    if (sums[0] == 0) continue;  // points only, or too dense for it
    for (size_t i = 0; i < 3; ++i) EXPECT_NEAR(ours[i] / sums[i], 1, 0.01) << name << ' ' << i;
    ++seen;
  }
  EXPECT_GT(seen, 100);
}

TEST_F(Entities, movedTurnedAndScaledAsAnotherProgramDoesIt) {
  const std::map<std::string, AcGeMatrix3d> changes = {
      {"move", AcGeMatrix3d::translation({1000.5, -200.25, 0})},
      {"turn", AcGeMatrix3d::rotation(30 * kDegree, AcGeVector3d::kZAxis)},
      {"scale", AcGeMatrix3d::scaling(2.5)}};
  for (const auto& [name, matrix] : changes) {
    file_ = DrawingFile::open(drawing_).take();
    for (const AcDbObjectId& id : modelEntities(file_->database())) {
      const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForWrite);
      EXPECT_EQ(entity->transformBy(matrix), Acad::eOk) << name;
    }
    const test::Outcome outcome = judge({"changed", name, drawing_, save(name + ".dxf")});
    EXPECT_EQ(outcome.output, "") << name;
  }
}

/// Styles, patterns, extended data and whatever else the file says comes along.
TEST_F(Entities, copiesLoseNothing) {
  const AcDbObjectIdArray originals = modelEntities(file_->database());
  for (const AcDbObjectId& id : originals) {
    AcDbEntity* copy = nullptr;
    {
      const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
      const AcGeMatrix3d shift = AcGeMatrix3d::translation({100, 50, 0});
      ASSERT_EQ(entity->getTransformedCopy(shift, copy), Acad::eOk);
    }
    appendToModel(file_->database(), copy);
  }
  const test::Outcome outcome = judge({"copies", drawing_, save("copies.dxf"), "100", "50"});
  const std::string count = std::to_string(originals.length());
  EXPECT_EQ(outcome.output, count + " " + count + "\n");
}

TEST_F(Entities, untouchedTheyStayToTheByte) {
  const std::string before = readFile(drawing_, 1 << 30).take();
  touchEverything(file_->database(), before);
  EXPECT_TRUE(sameTags(before, file_->bytes().take()));
}

}  // namespace
}  // namespace tarn::host
