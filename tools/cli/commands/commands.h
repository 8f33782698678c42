// One function for each subcommand; each adds it to the command line and says what it does.
#ifndef DAROKLEIM_TOOLS_CLI_COMMANDS_COMMANDS_H
#define DAROKLEIM_TOOLS_CLI_COMMANDS_COMMANDS_H

namespace CLI {
class App;
}

namespace darokleim {

class Tool;

void AddChmodCommand(CLI::App& app, Tool& tool);
void AddCpCommand(CLI::App& app, Tool& tool);
void AddDevicesCommand(CLI::App& app, Tool& tool);
void AddDuCommand(CLI::App& app, Tool& tool);
void AddExistsCommand(CLI::App& app, Tool& tool);
void AddFindCommand(CLI::App& app, Tool& tool);
void AddLsCommand(CLI::App& app, Tool& tool);
void AddMkdirCommand(CLI::App& app, Tool& tool);
void AddMvCommand(CLI::App& app, Tool& tool);
void AddPullCommand(CLI::App& app, Tool& tool);
void AddPushCommand(CLI::App& app, Tool& tool);
void AddRmCommand(CLI::App& app, Tool& tool);
void AddScreenshotCommand(CLI::App& app, Tool& tool);
void AddStatCommand(CLI::App& app, Tool& tool);
void AddStorageCommand(CLI::App& app, Tool& tool);
void AddTreeCommand(CLI::App& app, Tool& tool);

// In the order of --help.
// clang-format off
inline constexpr void (*kCommands[])(CLI::App&, Tool&) = {
    AddDevicesCommand,
    AddLsCommand,
    AddTreeCommand,
    AddFindCommand,
    AddDuCommand,
    AddPushCommand,
    AddPullCommand,
    AddExistsCommand,
    AddStatCommand,
    AddMkdirCommand,
    AddCpCommand,
    AddMvCommand,
    AddRmCommand,
    AddChmodCommand,
    AddStorageCommand,
    AddScreenshotCommand,
};
// clang-format on

}  // namespace darokleim

#endif  // DAROKLEIM_TOOLS_CLI_COMMANDS_COMMANDS_H
