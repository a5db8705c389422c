// Messages on the command line.
#pragma once

#include <string>
#include <string_view>

namespace tarn::cad {

/// Prints the text as it is, whatever characters it holds.
void printMessage(const std::wstring& text);

/// Prints the text with "%1" replaced.
void printMessage(const std::wstring& text, std::wstring_view argument);

}  // namespace tarn::cad
