// Every command of the host with wrong inputs, and cancelled at each of its prompts.
#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <filesystem>
#include <set>

#include "base/text.h"
#include "tests/host_editor/drawingstate.h"
#include "tests/host_editor/drawnlines.h"
#include "tests/host_editor/scriptedhost.h"

namespace tarn::host {
namespace {

struct Row {
  const char* name;
  std::vector<const char*> inputs;
  /// Which inputs are asked for again when they are wrong; others take any text.
  std::set<size_t> asksAgain;
};

const std::vector<Row>& rows() {
  static const std::vector<Row> all = {
      {"MOVE", {"L", "", "0,0", "1,1"}, {0, 1, 2, 3}},
      {"COPY", {"L", "", "0,0", "1,1", ""}, {0, 1, 2, 3, 4}},
      {"ROTATE", {"L", "", "0,0", "30"}, {0, 1, 2, 3}},
      {"SCALE", {"L", "", "0,0", "R", "2", "4"}, {0, 1, 2, 3, 4, 5}},
      {"DRAWORDER", {"L", "", "Above", "C", "-1,-1", "3,3", ""}, {0, 1, 2, 3, 4, 5, 6}},
      {"ERASE", {"C", "-1,-1", "3,3", ""}, {0, 1, 2, 3}},
      {"LINE", {"0,0", "1,1", "2,0", "C"}, {0, 1, 2, 3}},
      {"CIRCLE", {"0,0", "D", "5"}, {0, 1, 2}},
      {"PLINE", {"0,0", "1,1", "A", "2,0", ""}, {0, 1, 2, 3, 4}},
      {"TEXT", {"0,0", "2", "30", "words of a text"}, {0, 1, 2}},
      {"COPYCLIP", {"L", ""}, {0, 1}},
      {"PASTECLIP", {"5,5"}, {0}},
      {"DIST", {"0,0", "1,1"}, {0, 1}},
      {"ID", {"END", "0,0"}, {0}},
      {"LIST", {"ALL", ""}, {0, 1}},
      {"LAYER", {"Make", "walls", "Color", "3", "walls", ""}, {0, 2, 3, 5}},
      {"SETVAR", {"USERI1", "5"}, {}},
      {"PAN", {"0,0", "1,1"}, {0, 1}},
      {"TWIST", {"30"}, {0}},
      {"DVIEW", {"TW", "30"}, {0, 1}},
      {"ARX", {"?"}, {0}},
  };
  return all;
}

class BadInput : public testing::Test {
 protected:
  void SetUp() override {
    // Names that are nonsense may be good names of files.
    std::filesystem::current_path(folder_.path().toStdString());
    host.app().resizeView(400, 400);
    host.run({"ZOOM C 5,5 40", "LINE 0,0 10,0", "", "LINE 0,5 10,5", "", "COPYCLIP L", ""});
  }
  std::string runWith(const Row& row, const std::vector<const char*>& inputs) {
    host.add(row.name);
    for (const char* input : inputs) host.add(input);
    return host.run({});
  }
  /// As it was; what a command has drawn before it was cancelled is one step of undo.
  void expectUnchanged(const DrawingState& before, const std::string& printed) {
    if (!(stateOf(host.app()) == before)) host.run({"U"});
    EXPECT_TRUE(stateOf(host.app()) == before) << printed;
  }
  void TearDown() override { std::filesystem::current_path(testing::TempDir()); }

