#include "inc/kimageservers.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "base/text.h"

namespace kel {
namespace {

constexpr int kHttpPort = 80;
constexpr int kHttpsPort = 443;
constexpr int kLastPort = 65535;
constexpr size_t kLongestHost = 253;

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

bool isHostCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || isDigit(c) || c == '-' || c == '.' ||
         c == '_';
}

bool isHostName(std::string_view host) {
  return !host.empty() && host.size() <= kLongestHost && host.front() != '-' &&
         host.front() != '.' && std::all_of(host.begin(), host.end(), isHostCharacter);
}

bool isPlain(std::string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [](char c) { return static_cast<unsigned char>(c) >= ' ' && c != 0x7F; });
}

/// Takes "http://" or "https://" off; false for another protocol.
bool takeProtocol(std::string_view& rest, bool& isHttps) {
  const size_t end = rest.find("://");
  if (end == std::string_view::npos) return true;
  const std::string_view protocol = rest.substr(0, end);
  isHttps = tarn::equalsIgnoreCase(protocol, "https");
  if (!isHttps && !tarn::equalsIgnoreCase(protocol, "http")) return false;
  rest.remove_prefix(end + 3);
  return true;
}

/// Splits "HOST:PORT"; false when there is no such form.
bool splitPort(std::string_view text, std::string& host, std::string_view& port) {
  const size_t colon = text.find(':');
  host = text.substr(0, colon);
  if (!isHostName(host)) return false;
  if (colon == std::string_view::npos) return true;
  port = text.substr(colon + 1);
  return !port.empty();
}

bool takePort(std::string_view text, int& port) {
  int number = 0;
  if (!std::all_of(text.begin(), text.end(), isDigit) || !tarn::parseInt(text, number) ||
      number < 1 || number > kLastPort) {
    return false;
  }
  port = number;
  return true;
}

/// The names of a folder without empty ones; false when one of them leads elsewhere.
bool cleanFolder(std::string_view text, std::string& folder) {
  for (const std::string& name : tarn::split(text, '/')) {
    if (name.empty()) continue;
    if (name == "." || name == ".." || name.find(':') != std::string::npos) return false;
    folder += (folder.empty() ? "" : "/") + name;
  }
  return true;
}

}  // namespace

DString parseImageServer(const DString& name, const DString& address, const DString& caFile,
                         ImageServer& server) {
  const std::string text(tarn::trim(address.str()));
  const std::string_view file = tarn::trim(caFile.str());
  const std::string quoted = "\"" + text + "\"";
  std::string_view rest = text;
  if (!isPlain(name.str()) || !isPlain(text) || !isPlain(file)) {
    return "A server's name, address and file hold no control characters.";
  }
  if (rest.empty()) return "The address of a server is missing.";
  ImageServer read;
  if (!takeProtocol(rest, read.isHttps)) return quoted + ": only http and https are possible.";
  const bool isNamed = rest.size() != text.size();
  const size_t slash = rest.find('/');
  const std::string_view place = rest.substr(0, slash);
  if (place.find('@') != std::string_view::npos) {
    return "A user name or password does not belong into the address of a server.";
  }
  std::string host;
  std::string_view portText;
  if (!splitPort(place, host, portText)) return quoted + ": this is no HOST or HOST:PORT.";
  read.host = host;
  read.port = read.isHttps ? kHttpsPort : kHttpPort;
  if (!portText.empty() && !takePort(portText, read.port)) {
    return quoted + ": a port is a number from 1 to 65535.";
  }
  if (!isNamed && read.port == kHttpsPort) read.isHttps = true;
  if (read.port == kHttpsPort && !read.isHttps) return quoted + ": port 443 is for https only.";
  std::string folder;
  if (slash != std::string_view::npos && !cleanFolder(rest.substr(slash), folder)) {
    return quoted + ": a folder's names hold no \":\", \".\" or \"..\".";
  }
  read.folder = folder;
  read.caFile = std::string(file);
  const std::string_view title = tarn::trim(name.str());
  read.name = title.empty() ? host + ":" + std::to_string(read.port) : std::string(title);
  server = std::move(read);
  return {};
}

DString addressOf(const ImageServer& server) {
  const bool isUsual = server.port == (server.isHttps ? kHttpsPort : kHttpPort);
  std::string text = server.isHttps ? "https://" : "http://";
  text += server.host.str();
  if (!isUsual) text += ":" + std::to_string(server.port);
  if (!server.folder.isEmpty()) text += "/" + server.folder.str();
  return text;
}

DString textOf(const List<ImageServer>& servers) {
  std::string text;
  for (const ImageServer& server : servers) {
    text += server.name.str() + "\t" + addressOf(server).str() + "\t" + server.caFile.str() + "\n";
  }
  return text;
}

List<ImageServer> imageServersOf(const DString& text) {
  List<ImageServer> servers;
  for (const std::string& line : tarn::split(text.str(), '\n')) {
    std::vector<std::string> parts = tarn::split(line, '\t');
    parts.resize(3);
    ImageServer server;
    if (parseImageServer(parts[0], parts[1], parts[2], server).isEmpty()) {
      servers.push_back(std::move(server));
    }
  }
  return servers;
}

}  // namespace kel
