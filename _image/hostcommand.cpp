#include "_image/hostcommand.h"

#include "acdocman.h"
#include "base/text.h"
#include "rxmfcapi.h"

namespace tarn::image {
namespace {

constexpr ULONG_PTR kCommandText = 1;

}  // namespace

void sendCommandToHost(const std::wstring& command) {
  if (!acDocManager || !acDocManager->curDocument()) return;
  CWnd* frame = acedGetAcadFrame();
  if (!frame) return;
  std::u16string text = toUtf16(command + L" ");
  COPYDATASTRUCT data;
  data.dwData = kCommandText;
  data.cbData = static_cast<DWORD>((text.size() + 1) * sizeof(char16_t));
  data.lpData = text.data();
  frame->SendMessage(WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data));
  if (CWnd* commandLine = acedGetAcadDockCmdLine()) commandLine->SetFocus();
}

}  // namespace tarn::image
