// darokleim devices
#include <darokleim.h>

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "commands/commands.h"
#include "table.h"
#include "tool.h"

namespace darokleim {
namespace {

constexpr char kExamples[] = R"(Examples:
  darokleim devices          each device's serial number and state
  darokleim devices --json   [{"serial": "0123456789ABCDEF", "state": "device"}]

States: device (ready), unauthorized (does not trust this computer yet), offline (does not answer).)";

constexpr char kNoDevice[] = R"(No device is attached. Check that
  - the phone is connected with a cable that carries data, not only power,
  - it is unlocked, and USB debugging is on in its developer options,
  - you allowed this computer when the phone asked.
)";

struct Device {
  std::string serial;
  std::string state;
};

// From "serial-state;serial-state;". A serial may hold hyphens, a state has none.
std::vector<Device> ParseDeviceList(std::string_view list) {
  std::vector<Device> devices;
  while (!list.empty()) {
    const auto entry = list.substr(0, list.find(';'));
    list.remove_prefix(std::min(entry.size() + 1, list.size()));
    const auto hyphen = entry.rfind('-');
    if (hyphen == std::string_view::npos) continue;
    devices.push_back({std::string(entry.substr(0, hyphen)), std::string(entry.substr(hyphen + 1))});
  }
  return devices;
}

std::vector<Device> ListDevices(const Session& session) {
  char* list = nullptr;
  int length = 0;
  const int code = AdbGetDevicesEx(&list, &length, session.cancel());
  auto devices = ParseDeviceList(list == nullptr ? "" : list);
  AdbFreeResource(&list);
  session.Check(code, "list devices");
  return devices;
}

const char* Advice(std::string_view state) {
  if (state == "unauthorized")
    return "Unlock the phone and allow USB debugging for this computer on its screen.";
  if (state == "offline") return "Does not answer: unplug it and plug it in again, or restart it.";
  return "";
}

std::string DevicesText(const std::vector<Device>& devices) {
  if (devices.empty()) return kNoDevice;
  Table table;
  table.AddRow({"SERIAL", "STATE"});
  for (const auto& device : devices) table.AddRow({device.serial, device.state, Advice(device.state)});
  return table.Text();
}

Json::Value DevicesJson(const std::vector<Device>& devices) {
  Json::Value list(Json::arrayValue);
  for (const auto& device : devices) {
    Json::Value& entry = list.append(Json::objectValue);
    entry["serial"] = device.serial;
    entry["state"] = device.state;
  }
  return list;
}

}  // namespace

void AddDevicesCommand(CLI::App& app, Tool& tool) {
  auto* command = app.add_subcommand("devices", "List the attached devices");
  command->footer(kExamples);
  const auto json = std::make_shared<bool>(false);
  command->add_flag("--json", *json, "Print an array of {serial, state}");
  tool.OnRun(*command, [&tool, json] {
    const auto devices = ListDevices(tool.session());
    if (*json) {
      tool.output().WriteJson(DevicesJson(devices));
    } else {
      tool.output().Write(DevicesText(devices));
    }
  });
}

}  // namespace darokleim
