// Every command of the module, cancelled at its prompts and given nonsense: nothing changes.
#include "accmd.h"
#include "tests/host_editor/drawingstate.h"
#include "tests/image_entity/fixture.h"

namespace {

using tarn::host::stateOf;
using tarn::test::script;

using BadInput = EntityTest;

TEST_F(BadInput, NoCommandOfTheModuleIsThrownByNonsense) {
  ASSERT_TRUE(add(L"/data/a.tif"));
  script().goodInits = 0;
  AcArray<AcEdCommand*> commands;
  for (const ACHAR* group : {L"_image", L"TARNIMAGE"}) acedRegCmds->getCommands(group, commands);
  ASSERT_EQ(commands.length(), 17);
  std::vector<std::string> names;
  for (const AcEdCommand* command : commands) names.push_back(tarn::toUtf8(command->globalName()));
  const std::vector<std::optional<std::string>> inputs[] = {
      {}, {"xyzzy"}, {"1e999"}, {"'LINE", "'NOSUCH"}, {"1,2", "-", "@"}};
  for (const std::string& name : names) {
    for (const auto& answers : inputs) {
      const auto before = stateOf(*host_->app);
      host_->frontEnd.answers = {answers.begin(), answers.end()};
      host_->ui.files = {{"/no/such/file.tif"}};
      const std::string printed = host_->run("_" + name);
      EXPECT_FALSE(host_->app->commandActive());
      EXPECT_EQ(record().images().size(), 1U) << name;
      // Asking for numbers says what is wrong and asks again.
      if (name.rfind("SetImage", 0) == 0 && answers.size() == 1) {
        EXPECT_NE(printed.find("Requires"), std::string::npos) << printed;
      }
      if (!(stateOf(*host_->app) == before)) host_->run("U");
      EXPECT_TRUE(stateOf(*host_->app) == before) << name << "\n" << printed;
    }
  }
}

}  // namespace
