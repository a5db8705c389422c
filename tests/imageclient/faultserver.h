// A server of one file, or of whatever a test gives it, that misbehaves on demand.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace tarn::test {

enum class Fault {
  kNone,
  kReset,        // the connection is reset before an answer
  kStalled,      // no answer ever
  kDripping,     // one byte now and then
  kHalfBody,     // the connection ends in the middle
  kWrongRange,   // other bytes than were asked for
  kWholeFile,    // the file instead of a range of it
  kGarbage,      // no HTTP
  kEndless,      // more than was said, without end
  kEndlessHead,  // lines before the body, without end
  kLoop,         // redirects to itself
  kElsewhere,    // redirects to another host
  kToFile,       // redirects to a file of this computer
  kGone,         // 404
  kBusy,         // 503
  kBusyOnce,     // 503, then as it should be
  kShortRange,   // fewer bytes than were asked for, and says so
  kDamaged,      // the right number of wrong bytes
};

/// What lies under a path of a server, shared by its answers: memory is measured in tests. Another
/// tag says that it is another file.
struct ServedFile {
  std::shared_ptr<const std::string> bytes;
  std::string tag;
};
using ServedFiles = std::function<std::optional<ServedFile>(const std::string& path)>;

/// Listens on a port of 127.0.0.1, any free one when it is 0, until it is destroyed.
class FaultServer {
 public:
  /// Every path is the file.
  explicit FaultServer(std::string file);
  /// `files` is asked for the path as it stands in a request, by several threads at once.
  explicit FaultServer(ServedFiles files, int port = 0);
  ~FaultServer();
  FaultServer(const FaultServer&) = delete;
  FaultServer& operator=(const FaultServer&) = delete;

  std::string port() const { return std::to_string(port_); }
  bool isUp() const { return port_ != 0; }
  void setFault(Fault fault) { fault_ = fault; }
  /// Another file under the same name, told apart by its tag.
  void setFile(std::string file);
  int requests() const { return requests_; }
  int connections() const { return connections_; }
  /// The largest number of requests that were waiting for their answers at a time.
  int mostAtOnce() const { return mostAtOnce_; }
  /// From now on answers wait until that many requests have been waiting at a time, so many
  /// milliseconds at most.
  void waitForCompany(int requests, int ms) {
    company_ = requests;
    delayMs_ = ms;
  }

 private:
  struct Reply {
    std::string bytes;
    enum class After { kKeep, kClose, kReset, kStall, kDrip, kEndless, kEndlessHead };
    After after = After::kKeep;
  };
  void bindTo(int port);
  void listen();
  void serve(int connection);
  Reply replyTo(const std::string& request);
  Reply properReply(const std::string& request, Fault fault);
  void send(int connection, const std::string& bytes) const;
  void afterwards(int connection, Reply::After after) const;

  ServedFiles files_;
  mutable std::mutex mutex_;
  std::shared_ptr<const std::string> file_;
  int version_ = 1;
  int listener_ = -1;
  int port_ = 0;
  std::atomic<Fault> fault_{Fault::kNone};
  std::atomic<bool> ending_{false};
  std::atomic<int> requests_{0};
  std::atomic<int> connections_{0};
  std::atomic<int> waiting_{0};
  std::atomic<int> mostAtOnce_{0};
  std::atomic<int> company_{0};
  std::atomic<int> delayMs_{0};
  std::list<std::thread> threads_;
  std::thread acceptor_;
};

}  // namespace tarn::test
