#include "tools/cli/cancel_on_signal.h"

#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <initializer_list>

#include "tools/cli/errors.h"
#include "tools/cli/host/children.h"
#include "tools/cli/host/quiet_thread.h"
#include "tools/cli/host/raw_terminal.h"

namespace darokleim::cli {
namespace {

using Milliseconds = std::int64_t;  // of the steady clock
constexpr Milliseconds kNever = INT64_MAX;
constexpr Milliseconds kBetweenKills = 20;
constexpr Milliseconds kUntilSigkill = 1000;  // adb ends at SIGTERM
constexpr Milliseconds kUntilTheEnd = 500;    // after the second signal
constexpr Milliseconds kLongestEnd = 950;     // after the first one, where EndWithinASecond was called
constexpr int kInterruption = SIGURG;         // by default it is ignored, so it harms nobody

// Read by the library through a pointer to plain bool, so written with atomic built-ins.
bool cancel_flag = false;

std::atomic<int> signals{0};
std::atomic<int> last_signal{0};
std::atomic<bool> timed_out{false};
std::atomic<int> calls_without_flag{0};
std::atomic<bool> ends_within_a_second{false};
// Never freed: a signal may come at any time.
const dk::Cancel* token = nullptr;
pthread_t main_thread;
std::atomic<Milliseconds> time_limit{kNever};
int wake_up[2] = {-1, -1};  // a pipe that ends the watcher's waiting

void SetCancelFlag() {
  __atomic_store_n(&cancel_flag, true, __ATOMIC_RELAXED);
}

Milliseconds Now() {
  using std::chrono::milliseconds;
  return std::chrono::duration_cast<milliseconds>(std::chrono::steady_clock::now().time_since_epoch())
      .count();
}

// Safe in a signal handler. A full pipe wakes as well.
void WakeWatcher() {
  const int before = errno;
  [[maybe_unused]] const ssize_t ignored = write(wake_up[1], "", 1);
  errno = before;
}

extern "C" void OnSignal(int number) {
  SetCancelFlag();
  token->set();
  last_signal = number;
  ++signals;
  WakeWatcher();
}

extern "C" void OnInterruption(int) {}

// Waits on a thread of its own for what has to be done outside a signal handler.
class Watcher {
 public:
  [[noreturn]] void Run() {
    for (;;) {
      Wait();
      CheckTimeLimit();
      // A system call that began just after the signal would wait for ever.
      if (IsCancelled()) pthread_kill(main_thread, kInterruption);
      if (signals > 0 && ends_within_a_second) EndSoon();
      if (signals > 1) EndAll();
      if (IsCancelled() && calls_without_flag > 0) EndAdb();
    }
  }

 private:
  void Wait() const {
    const Milliseconds next =
        std::min<Milliseconds>(IsCancelled() ? Now() + kBetweenKills : kNever, time_limit);
    const Milliseconds wait = next == kNever ? -1 : std::clamp<Milliseconds>(next - Now(), 0, 1 << 30);
    pollfd input{wake_up[0], POLLIN, 0};
    if (poll(&input, 1, static_cast<int>(wait)) <= 0) return;
    char bytes[64];
    while (read(wake_up[0], bytes, sizeof bytes) > 0) {
    }
  }

  static void CheckTimeLimit() {
    if (Now() < time_limit) return;
    if (!IsCancelled()) timed_out = true;
    SetCancelFlag();
    time_limit = kNever;
  }

  void EndAdb() {
    if (first_kill_ == kNever) first_kill_ = Now();
    SignalChildren(Now() - first_kill_ < kUntilSigkill ? SIGTERM : SIGKILL);
  }

  void EndSoon() {
    if (first_signal_ == kNever) first_signal_ = Now();
    if (Now() - first_signal_ < kLongestEnd) return;
    SignalChildren(SIGKILL);
    RestoreTerminal();
    _exit(kExitCancelled);
  }

  // Usually the tool ends by itself before.
  void EndAll() {
    if (end_ == kNever) end_ = Now() + kUntilTheEnd;
    if (Now() < end_) return;
    SignalChildren(SIGKILL);
    RestoreTerminal();
    signal(last_signal, SIG_DFL);
    kill(getpid(), last_signal);
  }

  Milliseconds first_signal_ = kNever;
  Milliseconds first_kill_ = kNever;
  Milliseconds end_ = kNever;
};

void StartWatcher() {
  if (pipe(wake_up) != 0) throw ToolError("cannot start: " + SystemErrorText(errno) + ".");
  for (const int end : wake_up) {
    fcntl(end, F_SETFD, FD_CLOEXEC);
    fcntl(end, F_SETFL, O_NONBLOCK);
  }
  StartWithoutSignals([] { Watcher().Run(); }).detach();
}

}  // namespace

void CancelOnSignals() {
  token = new dk::Cancel;
  main_thread = pthread_self();
  struct sigaction interruption {};
  interruption.sa_handler = OnInterruption;
  sigaction(kInterruption, &interruption, nullptr);
  StartWatcher();
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction action {};
    sigaction(number, nullptr, &action);
    if (action.sa_handler == SIG_IGN) continue;
    action.sa_handler = OnSignal;
    action.sa_flags = 0;  // calls that wait return early
    sigaction(number, &action, nullptr);
  }
}

const dk::Cancel& CancelToken() {
  return *token;
}

void EndWithinASecond() {
  ends_within_a_second = true;
  WakeWatcher();
}

void CheckCancelled() {
  if (HasTimedOut()) throw ToolError("not done within the limit of --timeout.");
  if (IsCancelled()) throw Cancelled();
}

void CancelAfter(std::chrono::milliseconds time) {
  time_limit = Now() + time.count();
  WakeWatcher();
}

const bool* CancelFlag() {
  return &cancel_flag;
}

bool IsCancelled() {
  return __atomic_load_n(&cancel_flag, __ATOMIC_RELAXED);
}

bool HasTimedOut() {
  return timed_out && signals == 0;
}

EndAdbOnCancel::EndAdbOnCancel() {
  ++calls_without_flag;
  WakeWatcher();
}

EndAdbOnCancel::~EndAdbOnCancel() {
  --calls_without_flag;
}

}  // namespace darokleim::cli
