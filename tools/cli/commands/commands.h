// One function for each command; each adds it to the command line and says what it does.
#ifndef DAROKLEIM_TOOLS_CLI_COMMANDS_COMMANDS_H
#define DAROKLEIM_TOOLS_CLI_COMMANDS_COMMANDS_H

namespace darokleim::cli {

class Command;

// command_line/
void AddCompleteCommand(Command& root);
void AddHelpCommand(Command& root);
void AddVersionCommand(Command& root);
void AddManualCommand(Command& root);

// commands/apps/
void AddAppCommand(Command& root);
void AddBackupCommand(Command& root);
void AddRestoreCommand(Command& root);

// commands/device/
void AddDevicesCommand(Command& root);
void AddInfoCommand(Command& root);
void AddLogcatCommand(Command& root);
void AddTypeCommand(Command& root);
void AddKeyCommand(Command& root);
void AddTapCommand(Command& root);
void AddSwipeCommand(Command& root);
void AddForwardCommand(Command& root);
void AddReverseCommand(Command& root);
void AddWaitCommand(Command& root);
void AddConnectCommand(Command& root);
void AddDisconnectCommand(Command& root);
void AddPairCommand(Command& root);
void AddRebootCommand(Command& root);
void AddAuthorizeCommand(Command& root);
void AddReconnectCommand(Command& root);
void AddBatteryCommand(Command& root);
void AddStorageCommand(Command& root);
void AddScreenshotCommand(Command& root);

// commands/files/
void AddLsCommand(Command& root);
void AddTreeCommand(Command& root);
void AddFindCommand(Command& root);
void AddDuCommand(Command& root);
void AddPushCommand(Command& root);
void AddPullCommand(Command& root);
void AddStatCommand(Command& root);
void AddMkdirCommand(Command& root);
void AddCpCommand(Command& root);
void AddMvCommand(Command& root);
void AddRmCommand(Command& root);
void AddChmodCommand(Command& root);
void AddShellCommand(Command& root);

// commands/sdk/
void AddSdkCommand(Command& root);

// commands/server/
void AddServerCommand(Command& root);

// In the order of --help.
// clang-format off
inline constexpr void (*kCommands[])(Command&) = {
    AddDevicesCommand,
    AddWaitCommand,
    AddConnectCommand,
    AddDisconnectCommand,
    AddPairCommand,
    AddAuthorizeCommand,
    AddReconnectCommand,
    AddRebootCommand,
    AddInfoCommand,
    AddBatteryCommand,
    AddStorageCommand,
    AddAppCommand,
    AddBackupCommand,
    AddRestoreCommand,
    AddLogcatCommand,
    AddTypeCommand,
    AddKeyCommand,
    AddTapCommand,
    AddSwipeCommand,
    AddForwardCommand,
    AddReverseCommand,
    AddServerCommand,
    AddSdkCommand,
    AddCompleteCommand,
    AddHelpCommand,
    AddVersionCommand,
    AddManualCommand,
    AddLsCommand,
    AddTreeCommand,
    AddFindCommand,
    AddDuCommand,
    AddPushCommand,
    AddPullCommand,
    AddStatCommand,
    AddMkdirCommand,
    AddCpCommand,
    AddMvCommand,
    AddRmCommand,
    AddChmodCommand,
    AddShellCommand,
    AddScreenshotCommand,
};
// clang-format on

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_COMMANDS_COMMANDS_H
