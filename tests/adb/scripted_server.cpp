#include "tests/adb/scripted_server.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <algorithm>
#include <cstdio>
#include <stdexcept>

namespace darokleim::adb_test {

std::string Request(std::string_view text) {
  char length[8];
  std::snprintf(length, sizeof(length), "%04zx", text.size());
  return length + std::string(text);
}

std::string ReadBytes(int connection, std::size_t count) {
  std::string bytes(count, '\0');
  std::size_t read = 0;
  while (read < count) {
    const ssize_t more = recv(connection, bytes.data() + read, count - read, 0);
    if (more < 0 && errno == EINTR) continue;
    if (more <= 0) break;
    read += static_cast<std::size_t>(more);
  }
  bytes.resize(read);
  return bytes;
}

bool WriteBytes(int connection, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = send(connection, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

void WaitUntilClosed(int connection) {
  while (!ReadBytes(connection, 4096).empty()) {
  }
}

ScriptedServer::ScriptedServer(std::vector<Exchange> conversation, Manner manner)
    : conversation_(std::move(conversation)), manner_(manner), serve_([this](int fd) { Play(fd); }) {
  Listen();
}

ScriptedServer::ScriptedServer(std::function<void(int)> serve) : serve_(std::move(serve)) {
  Listen();
}

ScriptedServer::~ScriptedServer() {
  {
    const std::lock_guard lock(mutex_);
    stopping_ = true;
    shutdown(listener_.get(), SHUT_RDWR);
    if (current_.valid()) shutdown(current_.get(), SHUT_RDWR);
  }
  thread_.join();
}

void ScriptedServer::Listen() {
  listener_.Reset(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  sockaddr_in name = {};
  name.sin_family = AF_INET;
  name.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof(name);
  if (bind(listener_.get(), reinterpret_cast<sockaddr*>(&name), length) != 0 ||
      listen(listener_.get(), 64) != 0 ||
      getsockname(listener_.get(), reinterpret_cast<sockaddr*>(&name), &length) != 0) {
    throw std::runtime_error("the scripted server cannot listen");
  }
  port_ = ntohs(name.sin_port);
  thread_ = std::thread([this] { Run(); });
}

adb::ServerAddress ScriptedServer::address() const {
  adb::ServerAddress address;
  address.port = port_;
  return address;
}

std::string ScriptedServer::surprises() const {
  const std::lock_guard lock(mutex_);
  return surprises_;
}

void ScriptedServer::Run() {
  for (;;) {
    base::UniqueFd connection(accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC));
    int fd;
    {
      const std::lock_guard lock(mutex_);
      if (stopping_ || !connection.valid()) return;
      current_ = std::move(connection);
      fd = current_.get();
    }
    const int on = 1;
    setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof(on));
    ++connections_;
    serve_(fd);
    const std::lock_guard lock(mutex_);
    current_.Reset();
  }
}

void ScriptedServer::Play(int connection) {
  std::size_t left = manner_.cut_after;
  for (const Exchange& exchange : conversation_) {
    const std::string request = ReadBytes(connection, exchange.request.size());
    if (request != exchange.request) {
      if (request.empty()) return;  // the client has had enough
      const std::lock_guard lock(mutex_);
      surprises_ += "expected \"" + exchange.request + "\", received \"" + request + "\"\n";
      return;
    }
    const std::string_view reply = std::string_view(exchange.reply).substr(0, left);
    const std::size_t piece = manner_.byte_by_byte ? 1 : std::max<std::size_t>(reply.size(), 1);
    for (std::size_t at = 0; at < reply.size(); at += piece) {
      if (!WriteBytes(connection, reply.substr(at, piece))) return;
    }
    left -= reply.size();
    if (left == 0) {
      if (manner_.hang_when_cut) WaitUntilClosed(connection);
      return;
    }
  }
  if (!manner_.close_at_end) WaitUntilClosed(connection);
}

}  // namespace darokleim::adb_test
