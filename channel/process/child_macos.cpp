// A child watched through a kqueue.
#include <sys/event.h>
#include <sys/wait.h>

#include "channel/process/child.h"

namespace darokleim::channel {
namespace {

// The queue remembers from one call to the next which descriptor it watches; `watched` says which, or -1.
bool WatchForInput(int queue, int read_fd, int* watched) {
  if (read_fd == *watched) return true;
  struct kevent change;
  const bool adds = read_fd >= 0;
  EV_SET(&change, static_cast<uintptr_t>(adds ? read_fd : *watched), EVFILT_READ, adds ? EV_ADD : EV_DELETE,
         0, 0, nullptr);
  if (kevent(queue, &change, 1, nullptr, 0, nullptr) != 0) return false;
  *watched = read_fd;
  return true;
}

}  // namespace

Child::Child(pid_t pid) : pid_(pid), watch_(kqueue()) {
  struct kevent change;
  EV_SET(&change, static_cast<uintptr_t>(pid), EVFILT_PROC, EV_ADD, NOTE_EXIT, 0, nullptr);
  // A child that has already ended cannot be watched. It is polled instead, which ends at once.
  if (watch_.valid() && kevent(watch_.get(), &change, 1, nullptr, 0, nullptr) != 0) watch_.Reset();
}

int Child::WaitForChild(int options, siginfo_t* info) {
  return WaitForId(P_PID, static_cast<id_t>(pid_), options, info);
}

Child::Event Child::Wait(int read_fd, int timeout_ms) {
  if (!watch_.valid() || !WatchForInput(watch_.get(), read_fd, &read_fd_watched_))
    return Poll(read_fd, timeout_ms);
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

}  // namespace darokleim::channel
