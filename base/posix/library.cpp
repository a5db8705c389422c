#include "base/library.h"

#include <dlfcn.h>

#include "base/file.h"
#include "base/path.h"

namespace tarn {

std::string_view sharedLibraryExtension() {
  return ".so";
}

Result<void*> loadLibrarySymbol(const std::string& path, const char* symbol) {
  // RTLD_NODELETE: what the library registered may outlive whoever asked for it.
  void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
  if (!library) {
    const char* reason = dlerror();
    return Status::error(path + ": cannot be loaded: " + (reason ? reason : "unknown reason"));
  }
  void* address = dlsym(library, symbol);
  if (!address) return Status::error(path + ": has no entry " + symbol);
  return address;
}

std::string folderOfCode(const void* address) {
  Dl_info info{};
  if (!dladdr(address, &info) || !info.dli_fname) return {};
  return folderOf(absolutePath(info.dli_fname));
}

}  // namespace tarn
