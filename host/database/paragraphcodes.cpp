// The formatting codes of texts of several lines.
#include <cmath>
#include <cstdlib>

#include "acgi.h"
#include "base/text.h"
#include "host/database/paragraphs.h"
#include "host/database/plaintext.h"

namespace tarn::host {

namespace {

constexpr double kDegree = 3.141592653589793 / 180;
constexpr wchar_t kFirstIdeograph = 0x2E80;
constexpr size_t kDeepest = 64;

double numberOf(const std::wstring& text, double standard) {
  double value = 0;
  const std::string narrow = toUtf8(text);
  const size_t end = narrow.find_first_not_of("+-.0123456789eE");
  return parseDouble(std::string_view(narrow).substr(0, end), value) && std::isfinite(value)
             ? value
             : standard;
}

class PieceReader {
 public:
  PieceReader(std::wstring_view contents, const Lettering& first) : text_(contents) {
    looks_.push_back(first);
  }

  std::vector<TextPiece> read() {
    while (at_ < text_.size()) readNext();
    finishWord();
    return std::move(pieces_);
  }

 private:
  void readNext() {
    const wchar_t c = text_[at_++];
    if (c == L'{') {
      if (looks_.size() < kDeepest) looks_.push_back(look());
      finishWord();
    } else if (c == L'}') {
      finishWord();
      if (looks_.size() > 1) looks_.pop_back();
    } else if (c == L'\n') {
      add(TextPiece::kEnd);
    } else if (c == L' ' || c == L'\t') {
      add(c == L' ' ? TextPiece::kBlank : TextPiece::kTab);
    } else if (c == L'^' && at_ < text_.size()) {
      readCaret(text_[at_++]);
    } else if (c == L'\\' && at_ < text_.size()) {
      readCode(text_[at_++]);
    } else if (c == L'%' && text_.substr(at_ - 1, 2) == L"%%" && at_ + 1 < text_.size()) {
      readPercent();
    } else if (c >= L' ') {
      letter(c);
    }
  }

  void readCaret(wchar_t c) {
    if (c == L'J' || c == L'M') {
      if (c == L'J') add(TextPiece::kEnd);
    } else if (c == L'I') {
      add(TextPiece::kTab);
    } else {
      letter(L'^');
      if (c != L' ') --at_;
    }
  }

  /// "%%d" and the like, which end with the third or the fifth character.
  void readPercent() {
    for (const size_t length : {size_t{5}, size_t{3}}) {
      const std::wstring_view code = text_.substr(at_ - 1, length);
      const std::wstring plain = plainLine(code);
      if (code.size() != length || plain.size() > 1) continue;
      word_ += plain;
      at_ += length - 1;
      return;
    }
    letter(L'%');
  }

  void readCode(wchar_t code) {
    switch (code) {
      case L'P':
      case L'X':
        return add(TextPiece::kEnd);
      case L'N':
        return add(TextPiece::kColumnEnd);
      case L'~':
        return letter(L'\u00A0');
      case L'\\':
      case L'{':
      case L'}':
        return letter(code);
      case L'L':
      case L'l':
        return switchLine(look().underlined, code == L'L');
      case L'O':
      case L'o':
        return switchLine(look().overlined, code == L'O');
      case L'K':
      case L'k':
        return;
      case L'U':
        return readUnicode();
      case L'S':
        return readStack();
      default:
        readValue(code);
    }
  }

  void switchLine(bool& line, bool on) {
    finishWord();
    line = on;
  }

  void readUnicode() {
    const std::wstring plain = plainLine(text_.substr(at_ - 2, 7));
    if (plain.size() != 1) return;
    letter(plain[0]);
    at_ += 5;
  }

  /// Up to the semicolon, which is passed over.
  std::wstring value() {
    const size_t end = std::min(text_.find(L';', at_), text_.size());
    std::wstring found(text_.substr(at_, end - at_));
    at_ = std::min(end + 1, text_.size());
    return found;
  }

