#ifndef DAROKLEIM_TOOLS_CLI_COMMANDS_SDK_ADB_KILLING_H
#define DAROKLEIM_TOOLS_CLI_COMMANDS_SDK_ADB_KILLING_H

namespace darokleim::cli {

// For functions of the library that kill every process whose line in `ps -ax` holds the word adb. Throws ToolError when
// this process is one of them.
void CheckSurvivesKilling();

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_COMMANDS_SDK_ADB_KILLING_H
