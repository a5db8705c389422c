#include "imageclient/serveraddress.h"

#include <algorithm>
#include <cctype>

#include "base/encoding.h"
#include "base/text.h"

namespace tarn::client {
namespace {

constexpr const char* kSeparator = "%$#@";
constexpr size_t kLongestHost = 253;
constexpr size_t kLongestLabel = 63;
constexpr size_t kLongestPath = 4096;

bool isAsciiWordByte(unsigned char c) {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isHostName(const std::string& host) {
  if (host.empty() || host.size() > kLongestHost) return false;
  for (const std::string& label : split(host, '.')) {
    if (label.empty() || label.size() > kLongestLabel || label.front() == '-' ||
        label.back() == '-')
      return false;
    if (!std::all_of(label.begin(), label.end(), [](char c) {
          return isAsciiWordByte(static_cast<unsigned char>(c)) || c == '-' || c == '_';
        }))
      return false;
  }
  return true;
}

int hexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

}  // namespace

Result<ServerPlace> parsePlace(const std::string& host, const std::string& port) {
  ServerPlace place;
  if (!isHostName(host)) return Status::error("\"" + host + "\" is no name of a server");
  place.host = host;
  const bool digits = !port.empty() && std::all_of(port.begin(), port.end(),
                                                   [](char c) { return c >= '0' && c <= '9'; });
  if (!port.empty() && (!digits || port.size() > 5 || !parseInt(port, place.port) ||
                        place.port < 1 || place.port > 65535))
    return Status::error(host + ": \"" + port + "\" is no port of a server");
  place.https = place.port == 443;
  return place;
}

Status checkImagePath(const std::string& path) {
  const Status refused = Status::error("\"" + path + "\" is no path of an image on a server");
  if (path.empty() || path.size() > kLongestPath) return refused;
  for (const std::string& name : split(path, '/')) {
    if (name.empty() || name == "." || name == "..") return refused;
  }
  const bool clean = std::all_of(path.begin(), path.end(), [](char c) {
    return static_cast<unsigned char>(c) >= ' ' && c != 0x7F && c != '\\';
  });
  return clean ? Status::ok() : refused;
}

std::string encodedPath(const std::string& path) {
  return '/' + percentEncoded(path);
}

std::string decodedText(const std::string& text) {
  std::string out;
  for (size_t i = 0; i < text.size(); ++i) {
    const int high = text[i] == '%' && i + 2 < text.size() ? hexValue(text[i + 1]) : -1;
    const int low = high >= 0 ? hexValue(text[i + 2]) : -1;
    if (low < 0) {
      out += text[i];
      continue;
    }
    out += static_cast<char>(high * 16 + low);
    i += 2;
  }
  return out;
}

std::string urlOf(const ServerPlace& place, const std::string& path) {
  return (place.https ? "https://" : "http://") + place.text() + encodedPath(path);
}

bool canBeSpecified(const std::string& path) {
  return checkImagePath(path).isOk() && path.find(':') == std::string::npos &&
         path.find(kSeparator) == std::string::npos;
}

std::string specificationOf(const ServerPlace& place, const std::string& path) {
  std::string image = path;
  std::replace(image.begin(), image.end(), '/', ':');
  return path.substr(path.rfind('/') + 1) + kSeparator + place.text() + '/' + image;
}

}  // namespace tarn::client
