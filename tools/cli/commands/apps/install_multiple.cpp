// darokleim app install-multiple
#include <darokleim.h>
#include <json/value.h>

#include <string>
#include <vector>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/apps/app_commands.h"
#include "tools/cli/commands/apps/package.h"
#include "tools/cli/device/argument_text.h"
#include "tools/cli/errors.h"
#include "tools/cli/host/host_file.h"
#include "tools/cli/output/human_text.h"
#include "tools/cli/output/json.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] =
    R"(For an application that comes in several APK files, all of one version: its base and its splits.

Examples:
  darokleim app install-multiple base.apk split_config.de.apk split_config.xxhdpi.apk)";

struct Options {
  std::vector<HostPath> files;
};

void Describe(Command& command, Options& options) {
  command.Positional("FILE", options.files, "APK files on this computer, all of one package").Required();
}

// Paths are bytes: what is not UTF-8 must not be replaced.
std::string AsJson(const std::vector<HostPath>& files) {
  Json::Value document(Json::objectValue);
  for (const auto& file : files) document["files"].append(AbsolutePath(file.text).native());
  return JsonArgument(document);
}

// adb passes the names to the device's shell as they are.
void CheckFile(const std::string& file) {
  CheckApkFile(file);
  const std::string name = FileName(file);
  if (ForBarePlace(name) != name) {
    throw ToolError("cannot install " + file +
                    ": its name holds more than letters, digits, dots, hyphens and "
                    "underscores. Rename it.");
  }
}

void Run(Tool& tool, const Options& options) {
  for (const auto& file : options.files) CheckFile(file.text);
  const auto& device = tool.device();
  device.Check(
      AdbInstallMultipleAppFromPCPath(device.serial(), AsJson(options.files).c_str(), device.cancel()),
      "install " + options.files.front().text);
  tool.Report("Installed " + CountText(options.files.size(), "file") + ".");
}

}  // namespace

void AddAppInstallMultipleCommand(Command& group) {
  AddCommand<Options>(group, {"install-multiple", "Install the APK files of one split application", kFooter},
                      Describe, Run);
}

}  // namespace darokleim::cli
