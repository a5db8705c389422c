// What commands do with components that come later, with ones that note their calls, and what they
// keep in the document's record.
#include "_image/cloudcommand.h"
#include "inc/callbackrectifyoperator.h"
#include "inc/ibatchimageconversion.h"
#include "inc/irectifydialog.h"
#include "inc/kcore.h"
#include "tests/image_entity/fixture.h"
#include "tests/support/lasfiles.h"

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

std::vector<std::string> g_calls;
bool g_opens = true;
CallBackRectifyOperator* g_operator = nullptr;

template <typename... Values>
void note(const Values&... values) {
  std::ostringstream text;
  ((text << values << ' '), ...);
  g_calls.push_back(text.str());
}

class NotingRectify final : public kel::Implements<NotingRectify, IRectifyDialog> {
 public:
  static constexpr const char* kName = "test.NotingRectify";
  bool hasImage() override { return false; }
  kel::DString imagePath() override { return {}; }
  void prepare(int flags) override { note("prepare", flags); }
  bool openImage(const kel::DString& path, CallBackRectifyOperator* callback) override {
    note("open", path.str());
    g_operator = callback;
    return g_opens;
  }
  void setModal(int modal) override { note("modal", modal); }
  void show() override { note("show"); }
  int imageQueryA() override { return 0; }
  int imageQueryB() override { return 0; }
  kel::RectifyPlacement* imageQueryC() override { return &placement_; }
  void setRectifyMethod(int) override {}
  void setControlPoints(const kel::PointList&, const kel::PointList&) override {}
  void computeTransform() override {}
  int minimumPointCount(int) override { return 0; }
  kel::PointList getResiduals() override { return {}; }
  void getImageGeometry(int&, int&, double&, double&, double&, double&) override {}
  bool transformQuery(kel::PointList&, kel::PointList&) override { return false; }
  bool exportPrepare(const kel::DString&, const kel::DString&) override { return false; }
  bool exportImage(const kel::DString&, const kel::DString&) override { return false; }
  int rectifyStatus() override { return 1; }
  void applyPlacement() override {}
  IImageDivision* imageSource() override { return nullptr; }
  int rectifyMethod() override { return -1; }
  void acceptTransform() override {}
  kel::RectifyQuality quality() override { return {}; }
  bool transformPoint(double, double, double&, double&) override { return false; }
  bool drawingOfPixel(double, double, double&, double&) override { return false; }
  bool pixelOfDrawing(double, double, double&, double&) override { return false; }
  kel::List<double> storedState() override { return {}; }
  bool restoreState(const kel::List<double>&) override { return false; }
  void setExportResampling(int) override {}
  bool sourceOfFit(double, double, double&, double&) override { return false; }

 private:
  kel::RectifyPlacement placement_;
};

class NotingConversion final : public kel::Implements<NotingConversion, IBatchImageConversion> {
 public:
  static constexpr const char* kName = "test.NotingConversion";
  NotingConversion() { note("made", kel::Core::progressBar() != nullptr); }
  ~NotingConversion() { note("released", kel::Core::progressBar() != nullptr); }
  bool convertImage(const kel::DString&, const kel::DString&) override { return false; }
  bool buildPyramid(const kel::DString&) override { return false; }
  int convertedCount() override { return 0; }
  void run() override { note("run", kel::Core::progressBar() != nullptr); }
};

class Components : public EntityTest {
 protected:
  void SetUp() override {
    EntityTest::SetUp();
    NotingRectify::registerSelf();
    NotingConversion::registerSelf();
    g_calls.clear();
    g_opens = true;
  }
  void TearDown() override {
    kel::unregisterImplementation("N", IRectifyDialog::interfaceId());
    kel::unregisterImplementation("N", IBatchImageConversion::interfaceId());
    EntityTest::TearDown();
  }
};

