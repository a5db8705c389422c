// A server that does everything wrong: what the client says, how long it takes, what it keeps.
#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>

#include "base/file.h"
#include "client.h"
#include "faultserver.h"
#include "imageclient/http.h"
#include "imageclient/httpsource.h"
#include "imageclient/rangecache.h"
#include "imageclient/serverfolders.h"
#include "images.h"
#include "tests/support/recordinginterface.h"

namespace tarn::test {
namespace {

using Clock = std::chrono::steady_clock;
using ::testing::HasSubstr;

int milliseconds(Clock::time_point since) {
  return static_cast<int>(
      std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - since).count());
}

/// By how many bytes the memory of this process grows at most while something runs; 0 where that
/// cannot be told, or tells more about a sanitizer.
template <typename Work>
int64_t growthDuring(const Work& work) {
  const auto kilobytes = [](const char* name) -> int64_t {
    const auto status = readFile("/proc/self/status", 1 << 20);
    const size_t at = status ? status.value().find(name) : std::string::npos;
    return at == std::string::npos ? 0 : std::atoll(status.value().c_str() + at + strlen(name));
  };
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  const bool canTell = false;
#else
  // "5": the peak begins anew.
  const bool canTell = std::ofstream("/proc/self/clear_refs").put('5').flush().good();
#endif
  const int64_t before = kilobytes("VmRSS:");
  work();
  return canTell ? 1024 * (kilobytes("VmHWM:") - before) : 0;
}

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
  /// How long a request may take; 0 as ever.
  int request = 0;
};

const FaultCase kFaults[] = {
    {Fault::kReset, "broke off", 3},
    {Fault::kStalled, "does not answer", 1, 400},
    {Fault::kDripping, "does not answer, or too slowly", 1},
    {Fault::kHalfBody, "broke off", 3},
    {Fault::kWrongRange, "other bytes than", 1},
    {Fault::kShortRange, "than it was asked for", 1},
    {Fault::kWholeFile, "does not give out parts", 1},
    {Fault::kGarbage, "no usable answer", 1},
    {Fault::kEndless, "more than it was asked for", 1},
    {Fault::kEndlessHead, "more than it was asked for", 1},
    {Fault::kLoop, "in a circle", 6},
    {Fault::kElsewhere, "another place", 1},
    {Fault::kToFile, "another place", 1},
    {Fault::kGone, "not on the server", 1},
    {Fault::kBusy, "error 503", 3},
};

/// Opening, and reading of an image that is open, each with one clear message, nothing shown and an
/// end in time.
void meetFault(const FaultCase& c) {
  SCOPED_TRACE(c.words);
  // Far from what an operation may take, near for a machine that has much else to do.
  constexpr int kMargin = 3000;
  ClientTimes times = shortTimes();
  if (c.request > 0) times.request = c.request;
  TarnClientManager::setTimes(times);
  FaultServer server(cogBytes());
  server.setFault(c.fault);
  recorded().messages.clear();
  auto closed = clientOf(server.port());
  auto start = Clock::now();
  EXPECT_FALSE(closed->setCurImg("image.tif"));
  EXPECT_LT(milliseconds(start), times.operation + kMargin);
  EXPECT_EQ(server.requests(), c.tries);
  EXPECT_THAT(recorded().messages, testing::ElementsAre(HasSubstr(c.words)));
  EXPECT_THAT(closed->error().str(), testing::StartsWith("127.0.0.1:" + server.port()));
  EXPECT_EQ(closed->imgWei(), 0);

  server.setFault(Fault::kNone);
  // Where the fault is to wait it waits shortly, and what should come may then need some tries on a
  // machine that has much else to do.
  constexpr int kTries = 20;
  const bool waits = c.request > 0 || c.fault == Fault::kDripping;
  times = waits ? shortTimes() : ClientTimes();
  if (waits) times.request = 400;
  times.firstWait = shortTimes().firstWait;
  times.failures = 3 * kTries;
  TarnClientManager::setTimes(times);
  auto open = clientOf(server.port());
  bool isThere = open->setCurImg("image.tif");
  for (int i = 0; i < kTries && !isThere; ++i) isThere = open->isReady();
  ASSERT_TRUE(isThere) << open->error().str();
  server.setFault(c.fault);
  recorded().messages.clear();
  unsigned char* pixels = nullptr;
  start = Clock::now();
  EXPECT_FALSE(open->updateImage(0, 0, 300, 300, 1, 1, &pixels));
  EXPECT_LT(milliseconds(start), times.operation + kMargin);
  EXPECT_EQ(pixels, nullptr);
  EXPECT_EQ(open->getMaybeImgData(), nullptr);
  EXPECT_FALSE(open->updateImage(0, 0, 300, 300, 1, 1, nullptr));
  EXPECT_EQ(recorded().messages.size(), 1U);
  server.setFault(Fault::kNone);
  bool isRead = false;
  for (int i = 0; i < kTries && !isRead; ++i)
    isRead = open->updateImage(0, 0, 300, 300, 1, 1, nullptr);
  EXPECT_TRUE(isRead) << open->error().str();
}

