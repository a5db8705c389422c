// The dialog's own texts beside the given ones, in their two languages.
#pragma once

#include <QString>

#include "commoncode/cadutil/language.h"

namespace tarn::image {

inline QString dialogText(const char* chinese, const char* english) {
  return QString::fromUtf8(cad::isEnglish() ? english : chinese);
}

}  // namespace tarn::image
