// Texts of drawing files: code pages, escapes and control characters.
#pragma once

#include <string>
#include <string_view>

#include "adesk.h"

class QTextCodec;

namespace tarn::host {

class TagDocument;

/// Turns values of a drawing's tags into texts and back. UTF-8 from R2007 on, whatever the header's
/// code page says; before that the code page, with "\U+XXXX" and "\M+nXXXX" for what it lacks.
/// Control characters stand as "^J", a caret as "^ ". A byte of 0, which no text here can hold,
/// reads as the replacement character.
class ACADHOST_EXPORT TextEncoding {
 public:
  /// UTF-8.
  TextEncoding() = default;
  /// What the header of a drawing says. Without a code page it is UTF-8 when all bytes are, else
  /// Western European.
  explicit TextEncoding(const TagDocument& document);
  /// A code page by its name in drawings ("ANSI_936", "dos850"); an unknown one is Western
  /// European.
  static TextEncoding ofCodePage(std::string_view name);

  std::wstring decode(std::string_view bytes) const;
  /// Never holds a line end. What the code page lacks becomes "\U+XXXX".
  std::string encode(std::wstring_view text) const;
  bool isUtf8() const { return codec_ == nullptr; }

 private:
  QTextCodec* codec_ = nullptr;  ///< null for UTF-8; owned by the toolkit
};

}  // namespace tarn::host
