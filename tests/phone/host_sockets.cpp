#include "tests/phone/host_sockets.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>
#include <utility>

namespace darokleim::test {

namespace {

sockaddr_in Loopback(int port) {
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return address;
}

// Binds to a port that the system chooses, and returns it.
int BindAnywhere(int fd) {
  sockaddr_in address = Loopback(0);
  socklen_t length = sizeof(address);
  bind(fd, reinterpret_cast<sockaddr*>(&address), length);
  getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length);
  return ntohs(address.sin_port);
}

}  // namespace

std::string Exchange(int port, const std::string& text) {
  const int fd = socket(AF_INET, SOCK_STREAM, 0);
  const sockaddr_in address = Loopback(port);
  std::string answer;
  if (connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0) {
    size_t done = 0;
    while (done < text.size()) {
      const ssize_t count = send(fd, text.data() + done, text.size() - done, MSG_NOSIGNAL);
      if (count <= 0) break;
      done += static_cast<size_t>(count);
    }
    shutdown(fd, SHUT_WR);
    char buffer[65536];
    ssize_t count;
    while ((count = read(fd, buffer, sizeof(buffer))) > 0) answer.append(buffer, static_cast<size_t>(count));
  }
  close(fd);
  return answer;
}

HostEcho::HostEcho() : listener_(socket(AF_INET, SOCK_STREAM, 0)) {
  port_ = BindAnywhere(listener_);
  listen(listener_, 1);
  thread_ = std::thread([this] { AnswerOne(); });
}

HostEcho::~HostEcho() {
  shutdown(listener_, SHUT_RDWR);
  thread_.join();
  close(listener_);
}

void HostEcho::AnswerOne() {
  const int fd = accept(listener_, nullptr, nullptr);
  if (fd < 0) return;
  char buffer[256];
  const ssize_t count = read(fd, buffer, sizeof(buffer));
  const std::string answer = "[" + std::string(buffer, count > 0 ? static_cast<size_t>(count) : 0) + "]";
  [[maybe_unused]] const ssize_t sent = send(fd, answer.data(), answer.size(), MSG_NOSIGNAL);
  close(fd);
}

int FreeHostPort() {
  const int fd = socket(AF_INET, SOCK_STREAM, 0);
  const int port = BindAnywhere(fd);
  close(fd);
  return port;
}

ForeignServer::ForeignServer(std::string answer)
    : answer_(std::move(answer)), listener_(socket(AF_INET, SOCK_STREAM, 0)) {
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof(address);
  if (bind(listener_, reinterpret_cast<sockaddr*>(&address), length) != 0 || listen(listener_, 10) != 0 ||
      getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &length) != 0)
    throw std::runtime_error("no port to listen on");
  port_ = ntohs(address.sin_port);
  thread_ = std::thread([this] { AnswerAll(); });
}

ForeignServer::~ForeignServer() {
  ends_ = true;
  thread_.join();
  close(listener_);
}

void ForeignServer::AnswerAll() {
  while (!ends_) {
    pollfd waiting = {listener_, POLLIN, 0};
    constexpr int kMilliseconds = 20;
    if (poll(&waiting, 1, kMilliseconds) != 1) continue;
    const int client = accept(listener_, nullptr, nullptr);
    char request[256];
    // Read first: what is unread when a connection is closed takes the answer with it.
    if (!answer_.empty() && read(client, request, sizeof(request)) > 0)
      send(client, answer_.data(), answer_.size(), MSG_NOSIGNAL);
    close(client);
  }
}

}  // namespace darokleim::test
