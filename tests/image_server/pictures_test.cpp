// What is seen of images of a server.
#include <set>

#include "_image/binding/usesite.h"
#include "imageclient/tarnclientmanager.h"
#include "inc/iuserinterface.h"
#include "tests/image_entity/recordingdraw.h"
#include "tests/image_server/fixture.h"

namespace tarn::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

/// An entity that takes sources from a test.
class OpenImage : public CCadImage {
 public:
  using CCadImage::setImgInfoMap;
};

size_t coloursOf(const QImage& picture) {
  std::set<QRgb> colours;
  for (int y = 0; y < picture.height(); y += 3) {
    for (int x = 0; x < picture.width(); x += 3) colours.insert(picture.pixel(x, y));
  }
  return colours.size();
}

TEST_F(ServerImages, AreThePicturesOfTheLocalFiles) {
  useServer(server_->portText());
  const char* views[] = {"ZOOM C 500650,3399575 900",      // all of it, reduced
                         "ZOOM C 500650.2,3399575.1 300",  // a screen pixel an image pixel
                         "ZOOM C 500300.3,3399800.7 31",   // enlarged
                         "ZOOM C 500010,3399990 120"};     // a corner
  EXPECT_THAT(addImages({"east side", "1", ""}), Not(HasSubstr("出错")));
  EXPECT_THAT(stored(), ElementsAre(keyOf(kImage)));
  std::vector<QImage> remote;
  for (const char* view : views) remote.push_back(picture(view));
  host_->run("TWIST 30");
  const QImage twisted = picture("ZOOM C 500650,3399575 400");
  host_->run("NEW");
  // Files that the user has named are local, whatever the configuration says.
  const std::string local = store_->at(kImage);
  ASSERT_TRUE(host_->app->runWithFiles("addImage", {local}));
  EXPECT_THAT(stored(), ElementsAre(local));
  for (size_t i = 0; i < remote.size(); ++i) {
    EXPECT_LE(difference(remote[i], picture(views[i])), 0.001) << views[i];
  }
  host_->run("TWIST 30");
  EXPECT_LE(difference(twisted, picture("ZOOM C 500650,3399575 400")), 0.001);
}

TEST_F(ServerImages, ArePlottedAsTheLocalFiles) {
  const std::string local = store_->at(kImage);
  const auto plots = [this] {
    std::vector<QImage> pages;
    for (const char* rotation : {"0", "90"}) {
      const std::string file = joinPath(host_->folder, std::string("page") + rotation + ".png");
      host_->frontEnd.answers = {"Yes",       "Model",  "PNG",     "A4",  "Millimeters",
                                 "Landscape", rotation, "Extents", "Fit", "Center",
                                 "100",       file,     "No",      "Yes"};
      host_->run("PLOT");
      pages.emplace_back(QString::fromStdString(file));
      EXPECT_GT(pages.back().width(), 500) << host_->printed();
    }
    return pages;
  };
  useServer(server_->portText());
  addImages({"east side", "1", ""});
  const std::vector<QImage> remote = plots();
  host_->run("NEW");
  ASSERT_TRUE(host_->app->runWithFiles("addImage", {local}));
  const std::vector<QImage> expected = plots();
  for (size_t i = 0; i < remote.size(); ++i) EXPECT_LE(difference(remote[i], expected[i]), 0.001);
  // What is compared is an image, not an empty page.
  EXPECT_GT(coloursOf(remote[0]), 100);
}

