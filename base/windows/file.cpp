#include "base/file.h"

#include <windows.h>
// After the one above.
#include <aclapi.h>

#include <algorithm>
#include <atomic>
#include <cwchar>
#include <random>

#include "base/path.h"
#include "base/systemfile.h"
#include "base/text.h"
#include "base/windows/widepath.h"

namespace tarn {
namespace {

using system::failure;
using system::Handle;
using system::kNoHandle;
using system::widePath;

/// Others may read, write, rename and remove meanwhile, as they may elsewhere.
constexpr DWORD kShared = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

HANDLE native(Handle handle) {
  return reinterpret_cast<HANDLE>(handle);
}

Handle openFile(const std::string& path, DWORD access, DWORD how, DWORD flags = 0) {
  return reinterpret_cast<Handle>(::CreateFileW(widePath(path).c_str(), access, kShared, nullptr,
                                                how, FILE_ATTRIBUTE_NORMAL | flags, nullptr));
}

/// Files only: not consoles, pipes and ports, whose names work in every folder.
Handle onlyOnDisk(Handle handle) {
  if (handle == kNoHandle || ::GetFileType(native(handle)) == FILE_TYPE_DISK) return handle;
  ::CloseHandle(native(handle));
  ::SetLastError(ERROR_BAD_FILE_TYPE);
  return kNoHandle;
}

DWORD attributesOf(const std::string& path) {
  return ::GetFileAttributesW(widePath(path).c_str());
}

bool isLink(DWORD attributes) {
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
}

/// The file system's own number of a file; false when there is none.
bool identify(const std::string& path, BY_HANDLE_FILE_INFORMATION& info) {
  const Handle handle = openFile(path, 0, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS);
  if (handle == kNoHandle) return false;
  const bool isKnown = ::GetFileInformationByHandle(native(handle), &info) != 0;
  ::CloseHandle(native(handle));
  return isKnown;
}

/// May this process open it so? What another program holds just now counts as yes.
bool opensFor(const std::string& path, DWORD access, DWORD flags) {
  const Handle handle = openFile(path, access, OPEN_EXISTING, flags);
  if (handle == kNoHandle) return ::GetLastError() == ERROR_SHARING_VIOLATION;
  ::CloseHandle(native(handle));
  return true;
}

OVERLAPPED placeAt(uint64_t offset) {
  OVERLAPPED place{};
  place.Offset = static_cast<DWORD>(offset);
  place.OffsetHigh = static_cast<DWORD>(offset >> 32);
  return place;
}

/// The folder of a path, with the separator at its end; empty when it names none.
std::wstring above(const std::wstring& path) {
  const size_t end = path.rfind(L'\\');
  return path.substr(0, end == path.npos ? 0 : end + 1);
}

/// Moves a file out of the way: to where temporary files are; on another drive to above its folder,
/// which can then be removed too; or else beside itself.
std::wstring moveAside(const std::wstring& path) {
  static std::atomic<unsigned> number{0};
  std::wstring folder(MAX_PATH + 1, L'\0');
  folder.resize(::GetTempPathW(static_cast<DWORD>(folder.size()), folder.data()));
  const std::wstring name =
      L"tarn-gone-" + std::to_wstring(::GetCurrentProcessId()) + L"-" + std::to_wstring(++number);
  const std::wstring own = above(path);
  for (const std::wstring& place : {folder, above(own.substr(0, own.size() - 1)), own}) {
    if (place.empty()) continue;
    if (::MoveFileExW(path.c_str(), (place + name).c_str(), 0) != 0) return place + name;
  }
  return {};
}

/// The name is free afterwards, also when somebody reads the file.
bool removeFile(const std::wstring& path) {
  const HANDLE alone =
      ::CreateFileW(path.c_str(), DELETE, 0, nullptr, OPEN_EXISTING,
                    FILE_FLAG_DELETE_ON_CLOSE | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
  if (alone != INVALID_HANDLE_VALUE) return ::CloseHandle(alone) != 0;
  if (::GetLastError() != ERROR_SHARING_VIOLATION) return false;
  // A file that is open keeps its name until it is closed.
  const std::wstring aside = moveAside(path);
  return !aside.empty() && ::DeleteFileW(aside.c_str()) != 0;
}

constexpr size_t kMostAtOnce = 1 << 30;

}  // namespace

namespace system {

Handle openForReading(const std::string& path) {
  return onlyOnDisk(openFile(path, GENERIC_READ, OPEN_EXISTING));
}

Handle openForWriting(const std::string& path, bool create) {
  return onlyOnDisk(
      openFile(path, GENERIC_READ | GENERIC_WRITE, create ? CREATE_ALWAYS : OPEN_EXISTING));
}

Handle openToSync(const std::string& path) {
  return openForWriting(path, false);
}

bool closeHandle(Handle handle) {
  return ::CloseHandle(native(handle)) != 0;
}

std::ptrdiff_t readSome(Handle handle, uint64_t offset, void* out, size_t size) {
  OVERLAPPED place = placeAt(offset);
  DWORD count = 0;
  if (::ReadFile(native(handle), out, static_cast<DWORD>(std::min(size, kMostAtOnce)), &count,
                 &place) != 0)
    return static_cast<std::ptrdiff_t>(count);
  return ::GetLastError() == ERROR_HANDLE_EOF ? 0 : -1;
}

std::ptrdiff_t writeSome(Handle handle, uint64_t offset, const void* data, size_t size) {
  OVERLAPPED place = placeAt(offset);
  DWORD count = 0;
  const bool isWritten =
      ::WriteFile(native(handle), data, static_cast<DWORD>(std::min(size, kMostAtOnce)), &count,
                  &place) != 0;
  return isWritten ? static_cast<std::ptrdiff_t>(count) : -1;
}

bool syncHandle(Handle handle) {
  return ::FlushFileBuffers(native(handle)) != 0;
}

bool makeFolder(const std::string& folder) {
  return ::CreateDirectoryW(widePath(folder).c_str(), nullptr) != 0 ||
         ::GetLastError() == ERROR_ALREADY_EXISTS;
}

bool removeName(const std::string& path) {
  const DWORD attributes = attributesOf(path);
  if (attributes == INVALID_FILE_ATTRIBUTES) {
    const DWORD error = ::GetLastError();
    return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
  }
  const std::wstring wide = widePath(path);
  // Who may write to the folder may remove what is in it, marked against writing or not.
  if ((attributes & FILE_ATTRIBUTE_READONLY) != 0)
    ::SetFileAttributesW(wide.c_str(), attributes & ~DWORD{FILE_ATTRIBUTE_READONLY});
  return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? ::RemoveDirectoryW(wide.c_str()) != 0
                                                      : removeFile(wide);
}

bool linkName(const std::string& path, const std::string& name) {
  return ::CreateHardLinkW(widePath(name).c_str(), widePath(path).c_str(), nullptr) != 0;
}

}  // namespace system

std::string lastSystemError() {
  wchar_t text[512] = {};
  const DWORD error = ::GetLastError();
  DWORD length = ::FormatMessageW(
      FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK,
      nullptr, error, 0, text, sizeof text / sizeof *text, nullptr);
  while (length > 0 && std::wcschr(L" .\x3002", text[length - 1]) != nullptr) --length;
  ::SetLastError(error);
  return length > 0 ? toUtf8({text, length}) : "error " + std::to_string(error);
}

bool isFolderItself(const std::string& path) {
  const DWORD attributes = attributesOf(path);
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0 &&
         !isLink(attributes);
}

FileKind fileKind(const std::string& path) {
  const std::wstring wide = widePath(path);
  // What names of devices become.
  if (wide.compare(0, 4, L"\\\\.\\") == 0) return FileKind::kOther;
  DWORD attributes = ::GetFileAttributesW(wide.c_str());
  if (isLink(attributes)) {
    BY_HANDLE_FILE_INFORMATION info{};
    attributes = identify(path, info) ? info.dwFileAttributes : INVALID_FILE_ATTRIBUTES;
  }
  if (attributes == INVALID_FILE_ATTRIBUTES) return FileKind::kMissing;
  return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? FileKind::kFolder : FileKind::kRegular;
}

bool isSameFile(const std::string& path, const std::string& other) {
  BY_HANDLE_FILE_INFORMATION a{}, b{};
  return identify(path, a) && identify(other, b) &&
         a.dwVolumeSerialNumber == b.dwVolumeSerialNumber && a.nFileIndexHigh == b.nFileIndexHigh &&
         a.nFileIndexLow == b.nFileIndexLow;
}

FileTimes fileTimes(const std::string& path) {
  BY_HANDLE_FILE_INFORMATION info{};
  if (!identify(path, info)) return {};
  const auto joined = [](DWORD high, DWORD low) { return uint64_t{high} << 32 | low; };
  // Steps of 100 ns since 1601.
  constexpr int64_t kUntil1970 = 116444736000000000;
  const auto steps = static_cast<int64_t>(
      joined(info.ftLastWriteTime.dwHighDateTime, info.ftLastWriteTime.dwLowDateTime));
  return {joined(info.nFileSizeHigh, info.nFileSizeLow), (steps - kUntil1970) * 100};
}

bool folderIsWritable(const std::string& folder) {
  return fileKind(folder) == FileKind::kFolder &&
         opensFor(folder, FILE_ADD_FILE, FILE_FLAG_BACKUP_SEMANTICS);
}

bool fileIsWritable(const std::string& path) {
  const DWORD attributes = attributesOf(path);
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) == 0 &&
         opensFor(path, FILE_WRITE_DATA, 0);
}

std::vector<std::string> listFolder(const std::string& folder) {
  std::vector<std::string> names;
  WIN32_FIND_DATAW found{};
  const std::wstring pattern = widePath(joinPath(folder.empty() ? "." : folder, "*"));
  const HANDLE search = ::FindFirstFileW(pattern.c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) return names;
  do {
    std::string name = toUtf8(found.cFileName);
    if (name != "." && name != "..") names.push_back(std::move(name));
  } while (::FindNextFileW(search, &found) != 0);
  ::FindClose(search);
  std::sort(names.begin(), names.end());
  return names;
}

Result<std::string> makeTemporaryFolder(const std::string& folder, const std::string& prefix) {
  constexpr const char* kLetters = "abcdefghijklmnopqrstuvwxyz0123456789";
  std::random_device random;
  for (int i = 0; i < 100; ++i) {
    std::string path = joinPath(folder, prefix);
    for (int k = 0; k < 6; ++k) path += kLetters[random() % 36];
    if (::CreateDirectoryW(widePath(path).c_str(), nullptr) != 0) return path;
    if (::GetLastError() != ERROR_ALREADY_EXISTS) break;
  }
  return failure(folder, "cannot make a temporary folder");
}

Status replaceFile(const std::string& from, const std::string& to) {
  const std::wstring wideFrom = widePath(from), wideTo = widePath(to);
  if (::MoveFileExW(wideFrom.c_str(), wideTo.c_str(),
                    MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0)
    return Status::ok();
  // A file that somebody reads is not moved over, but it is replaced.
  const DWORD error = ::GetLastError();
  if (error == ERROR_ACCESS_DENIED && fileIsWritable(to) &&
      ::ReplaceFileW(wideTo.c_str(), wideFrom.c_str(), nullptr,
                     REPLACEFILE_IGNORE_MERGE_ERRORS | REPLACEFILE_WRITE_THROUGH, nullptr,
                     nullptr) != 0)
    return Status::ok();
  ::SetLastError(error);
  return failure(to, "cannot rename into place");
}

Result<std::string> linkTarget(const std::string& path) {
  if (!isLink(attributesOf(path))) return path;
  const Handle handle = openFile(path, 0, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS);
  if (handle == kNoHandle) return Status::error(path + ": the symbolic links lead to no file");
  std::wstring target(32768, L'\0');
  const DWORD length = ::GetFinalPathNameByHandleW(native(handle), target.data(),
                                                   static_cast<DWORD>(target.size()), 0);
  ::CloseHandle(native(handle));
  if (length == 0 || length >= target.size()) return path;
  target.resize(length);
  return toUtf8(target);
}

bool isAbsolutePath(std::string_view path) {
  const auto isSeparator = [](char c) { return c == '/' || c == '\\'; };
  if (!path.empty() && isSeparator(path[0])) return true;
  return path.size() > 2 && path[1] == ':' && isSeparator(path[2]);
}

std::string absolutePath(const std::string& path) {
  if (path.empty() || isAbsolutePath(path)) return path;
  return toUtf8(widePath(path));
}

Status OutputFile::createUnnamed(const std::string&, const std::string& path) {
  // This system has no such files.
  ::SetLastError(ERROR_NOT_SUPPORTED);
  return failure(path, "cannot create");
}

Status OutputFile::takeRightsOf(const std::string& path) {
  PACL rights = nullptr;
  PSECURITY_DESCRIPTOR holder = nullptr;
  std::wstring wide = widePath(path);
  if (::GetNamedSecurityInfoW(wide.data(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr,
                              nullptr, &rights, nullptr, &holder) != ERROR_SUCCESS)
    return Status::ok();
  // Shares of other systems may refuse; the file then has what its folder gives.
  const HANDLE own = ::ReOpenFile(native(handle_), WRITE_DAC, kShared, 0);
  if (own != INVALID_HANDLE_VALUE) {
    if (rights != nullptr)
      ::SetSecurityInfo(own, SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr, rights,
                        nullptr);
    ::CloseHandle(own);
  }
  ::LocalFree(holder);
  return Status::ok();
}

Status OutputFile::nameIt(const std::string& path) {
  ::SetLastError(ERROR_NOT_SUPPORTED);
  return failure(path, "cannot name the file");
}

}  // namespace tarn
