#include "faultserver.h"

#include <algorithm>
#include <chrono>
#include <cstdio>

#include "sockets.h"

namespace tarn::test {
namespace {

constexpr int kStepMs = 20;

void rest() {
  std::this_thread::sleep_for(std::chrono::milliseconds(kStepMs));
}

std::string redirectTo(const std::string& target) {
  return "HTTP/1.1 302 Found\r\nLocation: " + target + "\r\nContent-Length: 0\r\n\r\n";
}

}  // namespace

FaultServer::FaultServer(std::string file)
    : file_(std::make_shared<const std::string>(std::move(file))) {
  files_ = [this](const std::string&) {
    const std::lock_guard<std::mutex> lock(mutex_);
    return ServedFile{file_, "v" + std::to_string(version_)};
  };
  bindTo(0);
}

FaultServer::FaultServer(ServedFiles files, int port) : files_(std::move(files)) {
  bindTo(port);
}

void FaultServer::bindTo(int port) {
  startSockets();
  listener_ = static_cast<int>(::socket(AF_INET, SOCK_STREAM, 0));
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(static_cast<uint16_t>(port));
  socklen_t size = sizeof address;
  auto* plain = reinterpret_cast<sockaddr*>(&address);
  if (::bind(listener_, plain, size) != 0 || ::listen(listener_, 64) != 0) return;
  ::getsockname(listener_, plain, &size);
  port_ = ntohs(address.sin_port);
  acceptor_ = std::thread([this] { listen(); });
}

FaultServer::~FaultServer() {
  ending_ = true;
  if (acceptor_.joinable()) acceptor_.join();
  for (std::thread& thread : threads_) thread.join();
  closeSocket(listener_);
}

void FaultServer::setFile(std::string file) {
  const std::lock_guard<std::mutex> lock(mutex_);
  file_ = std::make_shared<const std::string>(std::move(file));
  ++version_;
}

void FaultServer::listen() {
  while (!ending_) {
    if (!canRead(listener_, kStepMs)) continue;
    const int connection = static_cast<int>(::accept(listener_, nullptr, nullptr));
    if (connection < 0) continue;
    ++connections_;
    threads_.emplace_back([this, connection] { serve(connection); });
  }
}

void FaultServer::serve(int connection) {
  std::string request;
  while (!ending_) {
    if (!canRead(connection, kStepMs)) continue;
    char bytes[4096];
    const auto count = ::recv(connection, bytes, sizeof bytes, 0);
    if (count <= 0) break;
    request.append(bytes, static_cast<size_t>(count));
    if (request.find("\r\n\r\n") == std::string::npos) continue;
    ++requests_;
    mostAtOnce_ = std::max<int>(mostAtOnce_, ++waiting_);
    for (int waited = 0; waited < delayMs_ && mostAtOnce_ < company_; waited += kStepMs) rest();
    --waiting_;
    const Reply reply = replyTo(request);
    send(connection, reply.bytes);
    request.clear();
    if (reply.after == Reply::After::kKeep) continue;
    afterwards(connection, reply.after);
    break;
  }
  closeSocket(connection);
}

void FaultServer::send(int connection, const std::string& bytes) const {
  for (size_t sent = 0; sent < bytes.size() && !ending_;) {
    const auto count = ::send(connection, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
    if (count <= 0) return;
    sent += static_cast<size_t>(count);
  }
}

void FaultServer::afterwards(int connection, Reply::After after) const {
  if (after == Reply::After::kReset) {
    const linger hard{1, 0};
    ::setsockopt(connection, SOL_SOCKET, SO_LINGER, reinterpret_cast<const char*>(&hard),
                 sizeof hard);
  }
  std::string more(after == Reply::After::kEndless ? 1 << 20 : 1, 'x');
  if (after == Reply::After::kEndlessHead) more = "X-More: " + std::string(30000, 'x') + "\r\n";
  while (!ending_ && after != Reply::After::kClose && after != Reply::After::kReset) {
    char byte = 0;
    if (canRead(connection, kStepMs) && ::recv(connection, &byte, 1, 0) <= 0) return;
    if (after == Reply::After::kStall) continue;
    if (::send(connection, more.data(), more.size(), MSG_NOSIGNAL) <= 0) return;
    if (after == Reply::After::kDrip) rest();
  }
}

FaultServer::Reply FaultServer::replyTo(const std::string& request) {
  const Fault fault = fault_;
  using After = Reply::After;
  switch (fault) {
    case Fault::kReset:
      return {"", After::kReset};
    case Fault::kStalled:
      return {"", After::kStall};
    case Fault::kEndlessHead:
      return {"HTTP/1.1 206 Part\r\n", After::kEndlessHead};
    case Fault::kGarbage:
      return {"\x01\x02 what is this\r\n\r\n", After::kClose};
    case Fault::kLoop:
      return {redirectTo("/again.tif"), After::kKeep};
    case Fault::kElsewhere:
      return {redirectTo("http://localhost.localdomain:" + port() + "/image.tif"), After::kKeep};
    case Fault::kToFile:
      return {redirectTo("file:///etc/hostname"), After::kKeep};
    case Fault::kGone:
      return {"HTTP/1.1 404 Not Found\r\nContent-Length: 4\r\n\r\ngone", After::kKeep};
    case Fault::kBusyOnce:
      fault_ = Fault::kNone;
      return {"HTTP/1.1 503 Busy\r\nContent-Length: 0\r\n\r\n", After::kKeep};
    case Fault::kBusy:
      return {"HTTP/1.1 503 Busy\r\nContent-Length: 0\r\n\r\n", After::kKeep};
    default:
      return properReply(request, fault);
  }
}

FaultServer::Reply FaultServer::properReply(const std::string& request, Fault fault) {
  const size_t path = request.find(' ') + 1;
  const auto file = files_(request.substr(path, request.find(' ', path) - path));
  if (!file) return {"HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n", Reply::After::kKeep};
  const std::string tag = '"' + file->tag + '"';
  const size_t wanted = request.find("If-Match: ");
  if (wanted != std::string::npos && request.compare(wanted + 10, tag.size(), tag) != 0)
    return {"HTTP/1.1 412 Changed\r\nContent-Length: 0\r\n\r\n", Reply::After::kKeep};
  unsigned long first = 0, last = file->bytes->size() - 1;
  const size_t range = request.find("Range: bytes=");
  const bool isPart = range != std::string::npos && fault != Fault::kWholeFile;
  if (isPart) std::sscanf(request.c_str() + range, "Range: bytes=%lu-%lu", &first, &last);
  last = std::min<unsigned long>(last, file->bytes->size() - 1);
  if (fault == Fault::kShortRange) last = first + (last - first) / 2;
  if (fault == Fault::kWrongRange) ++first;
  std::string body = file->bytes->substr(first, last - first + 1);
  std::string head = isPart ? "HTTP/1.1 206 Part\r\nContent-Range: bytes " + std::to_string(first) +
                                  "-" + std::to_string(last) + "/" +
                                  std::to_string(file->bytes->size()) + "\r\n"
                            : "HTTP/1.1 200 OK\r\n";
  head += "ETag: " + tag + "\r\n";
  const bool isEndless = fault == Fault::kEndless;
  if (!isEndless) head += "Content-Length: " + std::to_string(body.size()) + "\r\n";
  head += "\r\n";
  if (request.compare(0, 5, "HEAD ") == 0) return {head, Reply::After::kKeep};
  if (fault == Fault::kDamaged) std::fill(body.begin(), body.end(), '\xA5');
  if (fault == Fault::kHalfBody)
    return {head + body.substr(0, body.size() / 2), Reply::After::kClose};
  if (fault == Fault::kDripping) return {head, Reply::After::kDrip};
  return {head + body, isEndless ? Reply::After::kEndless : Reply::After::kKeep};
}

}  // namespace tarn::test
