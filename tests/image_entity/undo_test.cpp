// Images under undo and redo: entity, stored paths, the record's list and the sources together.
#include <algorithm>

#include "acedads.h"
#include "tests/host_editor/drawingstate.h"
#include "tests/image_entity/fixture.h"

namespace {

using tarn::test::script;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Undo : public EntityTest {
 protected:
  void SetUp() override {
    EntityTest::SetUp();
    host_->app->resizeView(1000, 600);
    a_ = touch("a.tif");
    b_ = touch("b.tif");
  }
  std::wstring touch(const std::string& name) {
    const std::string path = tarn::joinPath(host_->folder, name);
    EXPECT_TRUE(tarn::writeFileAtomically(path, "x"));
    return tarn::toWide(path);
  }
  void addByCommand(const std::wstring& path) {
    host_->ui.files = {{tarn::toUtf8(path)}};
    host_->run("addImage");
  }
  std::vector<std::wstring> listed() {
    std::vector<std::wstring> paths;
    for (const CDocData::Image& image : record().images()) paths.push_back(image.path);
    return paths;
  }
  /// The paths that the entity in the drawing holds sources of.
  std::vector<std::wstring> held() {
    const OpenedImage image(record(), AcDb::kForRead);
    std::vector<CString> files;
    if (image) image->GetImageFileList(files, true);
    return {files.begin(), files.end()};
  }
  const CCadImage* entity() { return OpenedImage(record(), AcDb::kForRead).get(); }
  int readsOf(const std::string& line) {
    script().calls.clear();
    host_->run(line);
    return static_cast<int>(
        std::count_if(script().calls.begin(), script().calls.end(),
                      [](const std::string& call) { return call.rfind("readRegion", 0) == 0; }));
  }

  std::wstring a_, b_;
};

TEST_F(Undo, AddingIsTakenBackAndComesAgainAsTheSameEntity) {
  addByCommand(a_);
  const CCadImage* const image = entity();
  addByCommand(b_);
  EXPECT_EQ(entity(), image);
  EXPECT_EQ(script().alive, 2);

  EXPECT_EQ(readsOf("U"), 1) << "the first image is drawn alone";
  EXPECT_THAT(listed(), ElementsAre(a_));
  EXPECT_THAT(held(), ElementsAre(a_));
  EXPECT_THAT(tarn::image::storedImagePaths(record()), ElementsAre(a_));
  host_->run("U");
  EXPECT_THAT(listed(), IsEmpty());
  EXPECT_TRUE(record().residentImage().isNull());
  EXPECT_EQ(script().alive, 1) << "the erased entity keeps its source";

  // A command that made the record want a new entity does not stand in the way of the old one.
  record().ensureImage();
  EXPECT_EQ(readsOf("REDO"), 1);
  EXPECT_EQ(entity(), image);
  EXPECT_THAT(held(), ElementsAre(a_));
  host_->run("REDO");
  EXPECT_THAT(listed(), ElementsAre(a_, b_));
  EXPECT_THAT(held(), ElementsAre(a_, b_));
  EXPECT_EQ(script().alive, 2);
}

TEST_F(Undo, AnErasedImageComesBackWithItsSources) {
  addByCommand(a_);
  const CCadImage* const image = entity();
  host_->frontEnd.answers = {""};
  host_->run("ERASE ALL");
  EXPECT_TRUE(record().residentImage().isNull());
  script().goodInits = 0;
  EXPECT_EQ(readsOf("U"), 1) << "nothing has to be opened again";
  EXPECT_EQ(entity(), image);
  EXPECT_THAT(held(), ElementsAre(a_));
  host_->run("REDO");
  EXPECT_TRUE(record().residentImage().isNull());
  host_->run("UNDO 2");
  EXPECT_THAT(listed(), IsEmpty());
}

TEST_F(Undo, AnImageOffersItsCornersAndStaysWhereItIs) {
  addByCommand(a_);
  host_->run("ZOOM C 100,200 20");
  EXPECT_NE(host_->run("ID END 100.2,200.2").find("X = 100  Y = 200"), std::string::npos);
  EXPECT_NE(host_->run("ID MID 100.2,200.2").find("No such point"), std::string::npos);
  host_->run("ZOOM E");
  const auto before = tarn::host::stateOf(*host_->app);
  const struct {
    const char* line;
    const char* printed;
  } cases[] = {
      {"GRIP_STRETCH 100,200 150,200", "1 cannot be stretched."},
      {"MOVE 0,0 5,5", "1 cannot be moved."},
      {"COPY D 5,5", "1 cannot be copied."},
      {"ROTATE 0,0 30", "1 cannot be rotated."},
      {"COPYCLIP", "1 cannot be copied."},
  };
  for (const auto& one : cases) {
    ads_name all = {0, 0};
    ASSERT_EQ(acedSSGet(L"X", nullptr, nullptr, nullptr, all), RTNORM);
    acedSSSetFirst(nullptr, all);
    acedSSFree(all);
    const std::string printed = host_->run(one.line);
    EXPECT_NE(printed.find(one.printed), std::string::npos) << printed;
    EXPECT_TRUE(tarn::host::stateOf(*host_->app) == before) << one.line;
  }
}

}  // namespace
