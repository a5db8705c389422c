// Requests to a server, several at once over connections that are kept.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/result.h"
#include "imageclient/operation.h"
#include "imageclient/serveraddress.h"

namespace tarn::client {

struct HttpRequest {
  /// On the server, without a leading '/', not encoded.
  std::string path;
  bool headOnly = false;
  /// The bytes [first, first + count); all of it when `count` is 0.
  uint64_t first = 0;
  uint64_t count = 0;
  /// A longer body ends the request.
  uint64_t mostBytes = 0;
  /// "If-Match: ..." or the like; may be empty.
  std::string condition;
};

/// What tells two states of a file on a server apart.
struct FileVersion {
  std::string etag;
  std::string lastModified;
  uint64_t size = 0;

  /// False when both say something that differs.
  bool agreesWith(const FileVersion& other) const;
};

/// A request and the server that it goes to.
struct PlacedRequest {
  ServerPlace place;
  HttpRequest request;
};

struct HttpAnswer {
  /// Of the last answer; 0 when there was none.
  int status = 0;
  std::string body;
  /// Its size is 0 when the answer does not say it.
  FileVersion version;
  /// Of a part: where it begins.
  uint64_t first = 0;
  bool isPart = false;
  /// Why there is no answer: a sentence without the server and the image.
  std::string failure;
  /// The server could not be reached, or broke off.
  bool isUnreachable = false;
  bool isCancelled = false;
  /// The time of the operation was over.
  bool isTimeOver = false;
  /// And it was over while this waited for its turn or was still coming: says nothing about the
  /// server.
  bool isUnfinished = false;
};

/// What went over the wire in this process so far, bodies only.
struct HttpTotals {
  uint64_t requests = 0;
  uint64_t bytes = 0;
};
HttpTotals httpTotals();

/// Asks for all of them in parallel, up to eight at a time of a server, and returns their answers
/// in the same order, when all have come or the operation is over. Tries again as its times say;
/// follows redirects that stay on the server. May be called from any thread; calls wait for one
/// another.
std::vector<HttpAnswer> runRequests(const std::vector<PlacedRequest>& requests,
                                    Operation& operation);
/// One request.
HttpAnswer runRequest(const ServerPlace& place, const HttpRequest& request, Operation& operation);

}  // namespace tarn::client
