// What is pushed: a file or folder of the host.
#ifndef DAROKLEIM_TOOLS_CLI_COMMANDS_FILES_PUSH_SOURCE_H
#define DAROKLEIM_TOOLS_CLI_COMMANDS_FILES_PUSH_SOURCE_H

#include <cstdint>
#include <filesystem>
#include <string>

#include "tools/cli/device/device.h"
#include "tools/cli/device/device_path.h"

namespace darokleim::cli {

struct PushSource {
  std::filesystem::path path;  // absolute
  bool is_folder;
  std::uint64_t size;      // of a file
  std::uint64_t modified;  // seconds since 1970-01-01 00:00 UTC
};

// Throws ToolError when it does not exist, cannot be read or is neither a file nor a folder.
PushSource FindPushSource(const std::string& named);

// The code of the library.
int RunPush(const Device& device, const PushSource& source, const DevicePath& target);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_COMMANDS_FILES_PUSH_SOURCE_H
