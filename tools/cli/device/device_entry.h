// What is at a path of the device.
#ifndef DAROKLEIM_TOOLS_CLI_DEVICE_DEVICE_ENTRY_H
#define DAROKLEIM_TOOLS_CLI_DEVICE_DEVICE_ENTRY_H

#include <cstdint>
#include <optional>
#include <string>

#include "tools/cli/device/device.h"
#include "tools/cli/device/device_path.h"

namespace darokleim::cli {

struct DeviceEntry {
  bool is_folder = false;
  std::optional<std::uint64_t> size;  // of a file, where it is known
};

// Nothing when there is no such path, or adb is not allowed to see it.
std::optional<DeviceEntry> FindEntry(const Device& device, const DevicePath& path);

bool EntryExists(const Device& device, const DevicePath& path);

// The entry at the path. Throws ToolError when there is none: "cannot <action>. No such file: …".
DeviceEntry RequireEntry(const Device& device, const DevicePath& path, const std::string& action);

// The path below the folder when `path` names one, as cp and mv do; otherwise the path itself.
DevicePath TargetFor(const Device& device, const DevicePath& path, const std::string& name);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_DEVICE_DEVICE_ENTRY_H
