// darokleim app uninstall
#include <darokleim.h>

#include <string>

#include "tools/cli/app_command.h"
#include "tools/cli/command.h"
#include "tools/cli/commands/app_commands.h"
#include "tools/cli/device_words.h"
#include "tools/cli/errors.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] = R"(Examples:
  darokleim app uninstall com.example.notes                the application and its data
  darokleim app uninstall com.example.notes --keep-data    its data stays for the next install)";

struct Options {
  std::string package;
  bool keep_data = false;
};

void Describe(CLI::App& command, Options& options) {
  AddPackageArgument(command, options.package);
  command.add_flag("-k,--keep-data", options.keep_data, "Keep the application's data on the device");
}

void Run(Tool& tool, const Options& options) {
  const auto& device = tool.device();
  // Cut short, the name might be that of another package.
  CheckLength(" -s " + std::string(device.serial()) + " shell pm uninstall -k " + options.package, 127,
              "the package's name");
  RequireInstalled(device, options.package);
  const int keep_data = options.keep_data ? 1 : 0;
  device.Check(AdbUninstallApp(device.serial(), options.package.c_str(), keep_data, device.cancel()),
               "uninstall " + options.package);
  if (IsInstalled(device, options.package)) {
    throw ToolError(options.package + " is still installed: it came with the device, or is protected.");
  }
  tool.Report("Uninstalled " + options.package + ".");
}

}  // namespace

void AddAppUninstallCommand(CLI::App& group, Tool& tool) {
  AddCommand<Options>(group, tool, {"uninstall", "Remove an application", kFooter}, Describe, Run);
}

}  // namespace darokleim::cli
