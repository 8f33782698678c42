#ifndef DAROKLEIM_TOOLS_CLI_LOG_STREAM_H
#define DAROKLEIM_TOOLS_CLI_LOG_STREAM_H

#include <string>

#include "tools/cli/device.h"
#include "tools/cli/log_lines.h"

namespace darokleim::cli {

// Prints the device's log until its end or Ctrl-C, which is no error. `filter` is what `logcat -s` reads. Returns whether
// the end came by itself. Throws ToolError when adb failed, and what the output throws.
bool FollowLog(const Device& device, const std::string& filter, LogLines& lines);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_LOG_STREAM_H
