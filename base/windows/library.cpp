#include "base/library.h"

#include <windows.h>

#include "base/path.h"
#include "base/text.h"
#include "base/windows/quietload.h"
#include "base/windows/widepath.h"

namespace tarn {

std::string_view sharedLibraryExtension() {
  return ".dll";
}

Result<void*> loadLibrarySymbol(const std::string& path, const char* symbol) {
  // What a library needs may stand beside it, or beside the one that asks, wherever the program is.
  const std::string own = folderOfCode(reinterpret_cast<const void*>(&loadLibrarySymbol));
  const DLL_DIRECTORY_COOKIE folder = ::AddDllDirectory(system::widePath(own).c_str());
  const Result<void*> loaded = system::loadQuietly(system::widePath(path));
  if (folder != nullptr) ::RemoveDllDirectory(folder);
  if (!loaded) return Status::error(path + ": cannot be loaded: " + loaded.message());
  const auto library = static_cast<HMODULE>(loaded.value());
  // What the library registered may outlive whoever asked for it.
  HMODULE pinned = nullptr;
  ::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                       reinterpret_cast<const wchar_t*>(library), &pinned);
  void* const address = reinterpret_cast<void*>(::GetProcAddress(library, symbol));
  if (address == nullptr) return Status::error(path + ": has no entry " + symbol);
  return address;
}

std::string folderOfCode(const void* address) {
  HMODULE module = nullptr;
  ::GetModuleHandleExW(
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
      static_cast<const wchar_t*>(address), &module);
  std::wstring name(32768, L'\0');
  const DWORD length = ::GetModuleFileNameW(module, name.data(), static_cast<DWORD>(name.size()));
  if (module == nullptr || length == 0 || length >= name.size()) return {};
  name.resize(length);
  return folderOf(toUtf8(name));
}

}  // namespace tarn
