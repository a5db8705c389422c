// Texts of several lines: their formatting codes read, their lines broken and placed.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "adesk.h"
#include "dbtext.h"

namespace tarn::host {

/// How a part of the text looks.
struct Lettering {
  std::wstring font;
  double height = 1;
  double widthFactor = 1;
  double oblique = 0;  ///< radians
  std::optional<Adesk::UInt32>
      color;  ///< as AcGiSubEntityTraits::trueColor(); none for the text's own
  bool underlined = false;
  bool overlined = false;
};

/// A piece of the text that is not broken, or what ends a line.
struct TextPiece {
  enum Kind { kWord, kBlank, kTab, kEnd, kColumnEnd, kStack };
  Kind kind = kWord;
  std::wstring text;       ///< of a stack, what stands above
  std::wstring below;      ///< of a stack
  wchar_t divider = L'/';  ///< of a stack: '/' a line, '#' a slanted one, '^' none
  Lettering look;
  wchar_t alignment = 0;  ///< of its paragraph: l, c, r, or 0 for that of the whole text
};
std::vector<TextPiece> readPieces(std::wstring_view contents, const Lettering& first);

struct ParagraphStyle {
  std::wstring font;
  double height = 1;
  double widthFactor = 1;
  double oblique = 0;
  double width = 0;      ///< longer lines are wrapped; 0 wraps none
  double spacing = 1;    ///< of lines, as a factor
  short attachment = 1;  ///< 1 top left to 9 bottom right, by rows
  const AcDbMTextColumns* columns = nullptr;
};

/// A part of one line, from the left end of its base line; x to the right and y up from the point
/// that the text is attached to.
struct PlacedText : Lettering {
  double x = 0;
  double y = 0;
  std::wstring text;
};
/// A line of a fraction.
struct PlacedRule {
  double x1 = 0, y1 = 0, x2 = 0, y2 = 0;
  std::optional<Adesk::UInt32> color;
};
struct Paragraphs {
  std::vector<PlacedText> texts;
  std::vector<PlacedRule> rules;
};

/// Heights are those of capitals; from base line to base line it is 5/3 of the highest in the line.
ACADHOST_EXPORT Paragraphs layOut(std::wstring_view contents, const ParagraphStyle& style);

}  // namespace tarn::host
