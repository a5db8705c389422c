// The finder: what the configuration says, and choosing among the images of servers.
#include <gmock/gmock.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>
#include <cmath>
#include <map>

#include "base/file.h"
#include "imageclient/qfilefind.h"
#include "imageclient/tarnclientmanager.h"
#include "images.h"
#include "inc/iconfigmanager.h"
#include "inc/kimageservers.h"
#include "tests/support/recordinginterface.h"
#include "webserver.h"

namespace tarn::test {
namespace {

std::map<std::string, kel::Variant>& values() {
  static std::map<std::string, kel::Variant> instance;
  return instance;
}

/// Values in memory: what is tested is who asks for which.
class Values final : public kel::Implements<Values, IConfigManager> {
 public:
  static constexpr const char* kName = "test.Values";
  kel::DString databasePath() override { return {}; }
  bool isOpen() override { return true; }
  bool contains(const kel::DString& key) override { return values().count(key.str()) != 0; }
  bool removeValue(const kel::DString& key) override { return values().erase(key.str()) != 0; }
  kel::Variant getValue(const kel::DString& key) override { return values()[key.str()]; }
  bool setValue(const kel::DString& key, const kel::Variant& value) override {
    values()[key.str()] = value;
    return true;
  }
};

class Finder : public testing::Test {
 protected:
  void SetUp() override {
    recorded() = {};
    values().clear();
    RecordingInterface::registerSelf();
    Values::registerSelf();
    TarnClientManager::setTimes({});
  }
  void TearDown() override { kel::unregisterImplementation("N", IConfigManager::interfaceId()); }