TEST_F(Components, TheTestRectificationOpensItsFixedImage) {
  const std::string path = "D:\\tifimage\\image.tif";
  EXPECT_EQ(host_->run("_image_ShowImage"), "");
  EXPECT_THAT(g_calls, ElementsAre("prepare 0 ", "open " + path + " ", "modal 1 ", "show "));
  EXPECT_EQ(OpenedImage(record(), AcDb::kForRead)->currentImage(), tarn::toWide(path));
  g_calls.clear();
  g_opens = false;
  EXPECT_EQ(host_->run("_RectifyImage"), "打开影像出错");
  EXPECT_THAT(g_calls, ElementsAre("prepare 0 ", "open " + path + " "));
}

TEST_F(Components, RectifyImageTakesTheOnlyImageOrAsks) {
  ASSERT_TRUE(add(L"/data/a.tif"));
  EXPECT_EQ(host_->run("rectifyImage"), "");
  EXPECT_THAT(g_calls, ElementsAre("prepare 0 ", "open /data/a.tif ", "modal 1 ", "show "));
  // The component reaches the image and the user through the callback.
  const OpenedImage image(record(), AcDb::kForRead);
  EXPECT_EQ(g_operator->imageAnalyser(), image->pAnalyser(true));
  EXPECT_NE(g_operator->imageAnalyser(), nullptr);
  kel::List<double> point = {7};
  host_->frontEnd.answers = {std::string("40500123.456,3512345.678")};
  EXPECT_EQ(g_operator->pickPoint(point), 0);
  EXPECT_THAT(point, ElementsAre(40500123.456, 3512345.678, 0.0));
  host_->frontEnd.answers = {std::nullopt};
  EXPECT_EQ(g_operator->pickPoint(point), -1);
  EXPECT_TRUE(point.empty());
  EXPECT_FALSE(g_operator->query(1, nullptr));
  host_->printed();
  g_operator->redraw(0, 0, 0, 0, 0, 0, 0, 0, nullptr);
  host_->app->runQueued();
  EXPECT_THAT(host_->printed(), HasSubstr("regen"));
}

TEST_F(Components, RectifyImageAsksAmongSeveral) {
  ASSERT_TRUE(add(L"/data/a.tif"));
  ASSERT_TRUE(add(L"/data/b.tif"));
  const struct {
    std::deque<std::optional<std::string>> answers;
    const char* opened;
    const char* printed;
  } cases[] = {
      {{"2"}, "open /data/b.tif ", "\n2: /data/b.tif"},
      {{""}, "open /data/a.tif ", "<1>"},
      {{"3", "0", "x", "2"}, "open /data/b.tif ", "\n没有编号为3的影像。"},
      {{std::nullopt}, nullptr, "<1>"},
  };
  for (const auto& one : cases) {
    g_calls.clear();
    host_->frontEnd.answers = one.answers;
    EXPECT_THAT(host_->run("rectifyImage"), HasSubstr(one.printed));
    ASSERT_EQ(g_calls.empty(), one.opened == nullptr);
    if (one.opened == nullptr) continue;
    EXPECT_EQ(g_calls[1], one.opened);
  }
  g_opens = false;
  host_->frontEnd.answers = {std::string("1")};
  EXPECT_THAT(host_->run("rectifyImage"), HasSubstr("\n打开影像出错"));
}

TEST_F(Components, ImageConversionRunsWithAProgressCallbackOfItsOwn) {
  for (int round = 0; round < 2; ++round) {
    g_calls.clear();
    EXPECT_EQ(host_->run("ImageConversion"), "");
    EXPECT_THAT(g_calls, ElementsAre("made 1 ", "run 1 ", "released 0 "));
    EXPECT_EQ(kel::Core::progressBar(), nullptr);
  }
}

TEST_F(Components, CommandsWithoutARecordSaySoAndChangeNothing) {
  AsdkDataManager<CDocData>* kept = g_dataMap;
  g_dataMap = nullptr;
  for (const char* command : {"DrawImage", "ShowImage", "_RectifyImage", "rectifyImage"}) {
    EXPECT_EQ(host_->run(command), "当前文档没有加载到 g_dataMap 中！") << command;
    EXPECT_TRUE(host_->ui.requests.empty());
    EXPECT_TRUE(g_calls.empty());
  }
  g_dataMap = kept;
}

