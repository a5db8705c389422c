// What the window classes need of the running host. Installed once by the editor.
#pragma once

#include <functional>
#include <string>

#include "adesk.h"
#include "tarnresources.h"

namespace tarn::host {

class UiBackend;

struct UiServices {
  UiBackend* backend = nullptr;                      ///< boxes, file dialogs, menus and windows
  std::function<void(const std::wstring&)> runText;  ///< text for the command line
  std::function<void()> focusCommandLine;
  std::function<TarnLanguage()> language;  ///< of resources
};

/// Replaces what was installed; a default-made value takes it away. Without services boxes answer
/// with their refusing button and dialogs are cancelled.
ACADHOST_EXPORT void installUiServices(UiServices services);
ACADHOST_EXPORT const UiServices& uiServices();

/// The button that refuses in a box of this type: IDNO, IDCANCEL, or IDOK when there is only that.
ACADHOST_EXPORT int refusingButton(unsigned type);

}  // namespace tarn::host
