#include "common/address.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <charconv>

#include "common/io.h"
#include "common/wire.h"

namespace darokleim::phone {

namespace {

constexpr int kBacklog = 128;

sockaddr_in Loopback(uint16_t port) {
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return address;
}

UniqueFd MakeTcpSocket() {
#if defined(__linux__)
  return UniqueFd(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
#else
  UniqueFd made(socket(AF_INET, SOCK_STREAM, 0));
  SetCloseOnExec(made.get());
  return made;
#endif
}

}  // namespace

std::optional<uint16_t> ParseTcpAddress(std::string_view address) {
  if (!TakePrefix(&address, "tcp:")) return std::nullopt;
  uint16_t port = 0;
  const auto [end, error] = std::from_chars(address.data(), address.data() + address.size(), port);
  if (error != std::errc() || end != address.data() + address.size()) return std::nullopt;
  return port;
}

UniqueFd ConnectToLoopback(uint16_t port) {
  UniqueFd connection = MakeTcpSocket();
  const sockaddr_in address = Loopback(port);
  if (connect(connection.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0)
    return UniqueFd();
  return connection;
}

UniqueFd ListenOnLoopback(uint16_t port, uint16_t* bound) {
  UniqueFd listener = MakeTcpSocket();
  const int on = 1;
  setsockopt(listener.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof(on));
  sockaddr_in address = Loopback(port);
  socklen_t length = sizeof(address);
  if (bind(listener.get(), reinterpret_cast<sockaddr*>(&address), length) != 0 ||
      listen(listener.get(), kBacklog) != 0 ||
      getsockname(listener.get(), reinterpret_cast<sockaddr*>(&address), &length) != 0) {
    return UniqueFd();
  }
  *bound = ntohs(address.sin_port);
  return listener;
}

UniqueFd AcceptConnection(int listener) {
#if defined(__linux__)
  UniqueFd connection(accept4(listener, nullptr, nullptr, SOCK_CLOEXEC));
#else
  UniqueFd connection(accept(listener, nullptr, nullptr));
#endif
  if (connection.valid()) {
    SetCloseOnExec(connection.get());
    const int on = 1;
    setsockopt(connection.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof(on));
  }
  return connection;
}

}  // namespace darokleim::phone
