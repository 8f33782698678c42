// darokleim devices
#include <string>
#include <vector>

#include "tools/cli/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/device_list.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] = R"(Examples:
  darokleim devices          each device's serial number and state
  darokleim devices --json   [{"serial": "0123456789ABCDEF", "state": "device"}]

States: device (ready), unauthorized (does not trust this computer yet), offline (does not answer).)";

struct Options {
  bool json = false;
};

void Describe(CLI::App& command, Options& options) {
  AddJsonFlag(command, options.json, "an array of {serial, state}");
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

void AddDevicesCommand(CLI::App& app, Tool& tool) {
  AddCommand<Options>(app, tool, {"devices", "List the attached devices", kFooter}, Describe, Run);
}

}  // namespace darokleim::cli
