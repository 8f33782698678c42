// darokleim app
#include "tools/cli/command.h"
#include "tools/cli/commands/app_commands.h"
#include "tools/cli/commands/commands.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] = R"(Each has a --help of its own.

Examples:
  darokleim app list
  darokleim app install notes.apk
  darokleim app uninstall com.example.notes)";

}  // namespace

void AddAppCommand(CLI::App& app, Tool& tool) {
  auto& group = AddCommandGroup(app, {"app", "List, install, start and remove applications", kFooter});
  for (const auto add_command : kAppCommands) add_command(group, tool);
}

}  // namespace darokleim::cli
