// The module's commands by script in the real host, module and framework.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "acdocman.h"
#include "base/text.h"
#include "inc/icadadapter.h"
#include "rxdlinkr.h"
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

TEST_F(Commands, WhatIsNotThereYetSaysSoInOneLine) {
  const struct {
    const char* typed;
    const char* text;
  } cases[] = {{"OpenImageList", "\nOpenImageList 尚未提供。"},
               {"_image_List", "\nOpenImageList 尚未提供。"},
               {"loadCloud", "\nloadCloud 尚未提供。"},
               {"rectifyImage", "\nrectifyImage 尚未提供。"},
               {"_image_ShowImage", "\n_RectifyImage 尚未提供。"},
               {"ImageConversion", "\nImageConversion 尚未提供。"}};
  for (const auto& one : cases) EXPECT_EQ(host_.run(one.typed), one.text) << one.typed;
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
