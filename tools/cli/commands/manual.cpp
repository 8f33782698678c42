// darokleim manual: writes the manual page when the tool is built. Not in --help.
#include "tools/cli/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/manual_page.h"

namespace darokleim::cli {

void AddManualCommand(CLI::App& app, Tool& tool) {
  auto* command = app.add_subcommand("manual", "Print the manual page, darokleim.1");
  command->group("");
  tool.OnRun(*command, [&app, &tool] { tool.output().Write(ManualPage(app, DAROKLEIM_VERSION)); });
}

}  // namespace darokleim::cli
