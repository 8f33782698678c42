#include "channel/process/run.h"

#include "channel/channel_log.h"
#include "channel/output/failure_lines.h"
#include "channel/output/outcome.h"
#include "channel/output/server_notices.h"
#include "channel/process/child.h"
#include "channel/process/pump.h"
#include "channel/process/spawn.h"

namespace darokleim::channel {
namespace {

bool HasFailureLine(std::string_view text) {
  FailureLineScanner scanner;
  scanner.Scan(text);
  return scanner.Found();
}

// Until adb has ended, by itself or by us. Nothing here may throw: the child must be collected.
Status RunToEnd(const Settings& settings, const Command& command, const CancelFlag& cancel,
                OutputBuffer* output, ExitOutcome* exit) {
  Spawned spawned;
  const Status started = Spawn(settings.adb_path, command.words, &spawned);
  if (started != kDelivered) return started;

  Child child(spawned.pid);
  const PumpResult result = Pump(&child, spawned.output.get(), cancel, output);
  if (result != PumpResult::kEnded) Terminate(&child);
  *exit = child.Collect();
  return result == PumpResult::kCancelled ? kCancelled : output->status();
}

void DropNotices(const Command& command, OutputBuffer* output) {
  if (command.ReportsOnServer()) return;
  const size_t length = LengthOfLeadingNotices(output->text());
  LogNotices(output->text().substr(0, length));
  output->RemoveFirst(length);
}

}  // namespace

int Run(const Settings& settings, const char* arguments, const CancelFlag& cancel, OutputBuffer* output) {
  if (cancel.IsSet()) return kCancelled;
  const Command command = ReadCommand(arguments, settings.assist);
  ExitOutcome exit;
  const Status ran = RunToEnd(settings, command, cancel, output, &exit);
  if (ran != kDelivered) return ran;

  const int status = StatusOf(command, exit, [&] { return HasFailureLine(output->text()); });
  DropNotices(command, output);
  output->ConvertLineEnds(command.line_ends);
  return output->status() == kDelivered ? status : output->status();
}

}  // namespace darokleim::channel
