// The program as a user runs it, without a window.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <string>

#include "base/file.h"
#include "base/path.h"

namespace {

struct Outcome {
  int code = -1;
  std::string output;
};

/// Runs a shell line in which "cadhost" stands for the program, with its own profile.
class Program : public testing::Test {
 protected:
  void SetUp() override { folder = tarn::makeTemporaryFolder("/tmp", "program").take(); }
  void TearDown() override { ASSERT_TRUE(tarn::removeAll(folder)); }

  Outcome run(const std::string& arguments, const std::string& before = "",
              const std::string& after = "") const {
    const std::string line =
        before + " env -u DISPLAY -u WAYLAND_DISPLAY " TARN_BIN_DIR "/cadhost --profile '" +
        folder + "/profile' " + arguments + " 2>&1 " + after;
    Outcome result;
    FILE* pipe = popen(line.c_str(), "r");
    if (pipe == nullptr) return result;
    std::array<char, 4096> buffer;
    while (const size_t count = fread(buffer.data(), 1, buffer.size(), pipe)) {
      result.output.append(buffer.data(), count);
    }
    const int status = pclose(pipe);
    if (WIFEXITED(status)) result.code = WEXITSTATUS(status);
    return result;
  }
  std::string path(const char* name) const { return tarn::joinPath(folder, name); }
  void write(const char* name, const std::string& text) const {
    ASSERT_TRUE(tarn::writeFileAtomically(path(name), text));
  }

  std::string folder;
};

TEST_F(Program, refusesWrongUsageInOneSentence) {
  struct Case {
    const char* arguments;
    const char* says;
  };
  const Case cases[] = {
      {"--nosuch", "Unknown option --nosuch"},
      {"--size", "--size needs a value"},
      {"--size 0x10", "--size needs WIDTHxHEIGHT"},
      {"--size 99999x10", "--size needs WIDTHxHEIGHT"},
      {"--size=10", "--size needs WIDTHxHEIGHT"},
      {"--view 1,2", "--view needs"},
      {"--view 1,2,-3", "--view needs"},
      {"--view 1,2,nan", "--view needs"},
      {"--save", "--save needs a value"},
      {"--script /no/such/script", "/no/such/script: the script cannot be read"},
  };
  for (const Case& c : cases) {
    const Outcome result = run(c.arguments);
    EXPECT_EQ(result.code, 2) << c.arguments << "\n" << result.output;
    EXPECT_NE(result.output.find(c.says), std::string::npos) << result.output;
  }
}

TEST_F(Program, helpNamesEveryOption) {
  const Outcome result = run("--help");
  EXPECT_EQ(result.code, 0);
  for (const char* option : {"--headless", "--command", "--script", "--size", "--view", "--picture",
                             "--profile", "--stats", "--help", "--version"}) {
    EXPECT_NE(result.output.find(option), std::string::npos) << option;
  }
  EXPECT_EQ(run("--version").code, 0);
}

TEST_F(Program, runsCommandsAndScriptsInOrder) {
  write("script.txt", "LINE 0,0\n100,50\n\nZOOM E\nSETVAR VIEWCTR\n");
  Outcome result = run("--headless --command 'SETVAR USERR1 7' --script '" + path("script.txt") +
                       "' --command 'SETVAR EXTMAX'");
  EXPECT_EQ(result.code, 0) << result.output;
  const size_t center = result.output.find("VIEWCTR = 50,25,0");
  const size_t extents = result.output.find("EXTMAX = 100,50,0");
  EXPECT_NE(center, std::string::npos) << result.output;
  EXPECT_NE(extents, std::string::npos) << result.output;
  EXPECT_LT(center, extents);
  EXPECT_EQ(run("--command NOSUCH --command REGEN").code, 1);
  EXPECT_EQ(run("--command LINE").code, 1) << "the input ended inside a command";
  result = run("--script -", "printf 'SETVAR ACADVER\\n' |");
  EXPECT_EQ(result.code, 0);
  EXPECT_NE(result.output.find("ACADVER = \"23.1"), std::string::npos);
}

TEST_F(Program, writesThePictureOfTheView) {
  const std::string picture = path("out 图.png");
  const Outcome result =
      run("--size 321x123 --view 40500000,3500000,10,30 --command 'SETVAR "
          "VIEWTWIST' --picture '" +
          picture + "'");
  EXPECT_EQ(result.code, 0) << result.output;
  EXPECT_NE(result.output.find("VIEWTWIST = 0.523598775598"), std::string::npos);
  const auto bytes = tarn::readFile(picture, 1 << 20);
  ASSERT_TRUE(bytes) << bytes.message();
  // Width and height stand in the file's first chunk.
  EXPECT_EQ(bytes.value().substr(16, 8), std::string("\0\0\x01\x41\0\0\0\x7b", 8));
  EXPECT_EQ(run("--picture /no/such/folder/a.png").code, 1);
}

TEST_F(Program, makesItsProfileAtTheFirstStart) {
  EXPECT_EQ(run("--command REGEN").code, 0);
  EXPECT_EQ(tarn::fileKind(path("profile/system/tarnconfig.db")), tarn::FileKind::kRegular);
  write("blocked", "a file");
  const Outcome blocked = run("--profile '" + path("blocked") + "/x' --command REGEN");
  EXPECT_EQ(blocked.code, 0) << "the host goes on without its profile";
  EXPECT_NE(blocked.output.find("blocked"), std::string::npos);
}

TEST_F(Program, saysWhichImageWasNotAdded) {
  const Outcome result = run(path("none.tif") + " --command REGEN");
  EXPECT_EQ(result.code, 1);
  EXPECT_NE(result.output.find("none.tif: there is no such file"), std::string::npos)
      << result.output;
}

TEST_F(Program, printsNothingButTheTranscript) {
  const Outcome result = run("--command 'SETVAR TILEMODE' --command ''", "env -u XDG_RUNTIME_DIR");
  const size_t first = result.output.find("Command: SETVAR");
  ASSERT_NE(first, std::string::npos) << result.output;
  EXPECT_EQ(result.output.find("QStandardPaths"), std::string::npos) << result.output;
}

TEST_F(Program, survivesAReaderThatLeaves) {
  EXPECT_EQ(run("--command 'SETVAR ?' --picture '" + path("p.png") + "'", "", "| head -1").code, 0);
  EXPECT_EQ(tarn::fileKind(path("p.png")), tarn::FileKind::kRegular);
}

}  // namespace
