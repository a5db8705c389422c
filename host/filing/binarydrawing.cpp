#include "host/filing/binarydrawing.h"

#include <cstdint>
#include <cstring>

#include "base/text.h"
#include "host/filing/binaryvalues.h"

namespace tarn::host {

namespace {

using ValueKind = BinaryValue;

struct CodeRange {
  int first, last;
  ValueKind kind;
};

constexpr CodeRange kRanges[] = {
    {0, 9, ValueKind::kText},        {10, 59, ValueKind::kReal},     {60, 79, ValueKind::kInt16},
    {90, 99, ValueKind::kInt32},     {100, 109, ValueKind::kText},   {110, 149, ValueKind::kReal},
    {160, 169, ValueKind::kInt64},   {170, 179, ValueKind::kInt16},  {210, 239, ValueKind::kReal},
    {270, 289, ValueKind::kInt16},   {290, 299, ValueKind::kBool},   {300, 309, ValueKind::kText},
    {310, 319, ValueKind::kChunk},   {320, 369, ValueKind::kText},   {370, 389, ValueKind::kInt16},
    {390, 399, ValueKind::kText},    {400, 409, ValueKind::kInt16},  {410, 419, ValueKind::kText},
    {420, 429, ValueKind::kInt32},   {430, 439, ValueKind::kText},   {440, 459, ValueKind::kInt32},
    {460, 469, ValueKind::kReal},    {470, 481, ValueKind::kText},   {999, 1003, ValueKind::kText},
    {1004, 1004, ValueKind::kChunk}, {1005, 1009, ValueKind::kText}, {1010, 1059, ValueKind::kReal},
    {1060, 1070, ValueKind::kInt16}, {1071, 1071, ValueKind::kInt32}};

class Reader {
 public:
  Reader(std::string_view bytes, size_t at, bool shortCodes)
      : bytes_(bytes), at_(at), shortCodes_(shortCodes) {}

  bool atEnd() const { return at_ >= bytes_.size(); }
  size_t position() const { return at_; }

  bool code(int& value) {
    std::uint8_t byte = 0;
    std::int16_t word = 0;
    if (!shortCodes_) {
      if (!number(word)) return false;
      value = word;
      return true;
    }
    if (!number(byte)) return false;
    value = byte;
    if (byte != 255) return true;
    if (!number(word)) return false;
    value = word;
    return true;
  }

  template <typename T>
  bool number(T& value) {
    if (bytes_.size() - at_ < sizeof value) return false;
    std::memcpy(&value, bytes_.data() + at_, sizeof value);
    at_ += sizeof value;
    return true;
  }

  bool value(ValueKind kind, std::string& out) {
    switch (kind) {
      case ValueKind::kText:
        return text(out);
      case ValueKind::kReal: {
        double real = 0;
        if (!number(real)) return false;
        out = formatDouble(real);
        return true;
      }
      case ValueKind::kInt16:
        return whole<std::int16_t>(out);
      case ValueKind::kInt32:
        return whole<std::int32_t>(out);
      case ValueKind::kInt64:
        return whole<std::int64_t>(out);
      case ValueKind::kBool:
        return whole<std::uint8_t>(out);
      case ValueKind::kChunk:
        return chunk(out);
    }
    return false;
  }

 private:
  template <typename T>
  bool whole(std::string& out) {
    T value = 0;
    if (!number(value)) return false;
    out = std::to_string(value);
    return true;
  }

  bool text(std::string& out) {
    const size_t end = bytes_.find('\0', at_);
    if (end == std::string_view::npos) return false;
    out.assign(bytes_.substr(at_, end - at_));
    // A line end inside a value would make another tag of its rest.
    for (char& c : out) {
      if (c == '\n' || c == '\r') c = ' ';
    }
    at_ = end + 1;
    return true;
  }

  bool chunk(std::string& out) {
    std::uint8_t size = 0;
    if (!number(size) || bytes_.size() - at_ < size) return false;
    static constexpr char kDigits[] = "0123456789ABCDEF";
    out.clear();
    for (const char c : bytes_.substr(at_, size)) {
      const auto byte = static_cast<unsigned char>(c);
      out += kDigits[byte >> 4];
      out += kDigits[byte & 15];
    }
    at_ += size;
    return true;
  }

  std::string_view bytes_;
  size_t at_;
  bool shortCodes_;
};

}  // namespace

std::optional<BinaryValue> binaryValueOf(int code) {
  for (const CodeRange& range : kRanges) {
    if (code >= range.first && code <= range.last) return range.kind;
  }
  return std::nullopt;
}

bool isBinaryDrawing(std::string_view bytes) {
  return bytes.substr(0, kBinaryMark.size()) == kBinaryMark;
}

Result<std::string> asciiFromBinary(std::string_view bytes, const std::string& name) {
  // The first tag is 0 SECTION; with codes of two bytes its text begins one byte later.
  const bool shortCodes =
      bytes.size() > kBinaryMark.size() + 1 && bytes[kBinaryMark.size() + 1] != 0;
  Reader reader(bytes, kBinaryMark.size(), shortCodes);
  std::string out;
  out.reserve(bytes.size() * 3);
  std::string value;
  while (!reader.atEnd()) {
    const size_t place = reader.position();
    int code = 0;
    if (!reader.code(code)) break;
    const std::optional<BinaryValue> kind = binaryValueOf(code);
    if (!kind) {
      return Status::error(name + ": byte " + std::to_string(place) + ": " + std::to_string(code) +
                           " is no group code.");
    }
    if (!reader.value(*kind, value)) {
      return Status::error(name + ": byte " + std::to_string(place) + ": the value is cut off.");
    }
    out += std::to_string(code) + "\n" + value + "\n";
    if (code == 0 && value == "EOF") break;
  }
  return out;
}

}  // namespace tarn::host
