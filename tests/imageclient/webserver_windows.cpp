#include <QUrl>
#include <algorithm>

#include "base/file.h"
#include "base/path.h"
#include "tests/imageclient/faultserver.h"
#include "tests/imageclient/webserver.h"

namespace tarn::test {
namespace {

constexpr uint64_t kMostBytes = 1 << 28;

/// The page that nginx makes of a folder.
std::string indexOf(const std::string& folder) {
  std::string page = "<html><body><h1>Index</h1><hr><pre><a href=\"../\">../</a>\n";
  for (const std::string& name : listFolder(folder)) {
    const std::string path = joinPath(folder, name);
    const bool isFolder = fileKind(path) == FileKind::kFolder;
    const std::string link =
        QUrl::toPercentEncoding(QString::fromStdString(name)).toStdString() + (isFolder ? "/" : "");
    page += "<a href=\"" + link + "\">" + name + "</a>    21-Nov-2026 10:00    " +
            (isFolder ? "-" : std::to_string(fileTimes(path).size)) + "\n";
  }
  return page + "</pre><hr></body></html>\n";
}

std::optional<ServedFile> fileOf(const std::string& root, const std::string& path) {
  const QByteArray encoded = QByteArray::fromStdString(path.substr(0, path.find('?')));
  const std::string name = QUrl::fromPercentEncoding(encoded).toStdString();
  const std::string full = root + name;
  if (name.empty() || name.back() == '/')
    return ServedFile{std::make_shared<const std::string>(indexOf(full)), "index"};
  const FileTimes times = fileTimes(full);
  auto bytes = readFile(full, kMostBytes);
  if (!bytes) return std::nullopt;
  return ServedFile{std::make_shared<const std::string>(bytes.take()),
                    std::to_string(times.size) + "-" + std::to_string(times.modifiedNs)};
}

}  // namespace

struct WebServer::Program {
  std::string root;
  std::unique_ptr<FaultServer> server;
};

WebServer::WebServer(std::string root, WebServerOptions options)
    : program_(new Program{std::move(root), nullptr}) {
  if (!options.https && options.user.empty()) start();
}

WebServer::~WebServer() = default;

std::string WebServer::caFile() const {
  return {};
}

bool WebServer::start() {
  const std::string root = program_->root;
  program_->server = std::make_unique<FaultServer>(
      [root](const std::string& path) { return fileOf(root, path); }, port_);
  if (program_->server->isUp()) port_ = std::stoi(program_->server->port());
  return program_->server->isUp();
}

void WebServer::stop() {
  program_->server.reset();
}

}  // namespace tarn::test
