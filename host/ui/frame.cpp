#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

#include "base/text.h"
#include "host/ui/uiservices.h"
#include "rxmfcapi.h"

namespace tarn::host {

namespace {

/// The data tag of text for the command line.
constexpr ULONG_PTR kCommandText = 1;

UiServices& installed() {
  static UiServices services;
  return services;
}

/// The UTF-16 text of a copy-data message up to its terminator, or up to its end.
std::wstring textOf(const COPYDATASTRUCT& data) {
  std::u16string text(data.cbData / sizeof(char16_t), u'\0');
  if (data.lpData == nullptr) return {};
  std::memcpy(text.data(), data.lpData, text.size() * sizeof(char16_t));
  text.resize(std::min(text.find(u'\0'), text.size()));
  return fromUtf16(text);
}

class MainFrame : public CMDIFrameWnd {
 protected:
  LRESULT WindowProc(UINT message, WPARAM, LPARAM lParam) override {
    if (message != WM_COPYDATA || lParam == 0) return 0;
    // The message carries the address as a number.
    const auto* data =
        reinterpret_cast<const COPYDATASTRUCT*>(lParam);  // NOLINT(performance-no-int-to-ptr)
    if (data->dwData != kCommandText || !uiServices().runText) return 0;
    uiServices().runText(textOf(*data));
    return 1;
  }
};

class CommandLine : public CWnd {
 public:
  CWnd* SetFocus() override {
    if (uiServices().focusCommandLine) uiServices().focusCommandLine();
    return nullptr;
  }
};

}  // namespace

void installUiServices(UiServices services) {
  installed() = std::move(services);
}
const UiServices& uiServices() {
  return installed();
}

}  // namespace tarn::host

CMDIFrameWnd* acedGetAcadFrame() {
  static tarn::host::MainFrame frame;
  return tarn::host::uiServices().runText ? &frame : nullptr;
}

CWnd* acedGetAcadDockCmdLine() {
  static tarn::host::CommandLine line;
  return tarn::host::uiServices().runText ? &line : nullptr;
}

CWnd* AfxGetMainWnd() {
  return acedGetAcadFrame();
}
