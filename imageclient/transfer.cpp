#include "imageclient/transfer.h"

#include <algorithm>
#include <string_view>

#include "base/program.h"
#include "base/text.h"

namespace tarn::client {
namespace {

/// Logins for servers, as loginFor() takes them.
constexpr const char* kLoginVariable = "TARN_IMAGE_LOGIN";
constexpr uint64_t kLargestNumber = uint64_t{1} << 60;
// Of answers that are no success: nothing in them is looked at. Of the lines before a body, too.
constexpr uint64_t kMostErrorBytes = 64 << 10;
constexpr const char* kTooMuch = "its server sends more than it was asked for";

/// Digits at the start of a text; false when there are none or too many.
bool takeNumber(std::string& text, uint64_t& value) {
  size_t digits = 0;
  value = 0;
  while (digits < text.size() && text[digits] >= '0' && text[digits] <= '9') {
    value = value * 10 + static_cast<uint64_t>(text[digits] - '0');
    if (value > kLargestNumber) return false;
    ++digits;
  }
  text.erase(0, digits);
  return digits > 0;
}

/// A part of a URL in the HTTP library's words; empty when it has none.
std::string partOf(CURLU* url, CURLUPart part) {
  char* text = nullptr;
  if (curl_url_get(url, part, &text, CURLU_DEFAULT_PORT) != CURLUE_OK) return {};
  std::string out = text ? text : "";
  curl_free(text);
  return out;
}

/// Whether a redirect stays on the server, and does not become less safe.
bool staysOnServer(const std::string& target, const ServerPlace& place) {
  CURLU* url = curl_url();
  bool stays = false;
  if (curl_url_set(url, CURLUPART_URL, target.c_str(), 0) == CURLUE_OK) {
    const std::string scheme = partOf(url, CURLUPART_SCHEME);
    stays = (scheme == "https" || (scheme == "http" && !place.https)) &&
            equalsIgnoreCase(partOf(url, CURLUPART_HOST), place.host) &&
            partOf(url, CURLUPART_USER).empty();
  }
  curl_url_cleanup(url);
  return stays;
}

bool isRedirect(int status) {
  return status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
}

bool isBusy(int status) {
  return status == 429 || status == 502 || status == 503 || status == 504;
}

std::string wordsFor(int status) {
  switch (status) {
    case 401:
      return "its server wants a name and a password";
    case 403:
      return "its server does not allow it to be read";
    case 404:
    case 410:
      return "is not on the server";
    default:
      return "its server answers with error " + std::to_string(status);
  }
}

/// `isConnected`: whether the server had taken the connection.
Outcome failed(CURLcode code, bool isConnected) {
  Outcome outcome;
  switch (code) {
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_CONNECT:
      outcome.failure = "its server cannot be reached";
      break;
    case CURLE_OPERATION_TIMEDOUT:
      if (isConnected)
        return {Outcome::Next::kDone, "its server does not answer, or too slowly", true, {}};
      outcome.failure = "its server does not answer";
      break;
    case CURLE_PARTIAL_FILE:
    case CURLE_GOT_NOTHING:
    case CURLE_RECV_ERROR:
    case CURLE_SEND_ERROR:
      outcome.failure = "its server broke off";
      break;
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_SSL_CACERT_BADFILE:
      return {
          Outcome::Next::kDone, "the certificate of its server is not to be believed", true, {}};
    default:
      return {Outcome::Next::kDone,
              std::string("its server gave no usable answer: ") + curl_easy_strerror(code),
              true,
              {}};
  }
  outcome.next = Outcome::Next::kTryAgain;
  outcome.isUnreachable = true;
  return outcome;
}

}  // namespace

std::string loginFor(const std::string& logins, const ServerPlace& place) {
  for (const std::string& login : split(logins, ' ')) {
    const size_t at = login.rfind('@');
    if (at == std::string::npos) continue;
    const std::string server = login.substr(at + 1);
    const bool usual = place.port == 80 || place.port == 443;
    if (equalsIgnoreCase(server, place.text()) || (usual && equalsIgnoreCase(server, place.host)))
      return login.substr(0, at);
  }
  return {};
}

Transfer::Transfer(const ServerPlace& place, const HttpRequest& request, const std::string& url,
                   const ClientTimes& times, int left)
    : request_(request), easy_(curl_easy_init()) {
  curl_easy_setopt(easy_, CURLOPT_URL, url.c_str());
  setLimits(times, left);
  setRequest(place);
  setLogin(place);
}

Transfer::~Transfer() {
  curl_easy_cleanup(easy_);
  curl_slist_free_all(headers_);
}

void Transfer::setLimits(const ClientTimes& times, int left) {
  const auto option = [this](CURLoption name, int value) {
    curl_easy_setopt(easy_, name, static_cast<long>(value));
  };
  option(CURLOPT_NOSIGNAL, 1);
  // A name server that does not answer must not hold up the end of a request.
  option(CURLOPT_QUICK_EXIT, 1);
  option(CURLOPT_CONNECTTIMEOUT_MS, times.connect);
  option(CURLOPT_TIMEOUT_MS, std::max(1, std::min(times.request, left)));
  option(CURLOPT_LOW_SPEED_LIMIT, times.slowBytes);
  option(CURLOPT_LOW_SPEED_TIME, std::max(1, times.slow / 1000));
  option(CURLOPT_TCP_KEEPALIVE, 1);
  option(CURLOPT_BUFFERSIZE, 256 << 10);
}

void Transfer::setRequest(const ServerPlace& place) {
  curl_easy_setopt(easy_, CURLOPT_PROTOCOLS_STR, place.https ? "https" : "http,https");
  curl_easy_setopt(easy_, CURLOPT_FOLLOWLOCATION, 0L);
  curl_easy_setopt(easy_, CURLOPT_USERAGENT, "tarn-image");
  if (!place.caFile.empty()) curl_easy_setopt(easy_, CURLOPT_CAINFO, place.caFile.c_str());
  if (request_.headOnly) curl_easy_setopt(easy_, CURLOPT_NOBODY, 1L);
  if (request_.count > 0) {
    const std::string range =
        std::to_string(request_.first) + '-' + std::to_string(request_.first + request_.count - 1);
    curl_easy_setopt(easy_, CURLOPT_RANGE, range.c_str());
  }
  if (!request_.condition.empty()) {
    headers_ = curl_slist_append(headers_, request_.condition.c_str());
    curl_easy_setopt(easy_, CURLOPT_HTTPHEADER, headers_);
  }
  curl_easy_setopt(easy_, CURLOPT_WRITEFUNCTION, &Transfer::onBody);
  curl_easy_setopt(easy_, CURLOPT_WRITEDATA, this);
  curl_easy_setopt(easy_, CURLOPT_HEADERFUNCTION, &Transfer::onHeader);
  curl_easy_setopt(easy_, CURLOPT_HEADERDATA, this);
}

void Transfer::setLogin(const ServerPlace& place) {
  curl_easy_setopt(easy_, CURLOPT_HTTPAUTH, CURLAUTH_BASIC);
  curl_easy_setopt(easy_, CURLOPT_NETRC, static_cast<long>(CURL_NETRC_OPTIONAL));
  const std::string file = environmentValue("NETRC");
  if (!file.empty()) curl_easy_setopt(easy_, CURLOPT_NETRC_FILE, file.c_str());
  const std::string logins = environmentValue(kLoginVariable);
  const std::string login = logins.empty() ? std::string() : loginFor(logins, place);
  if (!login.empty()) curl_easy_setopt(easy_, CURLOPT_USERPWD, login.c_str());
}

size_t Transfer::onHeader(char* bytes, size_t size, size_t count, void* self) {
  auto& transfer = *static_cast<Transfer*>(self);
  transfer.headBytes_ += size * count;
  if (transfer.headBytes_ > kMostErrorBytes) {
    transfer.refusal_ = kTooMuch;
    return 0;
  }
  transfer.takeHeader(std::string(bytes, size * count));
  return size * count;
}

void Transfer::takeHeader(const std::string& line) {
  // Each answer begins anew, informational ones before the real one included.
  if (line.compare(0, 5, "HTTP/") == 0) {
    answer_ = HttpAnswer{};
    return;
  }
  const size_t colon = line.find(':');
  if (colon == std::string::npos) return;
  const std::string name = line.substr(0, colon);
  std::string value(trim(std::string_view(line).substr(colon + 1)));
  if (equalsIgnoreCase(name, "etag")) {
    answer_.version.etag = value;
  } else if (equalsIgnoreCase(name, "last-modified")) {
    answer_.version.lastModified = value;
  } else if (equalsIgnoreCase(name, "content-length") && !answer_.isPart) {
    takeNumber(value, answer_.version.size);
  } else if (equalsIgnoreCase(name, "content-range") && value.compare(0, 6, "bytes ") == 0) {
    // "bytes 0-99/1000".
    value.erase(0, 6);
    uint64_t last = 0;
    answer_.version.size = 0;
    answer_.isPart = takeNumber(value, answer_.first) && value.compare(0, 1, "-") == 0;
    if (!value.empty()) value.erase(0, 1);
    answer_.isPart = answer_.isPart && takeNumber(value, last) && value.compare(0, 1, "/") == 0;
    if (!value.empty()) value.erase(0, 1);
    takeNumber(value, answer_.version.size);
  }
}

bool Transfer::bodyIsWelcome() {
  if (looked_) return refusal_.empty();
  looked_ = true;
  long status = 0;
  curl_easy_getinfo(easy_, CURLINFO_RESPONSE_CODE, &status);
  if (status == 200 && request_.count > 0) refusal_ = "its server does not give out parts of files";
  if (status == 206 && (!answer_.isPart || answer_.first != request_.first))
    refusal_ = "its server answers with other bytes than it was asked for";
  return refusal_.empty();
}

size_t Transfer::onBody(char* bytes, size_t size, size_t count, void* self) {
  auto& transfer = *static_cast<Transfer*>(self);
  transfer.received_ += size * count;
  if (!transfer.bodyIsWelcome()) return 0;
  long status = 0;
  curl_easy_getinfo(transfer.easy_, CURLINFO_RESPONSE_CODE, &status);
  const bool success = status == 200 || status == 206;
  const uint64_t most = success ? transfer.request_.mostBytes : kMostErrorBytes;
  if (transfer.received_ > most) {
    transfer.refusal_ = kTooMuch;
    return 0;
  }
  if (success) transfer.answer_.body.append(bytes, size * count);
  return size * count;
}

Outcome Transfer::outcome(CURLcode code, const ServerPlace& place) const {
  Outcome outcome;
  if (!refusal_.empty()) {
    outcome.failure = refusal_;
    return outcome;
  }
  if (code != CURLE_OK) {
    curl_off_t connected = 0;
    curl_easy_getinfo(easy_, CURLINFO_PRETRANSFER_TIME_T, &connected);
    return failed(code, connected > 0);
  }
  long status = 0;
  curl_easy_getinfo(easy_, CURLINFO_RESPONSE_CODE, &status);
  if (isRedirect(static_cast<int>(status))) {
    char* target = nullptr;
    curl_easy_getinfo(easy_, CURLINFO_REDIRECT_URL, &target);
    outcome.url = target ? target : "";
    if (staysOnServer(outcome.url, place)) {
      outcome.next = Outcome::Next::kRedirect;
    } else {
      outcome.failure = "its server sends it on to another place, which is not followed";
    }
    return outcome;
  }
  if (status == 200 || status == 206) {
    if (request_.count > 0 && answer_.body.size() < request_.count && answer_.version.size > 0 &&
        request_.first + answer_.body.size() < answer_.version.size)
      outcome.failure = "its server answers with fewer bytes than it was asked for";
    return outcome;
  }
  outcome.failure = wordsFor(static_cast<int>(status));
  if (isBusy(static_cast<int>(status))) {
    outcome.next = Outcome::Next::kTryAgain;
    outcome.isUnreachable = true;
  }
  return outcome;
}

HttpAnswer Transfer::takeAnswer() {
  long status = 0;
  curl_easy_getinfo(easy_, CURLINFO_RESPONSE_CODE, &status);
  answer_.status = static_cast<int>(status);
  return std::move(answer_);
}

}  // namespace tarn::client
