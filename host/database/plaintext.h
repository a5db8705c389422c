// Texts of one line as they are read by a person.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "adesk.h"
#include "dbid.h"

namespace tarn::host {

/// A part of a line of text.
struct TextRun {
  std::wstring text;
  bool underlined = false;
  bool overlined = false;
};

/// A line of text with "%%d", "%%p", "%%c", "%%123" and "\U+1234" as their characters; "%%u" and
/// "%%o" switch the lines below and above.
ACADHOST_EXPORT std::vector<TextRun> textRuns(std::wstring_view text);

/// The characters of all runs.
ACADHOST_EXPORT std::wstring plainLine(std::wstring_view text);

/// The font of a style of texts; empty for none.
std::wstring fontOfStyle(AcDbObjectId style);

}  // namespace tarn::host
