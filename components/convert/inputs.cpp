#include "components/convert/inputs.h"

#include <algorithm>
#include <set>

#include "base/file.h"
#include "base/path.h"
#include "base/text.h"
#include "components/raster/pyramidstamp.h"

namespace tarn::convert {
namespace {

bool isImageName(const std::string& name) {
  const std::string ending = toLower(extensionOf(name));
  for (const char* known : {".tif", ".tiff", ".img", ".jpg", ".jpeg"}) {
    if (ending == known) return true;
  }
  return false;
}

/// One of the letters of "[a-c_]"; `at` is moved behind the bracket.
bool matchesSet(const std::string& pattern, size_t& at, char c) {
  const size_t end = pattern.find(']', at + 2);
  if (end == std::string::npos) return pattern[at++] == c;
  const bool inverted = pattern[at + 1] == '!' || pattern[at + 1] == '^';
  bool found = false;
  for (size_t i = at + (inverted ? 2 : 1); i < end; ++i) {
    const bool range = i + 2 < end && pattern[i + 1] == '-';
    found = found || (range ? pattern[i] <= c && c <= pattern[i + 2] : pattern[i] == c);
    if (range) i += 2;
  }
  at = end + 1;
  return found != inverted;
}

bool matches(const std::string& pattern, const std::string& name) {
  size_t p = 0, n = 0, star = std::string::npos, mark = 0;
  while (n < name.size()) {
    size_t next = p;
    bool fits = false;
    if (p < pattern.size() && pattern[p] == '*') {
      star = p++;
      mark = n;
      continue;
    }
    if (p < pattern.size()) {
      if (pattern[p] == '[') {
        fits = matchesSet(pattern, next, name[n]);
      } else {
        fits = pattern[next] == '?' || pattern[next] == name[n];
        ++next;
      }
    }
    if (fits) {
      p = next;
      ++n;
    } else if (star != std::string::npos) {
      p = star + 1;
      n = ++mark;
    } else {
      return false;
    }
  }
  while (p < pattern.size() && pattern[p] == '*') ++p;
  return p == pattern.size();
}

bool isPattern(const std::string& name) {
  return name.find_first_of("*?[") != std::string::npos;
}

/// Everything that the pattern's parts, folder by folder, stand for.
std::vector<std::string> matchesOf(const std::string& pattern) {
  const std::string folder = folderOf(pattern), name = nameOf(pattern);
  std::vector<std::string> folders = {folder};
  if (isPattern(folder)) folders = matchesOf(folder);
  const bool rooted = folder.empty() && !pattern.empty() && pattern[0] == '/';
  std::vector<std::string> found;
  for (const std::string& each : folders) {
    if (!isPattern(name)) {
      found.push_back(joinPath(each, name));
      continue;
    }
    for (const std::string& entry : listFolder(rooted ? "/" : each)) {
      const bool hidden = entry[0] == '.' && name[0] != '.';
      if (!hidden && matches(name, entry)) found.push_back(joinPath(rooted ? "/" : each, entry));
    }
  }
  found.erase(
      std::remove_if(found.begin(), found.end(),
                     [](const std::string& path) { return fileKind(path) == FileKind::kMissing; }),
      found.end());
  return found;
}

void addImagesOf(const std::string& folder, std::vector<std::string>& out) {
  for (const std::string& name : listFolder(folder)) {
    const std::string path = joinPath(folder, name);
    if (name[0] != '.' && isImageName(name) && fileKind(path) == FileKind::kRegular)
      out.push_back(path);
  }
}

}  // namespace

std::vector<std::string> expandInputs(const std::vector<std::string>& names) {
  std::vector<std::string> out;
  for (const std::string& name : names) {
    const FileKind kind = fileKind(name);
    if (kind == FileKind::kFolder) {
      addImagesOf(name, out);
      continue;
    }
    const std::vector<std::string> found = kind == FileKind::kMissing && isPattern(name)
                                               ? matchesOf(name)
                                               : std::vector<std::string>{};
    if (found.empty()) out.push_back(name);
    out.insert(out.end(), found.begin(), found.end());
  }
  return out;
}

std::vector<Item> planItems(const std::vector<std::string>& inputs, const Options& options) {
  std::vector<Item> items;
  std::set<std::string> seen, taken;
  for (const std::string& input : inputs) {
    Item item{input, {}, {}};
    const bool inRoot = folderOf(input).empty() && !input.empty() && input[0] == '/';
    const std::string own = inRoot ? "/" : folderOf(input);
    const std::string folder = options.folder.empty() ? own : options.folder;
    item.output = joinPath(folder, stemOf(input) + extensionFor(options.format));
    if (!seen.insert(absolutePath(input)).second) {
      item.problem = "is named twice";
    } else if (!taken.insert(absolutePath(item.output)).second) {
      int number = 2;
      while (options.existing == Existing::kRename &&
             !taken.insert(absolutePath(numberedName(item.output, number))).second)
        ++number;
      if (options.existing == Existing::kRename) {
        item.output = numberedName(item.output, number);
      } else {
        item.problem = "another image of the list becomes " + item.output + ", too";
      }
    }
    items.push_back(std::move(item));
  }
  return items;
}

unsigned partOf(const std::string& input, unsigned parts) {
  return static_cast<unsigned>(raster::hashBytes(input.data(), input.size()) % parts) + 1;
}

std::string numberedName(const std::string& path, int number) {
  return joinPath(folderOf(path), stemOf(path) + "_" + std::to_string(number) + extensionOf(path));
}

}  // namespace tarn::convert
