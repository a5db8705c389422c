// How wide texts are. The database knows no fonts; who draws says it.
#pragma once

#include <string>
#include <string_view>

#include "adesk.h"

namespace tarn::host {

/// The width of one line in heights of its capitals; `font` as in AcGiTextStyle.
using TextMeasure = double (*)(const std::wstring& text, const std::wstring& font);
/// Until one is set, and with null, widths are estimates.
ACADHOST_EXPORT void setTextMeasure(TextMeasure measure);
ACADHOST_EXPORT double textWidth(const std::wstring& text, const std::wstring& font);
/// By a usual width of letters and ideographs.
ACADHOST_EXPORT double estimatedTextWidth(std::wstring_view text);

}  // namespace tarn::host
