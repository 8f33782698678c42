// One function for each subcommand; each adds it to the command line and says what it does.
#ifndef DAROKLEIM_TOOLS_CLI_COMMANDS_COMMANDS_H
#define DAROKLEIM_TOOLS_CLI_COMMANDS_COMMANDS_H

namespace CLI {
class App;
}

namespace darokleim::cli {

class Tool;

void AddChmodCommand(CLI::App& app, Tool& tool);
void AddCpCommand(CLI::App& app, Tool& tool);
void AddDevicesCommand(CLI::App& app, Tool& tool);
void AddExistsCommand(CLI::App& app, Tool& tool);
void AddInfoCommand(CLI::App& app, Tool& tool);
void AddAppCommand(CLI::App& app, Tool& tool);
void AddBackupCommand(CLI::App& app, Tool& tool);
void AddRestoreCommand(CLI::App& app, Tool& tool);
void AddBackupStopCommand(CLI::App& app, Tool& tool);
void AddLogcatCommand(CLI::App& app, Tool& tool);
void AddTypeCommand(CLI::App& app, Tool& tool);
void AddForwardCommand(CLI::App& app, Tool& tool);
void AddReverseCommand(CLI::App& app, Tool& tool);
void AddRebootCommand(CLI::App& app, Tool& tool);
void AddAuthorizeCommand(CLI::App& app, Tool& tool);
void AddReconnectCommand(CLI::App& app, Tool& tool);
void AddServerCommand(CLI::App& app, Tool& tool);
void AddBusyboxCommand(CLI::App& app, Tool& tool);
void AddCompleteCommand(CLI::App& app, Tool& tool);
void AddManualCommand(CLI::App& app, Tool& tool);
void AddMkdirCommand(CLI::App& app, Tool& tool);
void AddMvCommand(CLI::App& app, Tool& tool);
void AddRmCommand(CLI::App& app, Tool& tool);
void AddStatCommand(CLI::App& app, Tool& tool);
void AddDuCommand(CLI::App& app, Tool& tool);
void AddFindCommand(CLI::App& app, Tool& tool);
void AddLsCommand(CLI::App& app, Tool& tool);
void AddPullCommand(CLI::App& app, Tool& tool);
void AddPushCommand(CLI::App& app, Tool& tool);
void AddScreenshotCommand(CLI::App& app, Tool& tool);
void AddStorageCommand(CLI::App& app, Tool& tool);
void AddTreeCommand(CLI::App& app, Tool& tool);

// In the order of --help.
// clang-format off
inline constexpr void (*kCommands[])(CLI::App&, Tool&) = {
    AddDevicesCommand,
    AddInfoCommand,
    AddAppCommand,
    AddBackupCommand,
    AddRestoreCommand,
    AddBackupStopCommand,
    AddLogcatCommand,
    AddTypeCommand,
    AddForwardCommand,
    AddReverseCommand,
    AddRebootCommand,
    AddAuthorizeCommand,
    AddReconnectCommand,
    AddServerCommand,
    AddBusyboxCommand,
    AddCompleteCommand,
    AddManualCommand,
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

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_COMMANDS_COMMANDS_H
