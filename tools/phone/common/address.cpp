#include "tools/phone/common/address.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <cerrno>
#include <cstddef>
#include <cstring>

#include "tools/phone/common/io.h"
#include "tools/phone/common/numbers.h"
#include "tools/phone/common/wire.h"

namespace darokleim::phone {

namespace {

constexpr int kBacklog = 128;
constexpr useconds_t kPauseMicroseconds = 10 * 1000;

base::UniqueFd MakeSocket(int family) {
#if defined(__linux__)
  return base::UniqueFd(socket(family, SOCK_STREAM | SOCK_CLOEXEC, 0));
#else
  base::UniqueFd made(socket(family, SOCK_STREAM, 0));
  SetCloseOnExec(made.get());
  return made;
#endif
}

// Left by a server that was killed. Anything but a socket stays.
void RemoveSocketFile(const char* path) {
  struct stat status;
  if (lstat(path, &status) == 0 && S_ISSOCK(status.st_mode)) unlink(path);
}

}  // namespace

std::optional<SocketAddress> SocketAddress::Parse(std::string_view text) {
  if (TakePrefix(&text, "tcp:")) {
    const auto port = ParseNumber<uint16_t>(text);
    return port ? std::optional(OfPort(*port)) : std::nullopt;
  }
  if (TakePrefix(&text, "localfilesystem:") || TakePrefix(&text, "local:")) return OfName(text, false);
#if defined(__linux__)
  if (TakePrefix(&text, "localabstract:")) return OfName(text, true);
#endif
  return std::nullopt;
}

SocketAddress SocketAddress::OfPort(uint16_t port) {
  sockaddr_in internet = {};
  internet.sin_family = AF_INET;
  internet.sin_port = htons(port);
  internet.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  SocketAddress address;
  std::memcpy(&address.bytes_, &internet, sizeof(internet));
  address.length_ = sizeof(internet);
  return address;
}

// An abstract name begins with a zero byte and is as long as the length says; a path ends in one.
std::optional<SocketAddress> SocketAddress::OfName(std::string_view name, bool abstract) {
  sockaddr_un local = {};
  local.sun_family = AF_UNIX;
  if (name.empty() || name.size() >= sizeof(local.sun_path) || name.find('\0') != std::string_view::npos)
    return std::nullopt;
  std::memcpy(local.sun_path + (abstract ? 1 : 0), name.data(), name.size());
  SocketAddress address;
  std::memcpy(&address.bytes_, &local, sizeof(local));
  address.length_ = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + name.size() + 1);
  return address;
}

base::UniqueFd SocketAddress::Connect() const {
  base::UniqueFd connection = MakeSocket(bytes_.ss_family);
  if (connect(connection.get(), reinterpret_cast<const sockaddr*>(&bytes_), length_) != 0)
    return base::UniqueFd();
  return connection;
}

base::UniqueFd SocketAddress::Listen() const {
  base::UniqueFd listener = MakeSocket(bytes_.ss_family);
  const int on = 1;
  setsockopt(listener.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof(on));
  RemoveFile();
  if (bind(listener.get(), reinterpret_cast<const sockaddr*>(&bytes_), length_) != 0 ||
      listen(listener.get(), kBacklog) != 0) {
    return base::UniqueFd();
  }
  return listener;
}

bool SocketAddress::IsAnyFreePort() const {
  return bytes_.ss_family == AF_INET && reinterpret_cast<const sockaddr_in*>(&bytes_)->sin_port == 0;
}

void SocketAddress::RemoveFile() const {
  const char* path = reinterpret_cast<const sockaddr_un*>(&bytes_)->sun_path;
  if (bytes_.ss_family == AF_UNIX && path[0] != '\0') RemoveSocketFile(path);
}

Listener::Listener(const SocketAddress& address) : address_(address), fd_(address.Listen()) {}

Listener::~Listener() {
  if (valid()) address_.RemoveFile();
}

uint16_t Listener::port() const {
  sockaddr_in bound = {};
  socklen_t length = sizeof(bound);
  if (getsockname(fd_.get(), reinterpret_cast<sockaddr*>(&bound), &length) != 0 ||
      bound.sin_family != AF_INET)
    return 0;
  return ntohs(bound.sin_port);
}

base::UniqueFd AcceptConnection(int listener, SmallPackets small_packets) {
#if defined(__linux__)
  base::UniqueFd connection(accept4(listener, nullptr, nullptr, SOCK_CLOEXEC));
#else
  base::UniqueFd connection(accept(listener, nullptr, nullptr));
#endif
  if (connection.valid()) {
    SetCloseOnExec(connection.get());
    const int at_once = small_packets == SmallPackets::kGoAtOnce ? 1 : 0;
    setsockopt(connection.get(), IPPROTO_TCP, TCP_NODELAY, &at_once, sizeof(at_once));
  } else if (errno != ECONNABORTED && errno != EINTR && errno != EAGAIN) {
    // The listener stays readable meanwhile: without the pause its owner would ask again at once.
    usleep(kPauseMicroseconds);
  }
  return connection;
}

}  // namespace darokleim::phone
