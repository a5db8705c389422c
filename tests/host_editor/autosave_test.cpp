// Automatic copies: when they are made, when they go, and what a crash leaves behind.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QTemporaryDir>
#include <chrono>
#include <filesystem>

#include "base/file.h"
#include "base/path.h"
#include "host/editor/autosave.h"
#include "host/editor/documents.h"
#include "tests/host_editor/scriptedhost.h"

namespace tarn::host {
namespace {

namespace fs = std::filesystem;

class AutoSaves : public testing::Test {
 protected:
  std::string at(const std::string& name) const {
    return joinPath(folder_.path().toStdString(), name);
  }
  std::string profile() const { return at("profile"); }
  /// Names of all copies of all sessions.
  std::vector<std::string> copies() const {
    std::vector<std::string> names;
    const std::string root = joinPath(profile(), "autosave");
    for (const std::string& session : listFolder(root)) {
      for (const std::string& name : listFolder(joinPath(root, session))) {
        if (extensionOf(name) == ".dxf") names.push_back(name);
      }
    }
    return names;
  }
  static void wait(ScriptedHost& host, int minutes) {
    static AutoSave::Clock::time_point now = AutoSave::Clock::now();
    now += std::chrono::minutes(minutes);
    host.app().autosave().setClock([] { return now; });
    host.app().autosave().tick();
  }
  /// Runs a session in a process that ends like one that crashed.
  template <typename Work>
  void crash(Work work) {
    const pid_t child = fork();
    if (child == 0) {
      auto* host = new ScriptedHost(profile());
      wait(*host, 0);
      work(*host);
      _exit(0);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_EQ(status, 0);
  }
  static int linesOf(HostApp& app) {
    const std::string bytes = app.documents().current().drawing().bytes().take();
    int count = 0;
    for (size_t place = bytes.find("AcDbLine\n"); place != std::string::npos;
         place = bytes.find("AcDbLine\n", place + 1)) {
      ++count;
    }
    return count;
  }
  QTemporaryDir folder_;
};

TEST_F(AutoSaves, aCopyIsMadeWhenChangesAreOldEnoughAndGoesWithThem) {
  ScriptedHost host(profile());
  const auto steps = [&](std::initializer_list<const char*> lines, int minutes) {
    host.run(lines);
    wait(host, 0);
    wait(host, minutes);
    return copies();
  };
  using Names = std::vector<std::string>;
  EXPECT_EQ(steps({}, 60), Names()) << "nothing has changed";
  EXPECT_EQ(steps({"LINE 0,0 1,1", ""}, 4), Names());
  EXPECT_EQ(steps({}, 1), Names{"Drawing1.dxf"});
  EXPECT_EQ(steps({"SAVEAS", at("plan").c_str()}, 60), Names());
  EXPECT_EQ(steps({"SETVAR SAVETIME 2", "LINE 0,0 1,1", ""}, 2), Names{"plan.dxf"});
  EXPECT_EQ(steps({"NEW", "LINE 0,0 1,1", "", "SAVEAS", at("second").c_str()}, 1),
            Names{"plan.dxf"});
  EXPECT_EQ(steps({"LINE 0,0 1,1", ""}, 2), (Names{"plan.dxf", "second.dxf"}));
  EXPECT_EQ(steps({"CLOSE", "Discard"}, 0), Names{"plan.dxf"});
  EXPECT_EQ(steps({"SAVE"}, 0), Names());
  EXPECT_EQ(steps({"SETVAR SAVETIME 0", "LINE 0,0 1,1", ""}, 600), Names());
  EXPECT_TRUE(host.app().autosave().lostDrawings().empty()) << "its own are not lost";
}

TEST_F(AutoSaves, afterACrashTheDrawingIsThereAgainAndKnowsItsFile) {
  crash([&](ScriptedHost& host) {
    host.run({"LINE 0,0 1,1", "", "SAVEAS", at("plan").c_str(), "LINE 0,0 2,2", ""});
    host.run({"NEW", "LINE 0,0 1,1", "", "LINE 0,0 3,3", "", "LINE 5,5 7,7", ""});
    wait(host, 0);
    wait(host, 5);
  });
  ASSERT_EQ(copies(), (std::vector<std::string>{"Drawing2.dxf", "plan.dxf"}));
  ScriptedHost host(profile());
  EXPECT_NE(recoveryNotice(host.app()).find("changes of Drawing2.dxf, plan.dxf were saved"),
            std::string::npos)
      << recoveryNotice(host.app());
  std::string printed = host.run({"RECOVER", "Later"});
  EXPECT_EQ(copies().size(), 2U) << printed;
  printed = host.run({"RECOVER", ""});
  EXPECT_NE(printed.find("plan.dxf recovered; it is not saved yet."), std::string::npos) << printed;
  EXPECT_EQ(host.app().documentTitle(), "plan.dxf");
  EXPECT_TRUE(host.app().documents().current().isModified());
  EXPECT_EQ(linesOf(host.app()), 2);
  EXPECT_EQ(copies().size(), 2U) << "a second crash loses nothing either";
  EXPECT_NE(host.run({"RECOVER"}).find("nothing to recover"), std::string::npos);
  // It is saved into its own file without a question, for nobody has changed that.
  printed = host.run({"SAVE"});
  EXPECT_TRUE(host.good()) << printed;
  EXPECT_EQ(copies(), std::vector<std::string>{"Drawing2.dxf"});
  // The other one never had a file and asks for a name.
  printed = host.run({"QUIT", "Save", at("second").c_str()});
  EXPECT_TRUE(host.app().quitRequested()) << printed;
  EXPECT_EQ(fileKind(at("second.dxf")), FileKind::kRegular);
}

TEST_F(AutoSaves, aFileThatWasChangedSinceTheCrashIsAskedForAndCopiesCanBeThrownAway) {
  const auto lose = [&] {
    crash([&](ScriptedHost& host) {
      fs::remove(at("plan.dxf"));
      host.run({"LINE 0,0 1,1", "", "SAVEAS", at("plan").c_str(), "LINE 0,0 2,2", ""});
      wait(host, 0);
      wait(host, 5);
    });
  };
  lose();
  ASSERT_TRUE(writeFileAtomically(at("plan.dxf"), "theirs"));
  {
    ScriptedHost host(profile());
    host.run({"RECOVER", "Open"});
    const std::string printed = host.run({"SAVE", "No"});
    EXPECT_NE(printed.find("was changed by another program"), std::string::npos) << printed;
    EXPECT_EQ(readFile(at("plan.dxf"), 100).value(), "theirs");
    // A normal end: nothing is offered any more.
  }
  EXPECT_TRUE(copies().empty());
  lose();
  ScriptedHost host(profile());
  host.run({"RECOVER", "Discard"});
  EXPECT_TRUE(copies().empty());
  EXPECT_EQ(recoveryNotice(host.app()), "");
  EXPECT_TRUE(listFolder(joinPath(profile(), "autosave")).empty());
}

/// Names of files have up to 255 bytes; two that begin alike have copies of their own.
TEST_F(AutoSaves, drawingsWithTheLongestNamesAreSavedAndCopied) {
  std::string stem;
  while (stem.size() < 246) stem += "测";
  ScriptedHost host(profile());
  for (const char* end : {"1.dxf", "2.dxf"}) {
    const std::string path = at(stem + end);
    std::string printed = host.run({"NEW", "LINE 0,0 1,1", "", "SAVEAS", path.c_str(), "SAVE"});
    EXPECT_TRUE(host.good()) << printed;
    EXPECT_EQ(fileKind(path), FileKind::kRegular);
    host.run({"LINE 0,0 2,2", ""});
  }
  wait(host, 0);
  wait(host, 5);
  ASSERT_EQ(copies().size(), 2U);
  for (const std::string& name : copies()) {
    EXPECT_EQ(name.substr(0, 198), stem.substr(0, 198)) << "whole letters";
  }
  EXPECT_EQ(listFolder(folder_.path().toStdString()).size(), 5U) << "two drawings, their backups";
}

TEST_F(AutoSaves, twoProgramsKeepTheirCopiesApart) {
  ScriptedHost host(profile());
  host.run({"LINE 0,0 1,1", ""});
  wait(host, 0);
  wait(host, 5);
  ASSERT_EQ(copies().size(), 1U);
  // Another program with the same profile, while this one runs.
  const pid_t child = fork();
  if (child == 0) {
    FileLock lock;
    const std::string root = joinPath(profile(), "autosave");
    const std::string session = joinPath(root, listFolder(root).front());
    _exit(lock.tryLock(joinPath(session, "lock")) ? 1 : 0);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
}

TEST_F(AutoSaves, aCopyThatCannotBeWrittenIsSaidAndTriedAgain) {
  ScriptedHost host(profile());
  ASSERT_TRUE(makeFolders(profile()));
  ASSERT_TRUE(writeFileAtomically(joinPath(profile(), "autosave"), "in the way"));
  host.run({"LINE 0,0 1,1", ""});
  wait(host, 0);
  wait(host, 5);
  EXPECT_TRUE(copies().empty());
  ASSERT_TRUE(removeAll(joinPath(profile(), "autosave")));
  wait(host, 5);
  EXPECT_EQ(copies().size(), 1U);
}

}  // namespace
}  // namespace tarn::host
