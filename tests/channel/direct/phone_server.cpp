#include "tests/channel/direct/phone_server.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <utility>

namespace darokleim::channel {
namespace {

std::string WithLength(const std::string& text) {
  char length[8];
  snprintf(length, sizeof length, "%04zx", text.size());
  return length + text;
}

template <typename Integer>
std::string LittleEndian(Integer number) {
  std::string bytes;
  for (size_t i = 0; i < sizeof number; ++i) bytes += static_cast<char>(number >> (8 * i) & 0xff);
  return bytes;
}

}  // namespace

std::string ReadBytes(int connection, size_t count) {
  std::string bytes(count, '\0');
  size_t done = 0;
  while (done < count) {
    const ssize_t more = recv(connection, bytes.data() + done, count - done, 0);
    if (more < 0 && errno == EINTR) continue;
    if (more <= 0) break;
    done += static_cast<size_t>(more);
  }
  bytes.resize(done);
  return bytes;
}

bool WriteBytes(int connection, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = send(connection, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    bytes.remove_prefix(static_cast<size_t>(count));
  }
  return true;
}

void WaitUntilClosed(int connection) {
  while (!ReadBytes(connection, 1).empty()) {
  }
}

std::string Number32(uint32_t number) {
  return LittleEndian(number);
}

std::string Number64(uint64_t number) {
  return LittleEndian(number);
}

PhoneServer::PhoneServer(std::string features, Serve serve)
    : features_(std::move(features)), serve_(std::move(serve)), listener_(socket(AF_INET, SOCK_STREAM, 0)) {
  sockaddr_in name = {};
  name.sin_family = AF_INET;
  name.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof name;
  if (bind(listener_.get(), reinterpret_cast<sockaddr*>(&name), length) != 0 ||
      listen(listener_.get(), 64) != 0 ||
      getsockname(listener_.get(), reinterpret_cast<sockaddr*>(&name), &length) != 0) {
    throw std::runtime_error("the server of the test cannot listen");
  }
  port_ = ntohs(name.sin_port);
  setenv("ANDROID_ADB_SERVER_PORT", port().c_str(), 1);
  thread_ = std::thread([this] { Accept(); });
}

PhoneServer::~PhoneServer() {
  {
    const std::lock_guard lock(mutex_);
    stopping_ = true;
  }
  shutdown(listener_.get(), SHUT_RDWR);
  thread_.join();
  Disconnect();
  for (Client& client : clients_) client.thread.join();
}

std::vector<std::string> PhoneServer::services() const {
  const std::lock_guard lock(mutex_);
  return services_;
}

void PhoneServer::Disconnect() {
  const std::lock_guard lock(mutex_);
  for (const Client& client : clients_) shutdown(client.connection.get(), SHUT_RDWR);
}

void PhoneServer::Accept() {
  for (;;) {
    base::UniqueFd connection(accept(listener_.get(), nullptr, nullptr));
    const std::lock_guard lock(mutex_);
    if (stopping_ || !connection.valid()) return;
    const int fd = connection.get();
    ++open_;
    clients_.push_back({std::move(connection), std::thread([this, fd] {
                          Answer(fd);
                          shutdown(fd, SHUT_WR);
                          WaitUntilClosed(fd);
                          --open_;
                        })});
  }
}

void PhoneServer::Answer(int connection) {
  for (;;) {
    const std::string length = ReadBytes(connection, 4);
    if (length.size() < 4) return;
    const std::string request = ReadBytes(connection, std::strtoul(length.c_str(), nullptr, 16));
    if (request == "host:version") {
      WriteBytes(connection, "OKAY00040028");
      return;
    }
    if (request == "host:devices") {
      WriteBytes(connection, "OKAY" + WithLength("X\tdevice\n"));
      return;
    }
    if (request.rfind("host-serial:ABSENT:", 0) == 0) {
      WriteBytes(connection, "FAIL" + WithLength("device 'ABSENT' not found"));
      return;
    }
    if (request.rfind("host-serial:", 0) == 0) {
      WriteBytes(connection, "OKAY" + WithLength(features_));
      return;
    }
    if (request.rfind("host:tport:", 0) == 0) {
      WriteBytes(connection, "OKAY" + Number64(7));
      continue;
    }
    {
      const std::lock_guard lock(mutex_);
      services_.push_back(request);
    }
    serve_(request, connection);
    return;
  }
}

}  // namespace darokleim::channel
