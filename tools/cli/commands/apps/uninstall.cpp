// darokleim app uninstall
#include <darokleim.h>

#include <string>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/apps/app_commands.h"
#include "tools/cli/commands/apps/package.h"
#include "tools/cli/device/argument_text.h"
#include "tools/cli/errors.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] = R"(Examples:
  darokleim app uninstall com.example.notes                the application and its data
  darokleim app uninstall com.example.notes --keep-data    keeps its data for the next install)";

struct Options {
  Package package;
  bool keep_data = false;
};

void Describe(Command& command, Options& options) {
  command.PackageArgument(options.package);
  command.Flag("-k,--keep-data", options.keep_data, "Keep the application's data on the device");
}

void Run(Tool& tool, const Options& options) {
  const auto& device = tool.device();
  const std::string& package = options.package.name;
  // Cut short, the name might be that of another package.
  CheckLength(" -s " + std::string(device.serial()) + " shell pm uninstall -k " + package, 127,
              "the package's name");
  RequireInstalled(device, package);
  const int keep_data = options.keep_data ? 1 : 0;
  device.Check(AdbUninstallApp(device.serial(), package.c_str(), keep_data, device.cancel()),
               "uninstall " + package);
  if (IsInstalled(device, package)) {
    throw ToolError(package + " is still installed: it is part of the system, or protected.");
  }
  tool.Report("Uninstalled " + package + ".");
}

}  // namespace

void AddAppUninstallCommand(Command& group) {
  AddCommand<Options>(group, {"uninstall", "Remove an application", kFooter}, Describe, Run);
}

}  // namespace darokleim::cli
