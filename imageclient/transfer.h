// One try of one request: a handle of the HTTP library with what has come so far.
#pragma once

#include <curl/curl.h>

#include <memory>
#include <string>

#include "imageclient/http.h"

namespace tarn::client {

/// What becomes of a request after a try.
struct Outcome {
  enum class Next { kDone, kTryAgain, kRedirect };
  Next next = Next::kDone;
  std::string failure;
  bool isUnreachable = false;
  /// Of kRedirect.
  std::string url;
};

class Transfer {
 public:
  /// `left`: milliseconds that the operation still has. The request must live as long.
  Transfer(const ServerPlace& place, const HttpRequest& request, const std::string& url,
           const ClientTimes& times, int left);
  ~Transfer();
  Transfer(const Transfer&) = delete;
  Transfer& operator=(const Transfer&) = delete;

  CURL* easy() const { return easy_; }
  uint64_t received() const { return received_; }
  /// What a finished transfer means.
  Outcome outcome(CURLcode code, const ServerPlace& place) const;
  HttpAnswer takeAnswer();

 private:
  static size_t onBody(char* bytes, size_t size, size_t count, void* self);
  static size_t onHeader(char* bytes, size_t size, size_t count, void* self);
  void setLimits(const ClientTimes& times, int left);
  void setRequest(const ServerPlace& place);
  void setLogin(const ServerPlace& place);
  void takeHeader(const std::string& line);
  bool bodyIsWelcome();

  const HttpRequest& request_;
  CURL* easy_ = nullptr;
  curl_slist* headers_ = nullptr;
  HttpAnswer answer_;
  uint64_t received_ = 0;
  uint64_t headBytes_ = 0;
  std::string refusal_;
  bool looked_ = false;
};

/// "USER:PASSWORD" for a server from a text of logins, "USER:PASSWORD@HOST[:PORT]" each, blanks
/// between them; empty for none. A login without a port is for the ports 80 and 443.
std::string loginFor(const std::string& logins, const ServerPlace& place);

}  // namespace tarn::client
