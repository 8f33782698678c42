#include "tools/phone/device/limited_connection.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <limits>
#include <thread>
#include <utility>
#include <vector>

#include "tools/phone/common/io.h"

namespace darokleim::phone {

namespace {

using Clock = std::chrono::steady_clock;

// Sleeps as long as `count` bytes take at that speed. What was slept too long is made up for by the next sleeps, but an idle time is
// not: nothing goes faster after it.
class Pace {
 public:
  explicit Pace(uint64_t bytes_a_second) : bytes_a_second_(bytes_a_second) {}

  void Sleep(size_t count) {
    const std::chrono::duration<double> taken(static_cast<double>(count) /
                                              static_cast<double>(bytes_a_second_));
    next_ =
        std::max(next_, Clock::now() - kMostMadeUpFor) + std::chrono::duration_cast<Clock::duration>(taken);
    std::this_thread::sleep_until(next_);
  }

 private:
  static constexpr std::chrono::milliseconds kMostMadeUpFor{20};

  uint64_t bytes_a_second_;
  Clock::time_point next_ = Clock::now();
};

// Pieces that take 10 ms or less, so that a slow connection is not one of long pauses.
size_t PieceSize(const ConnectionLimits& limits) {
  constexpr uint64_t kLargest = 64 * 1024;
  if (!limits.bytes_a_second) return kLargest;
  return static_cast<size_t>(std::clamp<uint64_t>(*limits.bytes_a_second / 100, 1, kLargest));
}

void CarryWithin(const ConnectionLimits& limits, int one, int other) {
  std::vector<char> buffer(PieceSize(limits));
  std::optional<Pace> pace;
  if (limits.bytes_a_second) pace.emplace(*limits.bytes_a_second);
  uint64_t left = limits.bytes.value_or(std::numeric_limits<uint64_t>::max());
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
      if (pace) pace->Sleep(static_cast<size_t>(count));
    }
  }
}

}  // namespace

base::UniqueFd LimitConnection(base::UniqueFd client, const ConnectionLimits& limits) {
  if (!limits.bytes && !limits.bytes_a_second) return client;
  auto ends = MakeSocketPair(SOCK_STREAM);
  if (!ends) return client;
  const pid_t pid = fork();
  if (pid < 0) return client;
  if (pid == 0) {
    ends->second.Reset();
    CarryWithin(limits, client.get(), ends->first.get());
    shutdown(client.get(), SHUT_RDWR);
    _exit(0);
  }
  return std::move(ends->second);
}

}  // namespace darokleim::phone
