#include <gtest/gtest.h>

#include <QImage>
#include <sstream>

#include "acedads.h"
#include "afxwin.h"
#include "base/file.h"
#include "base/path.h"
#include "base/text.h"
#include "tarnform.h"
#include "tarnhost.h"
#include "tests/host_editor/scriptedhost.h"

namespace tarn::host {
namespace {

std::string noted;

void openSeveral() {
  CFileDialog dialog(TRUE, ACRX_T("*.tif"), nullptr, OFN_ALLOWMULTISELECT);
  dialog.m_ofn.nMaxFile = 10000;
  noted += dialog.DoModal() == IDOK ? "ok;" : "cancel;";
  for (POSITION p = dialog.GetStartPosition(); p != nullptr;) {
    noted += nameOf(toUtf8(dialog.GetNextPathName(p).GetString())) + ";";
  }
}

void writeOne() {
  CFileDialog dialog(FALSE, ACRX_T("txt"), nullptr, OFN_OVERWRITEPROMPT);
  noted +=
      dialog.DoModal() == IDOK ? nameOf(toUtf8(dialog.GetPathName().GetString())) + ";" : "cancel;";
}

void question() {
  noted += tarnHostQuestion("Build the pyramid?") ? "yes;" : "no;";
}

int lastPosition = 20;

void workWithProgress() {
  tarnHostBeginProgress("影像", 10, 20);
  for (int i = 11; i <= lastPosition; ++i) tarnHostMoveProgress(i);
  tarnHostCancelWanted();
  tarnHostEndProgress();
}

class Headless : public testing::Test {
 protected:
  void SetUp() override {
    noted.clear();
    folder = makeTemporaryFolder(testing::TempDir(), "headless").take();
    for (const char* name : {"a b.tif", "影像.tif", "old.txt"}) {
      ASSERT_TRUE(writeFileAtomically(joinPath(folder, name), "x"));
    }
    ScriptedHost::addCommand(ACRX_T("OPENSEVERAL"), openSeveral);
    ScriptedHost::addCommand(ACRX_T("WRITEONE"), writeOne);
    ScriptedHost::addCommand(ACRX_T("QUESTION"), question);
    ScriptedHost::addCommand(ACRX_T("WORK"), workWithProgress);
  }
  void TearDown() override { ASSERT_TRUE(removeAll(folder)); }
  std::string path(const char* name) const { return joinPath(folder, name); }

