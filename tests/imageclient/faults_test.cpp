// A server that does everything wrong: what the client says, how long it takes, what it keeps.
#include <gmock/gmock.h>

#include <chrono>

#include "base/file.h"
#include "client.h"
#include "faultserver.h"
#include "imageclient/rangecache.h"
#include "images.h"
#include "tests/support/recordinginterface.h"

namespace tarn::test {
namespace {

using Clock = std::chrono::steady_clock;

/// Bytes of a cloud-optimised image, the same for all tests.
const std::string& cogBytes() {
  static const std::string bytes = [] {
    Scratch scratch("tarnfaults");
    const std::string image = scratch.at("image.tif"), out = scratch.at("out");
    if (!makeFolders(out) || !writeRaster(groundPicture(1500, 1300), image) ||
        !convertToCog(image, out))
      return std::string();
    return readFile(out + "/image.tif", 64 << 20).take();
  }();
  return bytes;
}

class Faults : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_GT(cogBytes().size(), 100000U);
    recorded() = {};
    RecordingInterface::registerSelf();
    TarnClientManager::setTimes(shortTimes());
  }
};

struct FaultCase {
  Fault fault;
  const char* words;
  /// Tries of one request; more when the fault may pass.
  int tries;
};

const FaultCase kFaults[] = {
    {Fault::kReset, "broke off", 3},
    {Fault::kStalled, "does not answer", 1},
    {Fault::kDripping, "does not answer, or too slowly", 1},
    {Fault::kHalfBody, "broke off", 3},
    {Fault::kWrongRange, "other bytes than", 1},
    {Fault::kShortRange, "than it was asked for", 1},
    {Fault::kWholeFile, "does not give out parts", 1},
    {Fault::kGarbage, "no usable answer", 1},
    {Fault::kEndless, "more than it was asked for", 1},
    {Fault::kLoop, "in a circle", 6},
    {Fault::kElsewhere, "another place", 1},
    {Fault::kToFile, "another place", 1},
    {Fault::kGone, "not on the server", 1},
    {Fault::kBusy, "error 503", 3},
};

/// Opening, and reading of an image that is open, each with one clear message and nothing shown.
TEST_F(Faults, EachIsToldOnceAndOver) {
  for (const FaultCase& c : kFaults) {
    SCOPED_TRACE(c.words);
    FaultServer server(cogBytes());
    server.setFault(c.fault);
    recorded().messages.clear();
    auto closed = clientOf(server.port());
    EXPECT_FALSE(closed->setCurImg("image.tif"));
    EXPECT_EQ(server.requests(), c.tries);
    EXPECT_THAT(recorded().messages, testing::ElementsAre(testing::HasSubstr(c.words)));
    EXPECT_THAT(closed->error().str(), testing::StartsWith("127.0.0.1:" + server.port()));
    EXPECT_EQ(closed->imgWei(), 0);

    server.setFault(Fault::kNone);
    auto open = clientOf(server.port());
    ASSERT_TRUE(open->setCurImg("image.tif")) << open->error().str();
    server.setFault(c.fault);
    recorded().messages.clear();
    unsigned char* pixels = nullptr;
    EXPECT_FALSE(open->updateImage(0, 0, 300, 300, 1, 1, &pixels));
    EXPECT_EQ(pixels, nullptr);
    EXPECT_EQ(open->getMaybeImgData(), nullptr);
    EXPECT_FALSE(open->updateImage(0, 0, 300, 300, 1, 1, nullptr));
    EXPECT_EQ(recorded().messages.size(), 1U);
    server.setFault(Fault::kNone);
    EXPECT_TRUE(open->updateImage(0, 0, 300, 300, 1, 1, nullptr)) << open->error().str();
  }
  EXPECT_LE(client::RangeCache::shared().bytes(), client::RangeCache::kLimit);
}

TEST_F(Faults, DamagedPixelsAndPassingFaults) {
  FaultServer server(cogBytes());
  auto manager = clientOf(server.port());
  server.setFault(Fault::kBusyOnce);
  ASSERT_TRUE(manager->setCurImg("image.tif")) << "a busy server is asked again";
  EXPECT_EQ(server.requests(), 2);
  server.setFault(Fault::kDamaged);
  EXPECT_FALSE(manager->updateImage(0, 0, 300, 300, 1, 1, nullptr));
  EXPECT_THAT(recorded().messages,
              testing::ElementsAre(testing::HasSubstr("some of its pixels cannot be read")));
  auto other = clientOf(server.port());
  EXPECT_FALSE(other->setCurImg("image.tif"));
  EXPECT_THAT(other->error().str(), testing::HasSubstr("tarnconvert"));
}

