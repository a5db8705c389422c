// The dialog's own texts beside the given ones, in their two languages.
#pragma once

#include <QString>

#include "commoncode/cadutil/language.h"
#include "commoncode/fitreport/fittext.h"

namespace tarn::image {

inline fitreport::Language textLanguage() {
  return cad::isEnglish() ? fitreport::Language::kEnglish : fitreport::Language::kChinese;
}

inline QString dialogText(const char* chinese, const char* english) {
  return QString::fromUtf8(cad::isEnglish() ? english : chinese);
}

}  // namespace tarn::image
