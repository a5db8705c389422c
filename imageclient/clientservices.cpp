#include "imageclient/clientservices.h"

#include "base/text.h"
#include "inc/iconfigmanager.h"
#include "inc/iuserinterface.h"
#include "inc/kimageservers.h"

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

kel::StringList chooseFromListing(const kel::Listing& listing) {
  const auto user = find<IUserInterface>();
  return user.isNull() ? kel::StringList() : user->chooseFromListing(listing);
}

ServerPlace withConfiguration(ServerPlace place) {
  for (const kel::ImageServer& server : kel::imageServersOf(configured(kel::kImageServersKey))) {
    if (server.port != place.port || !equalsIgnoreCase(server.host.str(), place.host)) continue;
    place.https = server.isHttps;
    place.caFile = server.caFile.str();
    break;
  }
  return place;
}

}  // namespace tarn::client
