#include "tests/support/scripted_server.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <utility>

namespace darokleim::test {
namespace {

template <typename Integer>
std::string LittleEndian(Integer number) {
  std::string bytes;
  for (std::size_t i = 0; i < sizeof number; ++i) bytes += static_cast<char>(number >> (8 * i) & 0xff);
  return bytes;
}

constexpr char kSocketName[] = "/server";

}  // namespace

std::string ReadBytes(int connection, std::size_t count) {
  std::string bytes(count, '\0');
  std::size_t done = 0;
  while (done < count) {
    const ssize_t more = recv(connection, bytes.data() + done, count - done, 0);
    if (more < 0 && errno == EINTR) continue;
    if (more <= 0) break;
    done += static_cast<std::size_t>(more);
  }
  bytes.resize(done);
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

std::string Request(std::string_view text) {
  char length[8];
  std::snprintf(length, sizeof length, "%04zx", text.size());
  return length + std::string(text);
}

std::string ReadRequest(int connection) {
  const std::string length = ReadBytes(connection, 4);
  return length.size() < 4 ? "" : ReadBytes(connection, std::strtoul(length.c_str(), nullptr, 16));
}

std::string Number32(std::uint32_t number) {
  return LittleEndian(number);
}

std::string Number64(std::uint64_t number) {
  return LittleEndian(number);
}

// --- ScriptedServer

ScriptedServer::ScriptedServer(std::vector<Exchange> conversation, Manner manner)
    : conversation_(std::move(conversation)), manner_(manner), serve_([this](int fd) { Play(fd); }) {
  Listen();
}

ScriptedServer::ScriptedServer(Serve serve, Socket socket) : serve_(std::move(serve)), socket_(socket) {
  Listen();
}

ScriptedServer::~ScriptedServer() {
  {
    const std::lock_guard lock(mutex_);
    stopping_ = true;
  }
  shutdown(listener_.get(), SHUT_RDWR);
  thread_.join();
  Disconnect();
  for (Client& client : clients_) client.thread.join();
  if (folder_.empty()) return;
  unlink((folder_ + kSocketName).c_str());
  rmdir(folder_.c_str());
}

void ScriptedServer::Listen() {
  if (socket_ == Socket::kLocal) {
    ListenOnFile();
  } else {
    ListenOnPort();
  }
  fcntl(listener_.get(), F_SETFD, FD_CLOEXEC);
  if (listen(listener_.get(), 128) != 0) throw std::runtime_error("the server of the test cannot listen");
  thread_ = std::thread([this] { Accept(); });
}

void ScriptedServer::ListenOnPort() {
  listener_.Reset(socket(AF_INET, SOCK_STREAM, 0));
  sockaddr_in name = {};
  name.sin_family = AF_INET;
  name.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof name;
  if (bind(listener_.get(), reinterpret_cast<sockaddr*>(&name), length) != 0 ||
      getsockname(listener_.get(), reinterpret_cast<sockaddr*>(&name), &length) != 0) {
    throw std::runtime_error("the server of the test has no port");
  }
  port_ = ntohs(name.sin_port);
}

void ScriptedServer::ListenOnFile() {
  char folder[] = "/tmp/darokleim-server-XXXXXX";  // a socket's name is short
  if (mkdtemp(folder) == nullptr) throw std::runtime_error("the server of the test has no folder");
  folder_ = folder;
  listener_.Reset(socket(AF_UNIX, SOCK_STREAM, 0));
  sockaddr_un name = {};
  name.sun_family = AF_UNIX;
  (folder_ + kSocketName).copy(name.sun_path, sizeof name.sun_path - 1);
  if (bind(listener_.get(), reinterpret_cast<sockaddr*>(&name), sizeof name) != 0)
    throw std::runtime_error("the server of the test cannot use its folder");
}

std::string ScriptedServer::name() const {
  return socket_ == Socket::kLocal ? "localfilesystem:" + folder_ + kSocketName
                                   : "tcp:" + std::to_string(port_);
}

std::string ScriptedServer::surprises() const {
  const std::lock_guard lock(mutex_);
  return surprises_;
}

void ScriptedServer::Disconnect() {
  const std::lock_guard lock(mutex_);
  for (const Client& client : clients_) {
    if (!client.done) shutdown(client.connection.get(), SHUT_RDWR);
  }
}

void ScriptedServer::Accept() {
  for (;;) {
    base::UniqueFd connection(accept(listener_.get(), nullptr, nullptr));
    const std::lock_guard lock(mutex_);
    if (stopping_) return;
    if (!connection.valid()) {  // no descriptor is left
      usleep(1000);
      continue;
    }
    clients_.remove_if([](Client& client) {
      if (!client.done) return false;
      client.thread.join();
      return true;
    });
    const int fd = connection.get(), on = 1;
    fcntl(fd, F_SETFD, FD_CLOEXEC);
    setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    ++connections_;
    ++open_;
    Client& client = clients_.emplace_back();
    client.connection = std::move(connection);
    client.thread = std::thread([this, fd, &client] {
      serve_(fd);
      shutdown(fd, SHUT_WR);
      WaitUntilClosed(fd);
      --open_;
      client.done = true;
    });
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

// --- ScriptedPhone

ScriptedPhone::ScriptedPhone(std::string features, Serve serve)
    : features_(std::move(features)), serve_(std::move(serve)), server_([this](int fd) { Answer(fd); }) {}

std::vector<std::string> ScriptedPhone::services() const {
  const std::lock_guard lock(mutex_);
  return services_;
}

void ScriptedPhone::Answer(int connection) {
  for (;;) {
    const std::string request = ReadRequest(connection);
    if (request.empty()) return;
    if (request == "host:version") {
      WriteBytes(connection, "OKAY00040028");
      return;
    }
    if (request == "host:devices") {
      WriteBytes(connection, "OKAY" + Request("X\tdevice\n"));
      return;
    }
    if (request.rfind("host-serial:ABSENT:", 0) == 0) {
      WriteBytes(connection, "FAIL" + Request("device 'ABSENT' not found"));
      return;
    }
    if (request.rfind("host-serial:", 0) == 0) {
      WriteBytes(connection, "OKAY" + Request(features_));
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

}  // namespace darokleim::test
