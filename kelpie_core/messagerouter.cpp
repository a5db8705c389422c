#include "kelpie_core/messagerouter.h"

#include <algorithm>
#include <mutex>
#include <utility>
#include <vector>

namespace kel {
namespace {

using Entry = std::pair<DString, CallBackMessageRouter*>;

struct Receivers {
  std::mutex mutex;
  std::vector<Entry> entries;
};

Receivers& receivers() {
  static Receivers instance;
  return instance;
}

bool isRegistered(const Entry& entry) {
  const std::lock_guard<std::mutex> lock(receivers().mutex);
  const std::vector<Entry>& entries = receivers().entries;
  return std::find(entries.begin(), entries.end(), entry) != entries.end();
}

}  // namespace

void MessageRouter::addReceiver(const DString& message, CallBackMessageRouter* receiver) {
  if (!receiver || isRegistered({message, receiver})) return;
  const std::lock_guard<std::mutex> lock(receivers().mutex);
  receivers().entries.emplace_back(message, receiver);
}

void MessageRouter::removeReceiver(CallBackMessageRouter* receiver) {
  const std::lock_guard<std::mutex> lock(receivers().mutex);
  std::vector<Entry>& entries = receivers().entries;
  entries.erase(std::remove_if(entries.begin(), entries.end(),
                               [&](const Entry& entry) { return entry.second == receiver; }),
                entries.end());
}

void MessageRouter::send(const DString& message, const Variant& value) {
  std::vector<Entry> entries;
  {
    const std::lock_guard<std::mutex> lock(receivers().mutex);
    entries = receivers().entries;
  }
  // A receiver may take others out while it is called; those are not called any more.
  for (const Entry& entry : entries) {
    if (entry.first == message && isRegistered(entry)) {
      entry.second->messageReceived(message, value);
    }
  }
}

}  // namespace kel
