#include "tests/cli/counting_server.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <utility>

#include "base/unique_fd.h"

namespace darokleim::cli {
namespace {

base::UniqueFd ConnectTo(const std::string& port) {
  base::UniqueFd connection(socket(AF_INET, SOCK_STREAM, 0));
  fcntl(connection.get(), F_SETFD, FD_CLOEXEC);
  sockaddr_in name = {};
  name.sin_family = AF_INET;
  name.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  name.sin_port = htons(static_cast<std::uint16_t>(std::atoi(port.c_str())));
  if (connect(connection.get(), reinterpret_cast<sockaddr*>(&name), sizeof name) != 0) connection.Reset();
  return connection;
}

// False at the end of either side.
bool Pass(int from, int to) {
  std::array<char, 65536> buffer;
  const ssize_t count = recv(from, buffer.data(), buffer.size(), 0);
  return count > 0 && test::WriteBytes(to, {buffer.data(), static_cast<std::size_t>(count)});
}

void Relay(int client, int server) {
  std::array<pollfd, 2> ends = {{{client, POLLIN, 0}, {server, POLLIN, 0}}};
  for (;;) {
    if (poll(ends.data(), ends.size(), -1) < 0) return;
    if (ends[1].revents != 0 && !Pass(server, client)) return;
    if (ends[0].revents != 0 && !Pass(client, server)) return;
  }
}

}  // namespace

CountingServer::CountingServer(std::string port)
    : port_(std::move(port)), server_([this](int client) { Serve(client); }) {}

std::vector<std::string> CountingServer::TakeRequests() {
  const std::lock_guard lock(mutex_);
  return std::exchange(requests_, {});
}

void CountingServer::Note(const std::string& request) {
  const std::lock_guard lock(mutex_);
  requests_.push_back(request);
}

void CountingServer::Serve(int client) {
  const base::UniqueFd server = ConnectTo(port_);
  std::string request = test::ReadRequest(client);
  if (request.empty() || !test::WriteBytes(server.get(), test::Request(request))) return;
  if (request.rfind("host:tport:", 0) == 0) {
    constexpr std::size_t kVerdict = 4, kTransport = 8;
    const std::string verdict = test::ReadBytes(server.get(), kVerdict);
    test::WriteBytes(client, verdict);
    if (verdict == "OKAY") {
      test::WriteBytes(client, test::ReadBytes(server.get(), kTransport));
      request = test::ReadRequest(client);
      if (request.empty() || !test::WriteBytes(server.get(), test::Request(request))) return;
    }
  }
  Note(request);
  Relay(client, server.get());
}

}  // namespace darokleim::cli