TEST_F(Components, DrawAndShowAddTheChosenImage) {
  host_->ui.files = {{"/data/a.tif"}, {"/data/a.tif"}, {"/data/b.tif"}};
  EXPECT_EQ(host_->run("DrawImage").rfind("0", 0), 0U);
  EXPECT_TRUE(record().contains(L"/data/a.tif"));
  EXPECT_FALSE(record().residentImage().isNull());
  // The entity is there now, so nothing but the image's own message is said.
  EXPECT_EQ(host_->run("ShowImage"), "1\n/data/a.tif该影像文件已被加载！获取数据失败");
  host_->run("ShowImage");
  EXPECT_EQ(record().images().size(), 2U);
  // An entity that was erased is replaced; only "ShowImage" says a word about it.
  for (const char* command : {"ShowImage", "DrawImage"}) {
    host_->frontEnd.answers = {std::string("ALL"), std::string("")};
    host_->run("ERASE");
    EXPECT_EQ(host_->run(command).find("\n当前文档没有实体请先添加影像实体") == 0,
              std::string(command) == "ShowImage");
  }
  kel::unregisterImplementation("N", IImageDivision::interfaceId());
  host_->ui.files = {{"/data/c.tif"}};
  EXPECT_EQ(host_->run("DrawImage"), "2null0imagedivision invalid!获取数据失败");
  EXPECT_EQ(record().images().size(), 2U);
}

TEST_F(Components, LoadCloudIsNotedInTheRecord) {
  const std::string path = tarn::joinPath(host_->folder, "a.las");
  tarn::test::LasSpec spec;
  spec.points = {{0, 0, 1, 255, 0, 0}};
  ASSERT_TRUE(tarn::writeFileAtomically(path, tarn::test::lasBytes(spec)));
  host_->ui.files = {{path}, {path + "x"}};
  host_->run("loadCloud");
  ASSERT_EQ(record().pointClouds().size(), 1U);
  EXPECT_EQ(record().pointClouds()[0].path, tarn::toWide(path));
  const AcDbObjectId id = record().pointClouds()[0].id;
  EXPECT_EQ(id.objectClass()->name(), std::wstring(L"TarnPointCloud"));
  // A file that is gone meanwhile, and a user who cancels, leave nothing behind.
  EXPECT_THAT(host_->run("loadCloud"), HasSubstr("there is no such file"));
  EXPECT_EQ(host_->run("loadCloud"), "");
  EXPECT_EQ(record().pointClouds().size(), 1U);
  // Without a record the cloud is attached all the same.
  AsdkDataManager<CDocData>* kept = g_dataMap;
  g_dataMap = nullptr;
  host_->ui.files = {{path}};
  EXPECT_THAT(host_->run("loadCloud"), HasSubstr("当前文档没有加载到 g_dataMap 中！"));
  g_dataMap = kept;
  EXPECT_EQ(record().pointClouds().size(), 1U);
}

TEST(CloudFiles, FollowTheHostsVersion) {
  const struct {
    const wchar_t* version;
    const wchar_t* extension;
  } cases[] = {{L"19.1s (LMS Tech)", L".pcg"},
               {L"19.9", L".pcg"},
               {L"20.0", L".rcp"},
               {L"20.1s", L".rcp"},
               {L"23.1", L".rcp"},
               {L"9.0", L".pcg"},
               {L"", L".pcg"},
               {L"abc", L".pcg"}};
  for (const auto& one : cases) {
    EXPECT_STREQ(tarn::image::cloudFilesOf(one.version).extension, one.extension)
        << tarn::toUtf8(one.version);
  }
  const auto& older = tarn::image::cloudFilesOf(L"19.1");
  EXPECT_STREQ(older.name, L"*.pcg");
  EXPECT_STREQ(older.filter, L".pcg (*.pcg)|*.pcg|All Files (*.*)|*.*||");
}

}  // namespace
