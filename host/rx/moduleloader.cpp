#include <exception>
#include <memory>
#include <string>
#include <vector>

#include "base/file.h"
#include "base/path.h"
#include "base/result.h"
#include "base/text.h"
#include "host/rx/message.h"
#include "host/rx/sharedlibrary.h"
#include "rxdlinkr.h"
#include "rxregsvc.h"

ACRX_NO_CONS_DEFINE_MEMBERS(AcRxDynamicLinker, AcRxObject)

namespace tarn::host {

namespace {

using EntryPoint = AcRx::AppRetCode (*)(AcRx::AppMsgCode, void*);
using ApiVersion = int (*)();

/// One module. Its address is the packet of its messages.
struct Module {
  std::string name;
  EntryPoint entry = nullptr;
  bool locked = true;
  bool loaded = false;
};

/// Records stay after an unload: their addresses were given away as packets.
std::vector<std::unique_ptr<Module>>& modules() {
  static auto* const list = new std::vector<std::unique_ptr<Module>>;
  return *list;
}

std::wstring& lastText() {
  static auto* const text = new std::wstring;
  return *text;
}

Module* findLoaded(const std::string& path) {
  const std::string name = nameOf(path);
  for (const auto& module : modules()) {
    if (module->loaded && equalsIgnoreCase(module->name, name)) return module.get();
  }
  return nullptr;
}

Module* ofPacket(const void* packet) {
  for (const auto& module : modules()) {
    if (module.get() == packet) return module.get();
  }
  return nullptr;
}

/// kRetError, with the reason in `failure`, when the module's code throws.
AcRx::AppRetCode send(Module& module, AcRx::AppMsgCode message, std::string& failure) {
  try {
    return module.entry(message, &module);
  } catch (const std::exception& error) {
    failure = error.what();
  } catch (...) {
    failure = "an unknown exception";
  }
  return AcRx::kRetError;
}

Status refused(const std::string& path, const std::string& doing, const std::string& reason) {
  return Status::error("Cannot " + doing + " module \"" + path + "\": " + reason + ".");
}

Status checkVersion(const std::string& path, int version) {
  const int hostMain = ACRX_API_VERSION >> 16;
  if (version >> 16 == hostMain && version <= ACRX_API_VERSION) return Status::ok();
  return refused(path, "load",
                 "it was built for version " + std::to_string(version >> 16) + "." +
                     std::to_string(version & 0xFFFF) + " of the interface, this host has " +
                     std::to_string(hostMain) + "." + std::to_string(ACRX_API_VERSION & 0xFFFF));
}

struct ModuleCode {
  EntryPoint entry;
};

/// The entry point of a file that is a module for this host.
Result<ModuleCode> openModule(const std::string& path) {
  switch (fileKind(path)) {
    case FileKind::kMissing:
      return refused(path, "load", "there is no such file");
    case FileKind::kFolder:
      return refused(path, "load", "it is a folder");
    default:
      break;
  }
  const Result<void*> library = openLibrary(absolutePath(path));
  if (!library) return refused(path, "load", library.message());
  const auto entry = reinterpret_cast<EntryPoint>(findSymbol(library.value(), "acrxEntryPoint"));
  const auto version =
      reinterpret_cast<ApiVersion>(findSymbol(library.value(), "acrxGetApiVersion"));
  if (entry == nullptr) return refused(path, "load", "it is no module (no acrxEntryPoint)");
  if (version == nullptr) return refused(path, "load", "it is no module (no acrxGetApiVersion)");
  const Status fits = checkVersion(path, version());
  if (!fits) return fits;
  return ModuleCode{entry};
}

Status load(const std::string& path) {
  if (findLoaded(path) != nullptr) return Status::ok();
  const Result<ModuleCode> code = openModule(path);
  if (!code) return code.status();
  modules().push_back(std::make_unique<Module>());
  Module& module = *modules().back();
  module.name = nameOf(path);
  module.entry = code.value().entry;
  module.loaded = true;
  std::string failure;
  if (send(module, AcRx::kInitAppMsg, failure) == AcRx::kRetOK) return Status::ok();
  module.loaded = false;
  return refused(path, "load",
                 failure.empty() ? "it refused to start" : "its start failed: " + failure);
}

Status unload(const std::string& path) {
  Module* const module = findLoaded(path);
  if (module == nullptr) return refused(path, "unload", "it is not loaded");
  if (module->locked) return refused(path, "unload", "it is locked");
  std::string failure;
  const AcRx::AppRetCode answer = send(*module, AcRx::kUnloadAppMsg, failure);
  if (answer != AcRx::kRetOK && failure.empty()) {
    return refused(path, "unload", "it refused");
  }
  module->loaded = false;
  return failure.empty() ? Status::ok() : refused(path, "unload", "its end failed: " + failure);
}

bool told(const Status& status, bool print) {
  lastText() = toWide(status.message());
  if (!status && print) printMessage(L"\n" + lastText() + L"\n");
  return status.isOk();
}

}  // namespace

}  // namespace tarn::host

bool AcRxDynamicLinker::loadModule(const ACHAR* fileName, bool printit, bool) {
  return tarn::host::told(tarn::host::load(tarn::toUtf8(fileName)), printit);
}

bool AcRxDynamicLinker::unloadModule(const ACHAR* fileName, bool) {
  return tarn::host::told(tarn::host::unload(tarn::toUtf8(fileName)), false);
}

bool AcRxDynamicLinker::isModuleLoaded(const ACHAR* fileName) const {
  return tarn::host::findLoaded(tarn::toUtf8(fileName)) != nullptr;
}

std::vector<std::wstring> AcRxDynamicLinker::loadedModules() const {
  std::vector<std::wstring> names;
  for (const auto& module : tarn::host::modules()) {
    if (module->loaded) names.push_back(tarn::toWide(module->name));
  }
  return names;
}

const ACHAR* AcRxDynamicLinker::lastMessage() const {
  return tarn::host::lastText().c_str();
}

void AcRxDynamicLinker::sendToAll(AcRx::AppMsgCode message) {
  // A copy: a module may load another one while it handles the message.
  std::vector<tarn::host::Module*> told;
  for (const auto& module : tarn::host::modules()) told.push_back(module.get());
  for (tarn::host::Module* module : told) {
    std::string failure;
    if (!module->loaded) continue;
    tarn::host::send(*module, message, failure);
    if (!failure.empty()) {
      tarn::host::printMessage(
          tarn::toWide("\nModule \"" + module->name + "\" failed: " + failure + ".\n"));
    }
  }
}

AcRxDynamicLinker* acrxDynamicLinkerPtr() {
  static auto* const linker = new AcRxDynamicLinker;
  return linker;
}

bool acrxUnlockApplication(void* packet) {
  tarn::host::Module* const module = tarn::host::ofPacket(packet);
  if (module != nullptr) module->locked = false;
  return module != nullptr;
}

bool acrxLockApplication(void* packet) {
  tarn::host::Module* const module = tarn::host::ofPacket(packet);
  if (module != nullptr) module->locked = true;
  return module != nullptr;
}

bool acrxRegisterAppMDIAware(void* packet) {
  return tarn::host::ofPacket(packet) != nullptr;
}
