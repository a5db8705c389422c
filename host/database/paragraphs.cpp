#include "host/database/paragraphs.h"

#include <algorithm>

#include "host/database/textmeasure.h"

namespace tarn::host {

namespace {

constexpr double kLineDistance = 5.0 / 3;  ///< base line to base line, in heights
constexpr double kStackHeight = 0.7;       ///< of the letters of a fraction
constexpr double kAbove = 0.6;             ///< base line of what stands above, in heights
constexpr double kBelow = 0.3;             ///< of what stands below, downwards
constexpr double kTabWidth = 4;            ///< in heights

/// A piece on its line, x from the line's left end.
struct Fragment {
  TextPiece piece;
  double x = 0;
  double width = 0;
};

struct Line {
  std::vector<Fragment> fragments;
  double height = 0;  ///< of its highest capital
  double width = 0;   ///< without blanks at the end
  wchar_t alignment = 0;
  bool endsColumn = false;
};

double widthOf(const Lettering& look, const std::wstring& text) {
  return textWidth(text, look.font) * look.height * look.widthFactor;
}

Lettering stacked(Lettering look) {
  look.height *= kStackHeight;
  return look;
}

double widthOf(const TextPiece& piece) {
  if (piece.kind == TextPiece::kTab) return kTabWidth * piece.look.height;
  if (piece.kind != TextPiece::kStack) return widthOf(piece.look, piece.text);
  const Lettering small = stacked(piece.look);
  return std::max(widthOf(small, piece.text), widthOf(small, piece.below));
}

class LineBreaker {
 public:
  explicit LineBreaker(double width) : width_(width) {}

  std::vector<Line> broken(const std::vector<TextPiece>& pieces, double height) {
    for (const TextPiece& piece : pieces) {
      if (piece.kind == TextPiece::kEnd || piece.kind == TextPiece::kColumnEnd) {
        line().alignment = piece.alignment;
        line().endsColumn = piece.kind == TextPiece::kColumnEnd;
        if (line().fragments.empty()) line().height = piece.look.height;
        begin();
      } else {
        add(piece);
      }
    }
    for (Line& each : lines_) {
      if (each.height <= 0) each.height = height;
    }
    return std::move(lines_);
  }

 private:
  Line& line() { return lines_.back(); }

  void begin() {
    lines_.emplace_back();
    x_ = 0;
  }

  void add(const TextPiece& piece) {
    const bool isBlank = piece.kind == TextPiece::kBlank || piece.kind == TextPiece::kTab;
    const double width = widthOf(piece);
    constexpr double kRoom = 1.000001;
    if (!isBlank && width_ > 0 && x_ > 0 && x_ + width > width_ * kRoom) begin();
    // A blank at which a line was wrapped is not seen.
    if (isBlank && x_ == 0 && lines_.size() > 1 && !line().fragments.empty()) return;
    line().fragments.push_back({piece, x_, width});
    line().height = std::max(line().height, piece.look.height);
    line().alignment = piece.alignment;
    x_ += width;
    if (!isBlank) line().width = x_;
  }

  double width_;
  double x_ = 0;
  std::vector<Line> lines_ = std::vector<Line>(1);
};

class Placer {
 public:
  explicit Placer(const ParagraphStyle& style) : style_(style) {}

  Paragraphs placed(const std::vector<Line>& lines) {
    if (hasColumns(style_)) return inColumns(lines);
    const int row = (style_.attachment - 1) / 3;
    double whole = lines.front().height;
    for (size_t i = 1; i < lines.size(); ++i) whole += step(lines[i]);
    double y = whole * row / 2.0 - lines.front().height;
    for (size_t i = 0; i < lines.size(); ++i) {
      if (i > 0) y -= step(lines[i]);
      place(lines[i], y);
    }
    return std::move(out_);
  }

  static bool hasColumns(const ParagraphStyle& style) {
    return style.columns != nullptr && style.columns->count > 1 && style.columns->width > 0;
  }

