// The devices that adb sees.
#ifndef DAROKLEIM_TOOLS_CLI_DEVICE_DEVICE_LIST_H
#define DAROKLEIM_TOOLS_CLI_DEVICE_DEVICE_LIST_H

#include <string>
#include <string_view>
#include <vector>

#include "tools/cli/device/session.h"

namespace darokleim::cli {

struct AttachedDevice {
  std::string serial;
  std::string state;  // device (ready), unauthorized or offline
};

// From "serial-state;serial-state;". A serial may hold hyphens, a state has none.
std::vector<AttachedDevice> ParseDeviceList(std::string_view list);

// Without emulators and devices reached over the network, which the library does not list.
std::vector<AttachedDevice> ListDevices(const Session& session);

bool IsUsable(const AttachedDevice& device);

// What to do about a device in this state; empty when there is nothing to do.
const char* AdviceForState(std::string_view state);

// A line for each, serial and state in columns. Not for an empty list.
std::string DeviceTable(const std::vector<AttachedDevice>& devices);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_DEVICE_DEVICE_LIST_H
