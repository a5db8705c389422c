#include "imageclient/serverhealth.h"

#include <map>
#include <mutex>
#include <optional>

namespace tarn::client {
namespace {

struct Health {
  Breaker breaker;
  std::string reason;
  std::optional<Breaker::Clock::time_point> answered;
};

struct AllServers {
  std::mutex mutex;
  std::map<std::string, Health> health;
};

AllServers& servers() {
  static AllServers instance;
  return instance;
}

}  // namespace

void serverAnswered(const ServerPlace& place) {
  const std::lock_guard<std::mutex> lock(servers().mutex);
  Health& health = servers().health[place.text()];
  health.breaker.succeeded();
  health.answered = Breaker::Clock::now();
}

void serverFailed(const ServerPlace& place, const std::string& reason, const ClientTimes& times,
                  bool isSilent) {
  const std::lock_guard<std::mutex> lock(servers().mutex);
  Health& health = servers().health[place.text()];
  health.breaker.failed(times, isSilent);
  health.reason = reason;
  health.answered.reset();
}

std::string serverPause(const ServerPlace& place) {
  const std::lock_guard<std::mutex> lock(servers().mutex);
  const auto found = servers().health.find(place.text());
  if (found == servers().health.end() || !found->second.breaker.isOpen()) return {};
  return found->second.reason;
}

bool hasAnsweredLately(const ServerPlace& place, const ClientTimes& times) {
  const std::lock_guard<std::mutex> lock(servers().mutex);
  const auto found = servers().health.find(place.text());
  return found != servers().health.end() && found->second.answered &&
         Breaker::Clock::now() - *found->second.answered < std::chrono::milliseconds(times.pause);
}

}  // namespace tarn::client
