// The entity: its filing, its place, and the command that makes it.
#include "base/text.h"
#include "dbmain.h"
#include "dbsymtb.h"
#include "host/database/memoryfiler.h"
#include "host/filing/drawingfile.h"
#include "host/pointcloud/pointcloudentity.h"
#include "tests/host_pointcloud/cloudfixture.h"

namespace tarn::host {
namespace {

using testing::HasSubstr;

class Entities : public CloudTest {
 protected:
  void SetUp() override {
    CloudTest::SetUp();
    test::LasSpec spec;
    spec.points = {{0, 0, 1, 255, 0, 0}, {10000, 5000, 2, 0, 255, 0}};
    path_ = write("点 云.las", spec);
  }
  size_t entityCount() {
    host_.app().regenerate();
    return host_.app().documents().current().scene().size();
  }
  std::string path_;
};

TEST_F(Entities, FilingKeepsWhatTheDrawingKnows) {
  TarnPointCloud cloud;
  cloud.setPath(path_);
  ASSERT_EQ(cloud.setPlacement({1, 2, 3}, {0, 2, 0}, {-2, 0, 0}), Acad::eOk);
  cloud.readFile();
  EXPECT_EQ(cloud.reason(), "");
  EXPECT_DOUBLE_EQ(cloud.frame().minX, 40500000);
  EXPECT_DOUBLE_EQ(cloud.frame().maxY, 3512050);
  MemoryFiler out;
  ASSERT_EQ(cloud.dwgOutFields(&out), Acad::eOk);
  MemoryFiler in(out.bytes());
  TarnPointCloud copy;
  ASSERT_EQ(copy.dwgInFields(&in), Acad::eOk);
  MemoryFiler again;
  copy.dwgOutFields(&again);
  EXPECT_EQ(again.bytes(), out.bytes());
  EXPECT_EQ(copy.path(), path_);
  EXPECT_EQ(copy.isA()->dxfName(), std::wstring(L"TARNPOINTCLOUD"));
  // Bytes that end too early change nothing.
  std::vector<char> cut = out.bytes();
  cut.resize(cut.size() - 5);
  MemoryFiler bad(cut);
  EXPECT_NE(copy.dwgInFields(&bad), Acad::eOk);
  EXPECT_EQ(copy.path(), path_);
}

TEST_F(Entities, MovesTurnsAndScales) {
  TarnPointCloud cloud;
  cloud.setPath(path_);
  cloud.readFile();
  const AcGePoint3d corner(40500000, 3512000, 0);
  ASSERT_EQ(
      cloud.transformBy(AcGeMatrix3d::rotation(1.5707963267948966, AcGeVector3d::kZAxis, corner)),
      Acad::eOk);
  ASSERT_EQ(cloud.transformBy(AcGeMatrix3d::scaling(2, corner)), Acad::eOk);
  ASSERT_EQ(cloud.transformBy(AcGeMatrix3d::translation({10, 20, 0})), Acad::eOk);
  AcDbExtents extents;
  ASSERT_EQ(cloud.getGeomExtents(extents), Acad::eOk);
  // 100 x 50 becomes 100 to the left of the corner and 200 above it.
  EXPECT_NEAR(extents.minPoint().x, 40500010 - 100, 1e-6);
  EXPECT_NEAR(extents.maxPoint().x, 40500010, 1e-6);
  EXPECT_NEAR(extents.minPoint().y, 3512020, 1e-6);
  EXPECT_NEAR(extents.maxPoint().y, 3512220, 1e-6);
  AcGePoint3dArray grips;
  AcDbIntArray modes, ids;
  ASSERT_EQ(cloud.getGripPoints(grips, modes, ids), Acad::eOk);
  ASSERT_EQ(grips.length(), 4);
  EXPECT_NEAR(grips[1].x, 40500010, 1e-6);
  EXPECT_NEAR(grips[1].y, 3512220, 1e-6);
  const std::unique_ptr<AcRxObject> copy(cloud.clone());
  MemoryFiler one, two;
  cloud.dwgOutFields(&one);
  TarnPointCloud::cast(copy.get())->dwgOutFields(&two);
  EXPECT_EQ(one.bytes(), two.bytes());
  // A matrix that flattens it is refused and leaves it alone.
  EXPECT_NE(cloud.transformBy(AcGeMatrix3d::scaling(0)), Acad::eOk);
  MemoryFiler three;
  cloud.dwgOutFields(&three);
  EXPECT_EQ(one.bytes(), three.bytes());
}

TEST_F(Entities, TheCommandAsksForEachThingAndRefusesTheRest) {
  const std::string missing = joinPath(folder_, "missing.las");
  const struct {
    const char* name;
    std::vector<std::string> lines;
    size_t made;
    bool isGood;
    std::string printed;
  } cases[] = {
      {"defaults", {path_, "", "", ""}, 1, true, "Rotation in degrees <0>"},
      {"own values", {path_, "5,5", "2", "45"}, 2, true, "Scale <1>"},
      {"missing file", {missing}, 2, false, missing + ": there is no such file."},
      {"folder", {folder_}, 2, false, folder_ + ": this is no file."},
      {"empty path", {""}, 2, true, "Path of the point cloud file"},
      {"scale of zero", {path_, "", "0", "-1", "1", ""}, 3, true, "must not be zero"},
  };
  for (const auto& one : cases) {
    SCOPED_TRACE(one.name);
    std::vector<std::string> lines = {"-POINTCLOUDATTACH"};
    lines.insert(lines.end(), one.lines.begin(), one.lines.end());
    EXPECT_THAT(host_.runLines(lines), HasSubstr(one.printed));
    EXPECT_EQ(host_.good(), one.isGood);
    EXPECT_EQ(entityCount(), one.made);
  }
}

/// The first entity of model space, as filed; empty when there is none.
std::vector<char> firstEntity(DrawingFile& file) {
  AcDbBlockTable* blocks = nullptr;
  AcDbBlockTableRecord* space = nullptr;
  file.database().getBlockTable(blocks, AcDb::kForRead);
  blocks->getAt(ACDB_MODEL_SPACE, space, AcDb::kForRead);
  blocks->close();
  const AcDbObjectIdArray ids = space->entityIds();
  space->close();
  TarnPointCloud* cloud = nullptr;
  if (ids.isEmpty() || acdbOpenObject(cloud, ids[0], AcDb::kForRead) != Acad::eOk) return {};
  TarnPointCloud copy;
  copy.setPath(cloud->path());
  copy.setPlacement(cloud->position(), cloud->xAxis(), cloud->yAxis());
  copy.setFrame(cloud->frame());
  cloud->close();
  MemoryFiler filer;
  copy.dwgOutFields(&filer);
  return filer.bytes();
}

TEST_F(Entities, DrawingsKeepThem) {
  const auto file = DrawingFile::createNew();
  auto* cloud = new TarnPointCloud;
  cloud->setPath(path_);
  cloud->setPlacement({40500123.456, 3512345.678, 1}, {0, 1.5, 0}, {-1.5, 0, 0});
  cloud->readFile();
  AcDbBlockTable* blocks = nullptr;
  AcDbBlockTableRecord* space = nullptr;
  ASSERT_EQ(file->database().getBlockTable(blocks, AcDb::kForRead), Acad::eOk);
  ASSERT_EQ(blocks->getAt(ACDB_MODEL_SPACE, space, AcDb::kForWrite), Acad::eOk);
  blocks->close();
  ASSERT_EQ(space->appendAcDbEntity(cloud), Acad::eOk);
  space->close();
  cloud->close();
  auto bytes = file->bytes();
  ASSERT_TRUE(bytes) << bytes.message();
  // The class is listed for the programs that do not know it.
  EXPECT_NE(bytes.value().find("CLASS\n  1\nTARNPOINTCLOUD\n  2\nTarnPointCloud\n"),
            std::string::npos);
  auto again = DrawingFile::fromBytes(bytes.value(), "a.dxf");
  ASSERT_TRUE(again) << again.message();
  EXPECT_EQ(firstEntity(*again.value()), firstEntity(*file));
  EXPECT_FALSE(firstEntity(*file).empty());
  // One of a later version stays what it is.
  std::string later = bytes.value();
  const size_t at = later.find(" 90\n", later.rfind("TarnPointCloud"));
  ASSERT_NE(at, std::string::npos);
  later.replace(later.find("1", at + 4), 1, "2");
  auto kept = DrawingFile::fromBytes(later, "b.dxf");
  ASSERT_TRUE(kept) << kept.message();
  EXPECT_TRUE(firstEntity(*kept.value()).empty());
  EXPECT_EQ(kept.value()->bytes().value(), later);
}

TEST_F(Entities, AMissingFileIsAFrameWhereTheCloudWas) {
  attach(path_);
  ASSERT_EQ(itemsOf<PointsItem>().size(), 1U);
  ASSERT_TRUE(removeAll(path_));
  EXPECT_THAT(host_.run({"REGEN"}), HasSubstr(path_ + ": there is no such file."));
  const auto lines = itemsOf<LineItem>();
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_DOUBLE_EQ(lines[0].points[2].x, 40500100);
  EXPECT_DOUBLE_EQ(lines[0].points[2].y, 3512050);
  // Beside the drawing it is found, wherever the drawing was made.
  const std::string moved = joinPath(folder_, "moved");
  ASSERT_TRUE(makeFolders(moved));
  test::LasSpec spec;
  spec.points = {{1, 2, 3, 4, 5, 6}};
  write("moved/点 云.las", spec);
  host_.app().documents().current().database()->setFilename(
      toWide(joinPath(moved, "a.dxf")).c_str());
  EXPECT_EQ(host_.run({"REGEN"}).find("no such file"), std::string::npos);
  EXPECT_EQ(itemsOf<PointsItem>().size(), 1U);
}

TEST_F(Entities, AStoppedReadingSaysSoAndIsMadeUpFor) {
  attach(path_);
  test::LasSpec spec;
  spec.format = 0;
  spec.points.resize(1200000);
  write("点 云.las", spec);
  HeadlessFrontEnd::requestCancel();
  host_.app().regenerate();
  const auto texts = itemsOf<TextItem>();
  ASSERT_EQ(texts.size(), 2U);
  EXPECT_NE(texts[1].text.indexOf("stopped"), -1);
  host_.run({"REGEN"});
  EXPECT_EQ(itemsOf<PointsItem>().size(), 1U);
}

}  // namespace
}  // namespace tarn::host
