// Runs commands by speaking to the adb server, without adb.
#ifndef DAROKLEIM_CHANNEL_DIRECT_RUN_H
#define DAROKLEIM_CHANNEL_DIRECT_RUN_H

#include <optional>

#include "adb/limits.h"
#include "channel/command/command.h"
#include "channel/output/adb_messages.h"
#include "channel/output/output_sink.h"
#include "channel/status.h"

namespace darokleim::channel::direct {

struct Ending {
  enum Kind {
    kExited,         // the output is complete; exit_status is what adb's would be
    kCancelled,      // the interrupt was set
    kBroken,         // the connection ended in the middle of the answer
    kSystemRefused,  // no descriptor or no memory
    kOutputRefused,  // the sink takes no more
  };
  Kind kind = kExited;
  int exit_status = 0;
};

// Prints what adb would print. None when adb must run the command: it is not of a known form, or there is no adb server
// that answers. Nothing that the command is about has been asked for then.
std::optional<Ending> Run(const Command& command, const adb::Limits& limits, OutputSink* output);

// The channel's status. output: the text that was printed, or the scanner of its failure lines. Of kOutputRefused the sink
// knows the reason.
template <typename Output>
int StatusOf(const Command& command, const Ending& ending, const Output& output) {
  switch (ending.kind) {
    case Ending::kExited:
      return channel::StatusOf(command, {ExitOutcome::kExited, ending.exit_status}, output);
    case Ending::kCancelled:
      return kCancelled;
    case Ending::kBroken:
      return kConnectionBroken;
    case Ending::kSystemRefused:
    case Ending::kOutputRefused:
      break;
  }
  return kSystemRefused;
}

}  // namespace darokleim::channel::direct

#endif  // DAROKLEIM_CHANNEL_DIRECT_RUN_H
