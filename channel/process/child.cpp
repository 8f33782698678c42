#include "channel/process/child.h"

#include <errno.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>

#include <algorithm>
#include <chrono>

namespace darokleim::channel {
namespace {

// How often a child is checked where the system does not report its end: a kernel before Linux 5.3, a sandbox that
// forbids the call, no descriptor left for it.
constexpr int kPollMilliseconds = 10;

constexpr std::chrono::milliseconds kGrace{40};

ExitOutcome OutcomeOf(const siginfo_t& info) {
  if (info.si_code == CLD_EXITED) return {ExitOutcome::kExited, info.si_status};
  return {ExitOutcome::kSignalled, info.si_status};
}

int Sooner(int timeout_ms, int limit_ms) {
  return timeout_ms < 0 ? limit_ms : std::min(timeout_ms, limit_ms);
}

}  // namespace

int WaitForId(idtype_t type, id_t id, int options, siginfo_t* info) {
  *info = {};
  while (waitid(type, id, info, options) != 0) {
    if (errno != EINTR) return errno;
  }
  return 0;
}

bool Child::HasEnded() {
  if (reaped_at_start_) return true;
  siginfo_t info;
  const bool runs = WaitForChild(WEXITED | WNOHANG | WNOWAIT, &info) == 0 && info.si_pid == 0;
  return !runs;
}

Child::Event Child::Poll(int read_fd, int timeout_ms) {
  if (HasEnded()) return {.readable = read_fd >= 0, .ended = true};
  pollfd watched = {read_fd, POLLIN, 0};
  return {.readable = poll(&watched, 1, Sooner(timeout_ms, kPollMilliseconds)) > 0, .ended = false};
}

ExitOutcome Child::Reap() {
  siginfo_t info;
  if (reaped_at_start_ || WaitForChild(WEXITED, &info) != 0) return {};
  return OutcomeOf(info);
}

void Terminate(Child* child) {
  using Clock = std::chrono::steady_clock;
  child->Signal(SIGTERM);
  const Clock::time_point end = Clock::now() + kGrace;
  while (!child->Wait(-1, 2 * kPollMilliseconds).ended) {
    if (Clock::now() < end) continue;
    child->Signal(SIGKILL);
    break;
  }
}

}  // namespace darokleim::channel
