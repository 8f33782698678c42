// What ends a command early: Ctrl-C and the like, and --timeout. Every call of the library is reached, and no adb is
// left behind.
#ifndef DAROKLEIM_TOOLS_CLI_CANCEL_ON_SIGNAL_H
#define DAROKLEIM_TOOLS_CLI_CANCEL_ON_SIGNAL_H

#include <chrono>
#include <darokleim/client.hpp>

namespace darokleim::cli {

// From now on Ctrl-C, a terminate signal and the end of the terminal set the cancel flag. The second one ends the
// process with the adb that it runs. A signal that the tool was started to ignore, as
// by nohup, stays ignored.
void CancelOnSignals();

// The token for the client's calls. A signal sets it; their limit in time is a parameter of their own.
const dk::Cancel& CancelToken();

// From now on the process ends within a second of the first signal: what is not cleaned up by then, the next run of the
// tool removes.
void EndWithinASecond();

// Throws Cancelled after a signal, and ToolError when the time is over.
void CheckCancelled();

// Sets the cancel flag after this time.
void CancelAfter(std::chrono::milliseconds time);

// The flag for the library's calls.
const bool* CancelFlag();

bool IsCancelled();
// Whether the time limit has set the flag, before any signal.
bool HasTimedOut();

// While one lives, a cancel ends the adb processes of this process: for calls that take no flag.
class EndAdbOnCancel {
 public:
  EndAdbOnCancel();
  ~EndAdbOnCancel();
  EndAdbOnCancel(const EndAdbOnCancel&) = delete;
  EndAdbOnCancel& operator=(const EndAdbOnCancel&) = delete;
};

// Makes a call of the library that takes no cancel flag. Returns its code.
template <typename Call>
int WithoutFlag(const Call& call) {
  const EndAdbOnCancel guard;
  return call();
}

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_CANCEL_ON_SIGNAL_H
