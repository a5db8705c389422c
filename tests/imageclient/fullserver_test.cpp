// A server whose queue is full. Elsewhere such a server refuses at once.
#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>

#include "client.h"
#include "imageclient/http.h"
#include "imageclient/httpsource.h"
#include "tests/support/recordinginterface.h"

namespace tarn::test {
namespace {

/// A server that takes no connection: its queue is full, so that nothing comes of asking it.
class FullServer {
 public:
  FullServer() {
    listener_ = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    address_.sin_family = AF_INET;
    address_.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address_;
    if (::bind(listener_, plain(), size) != 0 || ::listen(listener_, 0) != 0) return;
    ::getsockname(listener_, plain(), &size);
    for (int& connection : waiting_) {
      connection = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
      [[maybe_unused]] const int begun = ::connect(connection, plain(), size);
    }
  }
  ~FullServer() {
    for (const int connection : waiting_) ::close(connection);
    ::close(listener_);
  }
  FullServer(const FullServer&) = delete;
  FullServer& operator=(const FullServer&) = delete;
  std::string port() const { return std::to_string(ntohs(address_.sin_port)); }

 private:
  sockaddr* plain() { return reinterpret_cast<sockaddr*>(&address_); }
  sockaddr_in address_{};
  int listener_ = -1;
  std::array<int, 3> waiting_{};
};

TEST(FullServer, ConnectionsThatAreNotTakenAreTriedAgain) {
  recorded() = {};
  RecordingInterface::registerSelf();
  FullServer server;
  ClientTimes times = shortTimes();
  times.connect = 100;
  times.operation = 2000;
  const uint64_t before = client::httpTotals().requests;
  const client::ServerPlace place{"127.0.0.1", std::stoi(server.port()), false, {}};
  client::Operation operation(times, nullptr);
  const client::HttpAnswer answer =
      client::runRequest(place, client::HttpSource::headRequest("a.tif"), operation);
  EXPECT_EQ(answer.failure, "its server does not answer");
  EXPECT_TRUE(answer.isUnreachable);
  EXPECT_EQ(client::httpTotals().requests - before, 3U);
  EXPECT_GT(operation.left(), 0) << "within the time that there is";
  // One for which an operation has waited in vain to its end is not waited for again.
  times.connect = 5000;
  times.operation = 300;
  TarnClientManager::setTimes(times);
  EXPECT_FALSE(clientOf(server.port())->setCurImg("a.tif"));
  const uint64_t waited = client::httpTotals().requests;
  EXPECT_FALSE(clientOf(server.port())->setCurImg("b.tif"));
  EXPECT_EQ(client::httpTotals().requests, waited);
}

}  // namespace
}  // namespace tarn::test
