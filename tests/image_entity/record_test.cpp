// The document's record: one image entity a drawing, one way to add, restoring.
#include "_image/imagerestore.h"
#include "tests/image_entity/fixture.h"

namespace {

using tarn::test::script;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

class Record : public EntityTest {
 protected:
  std::vector<std::wstring> listed() {
    std::vector<std::wstring> paths;
    for (const CDocData::Image& image : record().images()) paths.push_back(image.path);
    return paths;
  }
  void eraseAll() {
    host_->frontEnd.answers = {""};
    host_->run("ERASE ALL");
    EXPECT_TRUE(record().residentImage().isNull());
  }
  std::string touch(const std::string& name) {
    const std::string path = tarn::joinPath(host_->folder, name);
    EXPECT_TRUE(tarn::writeFileAtomically(path, "x"));
    return path;
  }
};

TEST_F(Record, AddingMakesOneEntityAndStoresThePaths) {
  const std::string a = touch("a.tif");
  const std::string b = touch("影像 b.tif");
  host_->ui.files = {{b, a, b}};
  const std::string printed = host_->run("addImage");
  EXPECT_THAT(printed, HasSubstr("\n该影像已经存在当前里列表中，不允许重复加载"));
  EXPECT_THAT(listed(), ElementsAre(tarn::toWide(b), tarn::toWide(a)));
  EXPECT_THAT(tarn::image::storedImagePaths(record()),
              ElementsAre(tarn::toWide(b), tarn::toWide(a)));
  EXPECT_FALSE(record().residentImage().isNull());
  EXPECT_EQ(record().pendingImage(), nullptr);
  EXPECT_GT(host_->frontEnd.focused, 0);
  ASSERT_EQ(host_->ui.requests.size(), 1U);
  EXPECT_TRUE(host_->ui.requests[0].several);
  EXPECT_EQ(host_->ui.requests[0].filter,
            "tif文件(*.tif)|*.tif|img文件(*.img)|*.img|jpg文件(*.jpg)|*.jpg||");

  const AcDbObjectId first = record().residentImage();
  host_->ui.files = {{touch("c.tif")}};
  host_->run("addImage");
  EXPECT_EQ(record().residentImage(), first);
  EXPECT_EQ(listed().size(), 3U);
}

TEST_F(Record, AnImageThatCannotBeOpenedLeavesNothing) {
  const std::string a = touch("a.tif");
  const std::string b = touch("b.tif");
  script().goodInits = 1;
  host_->ui.files = {{a}};
  EXPECT_THAT(host_->run("addImage"), HasSubstr("\nimagedivision init fail!"));
  EXPECT_TRUE(listed().empty());
  EXPECT_TRUE(tarn::image::storedImagePaths(record()).empty());
  EXPECT_TRUE(record().residentImage().isNull());
  EXPECT_EQ(script().alive, 0);
  script().goodInits = 9;
  host_->ui.files = {{a, b}};
  host_->run("addImage");
  EXPECT_EQ(listed().size(), 2U);
  // Cancelling the dialog changes nothing.
  host_->run("addImage");
  EXPECT_EQ(listed().size(), 2U);
}

TEST_F(Record, AnErasedEntityIsReplacedByTheNextAdd) {
  const std::string a = touch("a.tif");
  host_->ui.files = {{a}};
  host_->run("addImage");
  const AcDbObjectId first = record().residentImage();
  eraseAll();
  EXPECT_TRUE(record().residentImage().isNull());
  host_->ui.files = {{a}};
  const std::string printed = host_->run("addImage");
  EXPECT_EQ(printed.find("不允许重复加载"), std::string::npos) << printed;
  EXPECT_FALSE(record().residentImage().isNull());
  EXPECT_NE(record().residentImage(), first);
  EXPECT_EQ(listed().size(), 1U);
  EXPECT_EQ(tarn::image::storedImagePaths(record()).size(), 1U);
}

TEST_F(Record, StoredImagesAreBoundAgain) {
  const std::string a = touch("a.tif");
  const std::wstring gone = tarn::toWide(host_->folder + "/gone.tif");
  ASSERT_TRUE(tarn::image::storeImagePaths(document(), record(), {gone, tarn::toWide(a), L""}));
  delete g_dataMap;
  g_dataMap = new AsdkDataManager<CDocData>(&tarn::image::restoreImages);
  tarn::image::restoreImages(document());
  EXPECT_THAT(listed(), ElementsAre(tarn::toWide(a)));
  EXPECT_FALSE(record().residentImage().isNull());
  // Adding keeps what was stored but is not there now.
  host_->ui.files = {{touch("b.tif")}};
  host_->run("addImage");
  EXPECT_EQ(tarn::image::storedImagePaths(record()).size(), 4U);

  // Read back with an unbound entity in model space: that one is bound, none is made.
  const AcDbObjectId resident = record().residentImage();
  delete g_dataMap;
  g_dataMap = new AsdkDataManager<CDocData>(&tarn::image::restoreImages);
  CCadImage* image = nullptr;
  ASSERT_EQ(acdbOpenObject(image, resident, AcDb::kForWrite), Acad::eOk);
  image->releaseImage(tarn::toWide(a));
  image->releaseImage(tarn::toWide(host_->folder + "/b.tif"));
  image->close();
  tarn::image::restoreImages(document());
  EXPECT_EQ(record().residentImage(), resident);
  EXPECT_EQ(listed().size(), 2U);
  EXPECT_EQ(script().alive, 2);
}

TEST_F(Record, DrawAndShowImageChooseAFile) {
  EXPECT_THAT(host_->run("DrawImage"), HasSubstr("获取数据失败"));
  const std::string a = touch("a.tif");
  host_->ui.files = {{a}};
  host_->run("DrawImage");
  EXPECT_THAT(listed(), ElementsAre(tarn::toWide(a)));
  EXPECT_FALSE(record().residentImage().isNull());
  host_->ui.files = {{a}};
  EXPECT_THAT(host_->run("ShowImage"), HasSubstr("该影像文件已被加载！"));

  // Without an entity ShowImage says so and goes on with a new one.
  eraseAll();
  host_->ui.files = {{a}};
  EXPECT_THAT(host_->run("ShowImage"), HasSubstr("\n当前文档没有实体请先添加影像实体"));
  EXPECT_FALSE(record().residentImage().isNull());
  EXPECT_EQ(tarn::image::storedImagePaths(record()).size(), 1U);
}

TEST_F(Record, WithoutARecordCommandsSaySo) {
  delete g_dataMap;
  g_dataMap = nullptr;
  for (const char* command : {"DrawImage", "ShowImage", "addImage", "_RectifyImage"}) {
    EXPECT_THAT(host_->run(command), HasSubstr("当前文档没有加载到 g_dataMap 中！")) << command;
  }
}

}  // namespace
