// darokleim app
#include "command.h"
#include "commands/app_commands.h"
#include "commands/commands.h"

namespace darokleim {
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

}  // namespace darokleim
