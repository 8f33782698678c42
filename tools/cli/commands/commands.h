// One function for each subcommand; each adds it to the command line and says what it does.
#ifndef DAROKLEIM_TOOLS_CLI_COMMANDS_COMMANDS_H
#define DAROKLEIM_TOOLS_CLI_COMMANDS_COMMANDS_H

namespace CLI {
class App;
}

namespace darokleim {

class Tool;

void AddDevicesCommand(CLI::App& app, Tool& tool);

// In the order of --help.
inline constexpr void (*kCommands[])(CLI::App&, Tool&) = {
    AddDevicesCommand,
};

}  // namespace darokleim

#endif  // DAROKLEIM_TOOLS_CLI_COMMANDS_COMMANDS_H
