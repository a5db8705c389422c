// Servers that misbehave while a drawing is drawn.
#include <map>

#include "_image/imageadding.h"
#include "acdocman.h"
#include "imageclient/tarnclientmanager.h"
#include "tests/image_server/fixture.h"
#include "tests/imageclient/client.h"
#include "tests/imageclient/faultserver.h"

namespace tarn::test {
namespace {

using ::testing::HasSubstr;

constexpr const char* kView = "ZOOM C 500650,3399575 900";

class FaultyServer : public ServerImages {
 protected:
  /// Adds a local image and one of the server, and shows both.
  void addBoth(FaultServer& server) {
    useServer(server.port());
    ASSERT_TRUE(host_->app->runWithFiles("addImage", {store_->at(kImage)}));
    local_ = picture(kView);
    add(server, "a.tif");
  }
  /// Adds an image of the server; it has only one, which lies under every name.
  void add(FaultServer& server, const std::string& name) {
    TarnClientManager* client = nullptr;
    const std::wstring key = toWide(keyOf(name, server.port()));
    OpenedImage image(record(), AcDb::kForWrite);
    ASSERT_TRUE(image && image->GetImageDataFile(key, client, true)) << host_->printed();
    image->SetServerImageInfo(key, record().keepClient(std::unique_ptr<TarnClientManager>(client)));
    record().addDisplayed(key);
  }
  static std::string flat() {
    auto bytes = readFile(store_->at("flat.tif"), 1 << 24);
    return bytes ? bytes.take() : std::string();
  }

  QImage local_;
};

TEST_F(FaultyServer, TheOtherImagesAreDrawnWhateverItDoes) {
  ClientTimes times = shortTimes();
  times.request = 1000;
  // Asked each time.
  times.failures = 1000;
  TarnClientManager::setTimes(times);
  constexpr Fault kAll[] = {
      Fault::kReset,      Fault::kStalled,    Fault::kDripping, Fault::kHalfBody,
      Fault::kWrongRange, Fault::kGarbage,    Fault::kEndless,  Fault::kEndlessHead,
      Fault::kWholeFile,  Fault::kLoop,       Fault::kToFile,   Fault::kBusy,
      Fault::kElsewhere,  Fault::kShortRange, Fault::kGone,     Fault::kDamaged};
  // Each a view of its own, so that nothing is known of it already.
  const auto viewOf = [](Fault fault) {
    return "ZOOM C 500" + std::to_string(650 + 7 * static_cast<int>(fault)) + ",3399575 900";
  };
  FaultServer server(flat());
  useServer(server.port());
  ASSERT_TRUE(host_->app->runWithFiles("addImage", {store_->at(kImage)}));
  std::map<Fault, QImage> local;
  for (const Fault fault : kAll) local[fault] = picture(viewOf(fault));
  add(server, "a.tif");
  for (const Fault fault : kAll) {
    SCOPED_TRACE(static_cast<int>(fault));
    server.setFault(fault);
    host_->printed();
    const int before = server.requests();
    // All but the marker of the one that fails.
    EXPECT_LE(difference(local[fault], picture(viewOf(fault))), 0.01);
    EXPECT_GT(server.requests(), before);
  }
  server.setFault(Fault::kNone);
  EXPECT_GT(difference(local[kAll[0]], picture(viewOf(kAll[0]))), 0.02) << "and it comes back";
}

TEST_F(FaultyServer, ImagesOfARedrawAreAskedForTogether) {
  FaultServer server(flat());
  addBoth(server);
  for (const char* name : {"b.tif", "c.tif", "d.tif"}) add(server, name);
  EXPECT_EQ(server.mostAtOnce(), 1);
  server.waitForCompany(4, 400);
  const QImage seen = picture("ZOOM C 501475,3399875 240");
  EXPECT_GE(server.mostAtOnce(), 4);
  const int asked = server.requests();
  EXPECT_EQ(picture("ZOOM C 501475,3399875 240"), seen);
  EXPECT_EQ(server.requests(), asked);
  // So they are when a drawing is opened.
  std::vector<std::wstring> names;
  for (const CDocData::Image& image : record().images()) names.push_back(image.path);
  ASSERT_TRUE(image::storeImagePaths(acDocManager->curDocument(), record(), names));
  const std::string drawing = joinPath(host_->folder, "several.dxf");
  host_->ui.files = {{drawing}};
  host_->run("SAVEAS");
  host_->run("CLOSE");
  FaultServer other(flat());
  other.waitForCompany(3, 400);
  const auto text = readFile(drawing, 1 << 24);
  ASSERT_TRUE(text);
  ASSERT_TRUE(writeFileAtomically(
      drawing, replaceAll(text.value(), ":" + server.port(), ":" + other.port())));
  host_->ui.files = {{drawing}};
  host_->run("OPEN");
  EXPECT_EQ(stored().size(), 5U);
  EXPECT_GE(other.mostAtOnce(), 3);
}

TEST_F(FaultyServer, StoppingEndsTheWaitAndTheOthersAreDrawn) {
  FaultServer server(flat());
  addBoth(server);
  server.setFault(Fault::kStalled);
  host_->frontEnd.cancelAfter = 3;
  host_->printed();
  const QImage seen = picture(kView);
  EXPECT_LE(difference(local_, seen), 0) << "the local image";
  EXPECT_EQ(host_->frontEnd.cancelAfter, 0) << "it was asked whether to stop";
  host_->frontEnd.cancelAfter = -1;
  server.setFault(Fault::kNone);
  EXPECT_GT(difference(local_, picture(kView)), 0.01) << "back at once: stopping is no failure";
}

}  // namespace
}  // namespace tarn::test
