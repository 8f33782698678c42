// darokleim reboot
#include <darokleim.h>

#include <string>

#include "tools/cli/command.h"
#include "tools/cli/commands/commands.h"

namespace darokleim::cli {
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

}  // namespace darokleim::cli
