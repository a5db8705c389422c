// OPEN, SAVE, SAVEAS, CLOSE and QUIT: what they ask and what is in the file afterwards.
#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <filesystem>

#include "base/file.h"
#include "base/path.h"
#include "host/editor/documents.h"
#include "host/filing/drawingsave.h"
#include "tests/host_editor/scriptedhost.h"

namespace tarn::host {
namespace {

namespace fs = std::filesystem;

size_t countOf(const std::string& text, const std::string& piece) {
  size_t count = 0;
  for (size_t at = text.find(piece); at != std::string::npos; at = text.find(piece, at + 1))
    ++count;
  return count;
}

class Files : public testing::Test {
 protected:
  std::string at(const std::string& name) const {
    return joinPath(folder_.path().toStdString(), name);
  }
  /// How many lines the saved drawing has; -1 when there is no file.
  int linesIn(const std::string& name) const {
    const auto bytes = readFile(at(name), 1 << 20);
    return bytes ? static_cast<int>(countOf(bytes.value(), "AcDbLine\n")) : -1;
  }
  QTemporaryDir folder_;
};

class FileCommands : public Files {
 protected:
  void SetUp() override {
    host.run({"LINE 0,0 10,0", "", "SAVEAS", at("plan").c_str()});
    ASSERT_TRUE(host.good());
    ASSERT_EQ(linesIn("plan.dxf"), 1);
  }
  std::string title() { return host.app().documentTitle(); }
  int documents() { return host.app().documents().documentCount(); }

