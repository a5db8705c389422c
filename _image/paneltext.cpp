#include "_image/paneltext.h"

#include <cstdlib>
#include <cwchar>

#include "acedads.h"
#include "acutmem.h"

namespace tarn::image {
namespace {

bool isEnglish() {
  resbuf value{};
  if (acedGetVar(L"LOCALE", &value) != RTNORM || value.restype != RTSTR) return false;
  const bool english = value.resval.rstring && std::wcscmp(value.resval.rstring, L"ENU") == 0;
  acutDelString(value.resval.rstring);
  return english;
}

}  // namespace

std::wstring panelText(const wchar_t* chinese, const wchar_t* english) {
  return isEnglish() ? english : chinese;
}

}  // namespace tarn::image
