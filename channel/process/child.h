// A running adb: waiting for what it does next, ending it, collecting how it ended.
#ifndef DAROKLEIM_CHANNEL_PROCESS_CHILD_H
#define DAROKLEIM_CHANNEL_PROCESS_CHILD_H

#include <signal.h>
#include <sys/types.h>

#include "base/unique_fd.h"

namespace darokleim::channel {

struct ExitOutcome {
  enum Kind {
    kExited,     // number is the exit status
    kSignalled,  // number is the signal
    kUnknown,    // the host ignores SIGCHLD or has collected the child itself
  };
  Kind kind = kUnknown;
  int number = 0;
};

class Child {
 public:
  explicit Child(pid_t pid);
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  struct Event {
    bool readable = false;
    bool ended = false;
  };
  // Sleeps until there is something to read (or the end of it), until the child has ended, or until timeout_ms
  // have passed (-1: for ever). read_fd of -1: until the child has ended. May return early with no event.
  Event Wait(int read_fd, int timeout_ms);

  // May be called from another thread than the rest. Never reaches another process that was given the same id, nor the rest of the child's process group.
  void Signal(int number);

  // Waits for the child to end and collects it.
  ExitOutcome Collect();

 private:
  bool HasEnded();
  int WaitForChild(int options, siginfo_t* info);
  Event Look(int read_fd, int timeout_ms);

  const pid_t pid_;
  base::UniqueFd watch_;  // a pidfd on Linux, a kqueue on macOS; invalid where the system has none to give
#if defined(__APPLE__)
  bool WatchForInput(int read_fd);

  int read_fd_watched_ = -1;
#endif
  const bool collected_at_start_ = false;  // by the host, before it could be watched
};

// Ends the child: asks, waits a short while, kills. It remains to be collected.
void Terminate(Child* child);

}  // namespace darokleim::channel

#endif  // DAROKLEIM_CHANNEL_PROCESS_CHILD_H