  ScriptedHost host;
};

TEST_F(Files, closingAsksAboutChanges) {
  const struct {
    std::vector<std::string> answers;
    int lines;    // in the file afterwards
    bool isOpen;  // the drawing, afterwards
    const char* says;
  } cases[] = {
      {{"S"},
       2,
       false,
       "plan.dxf has changes that are not saved.\n[Save/Discard/Cancel] <Save>: S"},
      {{""}, 2, false, "saved."},
      {{"Discard"}, 1, false, ""},
      {{"C"}, 1, true, ""},
      {{}, 1, true, "*Cancel*"},
      {{"maybe", "d"}, 1, false, "Please answer Save/Discard/Cancel."},
  };
  for (const auto& c : cases) {
    for (const std::string command : {"CLOSE", "QUIT"}) {
      SCOPED_TRACE(command + (c.answers.empty() ? "" : " " + c.answers[0]));
      ScriptedHost fresh;
      fs::remove(at("plan.dxf"));
      fresh.run({"LINE 0,0 10,0", "", "SAVEAS", at("plan").c_str()});
      fresh.run({"LINE 0,1 10,1", ""});
      std::vector<std::string> lines = {command};
      lines.insert(lines.end(), c.answers.begin(), c.answers.end());
      const std::string printed = fresh.runLines(lines);
      EXPECT_NE(printed.find(c.says), std::string::npos) << printed;
      EXPECT_EQ(linesIn("plan.dxf"), c.lines) << printed;
      const bool isOpen = command == "QUIT"
                              ? !fresh.app().quitRequested()
                              : fresh.app().documents().ofFile(at("plan.dxf")) != nullptr;
      EXPECT_EQ(isOpen, c.isOpen) << printed;
    }
  }
}

TEST_F(FileCommands, nothingIsAskedWhenNothingHasChanged) {
  const std::string printed = host.run({"NEW", "CLOSE", "QUIT"});
  EXPECT_EQ(printed.find("Discard"), std::string::npos) << printed;
  EXPECT_TRUE(host.app().quitRequested());
}

TEST_F(FileCommands, quittingAsksForEachDrawingAndOneCancelKeepsAll) {
  host.run({"LINE 0,1 10,1", "", "NEW", "LINE 0,0 1,1", ""});
  ASSERT_EQ(documents(), 2);
  std::string printed = host.run({"QUIT", "Save", "Cancel"});
  EXPECT_FALSE(host.app().quitRequested());
  EXPECT_EQ(linesIn("plan.dxf"), 2) << printed;
  EXPECT_EQ(documents(), 2);
  // The new one has no name: saving it asks for one, and refusing that keeps everything.
  printed = host.run({"QUIT", "Save", ""});
  EXPECT_FALSE(host.app().quitRequested()) << printed;
  printed = host.run({"QUIT", "Save", at("second").c_str()});
  EXPECT_TRUE(host.app().quitRequested()) << printed;
  EXPECT_EQ(linesIn("second.dxf"), 1) << printed;
}

TEST_F(FileCommands, aFileThatSomebodyElseHasChangedIsAskedFor) {
  host.run({"LINE 0,1 10,1", ""});
  const std::string theirs = readFile(at("plan.dxf"), 1 << 20).value() + "\n";
  ASSERT_TRUE(writeFileAtomically(at("plan.dxf"), theirs));
  for (const char* answer : {"", "no"}) {
    const std::string printed = host.run({"SAVE", answer});
    EXPECT_NE(printed.find("changed by another program since it was opened. Replace it?\n"
                           "[Yes/No] <No>: "),
              std::string::npos)
        << printed;
    EXPECT_FALSE(host.good());
    EXPECT_EQ(readFile(at("plan.dxf"), 1 << 20).value(), theirs);
  }
  const std::string printed = host.run({"SAVE", "Yes"});
  EXPECT_TRUE(host.good()) << printed;
  EXPECT_EQ(linesIn("plan.dxf"), 2);
  EXPECT_EQ(readFile(backupOf(at("plan.dxf")), 1 << 20).value(), theirs) << "theirs is not lost";
  // One that is gone is simply there again.
  fs::remove(at("plan.dxf"));
  host.run({"SAVE"});
  EXPECT_TRUE(host.good());
  EXPECT_EQ(linesIn("plan.dxf"), 2);
}

TEST_F(FileCommands, whatCannotBeDoneIsNamedAndTheDrawingStays) {
  ASSERT_TRUE(writeFileAtomically(at("real.dwg"), std::string("AC1015\0\0\0\0\0\0\1", 13)));
  ASSERT_TRUE(writeFileAtomically(at("text.dxf"), "these are words\nand more\n"));
  ASSERT_TRUE(writeFileAtomically(at("empty.dxf"), ""));
  ASSERT_TRUE(writeFileAtomically(at("locked.dxf"), "old"));
  fs::permissions(at("locked.dxf"), fs::perms::owner_read);
  ASSERT_TRUE(makeFolders(at("folder.dxf")));
  host.run({"NEW", "LINE 0,0 1,1", "", "SAVEAS", at("second").c_str(), "LINE 1,1 2,2", ""});
  const struct {
    std::vector<std::string> lines;
    const char* says;
  } cases[] = {
      {{"OPEN", at("none.dxf"), ""}, "none.dxf: there is no such file."},
      {{"OPEN", at("folder.dxf"), ""}, "folder.dxf: this is a folder."},
      {{"OPEN", at("real.dwg")}, "real.dwg: this is a DWG file"},
      {{"OPEN", at("text.dxf")}, "text.dxf: line 1"},
      {{"OPEN", at("empty.dxf")}, "empty.dxf: "},
      {{"SAVEAS", at("plan.dxf"), "Y"}, "plan.dxf: this file is open as another drawing."},
      {{"SAVEAS", at("locked.dxf"), "Y"}, "locked.dxf: the file is read-only; nothing was saved."},
      {{"SAVEAS", at("folder.dxf"), ""}, "folder.dxf: this is a folder."},
      {{"SAVEAS", at("no/such/folder")}, "no/such/folder.dxf: "},
      {{"SAVEAS", at("plan.dxf"), "N", ""}, "plan.dxf exists. Replace it?"},
  };
  for (const auto& c : cases) {
    const std::string printed = host.runLines(c.lines);
    EXPECT_NE(printed.find(c.says), std::string::npos) << printed;
    EXPECT_EQ(title(), "second.dxf");
    EXPECT_EQ(documents(), 2);
    EXPECT_EQ(linesIn("plan.dxf"), 1);
    EXPECT_EQ(linesIn("second.dxf"), 1);
    EXPECT_TRUE(host.app().documents().current().isModified());
  }
  EXPECT_EQ(readFile(at("locked.dxf"), 10).value(), "old");
  // A drawing that is open is only shown again.
  host.run({"OPEN", at("plan.dxf").c_str()});
  EXPECT_EQ(title(), "plan.dxf");
  EXPECT_EQ(documents(), 2);
}

}  // namespace
}  // namespace tarn::host
