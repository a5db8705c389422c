#include "base/path.h"

#include "base/text.h"

namespace tarn {
namespace {

template <typename Char>
size_t lastSeparator(std::basic_string_view<Char> path) {
  constexpr Char kSeparators[] = {'/', '\\', 0};
  return path.find_last_of(kSeparators);
}

template <typename Char>
std::basic_string<Char> folder(std::basic_string_view<Char> path) {
  const size_t at = lastSeparator(path);
  return std::basic_string<Char>(at == path.npos ? std::basic_string_view<Char>()
                                                 : path.substr(0, at));
}

template <typename Char>
std::basic_string<Char> name(std::basic_string_view<Char> path) {
  const size_t at = lastSeparator(path);
  return std::basic_string<Char>(at == path.npos ? path : path.substr(at + 1));
}

}  // namespace

std::string folderOf(std::string_view path) {
  return folder(path);
}
std::wstring folderOf(std::wstring_view path) {
  return folder(path);
}
std::string nameOf(std::string_view path) {
  return name(path);
}
std::wstring nameOf(std::wstring_view path) {
  return name(path);
}

std::string extensionOf(std::string_view path) {
  const std::string file = nameOf(path);
  const size_t dot = file.rfind('.');
  return dot == std::string::npos || dot == 0 ? std::string() : file.substr(dot);
}

std::string stemOf(std::string_view path) {
  const std::string file = nameOf(path);
  return file.substr(0, file.size() - extensionOf(path).size());
}

std::string joinPath(std::string_view folder, std::string_view name) {
  if (folder.empty()) return std::string(name);
  std::string out(folder);
  if (out.back() != '/' && out.back() != '\\') out += '/';
  return out.append(name);
}

std::wstring replacePathPiece(std::wstring path, std::wstring_view a, std::wstring_view b,
                              std::wstring_view to) {
  for (const wchar_t separator : {L'/', L'\\'}) {
    const std::wstring piece = std::wstring(a) + separator + std::wstring(b);
    for (size_t at = path.find(piece); at != path.npos; at = path.find(piece, at + to.size())) {
      path.replace(at, piece.size(), to);
    }
  }
  return path;
}

std::string pathBelow(std::string folder, const std::string& relative) {
  bool climbs = true;
  for (const std::string& part : split(relative, '/')) {
    if (part.empty() || part == ".") continue;
    climbs = climbs && part == "..";
    if (climbs) {
      folder = folderOf(folder);
      if (folder.empty()) folder = "/";
    } else {
      folder = joinPath(folder, part);
    }
  }
  return folder;
}

}  // namespace tarn