  static void configure(const std::vector<std::pair<std::string, std::string>>& servers) {
    kel::List<kel::ImageServer> list;
    for (const auto& [name, address] : servers) {
      kel::ImageServer server;
      ASSERT_TRUE(kel::parseImageServer(name, address, "", server).isEmpty());
      list.push_back(server);
    }
    values()[kel::kImageServersKey] = kel::textOf(list);
  }
};

std::vector<std::string> namesOf(const kel::List<kel::ListingEntry>& entries) {
  std::vector<std::string> names;
  for (const kel::ListingEntry& entry : entries)
    names.push_back(entry.name.str() + (entry.isFolder ? "/" : ""));
  return names;
}

TEST_F(Finder, TheConfigurationSaysHowImagesAreLoaded) {
  EXPECT_EQ(QFileFind::Instance().loadImgWay(), LOADWAY::kLocal);
  values()[kel::kLoadWayKey] = 1;
  EXPECT_EQ(QFileFind::Instance().loadImgWay(), LOADWAY::kServer);
  values()[kel::kLoadWayKey] = "2";
  EXPECT_EQ(QFileFind::Instance().loadImgWay(), LOADWAY::kLocal);
}

TEST_F(Finder, TheUserWalksThroughFoldersAndSeesPictures) {
  Scratch scratch("tarnfinder");
  const std::string root = scratch.at("store"), image = scratch.at("北 100%.tif");
  ASSERT_TRUE(makeFolders(root + "/城区 2026"));
  ASSERT_TRUE(makeFolders(root + "/listed"));
  ASSERT_TRUE(writeRaster(groundPicture(640, 480), image));
  ASSERT_TRUE(convertToCog(image, root + "/城区 2026") && convertToCog(image, root + "/listed"));
  ASSERT_EQ(runProgram("tarnconvert", {"--catalog", root + "/listed"}).exitCode, 0);
  WebServer server(root);
  ASSERT_TRUE(server.isUp());
  const std::string address = "127.0.0.1:" + server.portText();
  configure({{"Ortho", address}, {"Away", "127.0.0.1:1"}});
  const std::string key = "北 100%.tif%$#@" + address + "/城区 2026:北 100%.tif";
  recorded().choose = [&](const kel::Listing& listing) -> kel::StringList {
    kel::List<kel::ListingEntry> entries;
    EXPECT_TRUE(listing.read("", entries).isEmpty());
    EXPECT_THAT(namesOf(entries), testing::ElementsAre("Ortho/", "Away/"));
    const kel::DString ortho = entries[0].key;
    EXPECT_THAT(listing.read(entries[1].key, entries).str(),
                testing::HasSubstr("cannot be reached"));
    EXPECT_TRUE(listing.read(ortho, entries).isEmpty());
    EXPECT_THAT(namesOf(entries), testing::ElementsAre("listed/", "城区 2026/"));
    const kel::DString listed = entries[0].key;
    EXPECT_TRUE(listing.read(entries[1].key, entries).isEmpty());
    EXPECT_THAT(namesOf(entries), testing::ElementsAre("北 100%.tif"));
    EXPECT_EQ(entries[0].key.str(), key);
    EXPECT_EQ(entries[0].bytes,
              static_cast<int64_t>(fileTimes(root + "/城区 2026/北 100%.tif").size));
    EXPECT_FALSE(entries[0].time.isEmpty());
    EXPECT_EQ(listing.preview(entries[0].key).compare(0, 2, "\xFF\xD8"), 0);
    EXPECT_TRUE(listing.read(listed, entries).isEmpty());
    EXPECT_EQ(entries.size(), 1U);
    EXPECT_TRUE(entries[0].hasFootprint);
    EXPECT_EQ(entries[0].footprint.left, 500000);
    EXPECT_EQ(entries[0].footprint.right, 500320);
    EXPECT_EQ(entries[0].footprint.bottom, 3399760);
    EXPECT_EQ(entries[0].footprint.top, 3400000);
    return {key};
  };
  kel::DString imageName;
  const kel::StringList chosen = QFileFind::Instance().getImgInfo(imageName);
  EXPECT_THAT(chosen, testing::ElementsAre(kel::DString(key)));
  EXPECT_EQ(imageName.str(), key);
  recorded().choose = nullptr;
  EXPECT_TRUE(QFileFind::Instance().getImgInfo(imageName).empty());
  EXPECT_TRUE(imageName.isEmpty());
}

/// The outline of an image on the globe, as GDAL says it.
QJsonArray globeOutlineOf(const std::string& image) {
  const std::string json = runProgram("/usr/bin/gdalinfo", {"-json", image}).output;
  const QJsonObject info = QJsonDocument::fromJson(QByteArray::fromStdString(json)).object();
  return info["wgs84Extent"].toObject()["coordinates"].toArray().at(0).toArray();
}

TEST_F(Finder, CataloguesSayWhereImagesLie) {
  Scratch scratch("tarnoutline");
  const std::string image = scratch.at("zone 40.tif"), plain = scratch.at("plain.tif");
  ASSERT_TRUE(writeRaster(groundPicture(700, 500), plain));
  ASSERT_EQ(
      runProgram("/usr/bin/gdal_translate", {"-q", "-a_srs", "EPSG:4528", "-a_ullr", "40500000",
                                             "3400000", "40500350", "3399750", plain, image})
          .exitCode,
      0);
  const std::string root = scratch.at("store");
  ASSERT_TRUE(makeFolders(root) && convertToCog(image, root) && convertToCog(plain, root));
  ASSERT_EQ(runProgram("tarnconvert", {"--catalog", root}).exitCode, 0);
  const auto text = readFile(root + "/catalog.json", 1 << 20);
  ASSERT_TRUE(text);
  const QJsonArray features = QJsonDocument::fromJson(QByteArray::fromStdString(text.value()))
                                  .object()["features"]
                                  .toArray();
  ASSERT_EQ(features.size(), 2);
  const QJsonObject unknown = features.at(0).toObject(), placed = features.at(1).toObject();
  EXPECT_TRUE(unknown["geometry"].isNull()) << "no coordinate system, no place on the globe";
  EXPECT_TRUE(unknown["properties"].toObject().contains("proj:geometry"));
  const QJsonArray ring = placed["geometry"].toObject()["coordinates"].toArray().at(0).toArray();
  const QJsonArray expected = globeOutlineOf(root + "/zone 40.tif");
  ASSERT_GE(expected.size(), 4);
  for (const QJsonValue& corner : expected) {
    const bool isThere = std::any_of(ring.begin(), ring.end(), [&](const QJsonValue& point) {
      constexpr double kNear = 1e-6;
      return std::fabs(point.toArray().at(0).toDouble() - corner.toArray().at(0).toDouble()) <
                 kNear &&
             std::fabs(point.toArray().at(1).toDouble() - corner.toArray().at(1).toDouble()) <
                 kNear;
    });
    EXPECT_TRUE(isThere) << corner.toArray().at(0).toDouble();
  }
  EXPECT_EQ(placed["properties"].toObject()["proj:epsg"].toInt(), 4528);
  EXPECT_EQ(placed["bbox"].toArray().size(), 4);
}

TEST_F(Finder, ReleasingByPathGoesToWhoHoldsTheImages) {
  EXPECT_FALSE(AbsImageClient::close("a.tif"));
  std::vector<std::string> asked;
  AbsImageClient::setReleaser([&](const kel::DString& path) {
    asked.push_back(path.str());
    return path == "a.tif";
  });
  EXPECT_TRUE(AbsImageClient::close("a.tif"));
  EXPECT_FALSE(AbsImageClient::close("b.tif"));
  EXPECT_THAT(asked, testing::ElementsAre("a.tif", "b.tif"));
  AbsImageClient::setReleaser({});
  EXPECT_FALSE(AbsImageClient::close("a.tif"));
}

}  // namespace
}  // namespace tarn::test
