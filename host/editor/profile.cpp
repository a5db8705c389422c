#include "host/editor/profile.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "base/file.h"
#include "base/path.h"

namespace tarn::host {

namespace {

constexpr const char* kLocales[] = {"CHS", "ENU"};
constexpr uint64_t kLongestLocale = 64;

}  // namespace

Profile::Profile(std::string folder) : folder_(std::move(folder)), usualLocale_(kLocales[0]) {
  if (!folder_.empty()) folder_ = absolutePath(folder_);
}

std::string Profile::configurationFolder() const {
  return joinPath(folder_, "system");
}
std::string Profile::cacheFolder() const {
  return joinPath(folder_, "cache");
}

std::string Profile::locale() const {
  const std::string& chosen = chosenLocale();
  return chosen.empty() ? usualLocale_ : chosen;
}

const std::string& Profile::chosenLocale() const {
  if (!chosenLocale_) {
    const auto kept = readFile(joinPath(configurationFolder(), "locale"), kLongestLocale);
    const bool isKnown = kept && std::find(std::begin(kLocales), std::end(kLocales),
                                           kept.value()) != std::end(kLocales);
    chosenLocale_ = isKnown ? kept.value() : std::string();
  }
  return *chosenLocale_;
}

bool Profile::setLocale(const std::string& locale) {
  if (std::find(std::begin(kLocales), std::end(kLocales), locale) == std::end(kLocales)) {
    return false;
  }
  if (!makeFolders(configurationFolder()) ||
      !writeFileAtomically(joinPath(configurationFolder(), "locale"), locale)) {
    return false;
  }
  chosenLocale_ = locale;
  return true;
}

void Profile::setFurtherFolders(std::vector<std::string> folders) {
  further_ = std::move(folders);
}

std::string Profile::findFile(const std::string& name) const {
  if (name.empty()) return {};
  const auto isFile = [](const std::string& path) { return fileKind(path) == FileKind::kRegular; };
  if (!folderOf(name).empty()) return isFile(name) ? absolutePath(name) : std::string();
  std::vector<std::string> folders = {configurationFolder(), folder_};
  folders.insert(folders.end(), further_.begin(), further_.end());
  for (const std::string& folder : folders) {
    if (folder.empty()) continue;
    std::string path = joinPath(folder, name);
    if (isFile(path)) return path;
  }
  return {};
}

}  // namespace tarn::host
