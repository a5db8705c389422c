#include <windows.h>

#include <algorithm>
#include <string>

#include "base/file.h"
#include "base/text.h"
#include "host/rx/sharedlibrary.h"

namespace tarn::host {

Result<void*> openLibrary(const std::string& path) {
  std::wstring wide = toWide(path);
  std::replace(wide.begin(), wide.end(), L'/', L'\\');
  // What a module needs stands beside it or beside the program; never in the working folder.
  constexpr DWORD kPlaces = LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_DEFAULT_DIRS;
  DWORD before = 0;
  // A missing library is told here, not in a box of the system's.
  ::SetThreadErrorMode(SEM_FAILCRITICALERRORS, &before);
  const HMODULE library = ::LoadLibraryExW(wide.c_str(), nullptr, kPlaces);
  const DWORD error = ::GetLastError();
  ::SetThreadErrorMode(before, nullptr);
  ::SetLastError(error);
  if (library != nullptr) return static_cast<void*>(library);
  return Status::error(lastSystemError());
}

void* findSymbol(void* library, const char* name) {
  return reinterpret_cast<void*>(::GetProcAddress(static_cast<HMODULE>(library), name));
}

}  // namespace tarn::host