  QTemporaryDir folder_;
  ScriptedHost host;
};

TEST_F(BadInput, escapeAtEveryPromptLeavesTheDrawing) {
  for (const Row& row : rows()) {
    if (!ScriptedHost::hasCommand(row.name)) continue;
    for (size_t prompts = 0; prompts < row.inputs.size(); ++prompts) {
      const DrawingState before = stateOf(host.app());
      const auto end = row.inputs.begin() + static_cast<std::ptrdiff_t>(prompts);
      const std::string printed = runWith(row, {row.inputs.begin(), end});
      EXPECT_NE(printed.find("*Cancel*"), std::string::npos) << printed;
      EXPECT_FALSE(host.app().commandActive());
      expectUnchanged(before, printed);
    }
  }
}

TEST_F(BadInput, wrongInputsAreNamedAndAskedForAgain) {
  const struct {
    const char* text;
    const char* said;
  } bad[] = {{"xyzzy", "."},
             {"1,2,3,4", "."},
             {"'LINE", "LINE cannot run while another command waits."},
             {"'NOSUCH", "Unknown command \"NOSUCH\"."}};
  for (const Row& row : rows()) {
    if (!ScriptedHost::hasCommand(row.name)) continue;
    const DrawingState before = stateOf(host.app());
    runWith(row, row.inputs);
    const std::string good = drawnLines(host.app());
    expectUnchanged(before, row.name);
    for (const size_t place : row.asksAgain) {
      for (const auto& wrong : bad) {
        std::vector<const char*> inputs = row.inputs;
        inputs.insert(inputs.begin() + static_cast<std::ptrdiff_t>(place), wrong.text);
        const std::string printed = runWith(row, inputs);
        const size_t at = printed.find(wrong.text);
        ASSERT_NE(at, std::string::npos) << printed;
        const std::string next = printed.substr(printed.find('\n', at) + 1);
        EXPECT_NE(next.substr(0, next.find('\n')).find(wrong.said), std::string::npos)
            << row.name << " " << place << "\n"
            << printed;
        EXPECT_EQ(drawnLines(host.app()), good) << printed;
        EXPECT_TRUE(host.good()) << printed;
        expectUnchanged(before, printed);
      }
    }
  }
}

/// Whatever a command asks for: it is cancelled, and nonsense does not change the drawing.
TEST_F(BadInput, everyCommandSurvivesNonsense) {
  AcArray<AcEdCommand*> commands;
  acedRegCmds->getCommands(ACRX_T("CADHOST"), commands);
  std::vector<std::string> names;
  for (const AcEdCommand* command : commands) names.push_back(toUtf8(command->globalName()));
  // Undo has a test of its own; documents are not what is looked at here.
  const std::set<std::string> own = {"QUIT",  "NEW", "OPEN", "CLOSE", "SAVE",  "SAVEAS",
                                     "QSAVE", "U",   "UNDO", "REDO",  "MREDO", "OOPS"};
  for (const std::string& name : names) {
    if (own.count(name) > 0) continue;
    for (const char* nonsense : {"", "xyzzy", "-7", "1,1", "\"", "'", "@", "*"}) {
      const DrawingState before = stateOf(host.app());
      const std::string printed = runWith({name.c_str(), {}, {}}, {nonsense, nonsense});
      EXPECT_FALSE(host.app().commandActive()) << name;
      expectUnchanged(before, name + " " + nonsense + "\n" + printed);
      host.run({"SETVAR TILEMODE 1"});
    }
  }
}

TEST_F(BadInput, unknownNamesAndVariables) {
  const struct {
    const char* line;
    const char* said;
    bool good;
  } cases[] = {
      {"NOSUCH 1 2", "Unknown command \"NOSUCH\".", false},
      {"USERI1 7", "New value for USERI1 <0>: 7", true},
      {"useri1 x", "\"x\" is no value for USERI1.", false},
      {"OSMODE 99999", "\"99999\" is no value for OSMODE.", false},
      {"VIEWSIZE", "VIEWSIZE = 40 (read only)", true},
      {"SETVAR NOSUCH", "Unknown variable \"NOSUCH\".", false},
      {"CLAYER nowhere", "\"nowhere\" is no value for CLAYER.", false},
      {"ZOOM nowhere", "\"nowhere\" is no option and no scale.", false},
      {"SCRIPT /no/such/file.scr", "/no/such/file.scr: there is no such file.", false},
      {"ARX L /no/such.arx", "/no/such.arx: there is no such file.", false},
      {"ARX U nosuch.arx", "nosuch.arx: there is no such module loaded.", false},
      {"PNGOUT /no/such/folder/a.png", "/no/such/folder/a.png", false},
      {"GRIP_STRETCH", "Select entities with grips before this command.", false},
  };
  for (const auto& c : cases) {
    const std::string printed = host.run({c.line});
    EXPECT_NE(printed.find(c.said), std::string::npos) << printed;
    EXPECT_EQ(host.good(), c.good) << printed;
  }
}

}  // namespace
}  // namespace tarn::host