 private:
  /// A column is full when the next base line would be below its height; the last one takes what
  /// is left.
  Paragraphs inColumns(const std::vector<Line>& lines) {
    const AcDbMTextColumns& columns = *style_.columns;
    const double pace = columns.width + columns.gap;
    const double whole = columns.count * pace - columns.gap;
    const double left = -whole * ((style_.attachment - 1) % 3) / 2.0;
    int column = 0;
    double y = 0;
    bool begins = true;
    for (const Line& line : lines) {
      y -= begins ? line.height : step(line);
      const double room = heightOf(columns, column);
      if (!begins && column + 1 < columns.count && room > 0 && -y > room) {
        ++column;
        y = -line.height;
      }
      place(line, y, left + column * pace);
      begins = line.endsColumn && column + 1 < columns.count;
      if (!begins) continue;
      ++column;
      y = 0;
    }
    return std::move(out_);
  }

  static double heightOf(const AcDbMTextColumns& columns, int column) {
    const auto place = static_cast<size_t>(column);
    return place < columns.heights.size() ? columns.heights[place] : columns.height;
  }

  double step(const Line& line) const { return kLineDistance * line.height * style_.spacing; }

  double inColumn(const Line& line) const {
    const double free = style_.columns->width - line.width;
    return line.alignment == L'c' ? free / 2 : line.alignment == L'r' ? free : 0;
  }

  /// Where the line begins: aligned at the point, or in the width of the text.
  double leftOf(const Line& line) const {
    const int column = (style_.attachment - 1) % 3;
    const double box = style_.width > 0 ? style_.width : line.width;
    const double share = line.alignment == L'l'   ? 0
                         : line.alignment == L'c' ? 0.5
                         : line.alignment == L'r' ? 1
                                                  : column / 2.0;
    return -box * column / 2.0 + (box - line.width) * share;
  }

  /// `shift` is where the line's column begins.
  void place(const Line& line, double y, double shift = 0) {
    const double left = hasColumns(style_) ? shift + inColumn(line) : leftOf(line);
    for (const Fragment& fragment : line.fragments) {
      const double x = left + fragment.x;
      if (fragment.piece.kind == TextPiece::kStack) {
        placeStack(fragment, x, y);
      } else if (fragment.piece.kind == TextPiece::kWord || fragment.piece.look.underlined) {
        addText(fragment.piece.look, x, y, fragment.piece.text);
      }
    }
  }

  void addText(const Lettering& look, double x, double y, const std::wstring& text) {
    PlacedText placed;
    static_cast<Lettering&>(placed) = look;
    placed.x = x;
    placed.y = y;
    placed.text = text;
    if (!text.empty()) out_.texts.push_back(std::move(placed));
  }

  void placeStack(const Fragment& fragment, double x, double y) {
    const TextPiece& piece = fragment.piece;
    const Lettering small = stacked(piece.look);
    const double h = piece.look.height;
    const bool isRaised = piece.below.empty();
    const double above = h * (isRaised ? 1 - kStackHeight : kAbove);
    const double room = fragment.width;
    addText(small, x + (room - widthOf(small, piece.text)) / 2, y + above, piece.text);
    addText(small, x + (room - widthOf(small, piece.below)) / 2, y - h * kBelow, piece.below);
    if (piece.below.empty() || piece.divider == L'^') return;
    const double middle = y + h * 0.5;
    const double slant = piece.divider == L'#' ? h * 0.6 : 0;
    out_.rules.push_back({x, middle - slant, x + room, middle + slant, piece.look.color});
  }

  const ParagraphStyle& style_;
  Paragraphs out_;
};

}  // namespace

Paragraphs layOut(std::wstring_view contents, const ParagraphStyle& style) {
  Lettering first;
  first.font = style.font;
  first.height = style.height;
  first.widthFactor = style.widthFactor;
  first.oblique = style.oblique;
  const std::vector<TextPiece> pieces = readPieces(contents, first);
  const double width = Placer::hasColumns(style) ? style.columns->width : style.width;
  return Placer(style).placed(LineBreaker(width).broken(pieces, style.height));
}

}  // namespace tarn::host
