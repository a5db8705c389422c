// A real web server on this computer for the time of a test.
#pragma once

#include <memory>
#include <string>

namespace tarn::test {

struct WebServerOptions {
  /// Speaks https on its port, with a certificate for "localhost" and 127.0.0.1 that ends today
  /// when `expired`.
  bool https = false;
  bool expired = false;
  /// Wants this name and password; none when empty.
  std::string user;
  std::string password;
};

/// A folder, with index pages, on a free port of 127.0.0.1: by nginx, and where there is none (on
/// Windows) by FaultServer without https and users.
class WebServer {
 public:
  explicit WebServer(std::string root, WebServerOptions options = {});
  ~WebServer();
  WebServer(const WebServer&) = delete;
  WebServer& operator=(const WebServer&) = delete;

  bool isUp() const { return port_ != 0; }
  int port() const { return port_; }
  std::string portText() const { return std::to_string(port_); }
  /// The certificate that clients have to believe.
  std::string caFile() const;
  void stop();
  /// Starts again on the port that it had.
  bool start();

 private:
  struct Program;
  std::unique_ptr<Program> program_;
  int port_ = 0;
};

}  // namespace tarn::test
