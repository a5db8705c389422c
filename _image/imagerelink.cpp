#include "_image/imagerelink.h"

#include <algorithm>
#include <map>
#include <set>
#include <unordered_map>

#include "_image/docdata.h"
#include "_image/hostcommand.h"
#include "_image/imageadding.h"
#include "_image/imagerestore.h"
#include "_image/moduleglobals.h"
#include "acdocman.h"
#include "acedads.h"
#include "afxwin.h"
#include "base/file.h"
#include "base/path.h"
#include "base/text.h"
#include "commoncode/cadutil/dictrecord.h"
#include "commoncode/cadutil/message.h"

using tarn::cad::printMessage;

namespace tarn::image {
namespace {

/// A search that goes on longer has been started at the wrong place.
constexpr size_t kMostFolders = 200000;

cad::RecordPlace sizesPlace(const CDocData& record) {
  return {L"TARNIMAGEDICT", L"ImageSizes", record.database()};
}

/// Bytes by what stands for a path; the path itself stays out, so that it stands in the drawing
/// once.
using Sizes = std::map<std::wstring, std::wstring>;

/// FNV-1a of the path's UTF-8, as 16 hexadecimal digits.
std::wstring markOf(const std::wstring& path) {
  uint64_t hash = 14695981039346656037U;
  for (const char byte : toUtf8(path)) {
    hash = (hash ^ static_cast<unsigned char>(byte)) * 1099511628211U;
  }
  std::wstring text;
  for (int shift = 60; shift >= 0; shift -= 4) text += L"0123456789abcdef"[(hash >> shift) & 15U];
  return text;
}

/// Each text: the mark of the path, a blank, the bytes.
Sizes rememberedSizes(const CDocData& record) {
  std::vector<std::wstring> texts;
  cad::readTexts(sizesPlace(record), texts);
  Sizes sizes;
  for (const std::wstring& text : texts) {
    const size_t blank = text.find(L' ');
    if (blank != std::wstring::npos) sizes[text.substr(0, blank)] = text.substr(blank + 1);
  }
  return sizes;
}

std::optional<uint64_t> sizeOf(const Sizes& sizes, const std::wstring& path) {
  const auto found = sizes.find(markOf(path));
  uint64_t size = 0;
  if (found == sizes.end() || found->second.empty()) return std::nullopt;
  for (const wchar_t digit : found->second) {
    if (digit < L'0' || digit > L'9') return std::nullopt;
    size = size * 10 + static_cast<uint64_t>(digit - L'0');
  }
  return size;
}

std::string nameKey(const std::string& path) {
  return toLower(nameOf(path));
}

/// How many folder names agree, from the file upwards.
int agreement(std::string a, std::string b) {
  int count = 0;
  for (a = folderOf(a), b = folderOf(b); !a.empty() && !b.empty() && nameOf(a) == nameOf(b);
       a = folderOf(a), b = folderOf(b)) {
    ++count;
  }
  return count;
}

/// The files of these names in a folder and all folders inside it; links to folders are not
/// followed.
std::vector<FoundFile> searchFolder(const std::string& top, const std::set<std::string>& names) {
  std::vector<FoundFile> found;
  std::vector<std::string> folders = {top};
  for (size_t i = 0; i < folders.size() && folders.size() < kMostFolders; ++i) {
    if (acedUsrBrk() != 0) break;
    for (const std::string& name : listFolder(folders[i])) {
      const std::string path = joinPath(folders[i], name);
      if (names.count(toLower(name)) > 0 && fileKind(path) == FileKind::kRegular) {
        found.push_back({path, fileTimes(path).size});
      } else if (isFolderItself(path)) {
        folders.push_back(path);
      }
    }
  }
  return found;
}

}  // namespace

std::vector<std::string> matchMissing(const std::vector<MissingFile>& missing,
                                      const std::vector<FoundFile>& found) {
  std::unordered_map<std::string, std::vector<const FoundFile*>> byName;
  for (const FoundFile& file : found) byName[nameKey(file.path)].push_back(&file);
  std::vector<std::string> matches;
  for (const MissingFile& file : missing) {
    std::string best;
    int bestAgreement = -1;
    for (const FoundFile* candidate : byName[nameKey(file.path)]) {
      if (file.size && *file.size != candidate->size) continue;
      const int agreed = agreement(file.path, candidate->path);
      if (agreed <= bestAgreement) continue;
      best = candidate->path;
      bestAgreement = agreed;
    }
    matches.push_back(best);
  }
  return matches;
}

std::vector<std::wstring> missingImagePaths(const CDocData& record, const AcApDocument& document) {
  std::vector<std::wstring> missing;
  for (const std::wstring& stored : storedImagePaths(record)) {
    // What is shown is there, without looking.
    if (!record.contains(stored) && presentImagePath(stored, document).empty()) {
      missing.push_back(stored);
    }
  }
  return missing;
}

void rememberFileSizes(const CDocData& record, const std::vector<std::wstring>& paths) {
  const Sizes known = rememberedSizes(record);
  std::vector<std::wstring> texts;
  for (const std::wstring& path : paths) {
    const std::string file = toUtf8(path);
    const std::wstring mark = markOf(path);
    const auto earlier = known.find(mark);
    if (fileKind(file) == FileKind::kRegular) {
      texts.push_back(mark + L" " + std::to_wstring(fileTimes(file).size));
    } else if (earlier != known.end()) {
      texts.push_back(mark + L" " + earlier->second);
    }
  }
  cad::writeTexts(sizesPlace(record), texts);
}

void relinkImages(AcApDocument* document, CDocData& record) {
  const std::vector<std::wstring> missing = missingImagePaths(record, *document);
  if (missing.empty()) return;
  CFolderPickerDialog dialog;
  if (dialog.DoModal() != IDOK) return;
  const Sizes sizes = rememberedSizes(record);
  std::vector<MissingFile> wanted;
  std::set<std::string> names;
  for (const std::wstring& path : missing) {
    wanted.push_back({toUtf8(path), sizeOf(sizes, path)});
    names.insert(nameKey(wanted.back().path));
  }
  const std::vector<std::string> matches =
      matchMissing(wanted, searchFolder(toUtf8(dialog.GetFolderPath().GetString()), names));
  std::map<std::wstring, std::wstring> moved;
  for (size_t i = 0; i < missing.size(); ++i) {
    if (!matches[i].empty()) moved[missing[i]] = toWide(matches[i]);
  }
  if (!moved.empty()) {
    std::vector<std::wstring> stored = storedImagePaths(record);
    for (std::wstring& path : stored) {
      const auto found = moved.find(path);
      if (found != moved.end()) path = found->second;
    }
    if (!storeImagePaths(document, record, stored)) return;
    bindFoundImages(document);
  }
  printMessage(L"\n已重新链接%1幅影像。", std::to_wstring(moved.size()));
  if (moved.size() < missing.size()) {
    printMessage(L"\n仍有%1幅影像没有找到。", std::to_wstring(missing.size() - moved.size()));
  }
  tellImageListChanged();
  sendCommandToHost(L"regen");
}

}  // namespace tarn::image
