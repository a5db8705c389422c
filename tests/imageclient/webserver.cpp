#include "webserver.h"

#include <QCryptographicHash>
#include <QFile>
#include <QProcess>
#include <QString>
#include <random>
#include <thread>

#include "imageclient/http.h"
#include "tests/support/program.h"

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

struct WebServer::Program {
  Program(std::string servedFolder, WebServerOptions wanted)
      : root(std::move(servedFolder)), options(std::move(wanted)) {}

  std::string root;
  WebServerOptions options;
  Scratch scratch{"tarnweb"};
  std::unique_ptr<QProcess> process;

  std::string caFile() const { return scratch.at("cert.pem"); }
  bool makeCertificate() const;
  bool writeConfiguration(int port) const;
  bool run();
};

WebServer::WebServer(std::string root, WebServerOptions options)
    : program_(std::make_unique<Program>(std::move(root), std::move(options))) {
  if (program_->options.https && !program_->makeCertificate()) return;
  for (int i = 0; i < 10 && port_ == 0; ++i) {
    port_ = somePort();
    if (!start()) port_ = 0;
  }
}

WebServer::~WebServer() {
  stop();
}

std::string WebServer::caFile() const {
  return program_->caFile();
}

bool WebServer::Program::makeCertificate() const {
  const std::string key = scratch.at("key.pem"), request = scratch.at("request.pem");
  const auto openssl = [](const std::vector<std::string>& words) {
    return runProgram("/usr/bin/openssl", words).exitCode == 0;
  };
  return openssl({"req", "-new", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1",
                  "-nodes", "-subj", "/CN=localhost", "-addext",
                  "subjectAltName=DNS:localhost,IP:127.0.0.1", "-keyout", key, "-out", request}) &&
         openssl({"x509", "-req", "-in", request, "-signkey", key, "-days",
                  options.expired ? "-1" : "2", "-copy_extensions", "copy", "-out", caFile()});
}

bool WebServer::Program::writeConfiguration(int port) const {
  QString more;
  if (options.https) {
    more += QString("ssl_certificate %1; ssl_certificate_key %2;")
                .arg(QString::fromStdString(scratch.at("cert.pem")),
                     QString::fromStdString(scratch.at("key.pem")));
  }
  if (!options.user.empty()) {
    const QByteArray digest = QCryptographicHash::hash(QByteArray::fromStdString(options.password),
                                                       QCryptographicHash::Sha1);
    if (!writeText(scratch.at("users"), QString::fromStdString(options.user) + ":{SHA}" +
                                            QString::fromLatin1(digest.toBase64()) + "\n"))
      return false;
    more += QString("auth_basic \"images\"; auth_basic_user_file %1;")
                .arg(QString::fromStdString(scratch.at("users")));
  }
  return writeText(scratch.at("nginx.conf"),
                   QString(kConfiguration)
                       .arg(QString::fromStdString(scratch.folder()), QString::number(port),
                            options.https ? " ssl" : "", QString::fromStdString(root), more));
}

bool WebServer::Program::run() {
  process = std::make_unique<QProcess>();
  process->setStandardOutputFile(QProcess::nullDevice());
  process->setStandardErrorFile(QProcess::nullDevice());
  const QString conf = QString::fromStdString(scratch.at("nginx.conf"));
  // It must not outlive a test that is killed.
  process->start("/usr/bin/setpriv", {"--pdeathsig", "TERM", "/usr/sbin/nginx", "-c", conf, "-p",
                                      QString::fromStdString(scratch.folder()), "-e",
                                      QString::fromStdString(scratch.at("error.log"))});
  return process->waitForStarted(5000);
}

bool WebServer::start() {
  if (!program_->writeConfiguration(port_) || !program_->run()) return false;
  client::ServerPlace place;
  place.host = "127.0.0.1";
  place.port = port_;
  for (int i = 0; i < 200; ++i) {
    if (program_->process->waitForFinished(1)) return false;
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
  if (!program_->process) return;
  program_->process->terminate();
  if (!program_->process->waitForFinished(5000)) {
    program_->process->kill();
    program_->process->waitForFinished(5000);
  }
  program_->process.reset();
}

}  // namespace tarn::test
