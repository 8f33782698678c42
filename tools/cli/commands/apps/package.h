// What the commands of `darokleim app` share.
#ifndef DAROKLEIM_TOOLS_CLI_COMMANDS_APPS_PACKAGE_H
#define DAROKLEIM_TOOLS_CLI_COMMANDS_APPS_PACKAGE_H

#include <string>

#include "tools/cli/device/device.h"

namespace darokleim::cli {

// Whether the device lists the package.
bool IsInstalled(const Device& device, const std::string& package);

// Throws ToolError when it is not.
void RequireInstalled(const Device& device, const std::string& package);

// Throws ToolError unless the path names a regular file of this computer.
void CheckApkFile(const std::string& path);

// The part of the path after the last slash.
std::string FileName(const std::string& path);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_COMMANDS_APPS_PACKAGE_H
