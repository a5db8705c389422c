// Images of servers in lists and drawings, and the settings that lead to them.
#include <chrono>
#include <thread>

#include "imageclient/absimageclient.h"
#include "imageclient/qfilefind.h"
#include "imageclient/tarnclientmanager.h"
#include "tests/image_server/fixture.h"
#include "tests/imageclient/client.h"
#include "tests/imageclient/images.h"

namespace tarn::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr const char* kView = "ZOOM C 500650,3399575 900";

TEST_F(ServerImages, TheSettingsSayWhereImagesComeFrom) {
  EXPECT_EQ(QFileFind::Instance().loadImgWay(), LOADWAY::kLocal);
  host_->frontEnd.answers = {"1", "", "2", ""};
  EXPECT_THAT(host_->run("IMAGESERVER"), HasSubstr("add one to the list"));
  host_->frontEnd.answers = {"1",
                             "Add",
                             "office",
                             "ftp://host",
                             "",
                             "",
                             "",
                             "Edit 1",
                             "",
                             "host:8080",
                             "/no/such.pem",
                             "",
                             "",
                             "Edit 1",
                             "",
                             "",
                             TARN_SOURCE_DIR "/README.md",
                             "",
                             "",
                             ""};
  const std::string printed = host_->run("IMAGESERVER");
  EXPECT_THAT(printed, HasSubstr("\"ftp://host\": only http and https are possible."));
  EXPECT_THAT(printed, HasSubstr("/no/such.pem: there is no such file of certificates."));
  EXPECT_THAT(printed, HasSubstr("Image servers: saved."));
  EXPECT_EQ(QFileFind::Instance().loadImgWay(), LOADWAY::kServer);
  host_->frontEnd.answers = {"2", "Remove 1", ""};
  EXPECT_THAT(host_->run("IMAGESERVER"), HasSubstr("1:  office  http://host:8080"));
  EXPECT_EQ(QFileFind::Instance().loadImgWay(), LOADWAY::kLocal);
}

TEST_F(ServerImages, AreKeptInTheDrawingAndComeBackWithIt) {
  useServer(server_->portText());
  addImages({"正射", ""});
  EXPECT_THAT(addImages({"正射", ""}), HasSubstr("不允许重复加载"));
  EXPECT_THAT(stored(), ElementsAre(keyOf(kImage)));
  const QImage before = picture(kView);
  host_->run("U");
  EXPECT_THAT(stored(), IsEmpty());
  EXPECT_EQ(difference(before, picture(kView)), 1) << "undone";
  host_->run("REDO");
  EXPECT_LE(difference(before, picture(kView)), 0) << "done again";
  const std::string drawing = joinPath(host_->folder, "with a server.dxf");
  host_->ui.files = {{drawing}};
  host_->run("SAVEAS");
  host_->run("CLOSE");
  host_->ui.files = {{drawing}};
  EXPECT_THAT(stored(), IsEmpty()) << "closed";
  host_->run("OPEN");
  EXPECT_THAT(stored(), ElementsAre(keyOf(kImage)));
  EXPECT_LE(difference(before, picture(kView)), 0);
}

TEST_F(ServerImages, StayListedWhileTheServerIsAwayAndComeBack) {
  useServer(server_->portText());
  addImages({"flat.tif", ""});
  ASSERT_TRUE(host_->app->runWithFiles("addImage", {store_->at(kImage)}));
  const QImage whole = picture(kView);
  const std::string drawing = joinPath(host_->folder, "away.dxf");
  host_->ui.files = {{drawing}};
  host_->run("SAVEAS");
  host_->run("CLOSE");
  // Another server, of which nothing is known yet, and which is away.
  WebServer other(store_->folder());
  ASSERT_TRUE(other.isUp());
  other.stop();
  const std::string key = keyOf("flat.tif", other.portText());
  const auto text = readFile(drawing, 1 << 24);
  ASSERT_TRUE(text);
  ASSERT_TRUE(writeFileAtomically(drawing, replaceAll(text.value(), keyOf("flat.tif"), key)));
  host_->ui.files = {{drawing}};
  host_->run("OPEN");
  EXPECT_THAT(stored(), ElementsAre(key, store_->at(kImage)));
  const QImage local = picture(kView);
  EXPECT_GT(difference(whole, local), 0.02) << "the server's image is missing";
  EXPECT_LT(difference(whole, local), 0.5) << "the local one is there";
  host_->run("OpenImageList");
  EXPECT_THAT(click("List 119"), HasSubstr("[x] " + key));
  EXPECT_THAT(click("Tip 119 " + key), HasSubstr("注意："));
  ASSERT_TRUE(other.start());
  std::this_thread::sleep_for(std::chrono::milliseconds(2 * shortTimes().pause));
  EXPECT_LE(difference(whole, picture(kView)), 0);
  EXPECT_THAT(click("Tip 119 " + key), Not(HasSubstr("注意：")));
}

