#include "host/filing/encoding.h"

#include <QByteArray>
#include <QString>
#include <QTextCodec>
#include <algorithm>
#include <charconv>
#include <optional>

#include "base/text.h"
#include "host/filing/tagdocument.h"

namespace tarn::host {

namespace {

struct CodePage {
  const char* inDrawing;
  const char* ofToolkit;
};

constexpr CodePage kCodePages[] = {{"ANSI_874", "windows-874"},
                                   {"ANSI_932", "Shift_JIS"},
                                   {"ANSI_936", "GB18030"},
                                   {"ANSI_949", "windows-949"},
                                   {"ANSI_950", "Big5"},
                                   {"ANSI_1250", "windows-1250"},
                                   {"ANSI_1251", "windows-1251"},
                                   {"ANSI_1252", "windows-1252"},
                                   {"ANSI_1253", "windows-1253"},
                                   {"ANSI_1254", "windows-1254"},
                                   {"ANSI_1255", "windows-1255"},
                                   {"ANSI_1256", "windows-1256"},
                                   {"ANSI_1257", "windows-1257"},
                                   {"ANSI_1258", "windows-1258"},
                                   {"DOS850", "IBM850"},
                                   {"DOS852", "IBM852"},
                                   {"DOS855", "IBM855"},
                                   {"DOS866", "IBM866"},
                                   {"DOS932", "Shift_JIS"},
                                   {"GB2312", "GB18030"},
                                   {"GBK", "GB18030"},
                                   {"BIG5", "Big5"},
                                   {"KSC5601", "windows-949"},
                                   {"ISO8859-1", "ISO-8859-1"},
                                   {"ISO8859-2", "ISO-8859-2"},
                                   {"ISO8859-5", "ISO-8859-5"},
                                   {"ISO8859-9", "ISO-8859-9"},
                                   {"MACINTOSH", "macintosh"}};

constexpr char kWestern[] = "windows-1252";

QTextCodec* codecOf(std::string_view name) {
  for (const CodePage& page : kCodePages) {
    if (!equalsIgnoreCase(name, page.inDrawing)) continue;
    if (QTextCodec* codec = QTextCodec::codecForName(page.ofToolkit)) return codec;
  }
  QTextCodec* western = QTextCodec::codecForName(kWestern);
  return western != nullptr ? western : QTextCodec::codecForName("ISO-8859-1");
}

bool isPlain(std::string_view bytes) {
  return std::all_of(bytes.begin(), bytes.end(), [](char c) {
    return static_cast<signed char>(c) >= ' ' && c != '\\' && c != '^';
  });
}

bool isValidUtf8(std::string_view bytes) {
  return toWide(bytes).find(L'\xFFFD') == std::wstring::npos;
}

std::optional<unsigned> hexDigits(std::wstring_view text, size_t at, size_t count) {
  if (text.size() < at + count) return std::nullopt;
  unsigned value = 0;
  for (const wchar_t c : text.substr(at, count)) {
    const char narrow = c < 128 ? static_cast<char>(c) : 'x';
    unsigned digit = 0;
    if (std::from_chars(&narrow, &narrow + 1, digit, 16).ec != std::errc()) return std::nullopt;
    value = value * 16 + digit;
  }
  return value;
}

/// The character of "\M+nXXXX": n tells the code page, XXXX are its bytes.
std::optional<std::wstring> multiByte(std::wstring_view text, size_t at) {
  static constexpr const char* kPages[] = {"ANSI_932", "ANSI_950", "ANSI_949", "", "ANSI_936"};
  const auto page = hexDigits(text, at, 1);
  const auto bytes = hexDigits(text, at + 1, 4);
  if (!page || !bytes || *page < 1 || *page > 5 || *kPages[*page - 1] == 0) return std::nullopt;
  const char pair[2] = {static_cast<char>(*bytes >> 8), static_cast<char>(*bytes & 255)};
  return codecOf(kPages[*page - 1])->toUnicode(pair, 2).toStdWString();
}

/// Where a wide character holds any character, pairs of surrogates, as "\U+D83D\U+DDFA" leaves
/// them, become one.
void joinSurrogates(std::wstring& text) {
  if (sizeof(wchar_t) == 2) return;
  size_t to = 0;
  for (size_t i = 0; i < text.size(); ++i) {
    wchar_t c = text[i];
    if (c >= 0xD800 && c < 0xDC00 && i + 1 < text.size() && text[i + 1] >= 0xDC00 &&
        text[i + 1] < 0xE000) {
      c = static_cast<wchar_t>(0x10000 + ((c - 0xD800) << 10) + (text[i + 1] - 0xDC00));
      ++i;
    }
    text[to++] = c;
  }
  text.resize(to);
}

std::wstring withoutEscapes(std::wstring_view text) {
  std::wstring out;
  out.reserve(text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    const wchar_t c = text[i];
    const wchar_t next = i + 1 < text.size() ? text[i + 1] : 0;
    if (c == L'^' && (next == L' ' || (next >= L'A' && next <= L'_'))) {
      out += next == L' ' ? L'^' : static_cast<wchar_t>(next - L'@');
      ++i;
      continue;
    }
    const bool escape = c == L'\\' && i + 2 < text.size() && text[i + 2] == L'+';
    if (escape && (next == L'U' || next == L'u')) {
      if (const auto value = hexDigits(text, i + 3, 4)) {
        out += static_cast<wchar_t>(*value);
        i += 6;
        continue;
      }
    }
    if (escape && (next == L'M' || next == L'm')) {
      if (const auto value = multiByte(text, i + 3)) {
        out += *value;
        i += 7;
        continue;
      }
    }
    out += c;
  }
  joinSurrogates(out);
  // Names and texts go as C strings through the host's interface, which would cut them there.
  std::replace(out.begin(), out.end(), L'\0', L'\xFFFD');
  return out;
}

/// Wide characters of the character at `at`: two where one has 16 bits and the character more.
size_t widthOf(std::wstring_view text, size_t at) {
  const auto isBetween = [&](size_t i, wchar_t first, wchar_t last) {
    return i < text.size() && text[i] >= first && text[i] <= last;
  };
  const bool isPair = isBetween(at, 0xD800, 0xDBFF) && isBetween(at + 1, 0xDC00, 0xDFFF);
  return sizeof(wchar_t) == 2 && isPair ? 2 : 1;
}

std::string escaped(std::wstring_view character) {
  std::string out;
  for (const char16_t unit : toUtf16(character)) {
    const std::string digits = formatHandle(unit);
    out += "\\U+" + std::string(4 - digits.size(), '0') + digits;
  }
  return out;
}

std::string encodedBy(QTextCodec& codec, std::wstring_view character) {
  const QString text =
      QString::fromWCharArray(character.data(), static_cast<int>(character.size()));
  QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
  const QByteArray bytes = codec.fromUnicode(text.constData(), text.size(), &state);
  // What the toolkit takes for the Chinese page has more; other programs know only its pairs.
  if (bytes.size() > 2) return escaped(character);
  // Some converters put a question mark instead of saying that there is no such character.
  if (state.invalidChars > 0 || bytes.isEmpty() || codec.toUnicode(bytes) != text) {
    return escaped(character);
  }
  return bytes.toStdString();
}

}  // namespace

TextEncoding TextEncoding::ofCodePage(std::string_view name) {
  TextEncoding encoding;
  encoding.codec_ = codecOf(name);
  return encoding;
}

TextEncoding::TextEncoding(const TagDocument& document) {
  if (document.version() >= "AC1021") return;
  const TagRange range = document.headerVariable("$DWGCODEPAGE");
  if (range.begin < range.end) {
    const std::string_view page = document.word(document.tag(range.begin));
    if (!equalsIgnoreCase(page, "UTF-8") && !equalsIgnoreCase(page, "UTF8")) codec_ = codecOf(page);
  } else if (!isValidUtf8(document.bytes())) {
    codec_ = codecOf({});
  }
}

std::wstring TextEncoding::decode(std::string_view bytes) const {
  if (isPlain(bytes)) return {bytes.begin(), bytes.end()};
  if (codec_ == nullptr) return withoutEscapes(toWide(bytes));
  const QString text = codec_->toUnicode(bytes.data(), static_cast<int>(bytes.size()));
  return withoutEscapes(text.toStdWString());
}

std::string TextEncoding::encode(std::wstring_view text) const {
  std::string out;
  for (size_t i = 0; i < text.size();) {
    const wchar_t c = text[i];
    const std::wstring_view whole = text.substr(i, widthOf(text, i));
    i += whole.size();
    if (c < L' ') {
      out += {'^', static_cast<char>('@' + c)};
    } else if (c == L'^') {
      out += "^ ";
    } else if (c < 128) {
      out += static_cast<char>(c);
    } else if (codec_ == nullptr) {
      out += toUtf8(whole);
    } else {
      out += encodedBy(*codec_, whole);
    }
  }
  return out;
}

}  // namespace tarn::host
