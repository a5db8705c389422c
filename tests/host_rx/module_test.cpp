#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "accmd.h"
#include "base/file.h"
#include "base/path.h"
#include "base/text.h"
#include "rxclass.h"
#include "rxdict.h"
#include "rxdlinkr.h"

namespace {

class Wish : public AcRxObject {};

class ModuleTest : public testing::Test {
 protected:
  ModuleTest() { forgetNotes(); }
  ~ModuleTest() override {
    for (const ACHAR* wish : {L"wish.throw", L"wish.refuse", L"wish.lock", L"wish.stay"}) {
      delete acrxSysRegistry()->remove(wish);
    }
    acrxDynamicLinker->unloadModule(L"rxprobe.arx");
    forgetNotes();
  }
  static std::wstring bin(const std::string& name) {
    return tarn::toWide(tarn::joinPath(TEST_MODULE_DIR, name));
  }
  static bool load(const std::string& name = "rxprobe.arx") {
    return acrxDynamicLinker->loadModule(bin(name).c_str(), false);
  }
  static void wish(const ACHAR* key) { delete acrxSysRegistry()->atPut(key, new Wish); }
  static bool noted(const std::wstring& what) {
    return acrxSysRegistry()->has((L"probe." + what).c_str());
  }
  static void forgetNotes() {
    for (int i = 0; i <= 15; ++i) forget(std::to_wstring(i));
    forget(L"run");
  }
  static void forget(const std::wstring& what) {
    delete acrxSysRegistry()->remove((L"probe." + what).c_str());
  }
  static std::string message() { return tarn::toUtf8(acrxDynamicLinker->lastMessage()); }
};

TEST_F(ModuleTest, LoadUnloadLoadWithCommandsAndClasses) {
  for (int round = 0; round < 2; ++round) {
    ASSERT_TRUE(load()) << message();
    EXPECT_TRUE(noted(L"1"));
    EXPECT_TRUE(acrxDynamicLinker->isModuleLoaded(L"/elsewhere/RXPROBE.ARX"));
    forget(L"1");
    EXPECT_TRUE(load()) << "loading again is fine";
    EXPECT_FALSE(noted(L"1")) << "and sends nothing";
    const auto* cls = static_cast<AcRxClass*>(acrxClassDictionary->at(L"ProbeObject"));
    ASSERT_NE(cls, nullptr);
    EXPECT_EQ(cls->myParent(), AcRxObject::desc());
    AcArray<AcEdCommand*> commands;
    acedRegCmds->getCommands(L"_probe", commands);
    ASSERT_EQ(commands.length(), 2);
    EXPECT_STREQ(commands[0]->globalName(), L"_Run");
    EXPECT_STREQ(commands[0]->localName(), L"ProbeRun");
    EXPECT_EQ(commands[0]->commandFlags(), ACRX_CMD_TRANSPARENT);
    commands[0]->functionAddr()();
    EXPECT_TRUE(noted(L"run"));
    EXPECT_TRUE(acrxDynamicLinker->unloadModule(L"rxprobe.arx")) << message();
    EXPECT_TRUE(noted(L"2"));
    EXPECT_FALSE(acrxDynamicLinker->isModuleLoaded(L"rxprobe.arx"));
    EXPECT_EQ(acedRegCmds->lookupTyped(L"ProbeRun"), nullptr);
  }
}

TEST_F(ModuleTest, EveryMessageReachesItsHandlerAndOthersNone) {
  ASSERT_TRUE(load()) << message();
  for (int code = 0; code <= 15; ++code) {
    if (code == AcRx::kInitAppMsg || code == AcRx::kUnloadAppMsg) continue;
    forgetNotes();
    acrxDynamicLinker->sendToAll(static_cast<AcRx::AppMsgCode>(code));
    for (int other = 0; other <= 15; ++other) {
      EXPECT_EQ(noted(std::to_wstring(other)), other == code) << code << " reached " << other;
    }
  }
  forgetNotes();
  acrxDynamicLinker->sendToAll(static_cast<AcRx::AppMsgCode>(16));
  acrxDynamicLinker->sendToAll(static_cast<AcRx::AppMsgCode>(-1));
  for (int code = 0; code <= 15; ++code) EXPECT_FALSE(noted(std::to_wstring(code)));
}

TEST_F(ModuleTest, ModulesMayRefuse) {
  wish(L"wish.refuse");
  EXPECT_FALSE(load());
  EXPECT_NE(message().find("it refused to start"), std::string::npos) << message();
  delete acrxSysRegistry()->remove(L"wish.refuse");
  wish(L"wish.throw");
  EXPECT_FALSE(load());
  EXPECT_NE(message().find("no memory for the probe"), std::string::npos) << message();
  delete acrxSysRegistry()->remove(L"wish.throw");

  wish(L"wish.stay");
  ASSERT_TRUE(load()) << message();
  EXPECT_FALSE(acrxDynamicLinker->unloadModule(L"rxprobe.arx"));
  EXPECT_TRUE(acrxDynamicLinker->isModuleLoaded(L"rxprobe.arx"));
  delete acrxSysRegistry()->remove(L"wish.stay");
  EXPECT_TRUE(acrxDynamicLinker->unloadModule(L"rxprobe.arx"));
  EXPECT_FALSE(acrxDynamicLinker->unloadModule(L"rxprobe.arx")) << "not loaded any more";
}

TEST_F(ModuleTest, ALockedModuleStays) {
  wish(L"wish.lock");
  ASSERT_TRUE(load()) << message();
  EXPECT_FALSE(acrxDynamicLinker->unloadModule(L"rxprobe.arx"));
  EXPECT_NE(message().find("it is locked"), std::string::npos) << message();
  EXPECT_FALSE(noted(L"2"));
}

TEST_F(ModuleTest, WrongFilesAreNamedWithTheReason) {
  const auto folder = tarn::makeTemporaryFolder(testing::TempDir(), "rxtest");
  ASSERT_TRUE(folder.isOk());
  const std::string text = tarn::joinPath(folder.value(), "text.arx");
  std::ofstream(text) << "not a library";
  const std::string probes = TEST_MODULE_DIR;
  struct Case {
    std::string path, reason;
  };
  const Case cases[] = {
      {tarn::joinPath(folder.value(), "missing.arx"), "there is no such file"},
      {folder.value(), "it is a folder"},
      {text, TEST_NO_LIBRARY},
      {TEST_HOST_LIBRARY, "no acrxEntryPoint"},
      {tarn::joinPath(probes, "rxprobe_noentry.arx"), "no acrxEntryPoint"},
      {tarn::joinPath(probes, "rxprobe_newer.arx"), "version 23.2"},
      {tarn::joinPath(probes, "rxprobe_needsmore.arx"), TEST_LACKS_SOMETHING},
  };
  for (const Case& c : cases) {
    EXPECT_FALSE(acrxDynamicLinker->loadModule(tarn::toWide(c.path).c_str(), false)) << c.path;
    EXPECT_NE(message().find(c.path), std::string::npos) << message();
    EXPECT_NE(message().find(c.reason), std::string::npos) << message();
    EXPECT_FALSE(acrxDynamicLinker->isModuleLoaded(tarn::toWide(c.path).c_str()));
  }
  EXPECT_TRUE(tarn::removeAll(folder.value()).isOk());
}

}  // namespace
