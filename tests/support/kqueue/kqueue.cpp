// A queue is an epoll descriptor; the process in it is a pidfd. The library is linked with --wrap=close, so that closing a queue
// closes the pidfd that its caller knows nothing of.
#include <errno.h>
#include <signal.h>
#include <sys/epoll.h>
#include <sys/event.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>

extern "C" int __real_close(int descriptor);
extern "C" int __wrap_close(int descriptor);

namespace {

// The pidfd of each queue, which watches one process at most. No lock and no memory of its own: the tests fork while other
// threads use it, and let memory run out.
constexpr int kMostDescriptors = 1 << 16;
constexpr int kNone = -1;

class PidFds {
 public:
  PidFds() {
    for (auto& pidfd : pidfds_) pidfd = kNone;
  }
  static bool CanHold(int queue) { return queue >= 0 && queue < kMostDescriptors; }
  void Set(int queue, int pidfd) { pidfds_[static_cast<size_t>(queue)] = pidfd; }
  void Close(int queue) {
    if (!CanHold(queue)) return;
    const int pidfd = pidfds_[static_cast<size_t>(queue)].exchange(kNone);
    if (pidfd != kNone) __real_close(pidfd);
  }

 private:
  std::array<std::atomic<int>, kMostDescriptors> pidfds_;
};

PidFds pidfds;

// What epoll gives back: the descriptor or the process, and in the sign which of them.
epoll_event Watched(int64_t ident, bool is_process) {
  epoll_event event = {};
  event.events = EPOLLIN;
  event.data.u64 = static_cast<uint64_t>(is_process ? -ident : ident);
  return event;
}

bool HasEnded(pid_t pid) {
  siginfo_t info = {};
  return waitid(P_PID, static_cast<id_t>(pid), &info, WEXITED | WNOHANG | WNOWAIT) == 0 && info.si_pid == pid;
}

int AddProcess(int queue, pid_t pid) {
  const int pidfd = HasEnded(pid) ? -1 : static_cast<int>(syscall(SYS_pidfd_open, pid, 0));
  if (pidfd < 0) {
    errno = ESRCH;
    return -1;
  }
  epoll_event event = Watched(pid, true);
  if (epoll_ctl(queue, EPOLL_CTL_ADD, pidfd, &event) != 0) {
    const int error = errno;
    __real_close(pidfd);
    errno = error;
    return -1;
  }
  pidfds.Set(queue, pidfd);
  return 0;
}

int Change(int queue, const struct kevent& change) {
  if (change.filter == EVFILT_PROC && change.flags == EV_ADD && change.fflags == NOTE_EXIT) {
    return AddProcess(queue, static_cast<pid_t>(change.ident));
  }
  if (change.filter == EVFILT_READ) {
    const int descriptor = static_cast<int>(change.ident);
    epoll_event event = Watched(descriptor, false);
    return epoll_ctl(queue, change.flags == EV_ADD ? EPOLL_CTL_ADD : EPOLL_CTL_DEL, descriptor, &event);
  }
  errno = EINVAL;
  return -1;
}

struct kevent EventOf(int queue, const epoll_event& seen) {
  const auto ident = static_cast<int64_t>(seen.data.u64);
  struct kevent event;
  if (ident >= 0) {
    EV_SET(&event, static_cast<uintptr_t>(ident), EVFILT_READ, 0, 0, 0, nullptr);
    return event;
  }
  pidfds.Close(queue);
  EV_SET(&event, static_cast<uintptr_t>(-ident), EVFILT_PROC, 0, NOTE_EXIT, 0, nullptr);
  return event;
}

}  // namespace

int kqueue() {
  const int queue = epoll_create1(EPOLL_CLOEXEC);
  if (queue < 0 || PidFds::CanHold(queue)) return queue;
  __real_close(queue);
  errno = EMFILE;
  return -1;
}

int kevent(int queue, const struct kevent* changes, int change_count, struct kevent* events, int event_count,
           const timespec* timeout) {
  if (change_count == 1 && event_count == 0) return Change(queue, *changes);
  constexpr int kMost = 8;
  if (change_count != 0 || event_count < 1 || event_count > kMost) {
    errno = EINVAL;
    return -1;
  }
  const int milliseconds =
      timeout == nullptr ? -1 : static_cast<int>(timeout->tv_sec * 1000 + timeout->tv_nsec / 1000000);
  std::array<epoll_event, kMost> seen;
  const int count = epoll_wait(queue, seen.data(), event_count, milliseconds);
  for (int i = 0; i < count; ++i) events[i] = EventOf(queue, seen[static_cast<size_t>(i)]);
  return count;
}

int __wrap_close(int descriptor) {
  pidfds.Close(descriptor);
  return __real_close(descriptor);
}
