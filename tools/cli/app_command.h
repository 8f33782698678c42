// What the commands of `darokleim app` share.
#ifndef DAROKLEIM_TOOLS_CLI_APP_COMMAND_H
#define DAROKLEIM_TOOLS_CLI_APP_COMMAND_H

#include <string>

#include "tools/cli/device.h"

namespace darokleim::cli {

// Whether the device lists the package.
bool IsInstalled(const Device& device, const std::string& package);

// Throws ToolError when it is not.
void RequireInstalled(const Device& device, const std::string& package);

// Throws ToolError unless the file of this computer is there and may be an APK file.
void CheckApkFile(const std::string& path);

// The part of the path behind the last slash.
std::string FileName(const std::string& path);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_APP_COMMAND_H
