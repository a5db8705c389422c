// Clients of a server under test, with limits that a test can wait for.
#pragma once

#include <memory>
#include <string>

#include "imageclient/tarnclientmanager.h"

namespace tarn::test {

/// The defaults, an order of magnitude shorter.
inline ClientTimes shortTimes() {
  ClientTimes times;
  times.connect = 500;
  times.slow = 1000;
  times.request = 3000;
  times.operation = 1500;
  times.firstWait = 20;
  times.pause = 300;
  return times;
}

inline std::unique_ptr<TarnClientManager> clientOf(const std::string& port,
                                                   const std::string& host = "127.0.0.1") {
  auto client = std::make_unique<TarnClientManager>();
  client->setIsServe(true);
  client->setServeIp(host);
  client->setPort(port);
  return client;
}

}  // namespace tarn::test
