#include "server/listener.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string>

#include "common/io.h"

namespace darokleim::phone {

namespace {

constexpr int kBacklog = 128;

}  // namespace

Listener::Listener(uint16_t port) : socket_(socket(AF_INET, SOCK_STREAM, 0)) {
  SetCloseOnExec(socket_.get());
  const int on = 1;
  setsockopt(socket_.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof(on));
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof(address);
  if (bind(socket_.get(), reinterpret_cast<sockaddr*>(&address), length) != 0 ||
      listen(socket_.get(), kBacklog) != 0 ||
      getsockname(socket_.get(), reinterpret_cast<sockaddr*>(&address), &length) != 0) {
    throw std::runtime_error("cannot listen on port " + std::to_string(port) + ": " + std::strerror(errno));
  }
  port_ = ntohs(address.sin_port);
}

UniqueFd Listener::Accept() const {
  UniqueFd client(accept(socket_.get(), nullptr, nullptr));
  if (client.valid()) {
    SetCloseOnExec(client.get());
    const int on = 1;
    setsockopt(client.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof(on));
  }
  return client;
}

}  // namespace darokleim::phone
