// Servers that misbehave while a drawing is drawn.
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
    TarnClientManager* client = nullptr;
    const std::wstring key = toWide(keyOf("a.tif", server.port()));
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
  FaultServer server(flat());
  addBoth(server);
  for (const Fault fault : {Fault::kReset, Fault::kGarbage, Fault::kHalfBody, Fault::kGone,
                            Fault::kElsewhere, Fault::kToFile, Fault::kDamaged}) {
    server.setFault(fault);
    // Each a view of its own, so that nothing is known of it already.
    const int step = static_cast<int>(fault);
    const QImage seen = picture("ZOOM C 500" + std::to_string(650 + step) + ",3399575 900");
    OpenedImage image(record(), AcDb::kForRead);
    EXPECT_EQ(image->serverSources().size(), 1U);
    EXPECT_NE(seen, QImage());
  }
  EXPECT_LT(difference(local_, picture(kView)), 0.2) << "the local image";
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
