#include "tools/cli/connection/device_table.h"

#include "base/terminal_text.h"
#include "tools/cli/output/table.h"

namespace darokleim::cli {

// No line break at the end.
const char kNoDeviceAdvice[] = R"(No device is attached. Check that
  - the phone is connected with a cable that carries data, not only power,
  - it is unlocked, and USB debugging is on in its developer options,
  - you allowed USB debugging for this computer when the phone asked.)";

const char* LinkName(dk_link link) {
  switch (link) {
    case DK_LINK_USB:
      return "usb";
    case DK_LINK_NETWORK:
      return "network";
    case DK_LINK_EMULATOR:
      return "emulator";
    case DK_LINK_UNKNOWN:
      break;
  }
  return "unknown";
}

std::string StateName(const dk::DeviceInfo& device) {
  // The server explains it in the same text.
  if (device.state == DK_STATE_NO_PERMISSIONS) return "no-permissions";
  return base::EscapeControls(device.state_text);
}

namespace {

std::string AdviceForOffline(dk_link link) {
  switch (link) {
    case DK_LINK_EMULATOR:
      return "Does not respond: restart the emulator.";
    case DK_LINK_NETWORK:
      return "Does not respond: disconnect it and connect to it again.";
    default:
      return "Does not respond: unplug it and plug it in again, or restart it.";
  }
}

}  // namespace

std::string AdviceFor(const dk::DeviceInfo& device) {
  switch (device.state) {
    case DK_STATE_UNAUTHORIZED:
      return "Unlock the phone and allow USB debugging for this computer on its screen.";
    case DK_STATE_OFFLINE:
      return AdviceForOffline(device.link);
    case DK_STATE_NO_PERMISSIONS:
      return "This user may not open it: udev rules are missing (Debian and Ubuntu: package "
             "android-sdk-platform-tools-common), or the user is not in the group plugdev.";
    case DK_STATE_AUTHORIZING:
    case DK_STATE_CONNECTING:
      return "Not ready yet: wait a moment.";
    case DK_STATE_BOOTLOADER:
    case DK_STATE_RECOVERY:
    case DK_STATE_RESCUE:
    case DK_STATE_SIDELOAD:
      return "Android does not run on it: restart it.";
    default:
      return "";
  }
}

std::string DeviceTable(const std::vector<dk::DeviceInfo>& devices) {
  Table table;
  table.AddRow({"SERIAL", "STATE"});
  for (const auto& device : devices) {
    table.AddRow({base::EscapeControls(device.serial), StateName(device), AdviceFor(device)});
  }
  return table.Text();
}

std::string LongDeviceTable(const std::vector<dk::DeviceInfo>& devices) {
  Table table;
  table.AddRow({"SERIAL", "STATE", "LINK", "MODEL", "PRODUCT", "DEVICE", "USB", "TRANSPORT"});
  for (const auto& device : devices) {
    table.AddRow({base::EscapeControls(device.serial), StateName(device), LinkName(device.link),
                  base::EscapeControls(device.model), base::EscapeControls(device.product),
                  base::EscapeControls(device.device), base::EscapeControls(device.usb_path),
                  device.transport_id == 0 ? "" : std::to_string(device.transport_id), AdviceFor(device)});
  }
  return table.Text();
}

}  // namespace darokleim::cli
