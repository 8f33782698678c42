#include "tests/phone/foreign_server.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>
#include <utility>

namespace darokleim::test {

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
