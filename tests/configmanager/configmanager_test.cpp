#include <gtest/gtest.h>
#include <sqlite3.h>

#include <chrono>
#include <string>

#include "base/file.h"
#include "base/path.h"
#include "inc/iappmanager.h"
#include "inc/iconfigmanager.h"
#include "tests/support/recordinginterface.h"

namespace {

using tarn::test::recorded;

class ConfigManager : public ::testing::Test {
 protected:
  void SetUp() override {
    tarn::test::RecordingInterface::registerSelf();
    kel::Object<IAppManager>("N", "test", 1)->loadPlugins("plugins", 0);
    auto folder = tarn::makeTemporaryFolder(::testing::TempDir(), "config");
    ASSERT_TRUE(folder) << folder.message();
    recorded() = {};
    recorded().folder = folder.take();
    path_ = tarn::joinPath(recorded().folder, "tarnconfig.db");
  }
  void TearDown() override { EXPECT_TRUE(tarn::removeAll(recorded().folder)); }

  void writeRaw(const std::string& bytes) { ASSERT_TRUE(tarn::writeFileAtomically(path_, bytes)); }

  static kel::Object<IConfigManager> make() { return {"N", "test", 2}; }

  std::string path_;
};

TEST_F(ConfigManager, KeepsValuesInTheTableAcrossObjects) {
  writeRaw("");  // an empty file is an empty database
  {
    auto config = make();
    ASSERT_FALSE(config.isNull());
    EXPECT_TRUE(config->isOpen());
    EXPECT_EQ(config->databasePath().str(), path_);
    EXPECT_TRUE(config->getValue("CreateImgx").isNull());
    EXPECT_FALSE(config->contains("CreateImgx"));
    EXPECT_TRUE(config->setValue("CreateImgx", false));
    EXPECT_TRUE(config->setValue("临时禁用影像刷新", "pan,zoom,,Orbit"));
    EXPECT_TRUE(config->setValue("it's", ""));
  }
  auto config = make();
  EXPECT_EQ(config->getValue("CreateImgx").toString().str(), "false");
  EXPECT_EQ(config->getValue("临时禁用影像刷新").toString().str(), "pan,zoom,,Orbit");
  EXPECT_TRUE(config->contains("it's"));
  EXPECT_TRUE(config->setValue("CreateImgx", "true"));
  EXPECT_EQ(config->getValue("CreateImgx").toString().str(), "true");
  EXPECT_TRUE(config->removeValue("CreateImgx"));
  EXPECT_FALSE(config->removeValue("CreateImgx"));
  EXPECT_TRUE(recorded().messages.empty());

  sqlite3* database = nullptr;
  ASSERT_EQ(sqlite3_open(path_.c_str(), &database), SQLITE_OK);
  EXPECT_EQ(
      sqlite3_exec(database, "SELECT key, value FROM globaldefines", nullptr, nullptr, nullptr),
      SQLITE_OK);
  sqlite3_close(database);
}

TEST_F(ConfigManager, AMissingOrDamagedDatabaseIsNamedOnceAndValuesAreNull) {
  const struct {
    const char* bytes;
    const char* reason;
  } cases[] = {
      {nullptr, ": the configuration database is missing"},
      {"this is no database at all, but long enough to be read as a header of one........"
       "......................................................................................",
       ": the configuration database cannot be read: file is not a database"},
  };
  for (const auto& one : cases) {
    recorded().messages.clear();
    if (one.bytes) writeRaw(one.bytes);
    auto config = make();
    auto again = make();
    EXPECT_FALSE(config->isOpen());
    EXPECT_TRUE(config->getValue("CreateImgx").isNull());
    ASSERT_EQ(recorded().messages.size(), 1U);
    EXPECT_EQ(recorded().messages[0], path_ + one.reason);
    EXPECT_FALSE(config->setValue("CreateImgx", true));
    EXPECT_EQ(recorded().messages.size(), 2U);
    // Nothing is made or changed in its place.
    EXPECT_EQ(tarn::fileKind(path_) == tarn::FileKind::kMissing, one.bytes == nullptr);
  }
}

TEST_F(ConfigManager, ALockedDatabaseGivesUpAfterTwoSeconds) {
  writeRaw("");
  ASSERT_TRUE(make()->setValue("CreateImgx", "false"));
  sqlite3* holder = nullptr;
  ASSERT_EQ(sqlite3_open(path_.c_str(), &holder), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(holder, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr), SQLITE_OK);
  const auto begin = std::chrono::steady_clock::now();
  auto config = make();
  const std::chrono::duration<double> waited = std::chrono::steady_clock::now() - begin;
  EXPECT_GT(waited.count(), 1.5);
  EXPECT_LT(waited.count(), 6.0);
  EXPECT_FALSE(config->isOpen());
  EXPECT_TRUE(config->getValue("CreateImgx").isNull());
  ASSERT_EQ(recorded().messages.size(), 1U);
  EXPECT_NE(recorded().messages[0].find("database is locked"), std::string::npos);
  sqlite3_exec(holder, "ROLLBACK", nullptr, nullptr, nullptr);
  sqlite3_close(holder);
  EXPECT_EQ(make()->getValue("CreateImgx").toString().str(), "false");
}

}  // namespace
