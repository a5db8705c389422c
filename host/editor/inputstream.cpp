#include "host/editor/inputstream.h"

#include <algorithm>
#include <utility>

#include "base/text.h"

namespace tarn::host {

namespace {

bool isBlank(char c) {
  return c == ' ' || c == '\t';
}
bool isLineEnd(char c) {
  return c == '\n' || c == '\r';
}
bool isWholeLine(InputKind kind) {
  return kind == InputKind::kText || kind == InputKind::kFileName;
}

/// Reads up to a blank or line end outside quotes; quotes are taken off.
std::string readWord(const std::string& text, size_t& at) {
  std::string word;
  bool quoted = false;
  for (; at < text.size(); ++at) {
    const char c = text[at];
    if (c == '"') {
      quoted = !quoted;
      continue;
    }
    if (isLineEnd(c) || (!quoted && isBlank(c))) break;
    word += c;
  }
  return word;
}

void skipEnter(const std::string& text, size_t& at) {
  if (at >= text.size()) return;
  const bool pair = text[at] == '\r' && at + 1 < text.size() && text[at + 1] == '\n';
  at += pair ? 2 : 1;
}

}  // namespace

std::string takeToken(const std::string& text, size_t& at) {
  while (at < text.size() && isBlank(text[at])) ++at;
  std::string word = readWord(text, at);
  while (at < text.size() && isBlank(text[at])) ++at;
  return word;
}

std::string wholeLine(const std::string& text) {
  std::string_view line = trim(std::string_view(text));
  const bool quoted = line.size() >= 2 && line.front() == '"' && line.back() == '"' &&
                      line.find('"', 1) == line.size() - 1;
  if (quoted) line = line.substr(1, line.size() - 2);
  return std::string(line);
}

size_t finishedLength(const std::string& sent) {
  const size_t last = sent.find_last_of(" \t\r\n");
  return last == std::string::npos ? 0 : last + 1;
}

void InputStream::pushTyped(const std::string& line) {
  frames_.push_back({Source::kTyped, line, 0, {}});
}

void InputStream::pushSent(const std::string& text) {
  frames_.push_back({Source::kSent, text, 0, {}});
}

void InputStream::pushArguments(std::vector<std::string> inputs) {
  frames_.push_back({Source::kArguments, {}, 0, std::move(inputs)});
}

std::optional<std::string> InputStream::take(Frame& frame, InputKind kind) {
  if (frame.source == Source::kArguments) {
    if (frame.at >= frame.arguments.size()) return std::nullopt;
    return frame.arguments[frame.at++];
  }
  if (frame.source == Source::kSent) {
    if (frame.at >= frame.text.size()) return std::nullopt;
    if (!isWholeLine(kind)) {
      std::string word = readWord(frame.text, frame.at);
      skipEnter(frame.text, frame.at);
      return word;
    }
    const size_t end = std::min(frame.text.find_first_of("\r\n", frame.at), frame.text.size());
    std::string line = wholeLine(frame.text.substr(frame.at, end - frame.at));
    frame.at = end;
    skipEnter(frame.text, frame.at);
    return line;
  }
  while (frame.at < frame.text.size() && isBlank(frame.text[frame.at])) ++frame.at;
  if (frame.at >= frame.text.size()) return std::nullopt;
  if (!isWholeLine(kind)) return takeToken(frame.text, frame.at);
  std::string line = wholeLine(frame.text.substr(frame.at));
  frame.at = frame.text.size();
  return line;
}

std::optional<InputStream::Item> InputStream::next(InputKind kind) {
  // Used-up sources stay in place until whoever pushed them drops them, so that depths stay true.
  for (size_t i = frames_.size(); i-- > 0;) {
    Frame& frame = frames_[i];
    if (auto text = take(frame, kind)) return Item{*text, frame.source};
    if (frame.source == Source::kArguments) return std::nullopt;
  }
  return std::nullopt;
}

bool InputStream::atBarrier() const {
  for (size_t i = frames_.size(); i-- > 0;) {
    if (frames_[i].source == Source::kArguments) return true;
    if (frames_[i].at < frames_[i].text.size()) return false;
  }
  return false;
}

void InputStream::dropTo(size_t depth) {
  if (frames_.size() > depth) frames_.resize(depth);
}

std::string InputStream::takeSentRest() {
  if (frames_.empty() || frames_.back().source != Source::kSent) return {};
  Frame& top = frames_.back();
  std::string rest = top.text.substr(top.at);
  top.at = top.text.size();
  return rest;
}

}  // namespace tarn::host
