#include "webserver.h"

#include <QCryptographicHash>
#include <QFile>
#include <QString>
#include <random>
#include <thread>

#include "imageclient/http.h"

namespace tarn::test {
namespace {

const char* const kConfiguration = R"(daemon off;
master_process off;
pid %1/nginx.pid;
error_log %1/error.log;
worker_rlimit_nofile 512;
events { worker_connections 256; }
http {
  access_log off;
  types { application/json json; image/tiff tif; }
  client_body_temp_path %1/body;
  proxy_temp_path %1/proxy;
  fastcgi_temp_path %1/fastcgi;
  uwsgi_temp_path %1/uwsgi;
  scgi_temp_path %1/scgi;
  server {
    listen 127.0.0.1:%2%3;
    root "%4";
    autoindex on;
    charset utf-8;
    %5
  }
}
)";

bool writeText(const std::string& path, const QString& text) {
  QFile file(QString::fromStdString(path));
  return file.open(QIODevice::WriteOnly) && file.write(text.toUtf8()) > 0;
}

int somePort() {
  static std::mt19937 random(std::random_device{}());
  return std::uniform_int_distribution<int>(20000, 30000)(random);
}

}  // namespace

WebServer::WebServer(std::string root, WebServerOptions options)
    : root_(std::move(root)), options_(std::move(options)) {
  if (options_.https && !makeCertificate()) return;
  for (int i = 0; i < 10 && port_ == 0; ++i) {
    port_ = somePort();
    if (!start()) port_ = 0;
  }
}

WebServer::~WebServer() {
  stop();
}

bool WebServer::makeCertificate() {
  const std::string key = scratch_.at("key.pem"), request = scratch_.at("request.pem");
  const auto openssl = [](const std::vector<std::string>& words) {
    return runProgram("/usr/bin/openssl", words).exitCode == 0;
  };
  return openssl({"req", "-new", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1",
                  "-nodes", "-subj", "/CN=localhost", "-addext",
                  "subjectAltName=DNS:localhost,IP:127.0.0.1", "-keyout", key, "-out", request}) &&
         openssl({"x509", "-req", "-in", request, "-signkey", key, "-days",
                  options_.expired ? "-1" : "2", "-copy_extensions", "copy", "-out", caFile()});
}

bool WebServer::writeConfiguration(int port) {
  QString more;
  if (options_.https) {
    more += QString("ssl_certificate %1; ssl_certificate_key %2;")
                .arg(QString::fromStdString(scratch_.at("cert.pem")),
                     QString::fromStdString(scratch_.at("key.pem")));
  }
  if (!options_.user.empty()) {
    const QByteArray digest = QCryptographicHash::hash(QByteArray::fromStdString(options_.password),
                                                       QCryptographicHash::Sha1);
    if (!writeText(scratch_.at("users"), QString::fromStdString(options_.user) + ":{SHA}" +
                                             QString::fromLatin1(digest.toBase64()) + "\n"))
      return false;
    more += QString("auth_basic \"images\"; auth_basic_user_file %1;")
                .arg(QString::fromStdString(scratch_.at("users")));
  }
  return writeText(scratch_.at("nginx.conf"),
                   QString(kConfiguration)
                       .arg(QString::fromStdString(scratch_.folder()), QString::number(port),
                            options_.https ? " ssl" : "", QString::fromStdString(root_), more));
}

bool WebServer::run() {
  process_ = std::make_unique<QProcess>();
  process_->setStandardOutputFile(QProcess::nullDevice());
  process_->setStandardErrorFile(QProcess::nullDevice());
  const QString conf = QString::fromStdString(scratch_.at("nginx.conf"));
  // It must not outlive a test that is killed.
  process_->start("/usr/bin/setpriv", {"--pdeathsig", "TERM", "/usr/sbin/nginx", "-c", conf, "-p",
                                       QString::fromStdString(scratch_.folder()), "-e",
                                       QString::fromStdString(scratch_.at("error.log"))});
  return process_->waitForStarted(5000);
}

bool WebServer::start() {
  if (!writeConfiguration(port_) || !run()) return false;
  client::ServerPlace place;
  place.host = "127.0.0.1";
  place.port = port_;
  for (int i = 0; i < 200; ++i) {
    if (process_->waitForFinished(1)) return false;
    ClientTimes times;
    times.triesAgain = 0;
    times.operation = 1000;
    client::Operation operation(times, {});
    client::HttpRequest request;
    request.headOnly = true;
    // Plain words to a port with https are answered, too.
    if (client::runRequest(place, request, operation).status != 0) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  return false;
}

void WebServer::stop() {
  if (!process_) return;
  process_->terminate();
  if (!process_->waitForFinished(5000)) {
    process_->kill();
    process_->waitForFinished(5000);
  }
  process_.reset();
}

}  // namespace tarn::test
