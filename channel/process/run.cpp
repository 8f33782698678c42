#include "channel/process/run.h"

#include "channel/channel_log.h"
#include "channel/output/adb_messages.h"
#include "channel/process/child.h"
#include "channel/process/read_output.h"
#include "channel/process/start_adb.h"

namespace darokleim::channel {
namespace {

// Runs until adb has ended, by itself or by us. Nothing here may throw: the child must be reaped.
Status RunToEnd(const std::string& adb_path, const Command& command, const CancelFlag& cancel,
                OutputBuffer* output, ExitOutcome* exit) {
  base::Spawned spawned;
  const Status started = StartAdb(adb_path, command.words, &spawned);
  if (started != kDelivered) return started;

  Child child(spawned.pid);
  const ReadingEnd end = ReadOutput(&child, spawned.output.get(), cancel, output);
  if (end != ReadingEnd::kOutputComplete) Terminate(&child);
  *exit = child.Reap();
  return end == ReadingEnd::kCancelled ? kCancelled : output->status();
}

void DropNotices(const Command& command, OutputBuffer* output) {
  if (command.ReportsOnServer()) return;
  const size_t length = LengthOfLeadingNotices(output->text());
  LogNotices(output->text().substr(0, length));
  output->RemoveFirst(length);
}

}  // namespace

int RunAdb(const std::string& adb_path, const Command& command, const CancelFlag& cancel,
           OutputBuffer* output) {
  ExitOutcome exit;
  const Status ran = RunToEnd(adb_path, command, cancel, output, &exit);
  if (ran != kDelivered) return ran;
  const int status = StatusOf(command, exit, output->text());
  DropNotices(command, output);
  return status;
}

}  // namespace darokleim::channel
