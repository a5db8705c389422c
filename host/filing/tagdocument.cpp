#include "host/filing/tagdocument.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstring>

#include "base/text.h"

namespace tarn::host {

namespace {

constexpr std::uint64_t kMostBytes = std::uint64_t{4} << 30;
constexpr int kLowestCode = -5;
constexpr int kHighestCode = 1071;
constexpr int kComment = 999;

/// True, with the number, when the line is a group code with nothing but blanks around it.
bool readCode(const char* at, const char* end, int& code) {
  while (at < end && (*at == ' ' || *at == '\t')) ++at;
  const bool negative = at < end && *at == '-';
  if (negative) ++at;
  if (at == end || *at < '0' || *at > '9') return false;
  int value = 0;
  for (; at < end && *at >= '0' && *at <= '9'; ++at) {
    value = value * 10 + (*at - '0');
    if (value > kHighestCode) return false;
  }
  while (at < end && (*at == ' ' || *at == '\t' || *at == '\r')) ++at;
  code = negative ? -value : value;
  return at == end && code >= kLowestCode;
}

std::string shown(std::string_view line) {
  constexpr size_t kMost = 40;
  std::string out;
  for (const char c : line.substr(0, kMost)) {
    out += c >= ' ' && c != 0x7f ? c : '?';
  }
  return out;
}

}  // namespace

Result<TagDocument> TagDocument::parse(std::string bytes, const std::string& name) {
  if (bytes.size() >= kMostBytes) {
    return Status::error(name + ": a drawing of 4 GB and more cannot be opened.");
  }
  TagDocument document;
  document.bytes_ = std::move(bytes);
  if (Status status = document.readTags(name); !status) return status;
  document.findObjects();
  if (document.sections_.empty()) {
    return Status::error(name + ": this is no DXF drawing: there is no section in it.");
  }
  const TagRange range = document.headerVariable("$ACADVER");
  if (range.begin < range.end) document.version_ = document.word(document.tag(range.begin));
  return document;
}

Result<TagDocument> TagDocument::partOf(std::string bytes, std::string_view version, bool isLast) {
  TagDocument part;
  part.version_ = version;
  // The lines of the last tag may go on in the next part.
  if (!isLast) bytes.erase(bytes.rfind('\n') + 1);
  part.bytes_ = std::move(bytes);
  if (Status status = part.readTags("the drawing"); !status) return status;
  part.findObjects();
  if (isLast || part.complete_) return part;
  const std::uint32_t rest = part.objects_.empty() ? 0 : part.objects_.back();
  part.bytes_.erase(rest > 0 ? part.startOf(rest) : 0);
  part.tags_.resize(rest);
  if (!part.objects_.empty()) part.objects_.pop_back();
  return part;
}

Status TagDocument::readTags(const std::string& name) {
  const char* const begin = bytes_.data();
  const char* const end = begin + bytes_.size();
  const char* at = begin;
  if (bytes_.compare(0, 3, "\xEF\xBB\xBF") == 0) at += 3;
  // A tag of two short lines takes about a dozen bytes.
  tags_.reserve(bytes_.size() / 12 + 16);
  const auto lineEndOf = [end](const char* from) {
    const void* found = std::memchr(from, '\n', static_cast<size_t>(end - from));
    return found != nullptr ? static_cast<const char*>(found) : nullptr;
  };
  while (at < end) {
    const char* codeEnd = lineEndOf(at);
    int code = 0;
    if (!readCode(at, codeEnd != nullptr ? codeEnd : end, code)) {
      const std::string_view line(at,
                                  static_cast<size_t>((codeEnd != nullptr ? codeEnd : end) - at));
      if (codeEnd == nullptr || trim(std::string_view(at, static_cast<size_t>(end - at))).empty()) {
        return {};  // blanks, or a last line that was cut off
      }
      const auto number = std::count(begin, at, '\n') + 1;
      return Status::error(name + ": line " + std::to_string(number) + ": \"" + shown(trim(line)) +
                           "\" stands where a group code is due.");
    }
    if (codeEnd == nullptr) return {};
    if (tags_.empty()) hasReturns_ = codeEnd > at && codeEnd[-1] == '\r';
    const char* const value = codeEnd + 1;
    const char* valueEnd = lineEndOf(value);
    const bool isLast = valueEnd == nullptr;
    if (isLast) valueEnd = end;
    Tag tag;
    tag.offset = static_cast<std::uint32_t>(value - begin);
    tag.length = static_cast<std::uint32_t>(valueEnd - value);
    tag.code = static_cast<std::int16_t>(code);
    const bool isEnd = code == 0 && word(tag) == "EOF";
    if (isLast && !isEnd) return {};
    tags_.push_back(tag);
    if (isEnd) {
      complete_ = true;
      return {};
    }
    at = valueEnd + 1;
  }
  return {};
}

void TagDocument::findObjects() {
  DrawingSection* open = nullptr;
  for (std::uint32_t i = 0; i < tags_.size(); ++i) {
    if (tags_[i].code != 0) continue;
    const auto object = static_cast<std::uint32_t>(objects_.size());
    objects_.push_back(i);
    const std::string_view type = word(tags_[i]);
    const bool begins = type == "SECTION";
    if (open != nullptr && (begins || type == "ENDSEC" || type == "EOF")) {
      open->endObject = object;
      open = nullptr;
    }
    if (!begins) continue;
    std::uint32_t nameTag = i + 1;
    while (nameTag < tags_.size() && tags_[nameTag].code == kComment) ++nameTag;
    if (nameTag >= tags_.size() || tags_[nameTag].code != 2) continue;
    sections_.push_back({std::string(word(tags_[nameTag])), object, object});
    open = &sections_.back();
  }
  if (open != nullptr) open->endObject = static_cast<std::uint32_t>(objects_.size());
}

const DrawingSection* TagDocument::section(std::string_view name) const {
  for (const DrawingSection& section : sections_) {
    if (section.name == name) return &section;
  }
  return nullptr;
}

std::vector<DrawingSection> TagDocument::sectionsNamed(std::string_view name) const {
  std::vector<DrawingSection> found;
  for (const DrawingSection& section : sections_) {
    if (section.name == name) found.push_back(section);
  }
  return found;
}

TagRange TagDocument::tagsOf(std::uint32_t object) const {
  const std::uint32_t next = object + 1;
  const auto all = static_cast<std::uint32_t>(tags_.size());
  return {objects_[object], next < objects_.size() ? objects_[next] : all};
}

std::string_view TagDocument::typeOf(std::uint32_t object) const {
  return word(tags_[objects_[object]]);
}

std::uint64_t TagDocument::handleOf(std::uint32_t object) const {
  const TagRange range = tagsOf(object);
  const std::string_view type = typeOf(object);
  // In the table of dimension styles code 5 is the name of a block.
  const int handleCode = type == "DIMSTYLE" ? 105 : 5;
  bool inGroup = false;
  for (std::uint32_t i = range.begin + 1; i < range.end; ++i) {
    const Tag& tag = tags_[i];
    if (tag.code == 102) inGroup = word(tag).substr(0, 1) == "{";
    if (!inGroup && tag.code == handleCode) return parseHandle(word(tag));
    if (tag.code == 100 || tag.code > 1000) break;
  }
  return 0;
}

std::uint64_t TagDocument::highestHandle() const {
  std::uint64_t highest = 0;
  for (std::uint32_t object = 0; object < objects_.size(); ++object) {
    highest = std::max(highest, handleOf(object));
  }
  return highest;
}

std::string_view TagDocument::text(const Tag& tag) const {
  std::string_view line(bytes_.data() + tag.offset, tag.length);
  if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
  return line;
}

std::string_view TagDocument::word(const Tag& tag) const {
  return trim(std::string_view(bytes_.data() + tag.offset, tag.length));
}

size_t TagDocument::startOf(std::uint32_t tag) const {
  if (tag == 0) return bytes_.compare(0, 3, "\xEF\xBB\xBF") == 0 ? 3 : 0;
  const Tag& before = tags_[tag - 1];
  return std::min(bytes_.size(), size_t{before.offset} + before.length + 1);
}

size_t TagDocument::lineOf(std::uint32_t tag) const {
  const auto begin = bytes_.begin();
  return static_cast<size_t>(
             std::count(begin, begin + static_cast<std::ptrdiff_t>(startOf(tag)), '\n')) +
         1;
}

bool TagDocument::hasTrailingBytes() const {
  const size_t end = startOf(static_cast<std::uint32_t>(tags_.size()));
  return complete_ && !trim(std::string_view(bytes_).substr(end)).empty();
}

TagRange TagDocument::headerVariable(std::string_view name) const {
  const DrawingSection* header = section("HEADER");
  if (header == nullptr) return {};
  const TagRange all = tagsOf(header->firstObject);
  TagRange found;
  for (std::uint32_t i = all.begin; i < all.end; ++i) {
    if (tags_[i].code != 9) continue;
    if (found.begin != 0) return {found.begin, i};
    if (word(tags_[i]) == name) found.begin = i + 1;
  }
  return found.begin != 0 ? TagRange{found.begin, all.end} : TagRange{};
}

std::uint64_t parseHandle(std::string_view digits) {
  std::uint64_t value = 0;
  const char* end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, value, 16);
  return error == std::errc() && stop == end ? value : 0;
}

std::string formatHandle(std::uint64_t handle) {
  char digits[17];
  const auto [end, error] = std::to_chars(digits, digits + sizeof digits, handle, 16);
  std::string text(digits, error == std::errc() ? end : digits);
  std::transform(text.begin(), text.end(), text.begin(),
                 [](char c) { return c >= 'a' ? static_cast<char>(c - 'a' + 'A') : c; });
  return text;
}

}  // namespace tarn::host