TEST_F(Faults, FilesThatCannotBeReadInPiecesAreRefused) {
  Scratch scratch("tarnplain");
  const std::string strips = scratch.at("strips.tif"), large = scratch.at("large.tif");
  ASSERT_TRUE(writeRaster(groundPicture(600, 400), strips));
  ASSERT_TRUE(writeRaster(groundPicture(2200, 300), large, "GTiff", {"TILED=YES"}));
  const struct {
    std::string bytes, words;
  } cases[] = {{readFile(strips, 64 << 20).take(), "has no tiles"},
               {readFile(large, 64 << 20).take(), "has no reduced levels"},
               {std::string(50000, 'x'), "is no TIFF"},
               {cogBytes().substr(0, 60000), "is cut short"}};
  for (const auto& c : cases) {
    FaultServer server(c.bytes);
    auto manager = clientOf(server.port());
    EXPECT_FALSE(manager->setCurImg("image.tif"));
    EXPECT_THAT(manager->error().str(), testing::HasSubstr(c.words));
    EXPECT_THAT(manager->error().str(), testing::HasSubstr("tarnconvert --format cog"));
  }
}

TEST_F(Faults, TheUserCanStopAtAnyTime) {
  TarnClientManager::setTimes({});
  for (const Fault fault : {Fault::kStalled, Fault::kDripping, Fault::kEndless}) {
    FaultServer server(cogBytes());
    auto manager = clientOf(server.port());
    ASSERT_TRUE(manager->setCurImg("image.tif"));
    server.setFault(fault);
    recorded() = {};
    recorded().cancel = true;
    const int before = server.requests();
    EXPECT_FALSE(manager->updateImage(0, 0, 300, 300, 1, 1, nullptr));
    EXPECT_LE(server.requests() - before, 4);
    EXPECT_THAT(manager->error().str(), testing::HasSubstr("was interrupted"));
    EXPECT_THAT(recorded().messages, testing::IsEmpty()) << "who stops knows why";
    recorded().cancel = false;
    server.setFault(Fault::kNone);
    EXPECT_TRUE(manager->updateImage(0, 0, 300, 300, 1, 1, nullptr)) << "and needs no pause";
  }
}

TEST_F(Faults, AFileThatIsReplacedInTheMiddleIsNeverMixed) {
  Scratch scratch("tarnmixed");
  const std::string image = scratch.at("image.tif"), out = scratch.at("out");
  ASSERT_TRUE(makeFolders(out));
  ASSERT_TRUE(writeRaster(groundPicture(1500, 1300, 7), image) && convertToCog(image, out));
  FaultServer server(cogBytes());
  auto manager = clientOf(server.port());
  int calls = 0;
  manager->setAds_name(&calls);
  manager->setUpdFunc([](void* name) { return ++*static_cast<int*>(name); });
  ASSERT_TRUE(manager->setCurImg("image.tif"));
  ASSERT_TRUE(manager->updateImage(0, 0, 500, 500, 1, 1, nullptr));
  server.setFile(readFile(out + "/image.tif", 64 << 20).take());
  // Half of it is known of the old file.
  ASSERT_TRUE(manager->updateImage(0, 0, 900, 500, 1, 1, nullptr)) << manager->error().str();
  EXPECT_EQ(calls, 1);
  auto fresh = clientOf(server.port());
  ASSERT_TRUE(fresh->setCurImg("image.tif"));
  ASSERT_TRUE(fresh->updateImage(0, 0, 900, 500, 1, 1, nullptr));
  EXPECT_TRUE(std::equal(manager->getMaybeImgData(), manager->getMaybeImgData() + 900 * 500 * 3,
                         fresh->getMaybeImgData()));
}

TEST_F(Faults, ASilentServerHoldsUpADrawingOnlyAFewTimes) {
  FaultServer server(cogBytes());
  std::vector<std::unique_ptr<TarnClientManager>> images;
  server.setFault(Fault::kStalled);
  for (int i = 0; i < 20; ++i) {
    images.push_back(clientOf(server.port()));
    EXPECT_FALSE(images.back()->setCurImg("image" + std::to_string(i) + ".tif"));
    EXPECT_FALSE(images.back()->error().isEmpty());
  }
  EXPECT_LE(server.requests(), shortTimes().failures);
}

TEST_F(Faults, AddressesThatAreNoneAreNotAsked) {
  FaultServer server(cogBytes());
  const struct {
    std::string host, port, path;
  } cases[] = {{"127.0.0.1", "0", "image.tif"},
               {"127.0.0.1", server.port(), "../image.tif"},
               {"127.0.0.1", server.port(), "/etc/passwd"},
               {"127.0.0.1/x", server.port(), "image.tif"},
               {"a@127.0.0.1", server.port(), "image.tif"},
               {"file:", server.port(), "image.tif"},
               {"127.0.0.1", "80:" + server.port(), "image.tif"}};
  for (const auto& c : cases) {
    auto manager = clientOf(c.port, c.host);
    EXPECT_FALSE(manager->setCurImg(c.path));
    EXPECT_FALSE(manager->error().isEmpty());
  }
  auto local = clientOf(server.port());
  local->setIsServe(false);
  EXPECT_FALSE(local->connectServe());
  EXPECT_FALSE(local->setCurImg("image.tif"));
  EXPECT_EQ(server.requests(), 0);
}

}  // namespace
}  // namespace tarn::test