TEST_F(Faults, EachIsToldOnceAndOver) {
  constexpr int64_t kMostGrowth = 64 << 20;
  const int64_t growth = growthDuring([] {
    for (const FaultCase& c : kFaults) meetFault(c);
    // A list of images that never ends.
    FaultServer server(std::string(100, 'x'));
    server.setFault(Fault::kEndless);
    client::Operation operation(ClientTimes{}, nullptr);
    const auto listed =
        client::readServerFolder({"127.0.0.1", std::stoi(server.port()), false, {}}, "", operation);
    EXPECT_THAT(listed.message(), HasSubstr("more than it was asked for"));
  });
  EXPECT_LE(growth, kMostGrowth);
  RecordProperty("bytes_grown", std::to_string(growth));
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
  server.setFault(Fault::kNone);
  EXPECT_TRUE(manager->updateImage(0, 0, 300, 300, 1, 1, nullptr)) << "wrong bytes are not kept";
  server.setFault(Fault::kDamaged);
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
  // Everything waits for seconds by itself.
  TarnClientManager::setTimes({});
  const struct {
    Fault fault;
    bool isTogether;
  } cases[] = {{Fault::kStalled, false}, {Fault::kDripping, false}, {Fault::kStalled, true}};
  for (const auto& [fault, isTogether] : cases) {
    FaultServer server(cogBytes());
    auto manager = clientOf(server.port());
    ASSERT_TRUE(manager->setCurImg("image.tif"));
    server.setFault(fault);
    recorded() = {};
    constexpr int kAfter = 150;
    const auto start = Clock::now();
    recorded().wantsToStop = [&] { return milliseconds(start) >= kAfter; };
    if (isTogether) {
      manager->announceWindow(0, 0, 1, 1, 300, 300);
      TarnClientManager::fetchAnnounced({manager.get()});
    }
    EXPECT_FALSE(manager->updateImage(0, 0, 300, 300, 1, 1, nullptr));
    const int late = milliseconds(start) - kAfter;
    EXPECT_GE(late, 0);
    EXPECT_LT(late, 1000);
    std::printf("returned %d ms after it was to stop\n", late);
    EXPECT_THAT(manager->error().str(), HasSubstr("was interrupted"));
    EXPECT_THAT(recorded().messages, testing::IsEmpty()) << "who stops knows why";
    recorded().wantsToStop = nullptr;
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
  ClientTimes times = shortTimes();
  times.request = 300;
  TarnClientManager::setTimes(times);
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

/// Several images of a server, as a drawing has them.
struct Several {
  explicit Several(const std::string& port) {
    for (int i = 0; i < 5; ++i) {
      managers.push_back(clientOf(port));
      clients.push_back(managers.back().get());
      // Only says which: the server has nothing to tell yet.
      managers.back()->setCurImg("image" + std::to_string(i) + ".tif");
    }
  }
  void announce() const {
    for (TarnClientManager* client : clients) client->announceWindow(10, 10, 1.5, 1.5, 200, 150);
  }
  bool look(size_t i) const { return clients[i]->updateImage(0, 0, 200, 150, 1, 1, nullptr); }

  std::vector<std::unique_ptr<TarnClientManager>> managers;
  std::vector<TarnClientManager*> clients;
};

TEST_F(Faults, SeveralImagesAreAskedForTogether) {
  ClientTimes times = shortTimes();
  times.failures = 50;
  TarnClientManager::setTimes(times);
  FaultServer server(cogBytes());
  server.setFault(Fault::kGone);
  const Several images(server.port());
  server.setFault(Fault::kNone);
  server.waitForCompany(3, 400);
  TarnClientManager::makeReady(images.clients);
  EXPECT_GE(server.mostAtOnce(), 3);
  for (const TarnClientManager* client : images.clients)
    EXPECT_EQ(const_cast<TarnClientManager*>(client)->imgWei(), 1500);
  images.announce();
  TarnClientManager::fetchAnnounced(images.clients);
  const int known = server.requests();
  for (size_t i = 0; i < images.clients.size(); ++i) EXPECT_TRUE(images.look(i));
  EXPECT_EQ(server.requests(), known) << "all that was needed has come";
  // What cannot be had is told by each, and not asked for twice.
  recorded().messages.clear();
  server.setFault(Fault::kGone);
  for (TarnClientManager* client : images.clients) client->announceWindow(900, 900, 1, 1, 200, 150);
  TarnClientManager::fetchAnnounced(images.clients);
  const int asked = server.requests();
  for (size_t i = 0; i < images.clients.size(); ++i) EXPECT_FALSE(images.look(i));
  EXPECT_EQ(server.requests(), asked);
  EXPECT_THAT(recorded().messages, testing::Each(HasSubstr("is not on the server")));
  EXPECT_EQ(recorded().messages.size(), images.clients.size());
  server.setFault(Fault::kNone);
  EXPECT_TRUE(images.look(0)) << "and the next look asks anew";
  EXPECT_LE(server.connections(), 12) << "they are kept";
  EXPECT_GT(server.requests(), 2 * 8);
}

}  // namespace
}  // namespace tarn::test
