// darokleim server
#include <darokleim.h>

#include <algorithm>
#include <string>
#include <string_view>

#include "tools/cli/cancel_on_signal.h"
#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/errors.h"
#include "tools/cli/host/own_process.h"
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

bool IsPartOfWord(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
}

// As `grep -w adb` finds it.
bool HoldsTheWordAdb(std::string_view text) {
  constexpr std::string_view kAdb = "adb";
  for (auto at = text.find(kAdb); at != std::string_view::npos; at = text.find(kAdb, at + 1)) {
    const bool begins = at == 0 || !IsPartOfWord(text[at - 1]);
    const auto end = at + kAdb.size();
    if (begins && (end == text.size() || !IsPartOfWord(text[end]))) return true;
  }
  return false;
}

// Throws unless the user has confirmed what is killed, and this process is not part of it.
void CheckForce(const KillOptions& options, const std::string& action) {
  if (!options.force) {
    throw ToolError(
        "this kills every process of this computer with the word adb in its line of `ps -ax`, not only "
        "the adb server. To do so: darokleim server " +
        action + " --force");
  }
  const auto words = OwnCommandLine();
  const auto found = std::find_if(words.begin(), words.end(), HoldsTheWordAdb);
  if (found != words.end()) {
    throw ToolError("this command would kill itself: its own command line holds the word adb, in \"" +
                    *found + "\". Let adb be found in PATH, and start the tool from another folder.");
  }
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
