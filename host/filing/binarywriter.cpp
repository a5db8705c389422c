// The writing of binary drawings.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

#include "base/text.h"
#include "host/filing/binarydrawing.h"
#include "host/filing/binaryvalues.h"
#include "host/filing/tagdocument.h"

namespace tarn::host {

namespace {

constexpr int kComment = 999;
constexpr size_t kChunk = 127;

/// The tags of one part of a drawing.
class Writer {
 public:
  Writer(const TagDocument& document, bool shortCodes)
      : document_(document), shortCodes_(shortCodes) {
    out_.reserve(document.bytes().size());
  }

  /// An error says which line cannot be written; `linesBefore` stand before this part.
  Status write(size_t linesBefore) {
    const auto count = static_cast<std::uint32_t>(document_.tags().size());
    for (std::uint32_t i = 0; i < count; ++i) {
      const Tag& tag = document_.tag(i);
      if (tag.code == kComment) continue;
      const std::optional<BinaryValue> kind = binaryValueOf(tag.code);
      if (kind && addValue(tag, *kind)) continue;
      return Status::error("line " + std::to_string(linesBefore + document_.lineOf(i)) + ": \"" +
                           std::string(document_.word(tag).substr(0, 40)) + "\" of group code " +
                           std::to_string(tag.code) + " has no place in a binary drawing");
    }
    return {};
  }

  const std::string& bytes() const { return out_; }

 private:
  /// "inf" and "nan": damaged binary drawings hold such numbers, and what was read can be written
  /// again.
  static bool parseEndless(std::string_view word, double& value) {
    const char* end = word.data() + word.size();
    const auto [stop, error] = std::from_chars(word.data(), end, value);
    return error == std::errc() && stop == end && !std::isfinite(value);
  }

  bool addValue(const Tag& tag, BinaryValue kind) {
    const std::string_view word = document_.word(tag);
    switch (kind) {
      case BinaryValue::kText: {
        const std::string_view text = document_.text(tag);
        if (text.find('\0') != std::string_view::npos) return false;
        addCode(tag.code);
        out_.append(text);
        out_ += '\0';
        return true;
      }
      case BinaryValue::kReal: {
        double value = 0;
        if (!parseDouble(word, value) && !parseEndless(word, value)) return false;
        addCode(tag.code);
        addRaw(value);
        return true;
      }
      case BinaryValue::kInt16:
        return addWhole<std::int16_t, std::uint16_t>(tag.code, word);
      case BinaryValue::kInt32:
        return addWhole<std::int32_t, std::uint32_t>(tag.code, word);
      case BinaryValue::kInt64:
        return addWhole<std::int64_t, std::int64_t>(tag.code, word);
      case BinaryValue::kBool:
        return addWhole<std::int8_t, std::uint8_t>(tag.code, word);
      case BinaryValue::kChunk:
        return addChunk(tag.code, word);
    }
    return false;
  }

  void addCode(int code) {
    if (!shortCodes_) return addRaw(static_cast<std::int16_t>(code));
    if (code < 255) {
      out_ += static_cast<char>(code);
    } else {
      out_ += '\xff';
      addRaw(static_cast<std::int16_t>(code));
    }
  }

  template <typename T>
  void addRaw(T value) {
    char bytes[sizeof value];
    std::memcpy(bytes, &value, sizeof value);
    out_.append(bytes, sizeof value);
  }

  /// Some programs write the bits of a signed number as an unsigned one.
  template <typename Signed, typename Unsigned>
  bool addWhole(int code, std::string_view word) {
    if (!word.empty() && word.front() == '+') word.remove_prefix(1);
    std::int64_t value = 0;
    const char* end = word.data() + word.size();
    const auto [stop, error] = std::from_chars(word.data(), end, value);
    if (error != std::errc()) return false;
    // "1.0" for a whole number.
    double real = 0;
    if (stop != end && (!parseDouble(word, real) || real != static_cast<double>(value)))
      return false;
    if (value < std::numeric_limits<Signed>::min() || value > std::numeric_limits<Unsigned>::max())
      return false;
    addCode(code);
    addRaw(static_cast<Unsigned>(value));
    return true;
  }

  bool addChunk(int code, std::string_view word) {
    if (word.size() % 2 != 0) return false;
    std::string bytes;
    for (size_t i = 0; i < word.size(); i += 2) {
      unsigned value = 0;
      const auto [stop, error] = std::from_chars(&word[i], &word[i] + 2, value, 16);
      if (error != std::errc() || stop != &word[i] + 2) return false;
      bytes += static_cast<char>(value);
    }
    // A long run of bytes is several tags, as everywhere.
    size_t at = 0;
    do {
      const std::string part = bytes.substr(at, kChunk);
      addCode(code);
      out_ += static_cast<char>(part.size());
      out_ += part;
      at += kChunk;
    } while (at < bytes.size());
    return true;
  }

  const TagDocument& document_;
  bool shortCodes_;
  std::string out_;
};

}  // namespace

Status giveAsBinary(const DrawingPieces& pieces, const Ground& ground, const std::string& name,
                    const PieceTaker& take) {
  if (Status status = take(kBinaryMark); !status) return status;
  size_t lines = 0;
  return forEachPart(pieces, ground, [&](const TagDocument& part) {
    Writer writer(part, ground.document.isOld());
    if (const Status status = writer.write(lines); !status) {
      return Status::error(name + ": " + status.message() + ".");
    }
    lines += static_cast<size_t>(std::count(part.bytes().begin(), part.bytes().end(), '\n'));
    return take(writer.bytes());
  });
}

}  // namespace tarn::host
