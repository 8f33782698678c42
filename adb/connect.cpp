// Connection::Open: finding the server's socket and connecting to it.
#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <cerrno>
#include <cstring>
#include <memory>
#include <vector>

#include "adb/connection.h"
#include "adb/system.h"

namespace darokleim::adb {

namespace {

struct SocketName {
  sockaddr_storage storage = {};
  socklen_t length = 0;

  int family() const { return storage.ss_family; }
  const sockaddr* get() const { return reinterpret_cast<const sockaddr*>(&storage); }
};

template <typename Address>
SocketName NameOf(const Address& address, size_t length = sizeof(Address)) {
  SocketName name;
  std::memcpy(&name.storage, &address, length);
  name.length = static_cast<socklen_t>(length);
  return name;
}

SocketName NameOf(const in_addr& address, std::uint16_t port) {
  sockaddr_in name = {};
  name.sin_family = AF_INET;
  name.sin_addr = address;
  name.sin_port = htons(port);
  return NameOf(name);
}

SocketName NameOf(const in6_addr& address, std::uint16_t port) {
  sockaddr_in6 name = {};
  name.sin6_family = AF_INET6;
  name.sin6_addr = address;
  name.sin6_port = htons(port);
  return NameOf(name);
}

SocketName NameOfLocal(const ServerAddress& server) {
  sockaddr_un name = {};
  name.sun_family = AF_UNIX;
  const bool abstract = server.kind == ServerAddress::Kind::kLocalAbstract;
  std::memcpy(name.sun_path + (abstract ? 1 : 0), server.name.data(), server.name.size());
  return NameOf(name, offsetof(sockaddr_un, sun_path) + server.name.size() + 1);
}

Error CannotConnect(int error, const char* what = "") {
  return {ErrorCode::kCannotConnect, what, error};
}

Result<std::vector<SocketName>> LookUp(const ServerAddress& server) {
  addrinfo hints = {};
  hints.ai_family = AF_UNSPEC;
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* first = nullptr;
  const int result = getaddrinfo(server.host.c_str(), std::to_string(server.port).c_str(), &hints, &first);
  if (result != 0) return CannotConnect(result == EAI_SYSTEM ? errno : 0, gai_strerror(result));
  const std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> found(first, &freeaddrinfo);
  std::vector<SocketName> names;
  for (const addrinfo* each = first; each != nullptr; each = each->ai_next) {
    SocketName name;
    std::memcpy(&name.storage, each->ai_addr, each->ai_addrlen);
    name.length = each->ai_addrlen;
    names.push_back(name);
  }
  return names;
}

Result<std::vector<SocketName>> NamesOf(const ServerAddress& server) {
  if (server.kind != ServerAddress::Kind::kTcp) return std::vector<SocketName>{NameOfLocal(server)};
  if (server.host.empty()) {
    in_addr loopback = {};
    loopback.s_addr = htonl(INADDR_LOOPBACK);
    return std::vector<SocketName>{NameOf(loopback, server.port), NameOf(in6addr_loopback, server.port)};
  }
  in_addr v4;
  if (inet_pton(AF_INET, server.host.c_str(), &v4) == 1) {
    return std::vector<SocketName>{NameOf(v4, server.port)};
  }
  in6_addr v6;
  if (inet_pton(AF_INET6, server.host.c_str(), &v6) == 1) {
    return std::vector<SocketName>{NameOf(v6, server.port)};
  }
  return LookUp(server);
}

// A local port that nobody listens on may be the one that the system has just chosen for this end: the socket is then
// connected to itself.
bool IsConnectedToItself(int socket, const SocketName& peer) {
  SocketName own;
  own.length = sizeof(own.storage);
  return getsockname(socket, reinterpret_cast<sockaddr*>(&own.storage), &own.length) == 0 &&
         own.length == peer.length && std::memcmp(&own.storage, &peer.storage, peer.length) == 0;
}

// 0, or the errno that says why the connection is not made.
Result<int> ConnectTo(int socket, const SocketName& name, const Limits& limits) {
  while (connect(socket, name.get(), name.length) != 0) {
    if (errno == EISCONN) return 0;
    if (errno == EINTR) continue;
    if (errno == EAGAIN && name.family() == AF_UNIX) {  // the queue of the listening socket is full
      Limits pause = limits;
      pause.deadline = std::min(limits.deadline, Clock::now() + std::chrono::milliseconds(2));
      if (Result<short> waited = WaitFor(-1, 0, pause); waited.error().code != ErrorCode::kTimedOut) {
        return waited.TakeError();
      }
      if (Status status = Check(limits); !status.ok()) return status.TakeError();
      continue;
    }
    if (errno != EINPROGRESS && errno != EALREADY) return errno;
    if (Result<short> waited = WaitFor(socket, POLLOUT, limits); !waited.ok()) return waited.TakeError();
    int error = 0;
    socklen_t length = sizeof(error);
    if (getsockopt(socket, SOL_SOCKET, SO_ERROR, &error, &length) != 0) return errno;
    return error;
  }
  return 0;
}

}  // namespace

Result<Connection> Connection::Open(const ServerAddress& server, const Limits& limits) {
  if (Status status = Check(limits); !status.ok()) return status.TakeError();
  Result<std::vector<SocketName>> names = NamesOf(server);
  if (!names.ok()) return names.TakeError();
  int error = 0;
  for (const SocketName& name : *names) {
    base::UniqueFd socket = OpenStreamSocket(name.family());
    if (!socket.valid()) {
      // A computer without IPv6 is a reason to go on; out of descriptors is not.
      if (errno != EAFNOSUPPORT) return Error{ErrorCode::kSystem, "socket", errno};
      if (error == 0) error = errno;
      continue;
    }
    Result<int> connected = ConnectTo(socket.get(), name, limits);
    if (!connected.ok()) return connected.TakeError();
    const bool tcp = name.family() != AF_UNIX;
    if (*connected == 0 && tcp && IsConnectedToItself(socket.get(), name)) *connected = ECONNREFUSED;
    if (*connected == 0) {
      const int on = 1;
      if (tcp) setsockopt(socket.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof(on));
      return Connection(std::move(socket), tcp);
    }
    if (error == 0) error = *connected;
  }
  return CannotConnect(error);
}

}  // namespace darokleim::adb
