#include "kelpie_core/appmanager.h"

#include <mutex>
#include <set>
#include <string>

#include "base/file.h"
#include "base/library.h"
#include "base/log.h"
#include "base/path.h"
#include "base/text.h"

namespace kel {
namespace {

struct LoadedPlugins {
  std::mutex mutex;
  std::set<std::string> paths;
};

LoadedPlugins& loadedPlugins() {
  static LoadedPlugins instance;
  return instance;
}

/// Notes the path before the entry runs, so that an entry that asks for plug-ins itself does not
/// load its own library again. False when it was noted already.
bool note(const std::string& path) {
  const std::lock_guard<std::mutex> lock(loadedPlugins().mutex);
  return loadedPlugins().paths.insert(path).second;
}

void forget(const std::string& path) {
  const std::lock_guard<std::mutex> lock(loadedPlugins().mutex);
  loadedPlugins().paths.erase(path);
}

bool loadPlugin(const std::string& path) {
  if (!note(path)) return true;
  const tarn::Result<void*> entry = tarn::loadLibrarySymbol(path, KEL_PLUGIN_ENTRY_NAME);
  if (!entry) {
    forget(path);
    tarn::logLine("plug-in not loaded: " + entry.message());
    return false;
  }
  reinterpret_cast<PluginEntry>(entry.value())();
  tarn::logLine("plug-in loaded: " + path);
  return true;
}

}  // namespace

DString AppManager::applicationFolder() {
  return tarn::folderOfCode(reinterpret_cast<const void*>(&createObject));
}

int AppManager::pluginCount() {
  const std::lock_guard<std::mutex> lock(loadedPlugins().mutex);
  return static_cast<int>(loadedPlugins().paths.size());
}

bool AppManager::loadPlugins(const char* folder, int /*flags*/) {
  const std::string given = folder ? folder : "";
  const bool isAbsolute = !given.empty() && tarn::absolutePath(given) == given;
  const std::string where = isAbsolute ? given : tarn::joinPath(applicationFolder().str(), given);
  if (tarn::fileKind(where) != tarn::FileKind::kFolder) {
    tarn::logLine("plug-ins not loaded: " + where + ": no such folder");
    return false;
  }
  bool allLoaded = true;
  for (const std::string& name : tarn::listFolder(where)) {
    if (!tarn::equalsIgnoreCase(tarn::extensionOf(name), tarn::sharedLibraryExtension())) continue;
    if (!loadPlugin(tarn::joinPath(where, name))) allLoaded = false;
  }
  return allLoaded;
}

}  // namespace kel
