#include "dbproxy.h"
#include "host/database/memoryfiler.h"
#include "tests/image_entity/fixture.h"

namespace {

using tarn::test::script;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

using Filing = EntityTest;

std::vector<AcGePoint3d> cornersOf(const CCadImage& image) {
  AcGePoint3dArray points;
  AcDbIntArray ids;
  image.getOsnapPoints(AcDb::kOsModeEnd, 0, AcGePoint3d(), AcGePoint3d(), AcGeMatrix3d(), points,
                       ids);
  return {points.begin(), points.end()};
}

TEST_F(Filing, ClassIsRegisteredWithItsDescription) {
  const AcRxClass* desc = CCadImage::desc();
  ASSERT_NE(desc, nullptr);
  EXPECT_STREQ(desc->name(), L"CCadImage");
  EXPECT_STREQ(desc->dxfName(), L"CADIMAGE");
  EXPECT_EQ(desc->myParent(), AcDbEntity::desc());
  EXPECT_EQ(desc->proxyFlags(), 0);
  EXPECT_STREQ(desc->appName(),
               L"_IMAGEAPP |Product Desc: A description for your object |Company: Your company "
               L"name |WEB Address: Your company WEB site address");
  int version = 0;
  int maintenance = 0;
  desc->getClassVersion(version, maintenance);
  EXPECT_EQ(version, 33);
  EXPECT_EQ(maintenance, 55);
  const std::unique_ptr<AcRxObject> made(desc->create());
  EXPECT_NE(CCadImage::cast(made.get()), nullptr);
  EXPECT_EQ(CCadImage::kCurrentVersionNumber, 1U);
  EXPECT_EQ(CCadImage::kImagePixelDataByteCount, 3U);
  EXPECT_EQ(CCadImage::kImagePixelDataMaxWidth, 8192U);
  EXPECT_EQ(CCadImage::kImagePixelDataMaxHeight, 8192U);
}

TEST_F(Filing, NothingButTheVersionIsFiledWithTheBase) {
  auto division = makeDivision();
  CCadImage image;
  image.SetImageInfo(L"/data/a.tif", division);
  tarn::host::MemoryFiler filer;
  ASSERT_EQ(image.dwgOutFields(&filer), Acad::eOk);
  const size_t length = filer.bytes().size();
  tarn::host::MemoryFiler base;
  ASSERT_EQ(static_cast<AcDbEntity&>(image).AcDbEntity::dwgOutFields(&base), Acad::eOk);
  EXPECT_EQ(length, base.bytes().size() + sizeof(Adesk::UInt32));

  CCadImage read;
  filer.seek(0, 0);
  ASSERT_EQ(read.dwgInFields(&filer), Acad::eOk);
  EXPECT_TRUE(read.holdsNoImage());
  EXPECT_TRUE(read.imagePath().empty());
  EXPECT_TRUE(cornersOf(read).empty());
}

TEST_F(Filing, VersionsAboveOneOpenAsAProxy) {
  const struct {
    Adesk::UInt32 version;
    Acad::ErrorStatus status;
  } cases[] = {{0, Acad::eOk}, {1, Acad::eOk}, {2, Acad::eMakeMeProxy}, {77, Acad::eMakeMeProxy}};
  for (const auto& one : cases) {
    CCadImage image;
    tarn::host::MemoryFiler filer;
    ASSERT_EQ(static_cast<AcDbEntity&>(image).AcDbEntity::dwgOutFields(&filer), Acad::eOk);
    filer.writeUInt32(one.version);
    filer.seek(0, 0);
    EXPECT_EQ(image.dwgInFields(&filer), one.status) << one.version;
  }
  EXPECT_EQ(Acad::eMakeMeProxy, 301);
  CCadImage image;
  tarn::host::MemoryFiler cut;
  ASSERT_EQ(static_cast<AcDbEntity&>(image).AcDbEntity::dwgOutFields(&cut), Acad::eOk);
  cut.seek(0, 0);
  EXPECT_NE(image.dwgInFields(&cut), Acad::eOk);
}

TEST_F(Filing, TheFootprintFollowsTheDrawingScale) {
  const struct {
    double userr1;
    double unit;
  } cases[] = {{500, 0.5}, {0, 0.5}, {2.9, 0.5}, {1000, 1.0}, {3, 0.003}};
  auto division = makeDivision();
  for (const auto& one : cases) {
    SCOPED_TRACE(one.userr1);
    host_->run("SETVAR USERR1 " + tarn::formatDouble(one.userr1));
    CCadImage image;
    image.SetImageInfo(L"/data/a.tif", division);
    const double right = 100 + 1000 * one.unit;
    const double bottom = 200 - 500 * one.unit;
    EXPECT_THAT(cornersOf(image),
                ElementsAre(AcGePoint3d(100, 200, 0), AcGePoint3d(right, 200, 0),
                            AcGePoint3d(right, bottom, 0), AcGePoint3d(100, bottom, 0)));
  }
}

TEST_F(Filing, MapsHoldOneEntryAPathAndACountOfTheirOwn) {
  CCadImage image;
  {
    auto division = makeDivision();
    image.SetImageInfo(L"/data/b.tif", division);
    image.SetImageInfo(L"/data/a.tif", division);
    auto other = makeDivision();
    image.SetImageInfo(L"/data/b.tif", other);
    EXPECT_EQ(script().alive, 2);
    image.SetCurrentImage(L"/data/b.tif");
    EXPECT_EQ(image.pAnalyser(true), other.get());
  }
  EXPECT_EQ(script().alive, 2);
  std::vector<CString> files{L"stale"};
  image.GetImageFileList(files, true);
  EXPECT_THAT(files, ElementsAre(CString(L"/data/a.tif"), CString(L"/data/b.tif")));
  image.GetImageFileList(files, false);
  EXPECT_TRUE(files.empty());
  image.setIsLocal(false);
  EXPECT_NE(image.pAnalyser(true), nullptr);
  EXPECT_EQ(image.pAnalyser(false), nullptr);
  image.SetCurrentImage(L"/data/none.tif");
  EXPECT_EQ(image.pAnalyser(true), nullptr);
  EXPECT_TRUE(image.releaseImage(L"/data/a.tif"));
  EXPECT_FALSE(image.releaseImage(L"/data/a.tif"));
  EXPECT_FALSE(image.holds(L"/data/a.tif"));
  EXPECT_EQ(cornersOf(image).size(), 4U);
}

TEST_F(Filing, ACloneOpensTheFileAnewOrIsUnbound) {
  auto division = makeDivision();
  CCadImage image;
  image.SetImageInfo(L"/data/a.tif", division);
  host_->run("SETVAR USERR1 1000");
  const std::unique_ptr<CCadImage> copy(CCadImage::cast(image.clone()));
  ASSERT_TRUE(copy);
  copy->SetCurrentImage(L"/data/a.tif");
  EXPECT_NE(copy->pAnalyser(true), nullptr);
  EXPECT_NE(copy->pAnalyser(true), division.get());
  EXPECT_EQ(cornersOf(*copy)[1], AcGePoint3d(1100, 200, 0));

  script().goodInits = 0;
  const std::unique_ptr<CCadImage> unbound(CCadImage::cast(image.clone()));
  ASSERT_TRUE(unbound);
  EXPECT_TRUE(unbound->holdsNoImage());
}

}  // namespace
