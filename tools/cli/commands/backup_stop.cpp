// darokleim backup-stop
#include <darokleim.h>

#include "tools/cli/command.h"
#include "tools/cli/commands/commands.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] = R"(The backup or restore that waits for the answer then ends.

Examples:
  darokleim backup-stop)";

void Run(Tool& tool) {
  const auto& device = tool.device();
  device.Check(AdbStopDeviceBackupRestoreProcess(device.serial(), device.cancel()),
               "close the phone's question");
  tool.Report("The phone asks no more.");
}

}  // namespace

void AddBackupStopCommand(CLI::App& app, Tool& tool) {
  AddCommand(app, tool, {"backup-stop", "Close the phone's question about a backup or a restore", kFooter},
             Run);
}

}  // namespace darokleim::cli
