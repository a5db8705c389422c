#include "acedads.h"
#include "dbents.h"
#include "dbsymtb.h"
#include "tests/image_entity/fixture.h"

namespace {

using tarn::test::script;

using Edit = EntityTest;

int countOf(const AcRxClass* kind) {
  ads_name all{};
  if (acedSSGet(L"X", nullptr, nullptr, nullptr, all) != RTNORM) return 0;
  Adesk::Int32 count = 0;
  acedSSLength(all, &count);
  int found = 0;
  for (Adesk::Int32 i = 0; i < count; ++i) {
    ads_name name{};
    AcDbObjectId id;
    AcDbEntity* entity = nullptr;
    acedSSName(all, i, name);
    acdbGetObjectId(id, name);
    if (acdbOpenObject(entity, id, AcDb::kForRead) != Acad::eOk) continue;
    if (entity->isKindOf(kind)) ++found;
    entity->close();
  }
  acedSSFree(all);
  return found;
}

AcDbObjectId appendUnbound() {
  AcDbDatabase* database = acDocManager->curDocument()->database();
  AcDbBlockTable* table = nullptr;
  database->getBlockTable(table, AcDb::kForRead);
  AcDbBlockTableRecord* space = nullptr;
  table->getAt(ACDB_MODEL_SPACE, space, AcDb::kForWrite);
  table->close();
  auto* image = new CCadImage();
  AcDbObjectId id;
  space->appendAcDbEntity(id, image);
  space->close();
  image->close();
  return id;
}

TEST_F(Edit, SnapsAndGripsOfferTheCornersOfEveryImage) {
  CCadImage image;
  auto division = makeDivision();
  image.SetImageInfo(L"/data/b.tif", division);
  script().georef[4] = 5000;
  image.SetImageInfo(L"/data/a.tif", division);
  const struct {
    AcDb::OsnapMode mode;
    int points;
  } cases[] = {
      {AcDb::kOsModeEnd, 8}, {AcDb::kOsModeMid, 0}, {AcDb::kOsModeCen, 0}, {AcDb::kOsModeNear, 0}};
  for (const auto& one : cases) {
    AcGePoint3dArray points;
    AcDbIntArray ids;
    EXPECT_EQ(image.getOsnapPoints(one.mode, 0, AcGePoint3d(), AcGePoint3d(), AcGeMatrix3d(),
                                   points, ids),
              Acad::eOk);
    EXPECT_EQ(points.length(), one.points);
    if (one.points > 0) {
      EXPECT_EQ(points[0], AcGePoint3d(5000, 200, 0));
    }
  }
  AcGePoint3dArray grips;
  AcDbIntArray modes, ids;
  image.getGripPoints(grips, modes, ids);
  EXPECT_GE(grips.length(), 8);
}

TEST_F(Edit, ErasingKeepsTheSourcesForUndo) {
  ASSERT_TRUE(add(L"/data/a.tif"));
  const AcDbObjectId id = record().residentImage();
  CCadImage* image = nullptr;
  ASSERT_EQ(acdbOpenObject(image, id, AcDb::kForWrite), Acad::eOk);
  EXPECT_EQ(image->erase(true), Acad::eOk);
  image->close();
  EXPECT_TRUE(record().residentImage().isNull());
  EXPECT_EQ(script().alive, 1);
  ASSERT_EQ(acdbOpenObject(image, id, AcDb::kForWrite, true), Acad::eOk);
  EXPECT_EQ(image->erase(false), Acad::eOk);
  EXPECT_TRUE(image->holds(L"/data/a.tif"));
  image->close();
  EXPECT_EQ(record().residentImage(), id);
}

TEST_F(Edit, OnlyImageEntitiesWithoutAnImageAreErased) {
  EXPECT_EQ(host_->run("EraseInvalidImage"), "\n共删除了0个无效的Image对象！");
  host_->run("LINE 0,0 10,10 ");
  ASSERT_TRUE(add(L"/data/a.tif"));
  appendUnbound();
  appendUnbound();
  EXPECT_EQ(countOf(CCadImage::desc()), 3);
  EXPECT_EQ(host_->run("EraseInvalidImage"), "\n共删除了2个无效的Image对象！");
  EXPECT_EQ(countOf(CCadImage::desc()), 1);
  EXPECT_GE(countOf(AcDbEntity::desc()), 2);
  appendUnbound();
  EXPECT_EQ(host_->run("testimage"), "");
  EXPECT_EQ(countOf(CCadImage::desc()), 1);
}

TEST_F(Edit, ExtentsAreThoseOfTheDisplayedImages) {
  ASSERT_TRUE(add(L"/data/a.tif"));
  script().georef[4] = 1000;
  ASSERT_TRUE(add(L"/data/b.tif"));
  const auto extentsOf = [&] {
    AcDbExtents extents;
    const OpenedImage image(record(), AcDb::kForRead);
    EXPECT_TRUE(image);
    const Acad::ErrorStatus status = image->getGeomExtents(extents);
    return std::make_pair(status, extents);
  };
  // a.tif: 100..600, b.tif: 1000..1500; pixels of 0.5.
  EXPECT_EQ(extentsOf().second.maxPoint(), AcGePoint3d(1500, 200, 0));
  EXPECT_EQ(extentsOf().second.minPoint(), AcGePoint3d(100, -50, 0));
  record().setDisplayed(L"/data/b.tif", false);
  EXPECT_EQ(extentsOf().second.maxPoint(), AcGePoint3d(600, 200, 0));
  record().setDisplayed(L"/data/a.tif", false);
  EXPECT_EQ(extentsOf().first, Acad::eInvalidExtents);
}

}  // namespace
