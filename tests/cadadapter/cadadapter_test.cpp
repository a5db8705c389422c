#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/text.h"
#include "inc/iappmanager.h"
#include "inc/icadadapter.h"
#include "inc/iprogressbar.h"
#include "inc/iuserinterface.h"
#include "inc/kcore.h"
#include "rxdlinkr.h"
#include "tests/support/modulehost.h"

namespace {

const std::wstring kModule = tarn::toWide(TARN_BIN_DIR "/adapter_autocad.arx");

class CadAdapter : public ::testing::Test {
 protected:
  void SetUp() override {
    kel::Core::setAssertHandler([](const char*, const char*, int) {});
    ASSERT_TRUE(acrxDynamicLinker->loadModule(kModule.c_str(), false));
  }
  void TearDown() override {
    acrxDynamicLinker->unloadModule(kModule.c_str());
    kel::Core::setAssertHandler(nullptr);
  }
  template <typename T>
  static kel::Object<T> make() {
    return {"N", "test", 1};
  }

  tarn::test::ModuleHost host_;
};

TEST_F(CadAdapter, ServicesAreThereExactlyWhileTheModuleIsLoaded) {
  auto kept = make<IUserInterface>();
  ASSERT_FALSE(kept.isNull());
  EXPECT_FALSE(make<ICadAdapter>().isNull());
  EXPECT_FALSE(make<IProgressBar>().isNull()) << "plug-ins come with the adapter";
  EXPECT_GT(make<IAppManager>()->pluginCount(), 0);
  ASSERT_TRUE(acrxDynamicLinker->unloadModule(kModule.c_str()));
  EXPECT_TRUE(make<ICadAdapter>().isNull());
  EXPECT_TRUE(make<IUserInterface>().isNull());
  // Objects handed out before still answer.
  kept->message("still there");
  EXPECT_NE(host_.printed().find("still there"), std::string::npos);
  ASSERT_TRUE(acrxDynamicLinker->loadModule(kModule.c_str(), false));
  EXPECT_FALSE(make<ICadAdapter>().isNull());
}

TEST_F(CadAdapter, AnswersForTheHost) {
  auto adapter = make<ICadAdapter>();
  adapter->prepareAdapter();
  EXPECT_TRUE(adapter->hasDocument());
  EXPECT_TRUE(adapter->isModelSpace());
  EXPECT_EQ(adapter->hostVersion().str().substr(0, 4), "23.1");
  host_.run("ZOOM C 40500123.456,3512345.678 300");
  double x = 0;
  double y = 0;
  adapter->viewCenter(x, y);
  EXPECT_EQ(x, 40500123.456);
  EXPECT_EQ(y, 3512345.678);
  EXPECT_EQ(adapter->viewHeight(), 300);
  EXPECT_EQ(adapter->viewTwist(), 0);
  int width = 0;
  int height = 0;
  adapter->screenSize(width, height);
  EXPECT_EQ(width, 1000);
  EXPECT_EQ(height, 600);
  EXPECT_TRUE(adapter->setSystemVariable("USERR1", 1000.0));
  EXPECT_EQ(adapter->systemVariable("userr1").toString().str(), "1000");
  EXPECT_FALSE(adapter->setSystemVariable("VIEWSIZE", 1.0));
  EXPECT_TRUE(adapter->systemVariable("NOSUCHVARIABLE").isNull());
  kel::DString path;
  EXPECT_TRUE(adapter->findFile("tarnconfig.db", path));
  EXPECT_EQ(path.str(), host_.folder + "/system/tarnconfig.db");
  EXPECT_FALSE(adapter->findFile("no such file", path));
  EXPECT_FALSE(adapter->moduleState("image"));
  adapter->setModuleState("image", true);
  EXPECT_TRUE(make<ICadAdapter>()->moduleState("image"));
}

TEST_F(CadAdapter, TheUserInterfaceReachesTheHost) {
  auto ui = make<IUserInterface>();
  EXPECT_EQ(ui->folder(IUserInterface::Folder::kConfiguration).str(), host_.folder + "/system");
  EXPECT_EQ(ui->folder(IUserInterface::Folder::kProfile).str(), host_.folder);
  host_.ui.files = {{"/a/影像.tif", "/b.tif"}};
  const kel::StringList files = ui->askFiles("title", "tif|*.tif||", true);
  ASSERT_EQ(files.size(), 2U);
  EXPECT_EQ(files[0].str(), "/a/影像.tif");
  EXPECT_TRUE(ui->askFiles("title", "tif|*.tif||", false).empty());
  host_.frontEnd.answers = {"2"};
  EXPECT_EQ(ui->choose("which", {"one", "two"}), 1);
  host_.frontEnd.answers = {"3"};
  EXPECT_EQ(ui->choose("which", {"one", "two"}), -1);
  EXPECT_EQ(ui->choose("which", {"one"}), -1);
  EXPECT_FALSE(ui->cancelWanted());
}

/// Two folders in one another: "top.tif", "east/a 1.tif" ... "east/a 12.tif", "east/deep/100%.tif".
kel::Listing exampleListing() {
  kel::Listing listing;
  listing.title = "Images of the server";
  listing.read = [](const kel::DString& folder, kel::List<kel::ListingEntry>& entries) {
    const auto add = [&](const std::string& name, bool isFolder) {
      kel::ListingEntry entry;
      entry.key = folder.isEmpty() ? name : folder.str() + "|" + name;
      entry.name = name;
      entry.isFolder = isFolder;
      if (!isFolder) entry.bytes = 1536;
      entries.push_back(entry);
    };
    if (folder.isEmpty()) {
      add("top.tif", false);
      add("east", true);
      add("away", true);
    } else if (folder == "east") {
      for (int i = 12; i > 0; --i) add("a " + std::to_string(i) + ".tif", false);
      add("deep", true);
    } else if (folder == "east|deep") {
      add("影像 100%.tif", false);
    } else {
      return kel::DString("The folder cannot be reached.");
    }
    return kel::DString();
  };
  return listing;
}

TEST_F(CadAdapter, ImagesAreChosenFromAListing) {
  auto ui = make<IUserInterface>();
  const struct {
    std::deque<std::optional<std::string>> answers;
    kel::StringList chosen;
  } cases[] = {
      // Folders come first; numbers in names count by their value.
      {{"2", "3", "4", "3", ""}, {"east|a 2.tif", "east|a 3.tif"}},
      {{"3", ""}, {"top.tif"}},
      {{"top.tif", "east/a 10.tif", "east", "deep", "..", "a 3.tif", ""},
       {"top.tif", "east|a 10.tif", "east|a 3.tif"}},
      {{"100%", "A 11", ""}, {"east|deep|影像 100%.tif", "east|a 11.tif"}},
      {{"east a", "2", "nothing of this", "999", ""}, {"east|a 2.tif"}},
      {{"top.tif"}, {}},
      {{""}, {}},
  };
  std::string shown;
  for (const auto& one : cases) {
    host_.frontEnd.answers = one.answers;
    EXPECT_TRUE(ui->chooseFromListing(exampleListing()) == one.chosen) << host_.printed();
    shown += host_.printed();
  }
  EXPECT_NE(shown.find("The folder cannot be reached."), std::string::npos);
  EXPECT_NE(shown.find("top.tif  1.5 kB"), std::string::npos);
  EXPECT_NE(shown.find("\"nothing of this\": nothing of that name."), std::string::npos);
  kel::Listing one = exampleListing();
  one.severalAllowed = false;
  host_.frontEnd.answers = {"top.tif", "east"};
  EXPECT_EQ(ui->chooseFromListing(one).size(), 1U);
  EXPECT_EQ(host_.frontEnd.answers.size(), 1U);
}

}  // namespace
