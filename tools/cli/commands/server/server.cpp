// darokleim server
#include <chrono>
#include <string>
#include <thread>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/connection/connection.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] =
    R"(adb works through a server process, which the first command starts and which all programs of the user share. When it ends,
port mappings, streams and running commands of all of them end; devices of the network have to be connected again.

Examples:
  darokleim server status
  darokleim server start
  darokleim server restart)";

void PrintState(Tool& tool, bool is_running, int version) {
  if (!tool.is_json()) return;
  tool.document().Member("running", is_running ? "true" : "false");
  tool.document().Member("version", is_running ? std::to_string(version) : "null");
}

void Start(Tool& tool) {
  const int version = tool.client().server_version(tool.limits()).value();
  PrintState(tool, true, version);
  tool.Report("The adb server is running.");
}

// Whether one was running.
bool End(Tool& tool) {
  const auto ended = tool.client().stop_server(tool.limits());
  if (ended.code() == DK_NO_SERVER) return false;
  ended.value();
  return true;
}

void Stop(Tool& tool) {
  const bool was_running = End(tool);
  PrintState(tool, false, 0);
  tool.Report(was_running ? "The adb server has ended." : "No adb server was running.");
}

// The server that ends may accept a last connection, and breaks it.
void AwaitEnd(Tool& tool) {
  constexpr int kMostTimes = 20;
  constexpr auto kLookAgain = std::chrono::milliseconds(50);
  Connection connection(tool.global_options(), false);
  for (int i = 0; i < kMostTimes; ++i) {
    const auto version = connection.client().server_version(connection.limits());
    if (version.ok() || version.code() == DK_NO_SERVER) return;
    std::this_thread::sleep_for(kLookAgain);
    CheckCancelled();
  }
}

void Restart(Tool& tool) {
  if (End(tool)) AwaitEnd(tool);
  Start(tool);
}

// Exit status 0 also where none runs: that is the answer.
void Status(Tool& tool) {
  Connection connection(tool.global_options(), false);
  const auto version = connection.client().server_version(connection.limits());
  const bool is_running = version.code() != DK_NO_SERVER;
  const int number = is_running ? version.value() : 0;
  PrintState(tool, is_running, number);
  if (tool.is_json()) return;
  tool.output().Write(is_running
                          ? "The adb server is running, protocol version " + std::to_string(number) + ".\n"
                          : "No adb server is running.\n");
}

}  // namespace

void AddServerCommand(Command& root) {
  Command& group = root.Subcommand({"server", "Start and end the adb server of this computer", kFooter});
  AddCommand(group, {"status", "Show whether the server is running", kFooter}, Status);
  AddCommand(group, {"start", "Start the server, unless it is running", kFooter}, Start);
  AddCommand(group, {"restart", "End the server and start it again", kFooter}, Restart);
  AddCommand(group, {"stop", "End the server", kFooter}, Stop).Alias("kill");
}

}  // namespace darokleim::cli
