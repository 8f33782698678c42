// darokleim forward, darokleim reverse
#include <darokleim.h>

#include <string>

#include "tools/cli/cancel_on_signal.h"
#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

constexpr char kForwardFooter[] =
    R"(A mapping lasts until it is removed, the device is disconnected or the adb server ends.

Examples:
  darokleim forward add 8080 80     http://localhost:8080 of this computer is port 80 of the device
  darokleim forward remove 8080)";

constexpr char kReverseFooter[] =
    R"(A mapping lasts until it is removed, the device is disconnected or the adb server ends.

Examples:
  darokleim reverse add 3000 8080     http://localhost:3000 of the device is port 8080 of this computer
  darokleim reverse remove 3000)";

struct Mapping {
  Port host_port;
  Port device_port;
};

void DescribeHostPort(Command& command, Mapping& mapping) {
  command.Positional("HOST_PORT", mapping.host_port, "TCP port of this computer").Required();
}

void DescribeDevicePort(Command& command, Mapping& mapping) {
  command.Positional("DEVICE_PORT", mapping.device_port, "TCP port of the device").Required();
}

// The side that listens comes first.
void DescribeForward(Command& command, Mapping& mapping) {
  DescribeHostPort(command, mapping);
  DescribeDevicePort(command, mapping);
}

void DescribeReverse(Command& command, Mapping& mapping) {
  DescribeDevicePort(command, mapping);
  DescribeHostPort(command, mapping);
}

void AddForward(Tool& tool, const Mapping& mapping) {
  const auto& device = tool.device();
  device.Check(WithoutFlag([&] {
                 return AdbFowardBind(device.serial(), mapping.host_port.text.c_str(),
                                      mapping.device_port.text.c_str());
               }),
               "map port " + mapping.host_port.text + " of this computer; it may be in use");
  tool.Report("Port " + mapping.host_port.text + " of this computer is port " + mapping.device_port.text +
              " of the device.");
}

void RemoveForward(Tool& tool, const Mapping& mapping) {
  const auto& device = tool.device();
  device.Check(
      WithoutFlag([&] { return AdbFowardRemove(device.serial(), mapping.host_port.text.c_str()); }),
      "remove the mapping of port " + mapping.host_port.text + " of this computer; there may not be one");
  tool.Report("Port " + mapping.host_port.text + " of this computer is free.");
}

void AddReverse(Tool& tool, const Mapping& mapping) {
  const auto& device = tool.device();
  device.Check(WithoutFlag([&] {
                 return AdbReverseBind(device.serial(), mapping.device_port.text.c_str(),
                                       mapping.host_port.text.c_str());
               }),
               "map port " + mapping.device_port.text + " of the device; it may be in use");
  tool.Report("Port " + mapping.device_port.text + " of the device is port " + mapping.host_port.text +
              " of this computer.");
}

void RemoveReverse(Tool& tool, const Mapping& mapping) {
  const auto& device = tool.device();
  device.Check(
      WithoutFlag([&] { return AdbReverseRemove(device.serial(), mapping.device_port.text.c_str()); }),
      "remove the mapping of port " + mapping.device_port.text + " of the device; there may not be one");
  tool.Report("Port " + mapping.device_port.text + " of the device is free.");
}

}  // namespace

void AddForwardCommand(Command& root) {
  Command& group =
      root.Subcommand({"forward", "Let a port of this computer reach one of the device", kForwardFooter});
  AddCommand<Mapping>(group, {"add", "Map a port", kForwardFooter}, DescribeForward, AddForward);
  AddCommand<Mapping>(group, {"remove", "Remove a mapping", kForwardFooter}, DescribeHostPort, RemoveForward);
}

void AddReverseCommand(Command& root) {
  Command& group =
      root.Subcommand({"reverse", "Let a port of the device reach one of this computer", kReverseFooter});
  AddCommand<Mapping>(group, {"add", "Map a port", kReverseFooter}, DescribeReverse, AddReverse);
  AddCommand<Mapping>(group, {"remove", "Remove a mapping", kReverseFooter}, DescribeDevicePort,
                      RemoveReverse);
}

}  // namespace darokleim::cli
