// The subcommands of `darokleim app`, each in a file of its own.
#ifndef DAROKLEIM_TOOLS_CLI_COMMANDS_APP_COMMANDS_H
#define DAROKLEIM_TOOLS_CLI_COMMANDS_APP_COMMANDS_H

namespace CLI {
class App;
}

namespace darokleim::cli {

class Tool;

void AddAppListCommand(CLI::App& group, Tool& tool);
void AddAppCheckCommand(CLI::App& group, Tool& tool);
void AddAppVersionCommand(CLI::App& group, Tool& tool);
void AddAppPathCommand(CLI::App& group, Tool& tool);
void AddAppInstallCommand(CLI::App& group, Tool& tool);
void AddAppInstallMultipleCommand(CLI::App& group, Tool& tool);
void AddAppInstallFromDeviceCommand(CLI::App& group, Tool& tool);
void AddAppUninstallCommand(CLI::App& group, Tool& tool);
void AddAppStartCommand(CLI::App& group, Tool& tool);

// In the order of --help.
inline constexpr void (*kAppCommands[])(CLI::App&, Tool&) = {
    AddAppListCommand,
    AddAppCheckCommand,
    AddAppVersionCommand,
    AddAppPathCommand,
    AddAppInstallCommand,
    AddAppInstallMultipleCommand,
    AddAppInstallFromDeviceCommand,
    AddAppUninstallCommand,
    AddAppStartCommand,
};

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_COMMANDS_APP_COMMANDS_H
