// Undo and redo as commands.
#include "acedads.h"
#include "base/text.h"
#include "host/editor/documents.h"
#include "host/editor/hostapp.h"
#include "host/editor/hostcommands.h"

namespace tarn::host {

namespace {

HostApp& app() {
  return *HostApp::instance();
}

UndoLog& undoLog() {
  return app().documents().current().undo();
}

void printName(const std::string& name) {
  app().print("\n" + (name.empty() ? std::string("CHANGE") : name) + "\n");
}

void reportBusy() {
  failCommand(app(), "An object of the drawing is in use; nothing was changed.");
}

/// Takes steps back, at most `count`, and says which.
void undoSteps(int count) {
  for (int done = 0; done < count;) {
    const UndoLog::Result result = undoLog().undo();
    if (result.outcome == UndoLog::Outcome::kBusy) return reportBusy();
    if (result.outcome == UndoLog::Outcome::kMark) {
      app().print("\nMark encountered.\n");
      if (count == 1) return;
      continue;
    }
    if (result.outcome == UndoLog::Outcome::kNothingLeft) {
      app().print(done == 0 ? "\nThere is nothing to undo.\n" : "\nEverything has been undone.\n");
      return;
    }
    printName(result.name);
    ++done;
  }
}

void undoBack() {
  if (!undoLog().hasMark()) {
    acedInitGet(0, ACRX_T("Yes No"));
    ACHAR word[513] = {0};
    const int answer =
        acedGetKword(ACRX_T("\nThis will undo everything. OK? [Yes/No] <Yes>: "), word);
    if (answer == RTCAN || (answer == RTNORM && word[0] == 'N')) return;
  }
  for (;;) {
    const UndoLog::Result result = undoLog().undo();
    if (result.outcome == UndoLog::Outcome::kBusy) return reportBusy();
    if (result.outcome != UndoLog::Outcome::kDone) {
      app().print(result.outcome == UndoLog::Outcome::kMark ? "\nMark encountered.\n"
                                                            : "\nEverything has been undone.\n");
      return;
    }
    printName(result.name);
  }
}

void undoControl() {
  acedInitGet(RSG_NONULL, ACRX_T("All None One"));
  ACHAR word[513] = {0};
  if (acedGetKword(ACRX_T("\nHow much to keep for undo [All/None/One]: "), word) != RTNORM) return;
  undoLog().setRecording(word[0] != 'N');
  undoLog().setLimit(word[0] == 'O' ? 1 : 0);
}

void redoSteps(int count) {
  for (int done = 0; done < count; ++done) {
    const UndoLog::Result result = undoLog().redo();
    if (result.outcome == UndoLog::Outcome::kBusy) return reportBusy();
    if (result.outcome != UndoLog::Outcome::kDone) {
      app().print(done == 0 ? "\nThere is nothing to redo.\n" : "\nEverything has been redone.\n");
      return;
    }
    printName(result.name);
  }
}

}  // namespace

void uCommand() {
  undoSteps(1);
}

void undoCommand() {
  acedInitGet(RSG_NOZERO | RSG_NONEG, ACRX_T("BAck BEgin Control End Mark"));
  int count = 1;
  const int answer = acedGetInt(
      ACRX_T("\nNumber of steps to undo or [BAck/BEgin/Control/End/Mark] <1>: "), &count);
  if (answer == RTNORM || answer == RTNONE) return undoSteps(answer == RTNONE ? 1 : count);
  if (answer != RTKWORD) return;
  ACHAR typed[513] = {0};
  acedGetInput(typed);
  const std::string word = toUtf8(typed);
  if (word == "BAck") return undoBack();
  if (word == "BEgin") return undoLog().beginGroup();
  if (word == "Control") return undoControl();
  if (word == "Mark") return undoLog().setMark();
  if (!undoLog().endGroup()) app().print("\nNo group is open.\n");
}

void redoCommand() {
  redoSteps(1);
}

void multipleRedoCommand() {
  constexpr int kAll = 1 << 30;
  acedInitGet(RSG_NONULL | RSG_NOZERO | RSG_NONEG, ACRX_T("All Last"));
  int count = 0;
  const int answer = acedGetInt(ACRX_T("\nNumber of steps to redo or [All/Last]: "), &count);
  if (answer == RTNORM) return redoSteps(count);
  if (answer != RTKWORD) return;
  ACHAR word[513] = {0};
  acedGetInput(word);
  redoSteps(word[0] == 'A' ? kAll : 1);
}

}  // namespace tarn::host
