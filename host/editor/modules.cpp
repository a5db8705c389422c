#include "host/editor/modules.h"

#include "base/text.h"
#include "rxdlinkr.h"

namespace tarn::host {

Status loadModule(const std::string& path) {
  if (acrxDynamicLinker->loadModule(toWide(path).c_str(), false)) return {};
  return Status::error(toUtf8(acrxDynamicLinker->lastMessage()));
}

void unloadModule(const std::string& path) {
  const std::wstring name = toWide(path);
  if (acrxDynamicLinker->isModuleLoaded(name.c_str()))
    acrxDynamicLinker->unloadModule(name.c_str());
}

}  // namespace tarn::host