TEST_F(ServerImages, AreDrawnAfterLocalOnesInTheOrderOfTheList) {
  useServer(server_->portText());
  addImages({"flat.tif", "east side/正射 100%.tif", ""});
  ASSERT_TRUE(host_->app->runWithFiles("addImage", {store_->at("flat.tif")}));
  host_->run("ZOOM C 500800,3399600 1200");
  OpenedImage image(record(), AcDb::kForWrite);
  ASSERT_TRUE(image);
  EXPECT_EQ(image->serverSources().size(), 2U);
  RecordingWorldDraw draw;
  image->worldDraw(&draw);
  ASSERT_EQ(draw.recorded.images.size(), 3U);
  const double flat = 501300;
  // The local one, then those of the server as they are listed.
  EXPECT_NEAR(draw.recorded.lines[0][0].x, flat + 100, 1e-6);
  EXPECT_NEAR(draw.recorded.lines[1][0].x, flat + 100, 1e-6);
  EXPECT_NEAR(draw.recorded.lines[2][0].x, 500100, 1e-6);
  EXPECT_EQ(draw.recorded.images[1].width % 10, 0U);
  EXPECT_EQ(draw.recorded.images[1].height % 10, 0U);
}

TEST_F(ServerImages, ASliverInViewEndsTheDrawing) {
  useServer(server_->portText());
  addImages({"flat.tif", "east side/正射 100%.tif", ""});
  const auto drawn = [&](const std::string& view) {
    host_->run(view);
    OpenedImage image(record(), AcDb::kForWrite);
    RecordingWorldDraw draw;
    image->worldDraw(&draw);
    return draw.recorded.images.size();
  };
  // "flat.tif" begins at 501300 and "east side" ends there; half a unit is a pixel.
  EXPECT_EQ(drawn("ZOOM C 501300,3399900 60"), 2U);
  EXPECT_EQ(drawn("ZOOM C 501250.6,3399900 60"), 0U) << "one pixel of the first is in view";
  EXPECT_EQ(drawn("ZOOM C 501240,3399900 60"), 1U) << "nothing of the first is in view";
}

TEST_F(ServerImages, AnswerTheQuestionsOfTheEntity) {
  useServer(server_->portText());
  addImages({"flat.tif", ""});
  const std::wstring key = toWide(keyOf("flat.tif"));
  OpenedImage opened(record(), AcDb::kForWrite);
  ASSERT_TRUE(opened);
  CCadImage& image = *opened.get();
  image.SetCurrentImage(key);
  auto* client = static_cast<TarnClientManager*>(image.pAnalyser(false));
  ASSERT_NE(client, nullptr);
  EXPECT_EQ(image.pAnalyser(true), nullptr);
  EXPECT_EQ(client, image.clientOf(key));
  double upperLeft[2];
  double lowerRight[2];
  image.GetImageCenterPt(client, upperLeft, lowerRight);
  EXPECT_THAT(upperLeft, ElementsAre(501300, 3400000));
  EXPECT_THAT(lowerRight, ElementsAre(501650, 3399750));
  int width = 0;
  int height = 0;
  double a = 0, e = 0, y0 = 0, x0 = 0, right = 0, bottom = 0;
  ASSERT_TRUE(image.GetImageData(client, width, height, a, e, y0, x0, right, bottom));
  EXPECT_EQ(width, 700);
  EXPECT_EQ(height, 500);
  EXPECT_EQ(right, 501650);
  EXPECT_EQ(bottom, 3399750);
  std::vector<CString> files;
  image.GetImageFileList(files, true);
  EXPECT_TRUE(files.empty());
  image.GetImageFileList(files, false);
  ASSERT_EQ(files.size(), 1U);
  AcGePoint3dArray snaps;
  AcDbIntArray ids;
  EXPECT_EQ(image.getOsnapPoints(AcDb::kOsModeEnd, 0, {}, {}, {}, snaps, ids), Acad::eOk);
  EXPECT_EQ(snaps.length(), 4);
  TarnClientManager* second = nullptr;
  host_->printed();
  EXPECT_FALSE(image.GetImageDataFile(key, second, true));
  EXPECT_THAT(host_->printed(), HasSubstr("该影像文件已被加载"));
  OpenImage other;
  other.setImgInfoMap(key, client);
  EXPECT_EQ(other.clientOf(key), client);
}

}  // namespace
}  // namespace tarn::test
