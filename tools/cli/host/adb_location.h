// Finding the adb executable on the host.
#ifndef DAROKLEIM_TOOLS_CLI_HOST_ADB_LOCATION_H
#define DAROKLEIM_TOOLS_CLI_HOST_ADB_LOCATION_H

#include <optional>
#include <string>

namespace darokleim::cli {

// The programs that the library needs. Paths are absolute; symbolic links are kept, because a program may look at
// the name that it was started by.
struct HostPrograms {
  std::string adb;
  std::optional<std::string> busybox;  // for devices, not for the host
};

// Searches for what is not named (an empty text): adb in the folder `resources` of the tool, in PATH, and where the
// Android SDK and Homebrew install it; busybox only in `resources`, because the host's own does not run on a phone.
// Throws ToolError when adb is not found or what is named cannot be used.
HostPrograms FindHostPrograms(const std::string& named_adb, const std::string& named_busybox);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_HOST_ADB_LOCATION_H
