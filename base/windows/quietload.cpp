#include "base/windows/quietload.h"

#include <windows.h>

#include "base/file.h"

namespace tarn::system {

namespace {

/// The system's own words for the usual reasons name nothing, or an unfilled "%1".
std::string reasonOf(DWORD error) {
  switch (error) {
    case ERROR_BAD_EXE_FORMAT:
      return "it is no library for this kind of program";
    case ERROR_MOD_NOT_FOUND:
      return "a library that it needs is not there";
    case ERROR_PROC_NOT_FOUND:
      return "a library that it needs is of another version";
    default:
      ::SetLastError(error);
      return lastSystemError();
  }
}

}  // namespace

Result<void*> loadQuietly(const std::wstring& path) {
  DWORD before = 0;
  ::SetThreadErrorMode(SEM_FAILCRITICALERRORS, &before);
  const HMODULE library = ::LoadLibraryExW(
      path.c_str(), nullptr, LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_DEFAULT_DIRS);
  const DWORD error = ::GetLastError();
  ::SetThreadErrorMode(before, nullptr);
  if (library == nullptr) return Status::error(reasonOf(error));
  return static_cast<void*>(library);
}

}  // namespace tarn::system
