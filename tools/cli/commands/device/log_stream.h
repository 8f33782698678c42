#ifndef DAROKLEIM_TOOLS_CLI_COMMANDS_DEVICE_LOG_STREAM_H
#define DAROKLEIM_TOOLS_CLI_COMMANDS_DEVICE_LOG_STREAM_H

#include <string>

#include "tools/cli/commands/device/log_lines.h"
#include "tools/cli/device/device.h"

namespace darokleim::cli {

// Prints the device's log until its end or Ctrl-C, which is not an error. `filter` is what `logcat -s` reads. Returns
// whether it ended without Ctrl-C. Throws ToolError when adb failed, and what the output throws.
bool FollowLog(const Device& device, const std::string& filter, LogLines& lines);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_COMMANDS_DEVICE_LOG_STREAM_H
