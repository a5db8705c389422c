#include "_image/paneltext.h"

#include "commoncode/cadutil/language.h"

namespace tarn::image {

std::wstring panelText(const wchar_t* chinese, const wchar_t* english) {
  return cad::isEnglish() ? english : chinese;
}

}  // namespace tarn::image