  std::string folder;
  ScriptedHost host;
};

TEST_F(Headless, fileDialogsAskForNamesLineByLine) {
  const std::string first = path("a b.tif");
  const std::string second = path("影像");
  const std::string missing = path("none.tif");
  const std::string text =
      host.run({"OPENSEVERAL", first.c_str(), missing.c_str(), folder.c_str(), second.c_str(), ""});
  EXPECT_EQ(noted, "ok;a b.tif;影像.tif;");
  EXPECT_NE(text.find(missing + ": there is no such file."), std::string::npos);
  EXPECT_NE(text.find(folder + ": this is a folder."), std::string::npos);
  EXPECT_TRUE(host.good());

  noted.clear();
  host.run({"OPENSEVERAL", ""});
  EXPECT_EQ(noted, "cancel;");
  // One line is enough: what follows the command's name is the file name, blanks and all.
  noted.clear();
  host.run({("OPENSEVERAL " + first).c_str()});
  EXPECT_EQ(noted, "ok;a b.tif;");
}

TEST_F(Headless, writingAsksBeforeItReplaces) {
  const std::string old = path("old");
  const std::string fresh = path("fresh");
  host.run({"WRITEONE", old.c_str(), "No", old.c_str(), "y"});
  host.run({"WRITEONE", fresh.c_str()});
  EXPECT_EQ(noted, "old.txt;fresh.txt;");
}

TEST_F(Headless, questionsReadTheirAnswer) {
  const std::string text = host.run({"QUESTION", "what", "No", "QUESTION", "", "QUESTION"});
  EXPECT_EQ(noted, "no;yes;no;");
  EXPECT_NE(text.find("Build the pyramid?\n[Yes/No] <Yes>: what\nPlease answer Yes/No.\n"),
            std::string::npos);
  EXPECT_FALSE(host.good()) << "the last question was left without an answer";
}

TEST_F(Headless, namesGivenBeforehandAnswerTheDialogWhateverFiledia) {
  host.app().variables().set("FILEDIA", short{1});
  EXPECT_TRUE(host.app().runWithFiles("OPENSEVERAL", {path("a b.tif"), path("none.tif")}));
  EXPECT_EQ(noted, "ok;a b.tif;");
}

TEST_F(Headless, remarksAndEmptyLinesAreNoCommands) {
  EXPECT_EQ(host.run({"; a remark", "", "   "}), "");
  EXPECT_TRUE(host.good());
  host.run({"QUIT", "NOSUCH"});
  EXPECT_TRUE(host.good()) << "nothing runs after QUIT";
}

TEST_F(Headless, progressIsOneLineUnlessAtATerminal) {
  std::ostringstream quiet;
  HeadlessFrontEnd front(quiet, false);
  front.progressBegin("Pyramid", 0, 10);
  for (int i = 0; i <= 10; ++i) front.progressMove(i);
  front.progressEnd();
  front.progressEnd();
  EXPECT_EQ(quiet.str(), "Pyramid done.\n");
  std::ostringstream terminal;
  HeadlessFrontEnd shown(terminal, true);
  shown.progressBegin("Pyramid", 0, 10);
  shown.progressMove(5);
  EXPECT_NE(terminal.str().find("Pyramid 50 %"), std::string::npos);
}

TEST_F(Headless, statisticsSayHowFarProgressCame) {
  EXPECT_EQ(host.run({"WORK"}).find("\"progress\""), std::string::npos) << "not asked for";
  host.app().setStatistics(true);
  const struct {
    int last;
    const char* moves;
    const char* reached;
  } cases[] = {{20, "\"moves\":10,", "\"reached\":1,"}, {15, "\"moves\":5,", "\"reached\":0.5,"}};
  for (const auto& one : cases) {
    lastPosition = one.last;
    const std::string text = host.run({"WORK"});
    for (const char* part : {"\"progress\":\"影像\"", one.moves, one.reached})
      EXPECT_NE(text.find(part), std::string::npos) << part << " in " << text;
  }
}

TEST_F(Headless, picturesAndStatisticsShowTheDrawing) {
  host.app().resizeView(100, 50);
  host.run({"LINE -1000,0.1 1000,0.1", "", "ZOOM C 0,0 50"});
  const std::string file = path("out.png");
  EXPECT_EQ(host.app().savePicture(file), "");
  const QImage picture(QString::fromStdString(file));
  ASSERT_EQ(picture.width(), 100);
  ASSERT_EQ(picture.height(), 50);
  EXPECT_EQ(picture.pixel(10, 24), qRgb(255, 255, 255));
  EXPECT_NE(picture.pixel(10, 20), qRgb(255, 255, 255));
  EXPECT_NE(host.app().savePicture(path("no/such/folder.png")), "");
  host.app().setStatistics(true);
  tarnHostCount("windows", 3);
  const std::string text = host.run({"REGEN"});
  EXPECT_NE(text.find("\"entities\":1"), std::string::npos);
  EXPECT_EQ(text.find("windows"), std::string::npos) << "counters begin anew";
}

TEST(Script, linesComeWithoutTheirEnds) {
  std::istringstream stream("\xEF\xBB\xBFone\r\n\nthree");
  auto lines = linesOf(stream);
  EXPECT_EQ(lines().value(), "one");
  EXPECT_EQ(lines().value(), "");
  EXPECT_EQ(lines().value(), "three");
  EXPECT_FALSE(lines().has_value());
}

}  // namespace
}  // namespace tarn::host
