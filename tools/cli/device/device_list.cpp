#include "tools/cli/device/device_list.h"

#include <darokleim.h>

#include <algorithm>

#include "base/terminal_text.h"
#include "tools/cli/cancel_on_signal.h"
#include "tools/cli/device/library_block.h"
#include "tools/cli/output/table.h"

namespace darokleim::cli {

std::vector<AttachedDevice> ParseDeviceList(std::string_view list) {
  std::vector<AttachedDevice> devices;
  while (!list.empty()) {
    const auto entry = list.substr(0, list.find(';'));
    list.remove_prefix(std::min(entry.size() + 1, list.size()));
    const auto hyphen = entry.rfind('-');
    if (hyphen == std::string_view::npos) continue;
    devices.push_back({std::string(entry.substr(0, hyphen)), std::string(entry.substr(hyphen + 1))});
  }
  return devices;
}

std::vector<AttachedDevice> ListDevices(const Session& session) {
  LibraryBlock list;
  session.Check(AdbGetDevicesEx(list.text(), list.length(), CancelFlag()), "list devices");
  return ParseDeviceList(list.Text());
}

bool IsUsable(const AttachedDevice& device) {
  return device.state == "device";
}

const char* AdviceForState(std::string_view state) {
  if (state == "unauthorized") {
    return "Unlock the phone and allow USB debugging for this computer on its screen.";
  }
  if (state == "offline") return "Does not respond: unplug it and plug it in again, or restart it.";
  return "";
}

std::string DeviceTable(const std::vector<AttachedDevice>& devices) {
  Table table;
  table.AddRow({"SERIAL", "STATE"});
  for (const auto& device : devices) {
    table.AddRow({base::EscapeControls(device.serial), base::EscapeControls(device.state),
                  AdviceForState(device.state)});
  }
  return table.Text();
}

}  // namespace darokleim::cli
