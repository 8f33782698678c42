#include "adb/limits.h"

#include <poll.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <limits>

namespace darokleim::adb {

namespace {

using std::chrono::milliseconds;

// In milliseconds as poll takes them, rounded up so that a wait does not end just before its deadline. -1: for ever.
int LongestPoll(const Limits& limits) {
  milliseconds longest(-1);
  if (limits.deadline != Clock::time_point::max()) {
    longest = std::chrono::ceil<milliseconds>(limits.deadline - Clock::now());
    longest = std::clamp(longest, milliseconds(0), milliseconds(std::numeric_limits<int>::max()));
  }
  if (limits.interrupt != nullptr && limits.interrupt->descriptor() < 0) {
    const milliseconds interval = limits.interrupt->longest_wait();
    if (interval.count() >= 0 && (longest.count() < 0 || interval < longest)) longest = interval;
  }
  return static_cast<int>(longest.count());
}

}  // namespace

Status Check(const Limits& limits) {
  if (limits.interrupt != nullptr && limits.interrupt->IsSet()) return Error{ErrorCode::kCancelled, {}};
  if (limits.deadline != Clock::time_point::max() && Clock::now() >= limits.deadline) {
    return Error{ErrorCode::kTimedOut, {}};
  }
  return {};
}

Result<short> WaitFor(int fd, short events, const Limits& limits) {
  for (;;) {
    if (Status status = Check(limits); !status.ok()) return status.TakeError();
    const int interrupt = limits.interrupt == nullptr ? -1 : limits.interrupt->descriptor();
    // poll ignores an entry with a negative descriptor.
    std::array<pollfd, 2> waits = {{{fd, events, 0}, {interrupt, POLLIN, 0}}};
    const int ready = poll(waits.data(), waits.size(), LongestPoll(limits));
    if (ready < 0 && errno != EINTR && errno != EAGAIN) return Error{ErrorCode::kSystem, "poll", errno};
    if (ready > 0 && waits[1].revents == 0) return waits[0].revents;
  }
}

}  // namespace darokleim::adb
