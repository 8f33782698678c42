// darokleim reboot
#include <darokleim.h>

#include <string>

#include "command.h"
#include "commands/commands.h"

namespace darokleim {
namespace {

constexpr char kFooter[] = R"(Does not wait until the device is back; that takes about a minute.

Examples:
  darokleim reboot
  darokleim -s 0123456789ABCDEF reboot)";

void Run(Tool& tool) {
  const auto& device = tool.device();
  device.Check(AdbReboot(device.serial(), device.cancel()), "restart the device");
  tool.Report(std::string(device.serial()) + " restarts.");
}

}  // namespace

void AddRebootCommand(CLI::App& app, Tool& tool) {
  AddCommand(app, tool, {"reboot", "Restart the device", kFooter}, Run);
}

}  // namespace darokleim
