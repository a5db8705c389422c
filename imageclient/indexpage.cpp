#include <algorithm>
#include <cctype>
#include <cmath>
#include <set>

#include "base/path.h"
#include "base/text.h"
#include "imageclient/folderlisting.h"
#include "imageclient/serveraddress.h"

namespace tarn::client {
namespace {

constexpr size_t kMostItems = 100000;
// Behind a link; what is further away is not about it.
constexpr size_t kLongestDetails = 400;

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

/// The few entities that stand in addresses and names.
std::string withoutEntities(const std::string& text) {
  std::string out = replaceAll(text, "&quot;", "\"");
  out = replaceAll(out, "&#39;", "'");
  out = replaceAll(out, "&lt;", "<");
  out = replaceAll(out, "&gt;", ">");
  return replaceAll(out, "&amp;", "&");
}

/// The value of an attribute of a tag's inside; empty when there is none.
std::string attributeOf(const std::string& tag, const std::string& name) {
  std::string lower = tag;
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  const size_t at = lower.find(name + '=');
  if (at == std::string::npos) return {};
  const size_t value = at + name.size() + 1;
  if (value >= tag.size()) return {};
  const char quote = tag[value];
  if (quote != '"' && quote != '\'')
    return tag.substr(value, tag.find_first_of(" \t>", value) - value);
  const size_t end = tag.find(quote, value + 1);
  return end == std::string::npos ? std::string() : tag.substr(value + 1, end - value - 1);
}

std::string withoutTags(const std::string& html) {
  std::string out;
  bool inTag = false;
  for (const char c : html) {
    if (c == '<') {
      inTag = true;
      out += ' ';
    } else if (c == '>') {
      inTag = false;
    } else if (!inTag) {
      out += c == '\n' || c == '\t' || c == '\r' ? ' ' : c;
    }
  }
  return out;
}

/// "21-Nov-2026" or "2026-11-21".
bool isDate(const std::string& word) {
  const std::vector<std::string> parts = split(word, '-');
  if (parts.size() != 3) return false;
  return std::all_of(parts.begin(), parts.end(),
                     [](const std::string& part) {
                       return !part.empty() && part.size() <= 4 &&
                              std::all_of(part.begin(), part.end(),
                                          [](unsigned char c) { return std::isalnum(c) != 0; });
                     }) &&
         isDigit(parts[0][0]) && isDigit(parts[2][0]);
}

bool isTime(const std::string& word) {
  return word.size() >= 4 && word.size() <= 8 && word.find(':') != std::string::npos &&
         isDigit(word[0]);
}

/// "12345", "1.5M"; -1 for anything else.
int64_t bytesOf(const std::string& word) {
  size_t digits = 0;
  while (digits < word.size() && (isDigit(word[digits]) || word[digits] == '.')) ++digits;
  if (digits == 0 || digits > 15 || word.size() > digits + 2) return -1;
  double number = 0;
  if (!parseDouble(word.substr(0, digits), number)) return -1;
  if (word.size() == digits) return static_cast<int64_t>(number);
  const size_t power = std::string("BKMGT").find(
      static_cast<char>(std::toupper(static_cast<unsigned char>(word[digits]))));
  if (power == std::string::npos || number > 1e9) return -1;
  return static_cast<int64_t>(std::llround(number * std::pow(1024.0, static_cast<double>(power))));
}

/// The time and the size that stand behind a link.
void takeDetails(const std::string& html, FolderItem& item) {
  const std::string text = withoutTags(html);
  for (const std::string& word : split(text, ' ')) {
    if (word.empty()) continue;
    if (item.time.empty()) {
      if (isDate(word)) item.time = word;
      continue;
    }
    if (isTime(word) && item.time.find(' ') == std::string::npos) {
      item.time += ' ' + word;
      continue;
    }
    item.bytes = bytesOf(word);
    return;
  }
}

/// The item that a link leads to, when it stands right in the folder and is of interest.
std::optional<FolderItem> itemOf(std::string address) {
  if (address.compare(0, 2, "./") == 0) address.erase(0, 2);
  const size_t end = address.find_first_of("?#");
  if (end != std::string::npos) address.erase(end);
  FolderItem item;
  if (!address.empty() && address.back() == '/') {
    item.isFolder = true;
    address.pop_back();
  }
  // A whole address or one from the root of the server leads elsewhere.
  if (address.empty() || address.find('/') != std::string::npos) return std::nullopt;
  const size_t colon = address.find(':');
  if (colon != std::string::npos) return std::nullopt;
  item.path = decodedText(address);
  const std::string extension = extensionOf(item.path);
  const bool isImage = equalsIgnoreCase(extension, ".tif") || equalsIgnoreCase(extension, ".tiff");
  if (!canBeSpecified(item.path) || item.path.find('/') != std::string::npos) return std::nullopt;
  if (!item.isFolder && !isImage) return std::nullopt;
  return item;
}

}  // namespace

std::vector<FolderItem> parseIndexPage(const std::string& html) {
  std::vector<FolderItem> items;
  std::set<std::string> seen;
  size_t at = 0;
  while (items.size() < kMostItems) {
    at = html.find('<', at);
    if (at == std::string::npos) break;
    const size_t end = html.find('>', at);
    if (end == std::string::npos) break;
    const std::string tag = html.substr(at + 1, end - at - 1);
    at = end + 1;
    if (tag.size() < 2 || (tag[0] != 'a' && tag[0] != 'A') || (tag[1] != ' ' && tag[1] != '\t'))
      continue;
    auto item = itemOf(withoutEntities(attributeOf(tag, "href")));
    if (!item || !seen.insert(item->path).second) continue;
    size_t after = html.find("</", at);
    after = after == std::string::npos ? html.size() : after;
    size_t next = std::min(html.find("<a ", after), html.find("<A ", after));
    next = std::min({next, html.size(), after + kLongestDetails});
    takeDetails(html.substr(after, next - after), *item);
    items.push_back(std::move(*item));
  }
  std::sort(items.begin(), items.end(), [](const FolderItem& a, const FolderItem& b) {
    return a.isFolder != b.isFolder ? a.isFolder : a.path < b.path;
  });
  return items;
}

}  // namespace tarn::client
