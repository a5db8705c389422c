#include <gtest/gtest.h>

#include <string>

#include "base/file.h"
#include "base/library.h"
#include "base/path.h"
#include "inc/iappmanager.h"
#include "inc/kcore.h"
#include "tests/kelpie_core/testplugin.h"

namespace {

const std::string kGood = TEST_PLUGIN_DIR "/good";
const std::string kBad = TEST_PLUGIN_DIR "/bad";

TEST(Plugins, LoadOnceAndRegisterWithTheFactory) {
  kel::Object<IAppManager> manager("N", "plugins_test", 1);
  ASSERT_FALSE(manager.isNull());
  EXPECT_TRUE(tarn::isSameFile(manager->applicationFolder().str(), TARN_BIN_DIR));
  const int before = manager->pluginCount();
  EXPECT_TRUE(manager->loadPlugins(kGood.c_str(), 0));
  EXPECT_EQ(manager->pluginCount(), before + 1);
  kel::Object<ITestObject> made("N", "plugins_test", 2);
  ASSERT_FALSE(made.isNull());
  EXPECT_EQ(made->answer(), 42);

  // Another manager object knows what is loaded; a second load does nothing.
  kel::Object<IAppManager> other("N", "plugins_test", 3);
  EXPECT_TRUE(other->loadPlugins(kGood.c_str(), 0));
  EXPECT_EQ(other->pluginCount(), before + 1);
}

TEST(Plugins, BadFilesAreNamedInTheLogAndTheOthersStillLoad) {
  const auto made = tarn::makeTemporaryFolder(::testing::TempDir(), "kelpie");
  ASSERT_TRUE(made) << made.message();
  const std::string& folder = made.value();
  const std::string logFolder = tarn::joinPath(folder, "log");
  kel::Core::startLog(logFolder.c_str());
  const std::string ending(tarn::sharedLibraryExtension());
  const std::string text = tarn::joinPath(folder, "text" + ending);
  ASSERT_TRUE(tarn::writeFileAtomically(text, "not a library"));
  ASSERT_TRUE(tarn::writeFileAtomically(tarn::joinPath(folder, "readme.txt"), "ignored"));

  kel::Object<IAppManager> manager("N", "plugins_test", 4);
  const int before = manager->pluginCount();
  EXPECT_FALSE(manager->loadPlugins(folder.c_str(), 0));
  EXPECT_FALSE(manager->loadPlugins(kBad.c_str(), 0));
  EXPECT_FALSE(manager->loadPlugins((folder + "/none").c_str(), 0));
  EXPECT_FALSE(manager->loadPlugins("no such folder beside the core", 0));
  EXPECT_EQ(manager->pluginCount(), before);

  const auto log = tarn::readFile(tarn::joinPath(logFolder, "tarn.log"), 1 << 20);
  ASSERT_TRUE(log) << log.message();
  EXPECT_NE(log.value().find("text" + ending + ": cannot be loaded: "), std::string::npos)
      << log.value();
  EXPECT_NE(
      log.value().find("kelpie_no_entry_plugin" + ending + ": has no entry kelRegisterPlugin"),
      std::string::npos);
  EXPECT_NE(log.value().find(folder + "/none: no such folder"), std::string::npos);
  EXPECT_EQ(log.value().find("readme"), std::string::npos);
  // The log is open, and what is open cannot go everywhere.
  kel::Core::startLog(::testing::TempDir().c_str());
  EXPECT_TRUE(tarn::removeAll(folder));
}

}  // namespace
