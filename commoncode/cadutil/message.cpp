#include "commoncode/cadutil/message.h"

#include "acedads.h"
#include "base/text.h"

namespace tarn::cad {

void printMessage(const std::wstring& text) {
  acutPrintf(L"%ls", text.c_str());
}

void printMessage(const std::wstring& text, std::wstring_view argument) {
  printMessage(replaceAll(text, L"%1", argument));
}

}  // namespace tarn::cad
