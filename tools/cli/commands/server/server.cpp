// darokleim server
#include <darokleim.h>

#include <string>

#include "tools/cli/cancel_on_signal.h"
#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/commands/sdk/adb_killing.h"
#include "tools/cli/errors.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] =
    R"(adb works through a server process, which the first adb command starts and which all programs of the user share.

Ending the server kills every process of this computer whose line in `ps -ax` holds the word adb, of any program and
on any port, for example an editor with a file adb.txt. Port mappings and streams end. That is why --force is needed.

Examples:
  darokleim server start
  darokleim server restart --force
  darokleim server kill --force)";

struct KillOptions {
  bool force = false;
};

constexpr char kForceHelp[] =
    "Confirm that every process with the word adb in its line of `ps -ax` is killed";

void DescribeForce(Command& command, KillOptions& options) {
  command.Flag("--force", options.force, kForceHelp);
}

// Throws unless the user has confirmed what is killed, and this process is not part of it.
void CheckForce(const KillOptions& options, const std::string& action) {
  if (!options.force) {
    throw ToolError(
        "this kills every process of this computer with the word adb in its line of `ps -ax`, not only "
        "the adb server. To do so: darokleim server " +
        action + " --force");
  }
  CheckSurvivesKilling();
}

// The library also returns 1 when adb first prints that it starts the server.
void CheckStarted(Tool& tool, int code) {
  if (code != ADB_RESULT_PROTOCOL_FAULT) tool.session().Check(code, "start the adb server");
  tool.Report("The adb server is running.");
}

void Start(Tool& tool, const KillOptions& options) {
  if (!options.force) {
    tool.session();
    CheckStarted(tool, AdbStartDaemon(false, CancelFlag()));
    return;
  }
  CheckForce(options, "start");
  tool.session();
  CheckStarted(tool, AdbStartDaemonEx(true, CancelFlag()));
}

void Restart(Tool& tool, const KillOptions& options) {
  CheckForce(options, "restart");
  tool.session();  // finds adb before anything is killed
  CheckStarted(tool, WithoutFlag([&] { return AdbRestartDaemon(); }));
}

void Kill(Tool& tool, const KillOptions& options) {
  CheckForce(options, "kill");
  const auto& session = tool.session();
  AdbKillDaemon(CancelFlag());
  session.Check(ADB_RESULT_OK, "end the adb server");
  tool.Report("The adb server has ended.");
}

void DescribeStart(Command& command, KillOptions& options) {
  command.Flag("--force", options.force,
               "First kill a server that hangs, as `darokleim server kill --force` does");
}

}  // namespace

void AddServerCommand(Command& root) {
  Command& group = root.Subcommand({"server", "Start and end the adb server of this computer", kFooter});
  AddCommand<KillOptions>(group, {"start", "Start the server, unless it is running", kFooter}, DescribeStart,
                          Start);
  AddCommand<KillOptions>(group, {"restart", "Kill every adb process and start the server", kFooter},
                          DescribeForce, Restart);
  AddCommand<KillOptions>(group, {"kill", "Kill every adb process", kFooter}, DescribeForce, Kill)
      .Alias("stop");
}

}  // namespace darokleim::cli
