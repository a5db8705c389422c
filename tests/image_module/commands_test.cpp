// The module's commands by script in the real host, module and framework.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "acdocman.h"
#include "base/text.h"
#include "inc/icadadapter.h"
#include "rxdlinkr.h"
#include "tests/support/lasfiles.h"
#include "tests/support/modulehost.h"

namespace {

using ::testing::HasSubstr;
using ::testing::Not;

class Commands : public ::testing::Test {
 protected:
  void SetUp() override {
    for (const char* name : {"adapter_autocad.arx", "image.arx"}) {
      const std::string path = std::string(TARN_BIN_DIR "/") + name;
      ASSERT_TRUE(acrxDynamicLinker->loadModule(tarn::toWide(path).c_str(), false)) << path;
    }
    host_.printed();
  }
  void TearDown() override {
    for (const char* name : {"image.arx", "adapter_autocad.arx"}) {
      acrxDynamicLinker->unloadModule(tarn::toWide(name).c_str());
    }
  }

  tarn::test::ModuleHost host_;
};

TEST_F(Commands, SettingsAreStoredAsTypedAndShown) {
  const struct {
    const char* command;
    std::optional<std::string> answer;
    const char* shown;
    bool isChanged;
  } cases[] = {
      {"SetImageClarityRatio", "4", "速度越快)：<1>", true},
      {"SetImageClarityRatio", "", "速度越快)：<4>", true},
      {"SetImageClarityRatio", std::nullopt, "速度越快)：<4>", false},
      {"SetImageClarityRatio", "0", "速度越快)：<4>", true},
      {"SetImageClarityRatio", "-3", "速度越快)：<0>", true},
      {"SetImageClarityRatio", std::nullopt, "速度越快)：<-3>", false},
      {"SetImageOffsetRatio", "", "\n指定外扩比率(数值越大，外扩距离越大)：<1.0>", true},
      {"SetImageOffsetRatio", "0.5", "外扩距离越大)：<1.0>", true},
      {"SetImageOffsetRatio", std::nullopt, "外扩距离越大)：<0.5>", false},
      {"SetImageOffsetRatio", "2.25", "外扩距离越大)：<0.5>", true},
      {"SetImageOffsetRatio", std::nullopt, "外扩距离越大)：<2.2>", false},
  };
  for (const auto& one : cases) {
    SCOPED_TRACE(std::string(one.command) + " " + one.answer.value_or("cancel"));
    host_.frontEnd.answers = {one.answer};
    const std::string printed = host_.run(one.command);
    EXPECT_THAT(printed, HasSubstr(one.shown));
    EXPECT_EQ(printed.find("\n修改成功!") != std::string::npos, one.isChanged) << printed;
    EXPECT_THAT(printed, Not(HasSubstr("修改失败")));
  }
}

TEST_F(Commands, EmptyCommandsRunAndSayNothing) {
  for (const char* command : {"IOTEST", "_IOTEST", "DelImage", "_DelImage", "_AddImage"}) {
    const int failed = host_.app->failedCommands();
    EXPECT_EQ(host_.run(command), "") << command;
    EXPECT_EQ(host_.app->failedCommands(), failed) << command;
  }
}

/// What a command prints, and that it does nothing else, when what it needs is not there: an image
/// file, a choice of the user, a component.
TEST_F(Commands, WithoutWhatTheyNeedTheyEndWithTheirMessage) {
  const std::string noEntity = "\n当前文档没有实体请先添加影像实体";
  // The component names the file, then the command says its own.
  const std::string noFile = "\nD:\\tifimage\\image.tif: cannot be found打开影像出错";
  const struct {
    const char* typed;
    std::string printed;
  } cases[] = {
      {"DrawImage", "0获取数据失败"},
      {"ShowImage", "0获取数据失败"},
      {"addImage", ""},
      {"loadCloud", ""},
      {"rectifyImage", noEntity},
      {"_image_ShowImage", noFile},
      {"_RectifyImage", noFile},
      {"ImageConversion",
       "\n影像转换\n\n影像与文件夹\nFile or folder (Enter ends the list): \n*Cancel*\n"},
      {"OpenImageList", ""},
      {"_image_List", ""},
      {"_List", ""},
      {"testimage", ""},
      {"EraseInvalidImage", "\n共删除了0个无效的Image对象！"},
  };
  host_.run("LINE 0,0 1,1 ");
  for (const auto& one : cases) {
    SCOPED_TRACE(one.typed);
    const int failed = host_.app->failedCommands();
    EXPECT_EQ(host_.run(one.typed), one.printed);
    EXPECT_EQ(host_.app->failedCommands(), failed);
    EXPECT_EQ(host_.ui.boxes.size(), 0U);
    EXPECT_FALSE(host_.app->commandActive());
  }
}

TEST_F(Commands, LoadCloudAttachesWhatIsChosen) {
  tarn::test::LasSpec spec;
  spec.points = {{0, 0, 1, 255, 0, 0}, {100, 100, 2, 0, 255, 0}};
  const std::string path = tarn::joinPath(host_.folder, "点 云.las");
  ASSERT_TRUE(tarn::writeFileAtomically(path, tarn::test::lasBytes(spec)));
  host_.ui.files = {{path}};
  const std::string printed = host_.run("loadCloud");
  EXPECT_THAT(printed, HasSubstr(path));
  EXPECT_THAT(printed, HasSubstr("0,0,0"));
  ASSERT_EQ(host_.ui.requests.size(), 1U);
  const tarn::host::FileRequest& request = host_.ui.requests[0];
  EXPECT_TRUE(request.open && request.mustExist && !request.several);
  EXPECT_EQ(request.defaultExtension, ".rcp");
  EXPECT_EQ(request.initialName, "*.rcp");
  EXPECT_EQ(request.filter, ".rcp (*.rcp)|*.rcp|.rcs (*.rcs)|*.rcs|All Files (*.*)|*.*||");
  ASSERT_TRUE(host_.app->zoomExtents());
  EXPECT_NEAR(host_.app->view().centerX, 40500000.5, 1e-6);
}

TEST_F(Commands, TarnimageAnnouncesTheModule) {
  kel::Object<ICadAdapter> adapter("N", "test", 1);
  adapter->setModuleState("image", false);
  EXPECT_EQ(host_.run("tarnimage"), "");
  EXPECT_TRUE(adapter->moduleState("image"));
  acrxDynamicLinker->unloadModule(L"adapter_autocad.arx");
  EXPECT_THAT(host_.run("tarnimage"), HasSubstr("icadapter nil\n"));
}

}  // namespace
