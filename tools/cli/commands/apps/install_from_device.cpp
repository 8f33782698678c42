// darokleim app install-from-device
#include <darokleim.h>

#include <string>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/apps/app_commands.h"
#include "tools/cli/device/argument_text.h"
#include "tools/cli/errors.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] =
    R"(Replaces an older version and keeps its data. The file is kept. Newer phones install only from folders that their
package manager may read, such as /data/local/tmp, and report no failure for others.

Examples:
  darokleim app install-from-device /data/local/tmp/notes.apk)";

struct Options {
  DevicePath path;
};

void Describe(Command& command, Options& options) {
  command.Positional("PATH", options.path, "APK file on the device").Required();
}

// The phone itself reports nothing for a file that it cannot find.
void CheckExists(const Device& device, const std::string& path) {
  bool exists = false;
  device.Check(AdbCheckFileExisted(device.serial(), path.c_str(), &exists, device.cancel()), "find " + path);
  if (!exists) throw ToolError("cannot install " + path + ": no such file on the device.");
}

void Run(Tool& tool, const Options& options) {
  const auto& device = tool.device();
  const std::string& path = options.path.text();
  CheckExists(device, path);
  CheckLength(" -s " + std::string(device.serial()) + " shell pm install -r '\"" + path + "\"'", 255,
              "the path");
  device.Check(AdbInstallAppFromDevicePath(device.serial(), path.c_str(), device.cancel()),
               "install " + path);
  tool.Report("The device reports no failure for " + path + ". See `darokleim app list`.");
}

}  // namespace

void AddAppInstallFromDeviceCommand(Command& group) {
  AddCommand<Options>(group, {"install-from-device", "Install an APK file that is on the device", kFooter},
                      Describe, Run);
}

}  // namespace darokleim::cli
