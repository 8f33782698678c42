// darokleim app install-multiple
#include <darokleim.h>
#include <json/writer.h>

#include <string>
#include <vector>

#include "tools/cli/app_command.h"
#include "tools/cli/argument_text.h"
#include "tools/cli/command.h"
#include "tools/cli/commands/app_commands.h"
#include "tools/cli/errors.h"
#include "tools/cli/human_text.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] =
    R"(For an application that comes in several APK files, all of one version: its base and its splits.

Examples:
  darokleim app install-multiple base.apk split_config.de.apk split_config.xxhdpi.apk)";

struct Options {
  std::vector<std::string> files;
};

void Describe(CLI::App& command, Options& options) {
  command.add_option("FILE", options.files, "APK files of this computer, all of one package")->required();
}

// Paths are bytes: what is not UTF-8 must not be replaced.
std::string AsJson(const std::vector<std::string>& files) {
  Json::Value document(Json::objectValue);
  for (const auto& file : files) document["files"].append(file);
  Json::StreamWriterBuilder builder;
  builder["indentation"] = "";
  builder["emitUTF8"] = true;
  return Json::writeString(builder, document);
}

// adb hands the names to the device's shell as they are.
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
  for (const auto& file : options.files) CheckFile(file);
  const auto& device = tool.device();
  device.Check(
      AdbInstallMultipleAppFromPCPath(device.serial(), AsJson(options.files).c_str(), device.cancel()),
      "install " + options.files.front());
  tool.Report("Installed " + CountText(options.files.size(), "file") + ".");
}

}  // namespace

void AddAppInstallMultipleCommand(CLI::App& group, Tool& tool) {
  AddCommand<Options>(group, tool,
                      {"install-multiple", "Install the APK files of one split application", kFooter},
                      Describe, Run);
}

}  // namespace darokleim::cli
