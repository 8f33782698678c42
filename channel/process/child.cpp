#include "channel/process/child.h"

#include <errno.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>

#include <algorithm>
#include <chrono>

#if defined(__linux__)
#include <sys/syscall.h>
#include <unistd.h>
#else
#include <sys/event.h>
#endif

namespace darokleim::channel {
namespace {

// How often a child is looked after where the system cannot tell when it ends: a kernel before Linux 5.3, a
// sandbox that forbids the call, no descriptor left for it.
constexpr int kLookMilliseconds = 10;

constexpr std::chrono::milliseconds kGrace{40};

// waitid, again when a signal of the host interrupts it. 0 or the error.
int WaitFor(idtype_t type, id_t id, int options, siginfo_t* info) {
  *info = {};
  while (waitid(type, id, info, options) != 0) {
    if (errno != EINTR) return errno;
  }
  return 0;
}

ExitOutcome OutcomeOf(const siginfo_t& info) {
  if (info.si_code == CLD_EXITED) return {ExitOutcome::kExited, info.si_status};
  return {ExitOutcome::kSignalled, info.si_status};
}

int Sooner(int timeout_ms, int limit_ms) {
  return timeout_ms < 0 ? limit_ms : std::min(timeout_ms, limit_ms);
}

}  // namespace

#if defined(__linux__)

namespace {

constexpr idtype_t kPidFd = static_cast<idtype_t>(3);  // P_PIDFD, which older headers lack

int PidFdOpen(pid_t pid) {
  return static_cast<int>(syscall(SYS_pidfd_open, pid, 0));
}

}  // namespace

Child::Child(pid_t pid)
    : pid_(pid), watch_(PidFdOpen(pid)), collected_at_start_(!watch_.valid() && errno == ESRCH) {}

int Child::WaitForChild(int options, siginfo_t* info) {
  if (watch_.valid()) {
    const int error = WaitFor(kPidFd, static_cast<id_t>(watch_.get()), options, info);
    if (error != EINVAL) return error;
  }
  return WaitFor(P_PID, static_cast<id_t>(pid_), options, info);
}

Child::Event Child::Wait(int read_fd, int timeout_ms) {
  if (!watch_.valid()) return Look(read_fd, timeout_ms);
  pollfd watched[] = {{watch_.get(), POLLIN, 0}, {read_fd, POLLIN, 0}};
  if (poll(watched, 2, timeout_ms) <= 0) return {};
  return {.readable = watched[1].revents != 0, .ended = watched[0].revents != 0};
}

void Child::Signal(int number) {
  if (HasEnded()) return;
  if (watch_.valid()) {
    syscall(SYS_pidfd_send_signal, watch_.get(), number, nullptr, 0);
  } else {
    kill(pid_, number);
  }
}

#else

Child::Child(pid_t pid) : pid_(pid), watch_(kqueue()) {
  struct kevent change;
  EV_SET(&change, static_cast<uintptr_t>(pid), EVFILT_PROC, EV_ADD, NOTE_EXIT, 0, nullptr);
  // A child that has ended already cannot be watched any more; it is looked after instead, which ends at once.
  if (watch_.valid() && kevent(watch_.get(), &change, 1, nullptr, 0, nullptr) != 0) watch_.Reset();
}

int Child::WaitForChild(int options, siginfo_t* info) {
  return WaitFor(P_PID, static_cast<id_t>(pid_), options, info);
}

bool Child::WatchForInput(int read_fd) {
  if (read_fd == read_fd_watched_) return true;
  struct kevent change;
  const bool adds = read_fd >= 0;
  EV_SET(&change, static_cast<uintptr_t>(adds ? read_fd : read_fd_watched_), EVFILT_READ,
         adds ? EV_ADD : EV_DELETE, 0, 0, nullptr);
  if (kevent(watch_.get(), &change, 1, nullptr, 0, nullptr) != 0) return false;
  read_fd_watched_ = read_fd;
  return true;
}

Child::Event Child::Wait(int read_fd, int timeout_ms) {
  if (!watch_.valid() || !WatchForInput(read_fd)) return Look(read_fd, timeout_ms);
  const timespec timeout = {timeout_ms / 1000, (timeout_ms % 1000) * 1000000L};
  struct kevent seen[2];
  const int count = kevent(watch_.get(), nullptr, 0, seen, 2, timeout_ms < 0 ? nullptr : &timeout);
  Event event;
  for (int i = 0; i < count; ++i) (seen[i].filter == EVFILT_PROC ? event.ended : event.readable) = true;
  return event;
}

void Child::Signal(int number) {
  if (!HasEnded()) kill(pid_, number);
}

#endif

bool Child::HasEnded() {
  if (collected_at_start_) return true;
  siginfo_t info;
  const bool runs = WaitForChild(WEXITED | WNOHANG | WNOWAIT, &info) == 0 && info.si_pid == 0;
  return !runs;
}

Child::Event Child::Look(int read_fd, int timeout_ms) {
  if (HasEnded()) return {.readable = read_fd >= 0, .ended = true};
  pollfd watched = {read_fd, POLLIN, 0};
  return {.readable = poll(&watched, 1, Sooner(timeout_ms, kLookMilliseconds)) > 0, .ended = false};
}

ExitOutcome Child::Collect() {
  siginfo_t info;
  if (collected_at_start_ || WaitForChild(WEXITED, &info) != 0) return {};
  return OutcomeOf(info);
}

void Terminate(Child* child) {
  using Clock = std::chrono::steady_clock;
  child->Signal(SIGTERM);
  const Clock::time_point end = Clock::now() + kGrace;
  while (!child->Wait(-1, 2 * kLookMilliseconds).ended) {
    if (Clock::now() < end) continue;
    child->Signal(SIGKILL);
    break;
  }
}

}  // namespace darokleim::channel
