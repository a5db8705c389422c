// The module in the real host: three levels of initialisation, unloading, loading again. One
// program is one session, so the levels come in ascending order; what other tests of it have left
// is taken away first.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "accmd.h"
#include "base/text.h"
#include "inc/kcore.h"
#include "rxdlinkr.h"
#include "tests/support/modulehost.h"

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

const std::wstring kAdapter = tarn::toWide(TARN_BIN_DIR "/adapter_autocad.arx");
const std::wstring kImage = tarn::toWide(TARN_BIN_DIR "/image.arx");

std::vector<std::string> commandsOf(const wchar_t* group) {
  AcArray<AcEdCommand*> commands;
  acedRegCmds->getCommands(group, commands);
  std::vector<std::string> lines;
  for (const AcEdCommand* command : commands) {
    lines.push_back(tarn::toUtf8(command->globalName()) + " " + tarn::toUtf8(command->localName()) +
                    " " + std::to_string(command->commandFlags()));
  }
  return lines;
}

const auto kStaticTable = ElementsAre(
    "_DrawImage DrawImage 1", "_List _image_List 1", "_RectifyImage _image_ShowImage 1",
    "_IOTEST IOTEST 1", "_ShowImage ShowImage 1", "_AddImage AddImage 1", "_DelImage DelImage 1");
const auto kFullTable = ElementsAre(
    "tarnimage tarnimage 6", "addImage addImage 6", "loadCloud loadCloud 3",
    "rectifyImage rectifyImage 3", "OpenImageList OpenImageList 6", "testimage testimage 6",
    "EraseInvalidImage EraseInvalidImage 6", "ImageConversion ImageConversion 6",
    "SetImageClarityRatio SetImageClarityRatio 6", "SetImageOffsetRatio SetImageOffsetRatio 6");

std::vector<std::string> g_assertions;

bool load(const std::wstring& module) {
  return acrxDynamicLinker->loadModule(module.c_str(), false);
}
bool unload(const std::wstring& module) {
  return acrxDynamicLinker->unloadModule(module.c_str());
}

TEST(Lifecycle, LevelsOfInitialisation) {
  tarn::test::ModuleHost host(false);
  acedRegCmds->removeGroup(L"TARNIMAGE");
  kel::Core::setAssertHandler([](const char* message, const char* file, int line) {
    g_assertions.push_back(std::string(message) + " " + file + " " + std::to_string(line));
  });

  // No adapter: the message box, and the static commands only.
  ASSERT_TRUE(load(kImage)) << tarn::toUtf8(acrxDynamicLinker->lastMessage());
  EXPECT_THAT(host.ui.boxes, ElementsAre("没有加载 adapter_autocad.arx！"));
  EXPECT_THAT(g_assertions, ElementsAre("ICadAdapter _image/acrxentrypoint 1009"));
  EXPECT_THAT(commandsOf(L"_image"), kStaticTable);
  EXPECT_THAT(commandsOf(L"TARNIMAGE"), IsEmpty());
  ASSERT_TRUE(unload(kImage));
  EXPECT_THAT(commandsOf(L"_image"), IsEmpty());

  // No database: "tarnimage" besides.
  ASSERT_TRUE(load(kAdapter));
  host.printed();
  ASSERT_TRUE(load(kImage));
  EXPECT_THAT(host.printed(), HasSubstr("\n找不到tarnconfig.db"));
  EXPECT_THAT(commandsOf(L"_image"), kStaticTable);
  EXPECT_THAT(commandsOf(L"TARNIMAGE"), ElementsAre("tarnimage tarnimage 6"));
  EXPECT_EQ(host.ui.boxes.size(), 1U);
  ASSERT_TRUE(unload(kImage));

  // All there: the log stands beside the folder of the database.
  host.writeDatabase();
  host.printed();
  ASSERT_TRUE(load(kImage));
  EXPECT_EQ(host.printed().find("tarnconfig.db"), std::string::npos);
  EXPECT_THAT(commandsOf(L"TARNIMAGE"), kFullTable);
  EXPECT_EQ(tarn::fileKind(host.folder + "/tarn_log"), tarn::FileKind::kFolder);

  // Unloading takes the static group away and leaves the other working.
  ASSERT_TRUE(unload(kImage));
  EXPECT_THAT(commandsOf(L"_image"), IsEmpty());
  EXPECT_THAT(commandsOf(L"TARNIMAGE"), kFullTable);
  EXPECT_THAT(host.run("EraseInvalidImage"), HasSubstr("\n共删除了0个无效的Image对象！"));
  MSG wheel;
  wheel.message = WM_MOUSEWHEEL;
  host.app->dispatchWindowMessage(wheel);

  // Loading again: no command twice, everything works, also after a second unload.
  for (int round = 0; round < 2; ++round) {
    ASSERT_TRUE(load(kImage));
    EXPECT_THAT(commandsOf(L"_image"), kStaticTable);
    EXPECT_THAT(commandsOf(L"TARNIMAGE"), kFullTable);
    EXPECT_THAT(host.run("EraseInvalidImage"), HasSubstr("\n共删除了0个无效的Image对象！"));
    host.run("LINE 0,0 1,1 ");
    ASSERT_TRUE(unload(kImage));
    host.run("LINE 0,0 1,1 ");
  }
  kel::Core::setAssertHandler(nullptr);
}

}  // namespace
