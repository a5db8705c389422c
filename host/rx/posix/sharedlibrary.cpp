#include "host/rx/sharedlibrary.h"

#include <dlfcn.h>

#include <string>

namespace tarn::host {

Result<void*> openLibrary(const std::string& path) {
  if (void* library = ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE)) return library;
  const char* const error = ::dlerror();
  std::string reason = error == nullptr ? "it cannot be mapped" : error;
  const std::string prefix = path + ": ";
  if (reason.compare(0, prefix.size(), prefix) == 0) reason.erase(0, prefix.size());
  return Status::error(reason);
}

void* findSymbol(void* library, const char* name) {
  return ::dlsym(library, name);
}

}  // namespace tarn::host
