// darokleim server
#include <darokleim.h>

#include <algorithm>
#include <string>
#include <string_view>

#include "tools/cli/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/errors.h"
#include "tools/cli/own_command_line.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] =
    R"(adb works through a server process, which the first command starts by itself and which all programs of the user
share.

Ending it is not only that: every process of this computer whose line in `ps -ax` holds the word adb is killed, on
any port, of any program, an editor with a file adb.txt too. Port mappings and streams end. Hence --force.

Examples:
  darokleim server start
  darokleim server restart --force
  darokleim server kill --force)";

struct KillOptions {
  bool force = false;
};

constexpr char kForceHelp[] = "Do it: every process with the word adb in its line of `ps -ax` is killed";

void DescribeForce(CLI::App& command, KillOptions& options) {
  command.add_flag("--force", options.force, kForceHelp);
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

// Throws unless the user knows what is killed, and that is not this process.
void CheckForce(const KillOptions& options, const std::string& action) {
  if (!options.force) {
    throw ToolError(
        "this kills every process of this computer with the word adb in its line of `ps -ax`, not only "
        "the adb server. If that is wanted: darokleim server " +
        action + " --force");
  }
  const auto words = OwnCommandLine();
  const auto found = std::find_if(words.begin(), words.end(), HoldsTheWordAdb);
  if (found != words.end()) {
    throw ToolError("this command would kill itself: its own command line holds the word adb, in \"" +
                    *found + "\". Let adb be found in PATH, and start the tool from another folder.");
  }
}

// The library also returns 1 when adb's own words begin with the news of the start.
void CheckStarted(Tool& tool, int code) {
  if (code != ADB_RESULT_PROTOCOL_FAULT) tool.session().Check(code, "start the adb server");
  tool.Report("The adb server runs.");
}

void Start(Tool& tool, const KillOptions& options) {
  if (!options.force) {
    CheckStarted(tool, AdbStartDaemon(false, tool.session().cancel()));
    return;
  }
  CheckForce(options, "start");
  CheckStarted(tool, AdbStartDaemonEx(true, tool.session().cancel()));
}

void Restart(Tool& tool, const KillOptions& options) {
  CheckForce(options, "restart");
  tool.session();  // finds adb before anything is killed
  CheckStarted(tool, AdbRestartDaemon());
}

void Kill(Tool& tool, const KillOptions& options) {
  CheckForce(options, "kill");
  const auto& session = tool.session();
  AdbKillDaemon(session.cancel());
  session.Check(ADB_RESULT_OK, "end the adb server");
  tool.Report("The adb server has ended.");
}

void DescribeStart(CLI::App& command, KillOptions& options) {
  command.add_flag("--force", options.force,
                   "First end a server that hangs, as `darokleim server kill --force` does");
}

}  // namespace

void AddServerCommand(CLI::App& app, Tool& tool) {
  auto& group = AddCommandGroup(app, {"server", "Start and end the adb server of this computer", kFooter});
  AddCommand<KillOptions>(group, tool, {"start", "Start the server, unless it runs", kFooter}, DescribeStart,
                          Start);
  AddCommand<KillOptions>(group, tool, {"restart", "Kill every adb process and start the server", kFooter},
                          DescribeForce, Restart);
  AddCommand<KillOptions>(group, tool, {"kill", "Kill every adb process", kFooter}, DescribeForce, Kill);
  group.get_subcommand("kill")->alias("stop");
}

}  // namespace darokleim::cli
