// A module that writes down what the host tells it: each message becomes an object "probe.<n>" of
// the system registry's count, so that the test can read it without linking the module.
#include <stdexcept>
#include <string>

#include "arxEntryPoint.h"
#include "rxdict.h"

namespace {

/// A named entry whose presence is the note.
class Note : public AcRxObject {};

void note(const std::wstring& text) {
  const std::wstring key = L"probe." + text;
  delete acrxSysRegistry()->atPut(key.c_str(), new Note);
}

bool wanted(const ACHAR* wish) {
  return acrxSysRegistry()->has(wish);
}

}  // namespace

class ProbeObject : public AcRxObject {
 public:
  ACRX_DECLARE_MEMBERS(ProbeObject);
};
ACRX_CONS_DEFINE_MEMBERS(ProbeObject, AcRxObject, 1)
ACDB_REGISTER_OBJECT_ENTRY_AUTO(ProbeObject)

class ProbeApp : public AcRxArxApp {
 public:
  AcRx::AppRetCode On_kInitAppMsg(void* packet) override {
    if (wanted(L"wish.throw")) throw std::runtime_error("no memory for the probe");
    if (wanted(L"wish.refuse")) return AcRx::kRetError;
    note(L"1");
    const AcRx::AppRetCode status = AcRxArxApp::On_kInitAppMsg(packet);
    if (wanted(L"wish.lock")) acrxLockApplication(packet);
    return status;
  }
  AcRx::AppRetCode On_kUnloadAppMsg(void* packet) override {
    note(L"2");
    if (wanted(L"wish.stay")) return AcRx::kRetError;
    return AcRxArxApp::On_kUnloadAppMsg(packet);
  }
  AcRx::AppRetCode On_kLoadDwgMsg(void*) override { return noted(L"3"); }
  AcRx::AppRetCode On_kUnloadDwgMsg(void*) override { return noted(L"4"); }
  AcRx::AppRetCode On_kInvkSubrMsg(void*) override { return noted(L"5"); }
  AcRx::AppRetCode On_kCfgMsg(void*) override { return noted(L"6"); }
  AcRx::AppRetCode On_kEndMsg(void*) override { return noted(L"7"); }
  AcRx::AppRetCode On_kQuitMsg(void*) override { return noted(L"8"); }
  AcRx::AppRetCode On_kSaveMsg(void*) override { return noted(L"9"); }
  AcRx::AppRetCode On_kDependencyMsg(void*) override { return noted(L"10"); }
  AcRx::AppRetCode On_kNoDependencyMsg(void*) override { return noted(L"11"); }
  AcRx::AppRetCode On_kOleUnloadAppMsg(void*) override { return noted(L"12"); }
  AcRx::AppRetCode On_kPreQuitMsg(void*) override { return noted(L"13"); }
  AcRx::AppRetCode On_kInitDialogMsg(void*) override { return noted(L"14"); }
  AcRx::AppRetCode On_kEndDialogMsg(void*) override { return noted(L"15"); }
  AcRx::AppRetCode On_kNullMsg(void*) override { return noted(L"0"); }

  static void _probe_Run() { note(L"run"); }
  static void _probe_Second() { note(L"second"); }

 private:
  static AcRx::AppRetCode noted(const ACHAR* text) {
    note(text);
    return AcRx::kRetOK;
  }
};

ACED_ARXCOMMAND_ENTRY_AUTO(ProbeApp, _probe, _Run, ProbeRun, ACRX_CMD_TRANSPARENT, nullptr)
ACED_ARXCOMMAND_ENTRY_AUTO(ProbeApp, _probe, _Second, ProbeSecond, ACRX_CMD_MODAL, nullptr)
IMPLEMENT_ARX_ENTRYPOINT(ProbeApp)
