#include "host/window/transcript.h"

#include <filesystem>

#include "base/text.h"

namespace tarn::host {

Status Transcript::open(const std::string& path) {
  file_.open(std::filesystem::u8path(path), std::ios::app | std::ios::binary);
  if (!file_) return Status::error(path + ": the log cannot be written.");
  return {};
}

void Transcript::line(const std::string& text) {
  if (file_.is_open()) file_ << text << std::endl;
}

void Transcript::waits(const std::string& prompt) {
  const std::string_view text = trim(std::string_view(prompt));
  line("> " + std::string(text.substr(text.rfind('\n') + 1)));
}

}  // namespace tarn::host
