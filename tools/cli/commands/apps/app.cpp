// darokleim app
#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/apps/app_commands.h"
#include "tools/cli/commands/commands.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] = R"(Each has a --help of its own.

Examples:
  darokleim app list
  darokleim app install notes.apk
  darokleim app uninstall com.example.notes)";

}  // namespace

void AddAppCommand(Command& root) {
  Command& group = root.Subcommand({"app", "List, install, start and remove applications", kFooter});
  for (const auto add_command : kAppCommands) add_command(group);
}

}  // namespace darokleim::cli
