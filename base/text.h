// Text between UTF-8 (files, std::string) and wide characters (the host's ACHAR).
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarn {

/// UTF-8 of a wide text. A code point that is not valid becomes U+FFFD.
std::string toUtf8(std::wstring_view text);

/// Wide text of UTF-8. Each byte that is not part of valid UTF-8 becomes U+FFFD.
std::wstring toWide(std::string_view utf8);

/// UTF-16 (with surrogate pairs), without a terminator, and back.
std::u16string toUtf16(std::wstring_view text);
std::wstring fromUtf16(std::u16string_view text);

/// Equal without regard to the case of ASCII letters.
bool equalsIgnoreCase(std::string_view a, std::string_view b);
bool equalsIgnoreCase(std::wstring_view a, std::wstring_view b);

/// Lower case of ASCII letters; everything else stays.
std::string toLower(std::string_view text);
std::wstring toLower(std::wstring_view text);

/// Pieces between separators. Empty pieces are kept; an empty text is one empty piece.
std::vector<std::string> split(std::string_view text, char separator);
std::vector<std::wstring> split(std::wstring_view text, wchar_t separator);

/// Without white space at both ends.
std::string_view trim(std::string_view text);
std::wstring_view trim(std::wstring_view text);

/// `text` with every `from` replaced by `to`. An empty `from` changes nothing.
std::string replaceAll(std::string text, std::string_view from, std::string_view to);
std::wstring replaceAll(std::wstring text, std::wstring_view from, std::wstring_view to);

/// The shortest text that reads back the same double; never in the user's locale.
std::string formatDouble(double value);

/// A whole text as a number in the C locale ('.' is the decimal point). Returns false, with `value`
/// untouched, when anything but white space around it is left over.
bool parseDouble(std::string_view text, double& value);
bool parseInt(std::string_view text, int& value);

}  // namespace tarn
