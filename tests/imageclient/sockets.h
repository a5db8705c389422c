// Sockets under the names that they have elsewhere.
#pragma once

#if defined(_WIN32)
#include <winsock2.h>
#include <ws2tcpip.h>

#include <mutex>

using socklen_t = int;
constexpr int MSG_NOSIGNAL = 0;
using SocketWait = WSAPOLLFD;

/// Once before the first socket.
inline void startSockets() {
  static std::once_flag once;
  std::call_once(once, [] {
    WSADATA data{};
    ::WSAStartup(MAKEWORD(2, 2), &data);
  });
}
inline int waitFor(SocketWait& wait, int milliseconds) {
  return ::WSAPoll(&wait, 1, milliseconds);
}
inline void closeSocket(int number) {
  ::closesocket(static_cast<SOCKET>(number));
}
#else
#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

using SocketWait = pollfd;

inline void startSockets() {}
inline int waitFor(SocketWait& wait, int milliseconds) {
  return ::poll(&wait, 1, milliseconds);
}
inline void closeSocket(int number) {
  ::close(number);
}
#endif

namespace tarn::test {

/// True when there is something to read within some milliseconds.
inline bool canRead(int number, int milliseconds) {
  SocketWait wait{};
  wait.fd = static_cast<decltype(wait.fd)>(number);
  wait.events = POLLIN;
  return waitFor(wait, milliseconds) > 0;
}

}  // namespace tarn::test
