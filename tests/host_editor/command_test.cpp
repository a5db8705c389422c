#include <gtest/gtest.h>

#include <stdexcept>

#include "acdocman.h"
#include "acedads.h"
#include "acutmem.h"
#include "base/text.h"
#include "rxmfcapi.h"
#include "tests/host_editor/scriptedhost.h"

namespace tarn::host {
namespace {

std::string noted;

void note(const std::string& text) {
  noted += text + ";";
}

/// Sends text to the command line as programs do: UTF-16 with its terminator.
LRESULT sendText(const std::u16string& text, ULONG_PTR tag = 1) {
  std::u16string copy = text;
  COPYDATASTRUCT data;
  data.dwData = tag;
  data.cbData = static_cast<DWORD>((copy.size() + 1) * sizeof(char16_t));
  data.lpData = copy.data();
  return acedGetAcadFrame()->SendMessage(WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data));
}

void askInteger() {
  int value = -1;
  acedInitGet(RSG_NOZERO, ACRX_T("Auto"));
  const int result = acedGetInt(ACRX_T("\nHow many <4>: "), &value);
  note(std::to_string(result) + "/" + std::to_string(value));
}

void askTexts() {
  ACHAR word[513];
  ACHAR line[513];
  acedGetString(0, ACRX_T("\nWord: "), word);
  acedGetString(1, ACRX_T("\nLine: "), line);
  note(toUtf8(word) + "|" + toUtf8(line));
}

void throwing() {
  throw std::runtime_error("no more paper");
}
void marking() {
  note("marked");
}
void sending() {
  EXPECT_EQ(sendText(u"MARK "), 1);
  note("sent");
}
void nesting() {
  resbuf names = {};
  note(std::to_string(acedCommandS(RTSTR, ACRX_T("ASKINT"), RTSTR, ACRX_T("7"), RTNONE)));
  note(std::to_string(acedCommandS(RTSTR, ACRX_T("ASKINT"), RTNONE)));
  note(std::to_string(acedCommandS(RTSTR, ACRX_T("NOSUCH"), RTNONE)));
  acedGetVar(ACRX_T("CMDNAMES"), &names);
  note(toUtf8(names.resval.rstring));
  acutDelString(names.resval.rstring);
}

class Commands : public testing::Test {
 protected:
  void SetUp() override {
    noted.clear();
    ScriptedHost::addCommand(ACRX_T("ASKINT"), askInteger);
    ScriptedHost::addCommand(ACRX_T("ASKTEXT"), askTexts);
    ScriptedHost::addCommand(ACRX_T("THROW"), throwing);
    ScriptedHost::addCommand(ACRX_T("MARK"), marking, ACRX_CMD_TRANSPARENT);
    ScriptedHost::addCommand(ACRX_T("SEND"), sending);
    ScriptedHost::addCommand(ACRX_T("NEST"), nesting);
  }
  ScriptedHost host;
};

TEST_F(Commands, takeTheirInputsFromTheLineAndTheNextLines) {
  struct Case {
    std::initializer_list<const char*> lines;
    const char* noted;
  };
  const Case cases[] = {
      {{"ASKINT 5"}, "5100/5;"},
      {{"askint", "6"}, "5100/6;"},
      {{"_ASKINT", ""}, "5000/-1;"},
      {{"ASKINT x 0 9"}, "5100/9;"},
      {{"ASKINT A"}, "-5005/-1;"},
      {{"ASKINT 5 MARK"}, "5100/5;marked;"},
      {{"ASKTEXT a", "b  c"}, "a|b  c;"},
      {{"ASKTEXT a b c"}, "a|b c;"},
      {{"ASKINT 1", "", "", "MARK"}, "5100/1;marked;"},
  };
  for (const Case& c : cases) {
    noted.clear();
    host.run(c.lines);
    EXPECT_EQ(noted, c.noted) << *c.lines.begin();
    EXPECT_TRUE(host.good());
  }
}

TEST_F(Commands, transcriptShowsPromptsAndAnswers) {
  EXPECT_EQ(host.run({"ASKINT", "x", "3"}),
            "Command: ASKINT\nHow many <4>: x\nRequires an integer value or an option keyword.\n"
            "How many <4>: 3\n");
}

TEST_F(Commands, endOfInputCancelsAndIsAFailure) {
  const std::string text = host.run({"ASKINT"});
  EXPECT_EQ(noted, "-5002/-1;");
  EXPECT_NE(text.find("*Cancel*"), std::string::npos);
  EXPECT_FALSE(host.good());
}

TEST_F(Commands, unknownAndThrowingCommandsFailAndTheHostGoesOn) {
  const std::string text = host.run({"nosuch 1 2", "THROW", "MARK"});
  EXPECT_NE(text.find("Unknown command \"NOSUCH\". HELP lists all.\n"), std::string::npos);
  EXPECT_NE(text.find("no more paper"), std::string::npos);
  EXPECT_EQ(host.app().failedCommands(), 2);
  EXPECT_EQ(noted, "marked;");
  EXPECT_EQ(host.app().commandNames(), "");
}

TEST_F(Commands, sentTextRunsAfterTheRunningCommand) {
  host.run({"SEND"});
  EXPECT_EQ(noted, "sent;marked;");
  noted.clear();
  // Text without its closing blank waits for what completes it.
  sendText(u"MA");
  host.run({});
  EXPECT_EQ(noted, "");
  sendText(u"RK ");
  EXPECT_EQ(sendText(u"MARK ", 2), 0);
  host.run({});
  EXPECT_EQ(noted, "marked;");
  noted.clear();
  EXPECT_EQ(acDocManager->sendStringToExecute(acDocManager->curDocument(), ACRX_T("ASKINT 8 ")),
            Acad::eOk);
  host.run({});
  EXPECT_EQ(noted, "5100/8;");
}

TEST_F(Commands, runCommandsWithCompleteInputs) {
  host.run({"NEST", "99"});
  EXPECT_EQ(noted, "5100/7;5100;-5002/-1;-5002;-5001;NEST;");
  EXPECT_EQ(host.app().failedCommands(), 1) << "only the line 99 is no command";
}

TEST_F(Commands, transparentOnesRunInsideOthers) {
  const std::string text = host.run({"ASKINT", "'MARK", "'ASKTEXT", "2"});
  EXPECT_EQ(noted, "marked;5100/2;");
  EXPECT_NE(text.find("Resuming ASKINT command."), std::string::npos);
  EXPECT_NE(text.find("ASKTEXT cannot run while another command waits."), std::string::npos);
}

TEST_F(Commands, drawAndErase) {
  host.run({"LINE 0,0 10,0 10,10", "", "LINE 5,5 6,6", ""});
  EXPECT_NE(host.run({"LINE 0,0 1,1", "", "ERASE LAST", "", "ERASE ALL", ""}).find("3 erased"),
            std::string::npos);
  EXPECT_TRUE(host.good());
}

}  // namespace
}  // namespace tarn::host
