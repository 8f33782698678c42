// darokleim devices
#include <json/value.h>

#include <string>
#include <vector>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/device/device_list.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] = R"(Examples:
  darokleim devices          the serial number and state of each device
  darokleim devices --json   [{"serial": "0123456789ABCDEF", "state": "device"}]

States: device (ready), unauthorized (does not trust this computer yet), offline (does not respond).)";

struct Options {
  bool json = false;
};

void Describe(Command& command, Options& options) {
  command.JsonFlag(options.json, "an array of {serial, state}");
}

Json::Value ToJson(const std::vector<AttachedDevice>& devices) {
  Json::Value list(Json::arrayValue);
  for (const auto& device : devices) {
    Json::Value& entry = list.append(Json::objectValue);
    entry["serial"] = device.serial;
    entry["state"] = device.state;
  }
  return list;
}

void Run(Tool& tool, const Options& options) {
  const auto devices = ListDevices(tool.session());
  if (options.json) {
    tool.output().WriteJson(ToJson(devices));
  } else {
    tool.output().Write(devices.empty() ? kNoDeviceAdvice : DeviceTable(devices));
  }
}

}  // namespace

void AddDevicesCommand(Command& root) {
  AddCommand<Options>(root, {"devices", "List the attached devices", kFooter}, Describe, Run);
}

}  // namespace darokleim::cli
