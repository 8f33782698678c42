// What stands at a path of the device.
#ifndef DAROKLEIM_TOOLS_CLI_DEVICE_ENTRY_H
#define DAROKLEIM_TOOLS_CLI_DEVICE_ENTRY_H

#include <cstdint>
#include <optional>
#include <string>

#include "tools/cli/device.h"
#include "tools/cli/device_path.h"

namespace darokleim::cli {

struct DeviceEntry {
  bool is_folder = false;
  std::optional<std::uint64_t> size;  // of a file; nothing where the device does not tell
};

// Nothing when there is no such path, or none that adb may see.
std::optional<DeviceEntry> FindEntry(const Device& device, const DevicePath& path);

bool EntryExists(const Device& device, const DevicePath& path);

// The entry at the path. Throws ToolError when there is none: "cannot <action>: there is no …".
DeviceEntry RequireEntry(const Device& device, const DevicePath& path, const std::string& action);

// The path below the folder when `path` names one, as cp and mv do; otherwise the path itself.
DevicePath TargetFor(const Device& device, const DevicePath& path, const std::string& name);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_DEVICE_ENTRY_H
