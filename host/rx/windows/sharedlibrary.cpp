#include "host/rx/sharedlibrary.h"

#include <windows.h>

#include "base/windows/quietload.h"
#include "base/windows/widepath.h"

namespace tarn::host {

Result<void*> openLibrary(const std::string& path) {
  return system::loadQuietly(system::widePath(path));
}

void* findSymbol(void* library, const char* name) {
  return reinterpret_cast<void*>(::GetProcAddress(static_cast<HMODULE>(library), name));
}

}  // namespace tarn::host
