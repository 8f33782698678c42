// darokleim devices
#include <string>
#include <vector>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/connection/device_table.h"
#include "tools/cli/event_queue.h"
#include "tools/cli/output/json_text.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] = R"(Examples:
  darokleim devices            every device, its state, and what to do about it
  darokleim devices -l         with its connection and model
  darokleim devices --watch    a line for each device, then for each change, until Ctrl-C

States: device (ready), unauthorized (does not trust this computer yet), offline (does not respond),
no-permissions (this user may not open it), recovery, bootloader and others. With --watch --json, each line is a JSON
object.)";

struct Options {
  bool details = false;
  bool watch = false;
};

void Describe(Command& command, Options& options) {
  command.Flag("-l,--long", options.details, "Show the connection, model, product and transport, too");
  command.Flag("--watch", options.watch, "Report devices as they come, change and go");
}

JsonObject ToJson(const dk::DeviceInfo& device) {
  JsonObject json;
  json.Text("serial", device.serial).Text("state", StateName(device)).Text("state_text", device.state_text);
  json.Text("link", LinkName(device.link)).Text("model", device.model).Text("product", device.product);
  json.Text("device", device.device).Text("usb_path", device.usb_path);
  return json.Unsigned("transport_id", device.transport_id);
}

const char* NameOf(dk_change change) {
  switch (change) {
    case DK_DEVICE_ADDED:
      return "added";
    case DK_DEVICE_CHANGED:
      return "changed";
    case DK_DEVICE_REMOVED:
      return "removed";
    case DK_SERVER_LOST:
      return "server-lost";
    case DK_SERVER_FOUND:
      return "server-found";
  }
  return "unknown";
}

struct Change {
  dk_change change;
  std::optional<dk::DeviceInfo> device;
};

std::string LineFor(const Output& output, const Change& change) {
  std::string line = NameOf(change.change);
  if (change.device) {
    line += "  " + output.Shown(change.device->serial) + "  " + StateName(*change.device);
    if (!change.device->model.empty()) line += "  " + output.Shown(change.device->model);
  }
  return line + "\n";
}

std::string JsonFor(const Change& change) {
  JsonObject json;
  json.Text("change", NameOf(change.change));
  if (change.device) json.Json("device", ToJson(*change.device).text());
  return json.text() + "\n";
}

void Watch(Tool& tool) {
  EventQueue<Change> changes;
  const auto on_change = [&changes](dk_change change, const dk::DeviceInfo* device) {
    changes.Push({change, device == nullptr ? std::optional<dk::DeviceInfo>() : *device});
  };
  const dk::Watch watch = tool.client().watch(on_change, tool.limits()).value();
  tool.PrintsLines();
  while (const auto change = changes.Pop()) {
    // That the server is there is no news at the beginning, and never for a person.
    if (!tool.is_json() && change->change == DK_SERVER_FOUND) continue;
    tool.output().Write(tool.is_json() ? JsonFor(*change) : LineFor(tool.output(), *change));
  }
}

void List(Tool& tool, const Options& options) {
  const auto devices = tool.client().devices(tool.limits()).value();
  if (tool.is_json()) {
    tool.document().BeginList("devices");
    for (const auto& device : devices) tool.document().Add(ToJson(device).text());
  } else if (devices.empty()) {
    tool.output().Write(std::string(kNoDeviceAdvice) + "\n");
  } else {
    tool.output().Write(options.details ? LongDeviceTable(devices) : DeviceTable(devices));
  }
}

void Run(Tool& tool, const Options& options) {
  options.watch ? Watch(tool) : List(tool, options);
}

}  // namespace

void AddDevicesCommand(Command& root) {
  AddCommand<Options>(root, {"devices", "List the attached devices", kFooter}, Describe, Run);
}

}  // namespace darokleim::cli
