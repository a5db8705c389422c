// Entities of every kind that is drawn, changed by the commands of a drafter, taken back and done
// again, before the eyes of another program.
#include <gtest/gtest.h>

#include "base/file.h"
#include "host/editor/documents.h"
#include "host/editor/drawingfiles.h"
#include "tests/host_editor/scriptedhost.h"
#include "tests/support/program.h"

namespace tarn::host {
namespace {

test::Outcome judge(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), TARN_SOURCE_DIR "/tests/host_entities/entity_judge.py");
  return test::runProgram("/usr/bin/python3", arguments);
}

TEST(EveryKind, isChangedByCommandsTakenBackAndDoneAgain) {
  const test::Scratch scratch("tarn_kinds_");
  const std::string drawing = scratch.at("kinds.dxf");
  const test::Outcome made = judge({"make", drawing});
  if (made.exitCode == 77) GTEST_SKIP() << "python3-ezdxf is not installed";
  ASSERT_EQ(made.exitCode, 0) << made.output;
  struct Case {
    std::vector<std::string> lines;
    std::vector<std::string> question;  ///< to the other program, before the two drawings
    std::vector<std::string> more;      ///< and behind them
    std::string answer;
    bool refuses = false;  ///< leaders of several lines
  };
  const Case cases[] = {
      {{"MOVE ALL", "", "0,0 1000.5,-200.25"}, {"changed", "move"}, {}, ""},
      {{"ROTATE ALL", "", "0,0 30"}, {"changed", "turn"}, {}, ""},
      {{"SCALE ALL", "", "0,0 2.5"}, {"changed", "scale"}, {}, ""},
      {{"MIRROR ALL", "", "0,0 0,1 Y"}, {"changed", "mirror"}, {}, "", true},
      {{"COPY ALL", "", "0,0 100,50", ""}, {"copies"}, {"100", "50"}, "all"},
      {{"ERASE ALL", ""}, {"left"}, {}, "\n"},
  };
  int number = 0;
  for (const Case& c : cases) {
    ScriptedHost host;
    ASSERT_TRUE(openDrawing(host.app(), drawing));
    const auto bytes = [&] { return host.app().documents().current().drawing().bytes().take(); };
    const std::string before = bytes();
    const std::string printed = host.runLines(c.lines);
    EXPECT_TRUE(host.good()) << printed;
    EXPECT_EQ(printed.find("cannot be") != std::string::npos, c.refuses) << printed;
    const std::string after = bytes();
    EXPECT_FALSE(after == before) << printed;
    const std::string path = scratch.at(std::to_string(++number) + ".dxf");
    ASSERT_TRUE(writeFileAtomically(path, after));
    std::vector<std::string> question = c.question;
    question.insert(question.end(), {drawing, path});
    question.insert(question.end(), c.more.begin(), c.more.end());
    const test::Outcome said = judge(question);
    if (c.answer == "all") {
      // As many copies as there were entities, and nothing that differs.
      const size_t space = said.output.find(' ');
      EXPECT_EQ(said.output,
                said.output.substr(0, space) + " " + said.output.substr(0, space) + "\n");
    } else {
      EXPECT_EQ(said.output, c.answer) << printed;
    }
    host.run({"U"});
    EXPECT_TRUE(bytes() == before) << printed;
    host.run({"REDO"});
    EXPECT_TRUE(bytes() == after) << printed;
  }
}

/// The other program writes none.
TEST(EveryKind, tablesOfARealDrawingAreMovedAndTurnedButNotScaled) {
  const std::string path =
      std::string(TARN_DATA_DIR) + "/mozman/ezdxf/examples_dxf/acad_table_with_blk_ref.dxf";
  auto real = readFile(path, uint64_t{1} << 30);
  if (!real) GTEST_SKIP() << path << " is not there";
  const test::Scratch scratch("tarn_kinds_");
  const std::string drawing = scratch.at("table.dxf");
  ASSERT_TRUE(writeFileAtomically(drawing, real.value()));
  ScriptedHost host;
  ASSERT_TRUE(openDrawing(host.app(), drawing));
  const auto bytes = [&] { return host.app().documents().current().drawing().bytes().take(); };
  const std::string before = bytes();
  for (const char* change : {"MOVE ALL", "ROTATE ALL"}) {
    const std::string printed = host.run({change, "", "0,0 30,1"});
    EXPECT_EQ(printed.find("cannot be"), std::string::npos) << printed;
    const std::string after = bytes();
    EXPECT_FALSE(after == before);
    host.run({"U"});
    EXPECT_TRUE(bytes() == before) << change;
    host.run({"REDO"});
    EXPECT_TRUE(bytes() == after) << change;
    host.run({"U"});
  }
  EXPECT_NE(host.run({"SCALE ALL", "", "0,0 2"}).find("cannot be scaled"), std::string::npos);
}

}  // namespace
}  // namespace tarn::host
