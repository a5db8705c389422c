#include "imageclient/clientservices.h"

#include "inc/iconfigmanager.h"
#include "inc/iuserinterface.h"

namespace tarn::client {
namespace {

/// Asked without the handle's assertion: running without a service is no fault.
template <typename Service>
kel::Object<Service> find() {
  void* made = nullptr;
  kel::createObject("N", Service::interfaceId(), &made);
  return kel::Object<Service>::adopt(static_cast<Service*>(made));
}

}  // namespace

void tellUser(const std::string& message) {
  const auto user = find<IUserInterface>();
  if (!user.isNull()) user->message(message);
}

bool userWantsToStop() {
  const auto user = find<IUserInterface>();
  return !user.isNull() && user->cancelWanted();
}

void countForUser(const char* counter, long long amount) {
  const auto user = find<IUserInterface>();
  if (!user.isNull()) user->count(counter, amount);
}

std::string configured(const char* key) {
  const auto configuration = find<IConfigManager>();
  return configuration.isNull() ? std::string() : configuration->getValue(key).toString().str();
}

ServerPlace withConfiguration(ServerPlace place) {
  return place;
}

}  // namespace tarn::client
