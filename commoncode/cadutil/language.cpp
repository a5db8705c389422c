#include "commoncode/cadutil/language.h"

#include <cwchar>

#include "acedads.h"
#include "acutmem.h"

namespace tarn::cad {

bool isEnglish() {
  resbuf value{};
  if (acedGetVar(L"LOCALE", &value) != RTNORM || value.restype != RTSTR) return false;
  const bool english = value.resval.rstring && std::wcscmp(value.resval.rstring, L"ENU") == 0;
  acutDelString(value.resval.rstring);
  return english;
}

}  // namespace tarn::cad
