#include <gtest/gtest.h>

#include "acdocman.h"
#include "aced.h"
#include "acplplotreactormgr.h"
#include "base/text.h"
#include "host/editor/documents.h"
#include "rxclass.h"
#include "rxmfcapi.h"
#include "tests/host_editor/scriptedhost.h"

namespace tarn::host {
namespace {

std::string noted;

class NotingReactor : public AcEditorReactor {
 public:
  NotingReactor() { acedEditor->addReactor(this); }
  ~NotingReactor() override { acedEditor->removeReactor(this); }
  void commandWillStart(const ACHAR* name) override { add("start", name); }
  void commandEnded(const ACHAR* name) override { add("end", name); }
  void commandCancelled(const ACHAR* name) override { add("cancel", name); }
  void commandFailed(const ACHAR* name) override { add("fail", name); }

 private:
  static void add(const char* what, const ACHAR* name) {
    noted += std::string(what) + " " + toUtf8(name) + ";";
  }
};

void working() {
  noted += "work;";
}
void failing() {
  throw 1;
}
void asking() {
  int value = 0;
  acedGetInt(nullptr, &value);
}
void nesting() {
  acedCommandS(RTSTR, ACRX_T("WORK"), RTNONE);
}

TEST(EditorReactor, isToldInOrder) {
  ScriptedHost host;
  ScriptedHost::addCommand(ACRX_T("WORK"), working);
  ScriptedHost::addCommand(ACRX_T("FAIL"), failing);
  ScriptedHost::addCommand(ACRX_T("ASK"), asking);
  ScriptedHost::addCommand(ACRX_T("NEST"), nesting);
  struct Case {
    const char* line;
    const char* noted;
  };
  const Case cases[] = {
      {"WORK", "start WORK;work;end WORK;"},
      {"FAIL", "start FAIL;fail FAIL;"},
      {"ASK", "start ASK;cancel ASK;"},
      {"NEST", "start NEST;start WORK;work;end WORK;end NEST;"},
      {"NOSUCH", ""},
  };
  const NotingReactor reactor;
  for (const Case& c : cases) {
    noted.clear();
    host.run({c.line});
    EXPECT_EQ(noted, c.noted);
  }
}

TEST(EditorReactor, classesAreRegistered) {
  const ScriptedHost host;
  AcRxObject* entry = acrxSysRegistry()->at(ACED_EDITOR_OBJ);
  ASSERT_NE(entry, nullptr);
  ASSERT_NE(entry->isA(), nullptr);
  EXPECT_STREQ(entry->isA()->name(), ACRX_T("AcEditor"));
  EXPECT_NE(acplPlotReactorMgrPtr(), nullptr);
  for (const ACHAR* name : {ACRX_T("AcEditorReactor"), ACRX_T("AcApDocManagerReactor"),
                            ACRX_T("AcApDocument"), ACRX_T("AcPlPlotReactor")}) {
    EXPECT_NE(acrxClassDictionary->at(name), nullptr) << toUtf8(name);
  }
}

TEST(EditorReactor, mayLeaveWhileItIsTold) {
  ScriptedHost host;
  ScriptedHost::addCommand(ACRX_T("WORK"), working);
  class Leaving : public AcEditorReactor {
   public:
    void commandWillStart(const ACHAR*) override {
      noted += "bye;";
      acedEditor->removeReactor(this);
    }
  };
  noted.clear();
  Leaving leaving;
  acedEditor->addReactor(&leaving);
  acedEditor->addReactor(&leaving);
  host.run({"WORK", "WORK"});
  EXPECT_EQ(noted, "bye;work;work;");
}

class DocumentReactor : public AcApDocManagerReactor {
 public:
  void documentCreated(AcApDocument*) override { noted += "created;"; }
  void documentToBeDestroyed(AcApDocument*) override { noted += "destroy;"; }
  void documentBecameCurrent(AcApDocument*) override { noted += "current;"; }
  void documentLockModeChanged(AcApDocument*, AcAp::DocLockMode before, AcAp::DocLockMode mine,
                               AcAp::DocLockMode, const ACHAR*) override {
    noted += std::to_string(before) + ">" + std::to_string(mine) + ";";
  }
};

TEST(Documents, tellTheirLifeAndKeepNestedLocks) {
  DocumentReactor reactor;
  noted.clear();
  {
    ScriptedHost host;
    acDocManager->addReactor(&reactor);
    AcApDocument* document = acDocManager->curDocument();
    EXPECT_EQ(acDocManager->document(document->database()), document);
    EXPECT_EQ(acDocManager->document(nullptr), nullptr);
    EXPECT_EQ(document->myLockMode(), AcAp::kNone);
    EXPECT_EQ(acDocManager->lockDocument(document, AcAp::kWrite), Acad::eOk);
    EXPECT_EQ(acDocManager->lockDocument(document, AcAp::kRead), Acad::eOk);
    EXPECT_EQ(acDocManager->unlockDocument(document), Acad::eOk);
    EXPECT_EQ(document->myLockMode(), AcAp::kWrite);
    EXPECT_EQ(acDocManager->unlockDocument(document), Acad::eOk);
    EXPECT_NE(acDocManager->unlockDocument(document), Acad::eOk);
    EXPECT_EQ(acDocManager->lockDocument(nullptr), Acad::eInvalidInput);
    host.app().documents().create();
    EXPECT_EQ(acDocManager->documentCount(), 2);
  }
  EXPECT_EQ(noted, "0>4;4>32;32>4;4>0;created;current;destroy;destroy;");
  EXPECT_EQ(acDocManager, nullptr);
}

int watched = 0;
void watcher(const MSG* message) {
  watched += static_cast<int>(message->message);
}

TEST(WindowMessages, watchersSeeThemOnce) {
  ScriptedHost host;
  acedRegisterWatchWinMsg(watcher);
  acedRegisterWatchWinMsg(watcher);
  MSG message;
  message.message = WM_MOUSEWHEEL;
  host.app().dispatchWindowMessage(message);
  EXPECT_EQ(watched, 0x020A);
  EXPECT_TRUE(acedRemoveWatchWinMsg(watcher));
  EXPECT_FALSE(acedRemoveWatchWinMsg(watcher));
  host.app().dispatchWindowMessage(message);
  EXPECT_EQ(watched, 0x020A);
}

}  // namespace
}  // namespace tarn::host
