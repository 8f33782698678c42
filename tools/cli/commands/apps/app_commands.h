// The subcommands of `darokleim app`, each in a file of its own.
#ifndef DAROKLEIM_TOOLS_CLI_COMMANDS_APPS_APP_COMMANDS_H
#define DAROKLEIM_TOOLS_CLI_COMMANDS_APPS_APP_COMMANDS_H

namespace darokleim::cli {

class Command;

void AddAppListCommand(Command& group);
void AddAppCheckCommand(Command& group);
void AddAppVersionCommand(Command& group);
void AddAppPathCommand(Command& group);
void AddAppInstallCommand(Command& group);
void AddAppInstallMultipleCommand(Command& group);
void AddAppInstallFromDeviceCommand(Command& group);
void AddAppUninstallCommand(Command& group);
void AddAppStartCommand(Command& group);

// In the order of --help.
inline constexpr void (*kAppCommands[])(Command&) = {
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

#endif  // DAROKLEIM_TOOLS_CLI_COMMANDS_APPS_APP_COMMANDS_H
