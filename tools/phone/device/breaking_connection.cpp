#include "tools/phone/device/breaking_connection.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>
#include <vector>

#include "tools/phone/common/io.h"

namespace darokleim::phone {

namespace {

void CarryUntilItBreaks(int one, int other, uint64_t left) {
  std::vector<char> buffer(64 * 1024);
  while (left > 0) {
    std::array<pollfd, 2> ends = {{{one, POLLIN, 0}, {other, POLLIN, 0}}};
    if (poll(ends.data(), ends.size(), -1) < 0 && errno != EINTR) return;
    for (size_t i = 0; i < ends.size() && left > 0; ++i) {
      if (ends[i].revents == 0) continue;
      const size_t most = static_cast<size_t>(std::min<uint64_t>(buffer.size(), left));
      const ssize_t count = ReadSome(ends[i].fd, buffer.data(), most);
      if (count <= 0) return;
      if (!WriteAll(ends[1 - i].fd, buffer.data(), static_cast<size_t>(count))) return;
      left -= static_cast<uint64_t>(count);
    }
  }
}

}  // namespace

base::UniqueFd BreakAfter(base::UniqueFd client, uint64_t bytes) {
  auto ends = MakeSocketPair(SOCK_STREAM);
  if (!ends) return client;
  const pid_t pid = fork();
  if (pid < 0) return client;
  if (pid == 0) {
    ends->second.Reset();
    CarryUntilItBreaks(client.get(), ends->first.get(), bytes);
    shutdown(client.get(), SHUT_RDWR);
    _exit(0);
  }
  return std::move(ends->second);
}

}  // namespace darokleim::phone
