// The subcommands of `darokleim app`.
#ifndef DAROKLEIM_TOOLS_CLI_COMMANDS_APPS_APP_COMMANDS_H
#define DAROKLEIM_TOOLS_CLI_COMMANDS_APPS_APP_COMMANDS_H

namespace darokleim::cli {

class Command;

// list.cpp
void AddAppListCommand(Command& group);
void AddAppInfoCommand(Command& group);
void AddAppPathCommand(Command& group);
// install.cpp
void AddAppInstallCommand(Command& group);
// control.cpp
void AddAppUninstallCommand(Command& group);
void AddAppStartCommand(Command& group);
void AddAppStopCommand(Command& group);
void AddAppClearCommand(Command& group);
// pull.cpp
void AddAppPullCommand(Command& group);

// In the order of --help.
inline constexpr void (*kAppCommands[])(Command&) = {
    AddAppListCommand, AddAppInfoCommand,  AddAppInstallCommand, AddAppUninstallCommand, AddAppStartCommand,
    AddAppStopCommand, AddAppClearCommand, AddAppPathCommand,    AddAppPullCommand,
};

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_COMMANDS_APPS_APP_COMMANDS_H
