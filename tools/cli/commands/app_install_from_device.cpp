// darokleim app install-from-device
#include <darokleim.h>

#include <string>

#include "tools/cli/command.h"
#include "tools/cli/commands/app_commands.h"
#include "tools/cli/device_words.h"
#include "tools/cli/errors.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] =
    R"(Replaces an older version and keeps its data. The file stays. Newer phones only take it from folders that
their package manager may read, such as /data/local/tmp, and do not say so.

Examples:
  darokleim app install-from-device /data/local/tmp/notes.apk)";

struct Options {
  std::string path;
};

void Describe(CLI::App& command, Options& options) {
  command.add_option("PATH", options.path, "APK file of the device")->required();
}

// The phone itself is silent about a file that it cannot find.
void CheckExists(const Device& device, const std::string& path) {
  bool exists = false;
  device.Check(AdbCheckFileExisted(device.serial(), path.c_str(), &exists, device.cancel()),
               "look for " + path);
  if (!exists) throw ToolError("cannot install " + path + ": there is no such file on the device.");
}

void Run(Tool& tool, const Options& options) {
  const auto& device = tool.device();
  CheckExists(device, options.path);
  CheckLength(" -s " + std::string(device.serial()) + " shell pm install -r '\"" + options.path + "\"'", 255,
              "the path");
  device.Check(AdbInstallAppFromDevicePath(device.serial(), options.path.c_str(), device.cancel()),
               "install " + options.path);
  tool.Report("The device reports no failure for " + options.path + ". See `darokleim app list`.");
}

}  // namespace

void AddAppInstallFromDeviceCommand(CLI::App& group, Tool& tool) {
  AddCommand<Options>(group, tool,
                      {"install-from-device", "Install an APK file that is on the device", kFooter}, Describe,
                      Run);
}

}  // namespace darokleim::cli
