// darokleim reconnect
#include <darokleim.h>

#include <string>

#include "tools/cli/command.h"
#include "tools/cli/commands/commands.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] =
    R"(For a device that does not answer. adb itself picks the device, or refuses when several are attached; `darokleim
authorize` does the same to a named one. Some versions of adb do not say when there is none. Cannot be cancelled.

Examples:
  darokleim reconnect)";

void Run(Tool& tool) {
  const auto& session = tool.session();
  session.Check(AdbReconnectDevice(), "open the connection again");
  tool.Report("adb was asked to open the connection again. See `darokleim devices`.");
}

}  // namespace

void AddReconnectCommand(CLI::App& app, Tool& tool) {
  AddCommand(app, tool, {"reconnect", "Open the connection to the attached device again", kFooter}, Run);
}

}  // namespace darokleim::cli
