#ifndef DAROKLEIM_TOOLS_CLI_COMMANDS_SDK_LIBRARY_H
#define DAROKLEIM_TOOLS_CLI_COMMANDS_SDK_LIBRARY_H

#include <filesystem>

#include "tools/cli/tool.h"

namespace darokleim::cli {

// Finds adb and starts the library as an application does, with its logs in that folder. The library can be started
// once in a process. Throws ToolError.
void StartLibrary(const GlobalOptions& options, const std::filesystem::path& log_folder);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_COMMANDS_SDK_LIBRARY_H
