// A running adb: waiting for what it does next, ending it, reaping it.
#ifndef DAROKLEIM_CHANNEL_PROCESS_CHILD_H
#define DAROKLEIM_CHANNEL_PROCESS_CHILD_H

#include <signal.h>
#include <sys/types.h>
#include <sys/wait.h>

#include "base/unique_fd.h"

namespace darokleim::channel {

struct ExitOutcome {
  enum Kind {
    kExited,     // number is the exit status
    kSignalled,  // number is the signal
    kUnknown,    // the host ignores SIGCHLD or has reaped the child itself
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
  // have passed (-1: no limit). A read_fd of -1 waits for the child's end only. May return early with no event.
  Event Wait(int read_fd, int timeout_ms);

  // May be called from another thread than the rest. Never reaches another process that was given the same id,
  // nor the rest of the child's process group.
  void Signal(int number);

  // Waits for the child to end and reaps it.
  ExitOutcome Reap();

 private:
  bool HasEnded();
  int WaitForChild(int options, siginfo_t* info);
  Event Poll(int read_fd, int timeout_ms);

  const pid_t pid_;
  base::UniqueFd watch_;  // a pidfd on Linux, a kqueue on macOS; invalid where the system refuses one
  [[maybe_unused]] int read_fd_watched_ = -1;  // of a kqueue, which remembers it
  const bool reaped_at_start_ = false;         // by the host, before it could be watched
};

// Ends the child: sends SIGTERM, waits 40 ms, sends SIGKILL. The child remains to be reaped.
void Terminate(Child* child);

// waitid, repeated when a signal of the host interrupts it. Returns 0 or the error.
int WaitForId(idtype_t type, id_t id, int options, siginfo_t* info);

}  // namespace darokleim::channel

#endif  // DAROKLEIM_CHANNEL_PROCESS_CHILD_H
