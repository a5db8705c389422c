// The panel's own texts beside its resources, in their two languages.
#pragma once

#include <string>

namespace tarn::image {

/// The Chinese text, or the English one where the system variable LOCALE is "ENU".
std::wstring panelText(const wchar_t* chinese, const wchar_t* english);

}  // namespace tarn::image
