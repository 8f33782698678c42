// A child watched through a pidfd.
#include <errno.h>
#include <poll.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "channel/process/child.h"

namespace darokleim::channel {
namespace {

constexpr idtype_t kPidFd = static_cast<idtype_t>(3);  // P_PIDFD, which older headers lack

int PidFdOpen(pid_t pid) {
  return static_cast<int>(syscall(SYS_pidfd_open, pid, 0));
}

}  // namespace

Child::Child(pid_t pid)
    : pid_(pid), watch_(PidFdOpen(pid)), reaped_at_start_(!watch_.valid() && errno == ESRCH) {}

int Child::WaitForChild(int options, siginfo_t* info) {
  if (watch_.valid()) {
    const int error = WaitForId(kPidFd, static_cast<id_t>(watch_.get()), options, info);
    if (error != EINVAL) return error;
  }
  return WaitForId(P_PID, static_cast<id_t>(pid_), options, info);
}

Child::Event Child::Wait(int read_fd, int timeout_ms) {
  if (!watch_.valid()) return Poll(read_fd, timeout_ms);
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

}  // namespace darokleim::channel