TEST_F(ServerImages, ThePanelSwitchesMovesZoomsAndRemovesThem) {
  useServer(server_->portText());
  host_->run("OpenImageList");
  host_->frontEnd.answers = {"flat.tif", "正射", ""};
  host_->run("UICLICK 1131 COmmand 1121");
  EXPECT_THAT(stored(), ElementsAre(keyOf("flat.tif"), keyOf(kImage)));
  EXPECT_EQ(record().images().size(), 2U);
  click("CHeck 119 " + keyOf("flat.tif"));
  EXPECT_FALSE(record().isDisplayed(toWide(keyOf("flat.tif"))));
  click("Double 119 " + keyOf(kImage));
  EXPECT_NEAR(host_->app->view().centerX, 500650, 1e-6);
  EXPECT_NEAR(host_->app->view().centerY, 3399575, 1e-6);
  click("COmmand 32784");
  EXPECT_THAT(stored(), ElementsAre(keyOf(kImage), keyOf("flat.tif")));
  click("Click 119 " + keyOf(kImage));
  EXPECT_THAT(click("COmmand 1120"), HasSubstr(keyOf(kImage) + "的影像已被删除!"));
  EXPECT_THAT(stored(), ElementsAre(keyOf("flat.tif")));
  EXPECT_FALSE(AbsImageClient::close(kel::DString(keyOf(kImage))));
  EXPECT_TRUE(AbsImageClient::close(kel::DString(keyOf("flat.tif"))));
  const OpenedImage image(record(), AcDb::kForRead);
  EXPECT_TRUE(image->holdsNoImage());
}

TEST_F(ServerImages, AllThatAreChosenAreLoadedByEveryCommand) {
  useServer(server_->portText());
  host_->frontEnd.answers = {"flat.tif", "正射", ""};
  EXPECT_THAT(host_->run("DrawImage"), Not(HasSubstr("失败")));
  EXPECT_THAT(stored(), ElementsAre(keyOf("flat.tif"), keyOf(kImage)));
  EXPECT_EQ(record().images().size(), 2U);
  // The second is new, the first is not.
  click("Click 119 " + keyOf(kImage));
  click("COmmand 1120");
  host_->frontEnd.answers = {"flat.tif", "正射", ""};
  EXPECT_THAT(host_->run("ShowImage"), HasSubstr("该影像文件已被加载！"));
  EXPECT_THAT(stored(), ElementsAre(keyOf("flat.tif"), keyOf(kImage)));
}

TEST_F(ServerImages, AChangedFileIsSeenAtTheNextRedraw) {
  ClientTimes times = TarnClientManager::times();
  times.believed = 0;
  TarnClientManager::setTimes(times);
  useServer(server_->portText());
  addImages({"flat.tif", ""});
  const QImage before = picture("ZOOM C 501475,3399875 240");
  const std::string kept = store_->at("flat.tif") + ".kept";
  ASSERT_TRUE(replaceFile(store_->at("flat.tif"), kept));
  const Scratch made("imageserver-changed");
  Raster other = groundPicture(700, 500, 77);
  other.left += 1300;
  ASSERT_TRUE(writeRaster(other, made.at("flat.tif")));
  ASSERT_TRUE(convertToCog(made.at("flat.tif"), store_->folder()));
  host_->run("REGEN");
  const QImage after = picture("ZOOM C 501475,3399875 240");
  EXPECT_GT(difference(before, after), 0.5);
  host_->run("NEW");
  ASSERT_TRUE(host_->app->runWithFiles("addImage", {store_->at("flat.tif")}));
  EXPECT_LE(difference(after, picture("ZOOM C 501475,3399875 240")), 0.001);
  ASSERT_TRUE(replaceFile(kept, store_->at("flat.tif")));
}

}  // namespace
}  // namespace tarn::test
