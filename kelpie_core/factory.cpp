#include <map>
#include <mutex>
#include <string>
#include <utility>

#include "inc/kobject.h"
#include "inc/kplugin.h"
#include "kelpie_core/appmanager.h"
#include "kelpie_core/messagerouter.h"

namespace kel {
namespace {

struct Registry {
  // The core's own two objects are there from the start.
  Registry() {
    creators[{"N", IAppManager::interfaceId()}] = &AppManager::create;
    creators[{"N", IMessageRouter::interfaceId()}] = &MessageRouter::create;
  }

  std::mutex mutex;
  std::map<std::pair<std::string, uint32_t>, Creator> creators;
};

Registry& registry() {
  static Registry instance;
  return instance;
}

}  // namespace

void registerImplementation(const char* className, uint32_t interfaceId, Creator creator) {
  const std::lock_guard<std::mutex> lock(registry().mutex);
  registry().creators[{className, interfaceId}] = creator;
}

void unregisterImplementation(const char* className, uint32_t interfaceId) {
  const std::lock_guard<std::mutex> lock(registry().mutex);
  registry().creators.erase({className, interfaceId});
}

void createObject(const char* className, uint32_t interfaceId, void** out) {
  Creator creator = nullptr;
  {
    const std::lock_guard<std::mutex> lock(registry().mutex);
    const auto found = registry().creators.find({className ? className : "", interfaceId});
    if (found != registry().creators.end()) creator = found->second;
  }
  if (!creator) return;
  if (void* made = creator()) *out = made;
}

}  // namespace kel
