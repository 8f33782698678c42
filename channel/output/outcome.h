// The status that a command has come to, from how adb ended and what it printed.
#ifndef DAROKLEIM_CHANNEL_OUTPUT_OUTCOME_H
#define DAROKLEIM_CHANNEL_OUTPUT_OUTCOME_H

#include "channel/command/command.h"
#include "channel/process/child.h"
#include "channel/status.h"

namespace darokleim::channel {

// Phones since Android 7 pass the exit status of a shell command through adb, older ones never do, and the
// SDK's result codes are meant for the older way: where a command answers by text, the text decides unless adb
// itself failed. has_failure_line tells whether adb printed a line that says so; it also decides where no exit status is
// to be had. It is called only when it matters.
template <typename HasFailureLine>
int StatusOf(const Command& command, const ExitOutcome& exit, HasFailureLine has_failure_line) {
  switch (exit.kind) {
    case ExitOutcome::kSignalled:
      return kSignalBase + exit.number;
    case ExitOutcome::kUnknown:
      return has_failure_line() ? kExitStatusBase + 1 : int{kDelivered};
    case ExitOutcome::kExited:
      break;
  }
  if (exit.number == 0) return kDelivered;
  if (command.AnswersByText() && !has_failure_line()) return kDelivered;
  return kExitStatusBase + exit.number;
}

}  // namespace darokleim::channel

#endif  // DAROKLEIM_CHANNEL_OUTPUT_OUTCOME_H