  /// A number, behind which the semicolon may be missing.
  std::wstring number() {
    const auto isIn = [&](size_t at, std::wstring_view set) {
      return at < text_.size() && set.find(text_[at]) != std::wstring_view::npos;
    };
    constexpr std::wstring_view kDigits = L"0123456789";
    size_t end = at_;
    while (isIn(end, L"+-.0123456789")) ++end;
    if (end > at_ && isIn(end, L"eE")) {
      const size_t digit = end + (isIn(end + 1, L"+-") ? 2 : 1);
      for (size_t i = digit; isIn(i, kDigits); ++i) end = i + 1;
    }
    if (end > at_ && isIn(end, L"xX")) ++end;
    std::wstring found(text_.substr(at_, end - at_));
    at_ = isIn(end, L";") ? end + 1 : end;
    return found;
  }

  void readValue(wchar_t code) {
    constexpr std::wstring_view kNumbers = L"ACcHQTW";
    constexpr std::wstring_view kOthers = L"Ffp";
    const bool isNumber = kNumbers.find(code) != std::wstring_view::npos;
    if (!isNumber && kOthers.find(code) == std::wstring_view::npos) return letter(code);
    finishWord();
    const std::wstring text = isNumber ? number() : value();
    const bool isFactor = !text.empty() && (text.back() == L'x' || text.back() == L'X');
    if (code == L'H') {
      const double height = numberOf(text, isFactor ? 1 : look().height);
      if (height > 0) look().height = isFactor ? look().height * height : height;
    } else if (code == L'W') {
      const double width = numberOf(text, 1);
      if (width > 0) look().widthFactor = isFactor ? look().widthFactor * width : width;
    } else if (code == L'Q') {
      look().oblique = numberOf(text, 0) * kDegree;
    } else if (code == L'C') {
      look().color = static_cast<Adesk::UInt32>(std::min(256.0, std::fabs(numberOf(text, 256))));
      if (look().color == 256u || look().color == 0u) look().color.reset();
    } else if (code == L'c') {
      // Blue comes first here.
      const auto bgr = static_cast<Adesk::UInt32>(std::fabs(numberOf(text, 0)));
      look().color =
          AcGiSubEntityTraits::kTrueColor | (bgr & 255) << 16 | (bgr & 0xFF00) | (bgr >> 16 & 255);
    } else if (code == L'f' || code == L'F') {
      look().font = text;
    } else if (code == L'p') {
      readParagraph(text);
    }
  }

  /// Of indents, tabulators and the like, the alignment.
  void readParagraph(const std::wstring& text) {
    const size_t at = text.find(L'q');
    if (at == std::wstring::npos || at + 1 >= text.size()) return;
    alignment_ = text[at + 1] == L'*' ? 0 : text[at + 1];
  }

  void readStack() {
    finishWord();
    TextPiece stack;
    stack.kind = TextPiece::kStack;
    stack.look = look();
    stack.alignment = alignment_;
    bool below = false;
    for (; at_ < text_.size() && text_[at_] != L';'; ++at_) {
      wchar_t c = text_[at_];
      if (c == L'\\' && at_ + 1 < text_.size()) {
        c = text_[++at_];
      } else if (!below && (c == L'^' || c == L'/' || c == L'#')) {
        stack.divider = c;
        below = true;
        continue;
      }
      (below ? stack.below : stack.text) += c;
    }
    if (at_ < text_.size()) ++at_;
    pieces_.push_back(std::move(stack));
  }

  Lettering& look() { return looks_.back(); }

  void letter(wchar_t c) {
    if (c < kFirstIdeograph) {
      word_ += c;
      return;
    }
    // Between ideographs a line may end anywhere.
    finishWord();
    word_ = c;
    finishWord();
  }

  void finishWord() {
    if (word_.empty()) return;
    std::wstring text;
    text.swap(word_);
    push(TextPiece::kWord, std::move(text));
  }

  void add(TextPiece::Kind kind) {
    finishWord();
    push(kind, kind == TextPiece::kBlank || kind == TextPiece::kTab ? L" " : L"");
  }

  void push(TextPiece::Kind kind, std::wstring text) {
    TextPiece piece;
    piece.kind = kind;
    piece.text = std::move(text);
    piece.look = look();
    piece.alignment = alignment_;
    pieces_.push_back(std::move(piece));
  }

  std::wstring_view text_;
  size_t at_ = 0;
  std::vector<Lettering> looks_;
  std::wstring word_;
  wchar_t alignment_ = 0;
  std::vector<TextPiece> pieces_;
};

}  // namespace

std::vector<TextPiece> readPieces(std::wstring_view contents, const Lettering& first) {
  return PieceReader(contents, first).read();
}

}  // namespace tarn::host
