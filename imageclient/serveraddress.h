// Names of servers and of the images on them: checked, taken apart and put together. Pure.
#pragma once

#include <string>

#include "base/result.h"

namespace tarn::client {

/// Where a server listens, and how it is talked to.
struct ServerPlace {
  std::string host;
  int port = 80;
  bool https = false;
  /// Certificates that are believed beside the system's; may be empty.
  std::string caFile;

  /// "HOST:PORT".
  std::string text() const { return host + ':' + std::to_string(port); }
};

/// A host name or IPv4 address, and a port as text (empty: 80). Port 443 is always https. The
/// reason of a failure names them.
Result<ServerPlace> parsePlace(const std::string& host, const std::string& port);

/// A path below the server's root: names divided by '/', none of them empty, "." or "..", no
/// backslashes and no control characters.
Status checkImagePath(const std::string& path);

/// "/DIR/FILE.tif" with every byte percent-encoded that is no letter, digit or one of "-._~";
/// `path` without a leading '/'.
std::string encodedPath(const std::string& path);
/// The text with its percent-encodings decoded; those that are damaged stay as they are.
std::string decodedText(const std::string& text);

/// "http://HOST:PORT" + encodedPath(path).
std::string urlOf(const ServerPlace& place, const std::string& path);

/// Whether an image of that path can be named by a text, which gives ':' and the separator
/// a meaning of their own.
bool canBeSpecified(const std::string& path);

/// "NAME%$#@HOST:PORT/DIR:DIR:FILE.tif"; NAME is the last part of the path.
std::string specificationOf(const ServerPlace& place, const std::string& path);

}  // namespace tarn::client
