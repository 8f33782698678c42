// darokleim app install
#include <darokleim.h>

#include <string>

#include "tools/cli/app_command.h"
#include "tools/cli/command.h"
#include "tools/cli/commands/app_commands.h"
#include "tools/cli/device_words.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] =
    R"(Replaces an older version and keeps its data. Some phones ask on their screen first.

Examples:
  darokleim app install notes.apk
  darokleim -s 0123456789ABCDEF app install ~/Downloads/notes.apk)";

struct Options {
  std::string file;
};

void Describe(CLI::App& command, Options& options) {
  command.add_option("FILE", options.file, "APK file of this computer")->required();
}

void Run(Tool& tool, const Options& options) {
  CheckApkFile(options.file);
  const auto& device = tool.device();
  const std::string staged = "/data/local/tmp/" + FileName(options.file);
  CheckLength(" -s " + std::string(device.serial()) + " shell pm install -r '\"" + staged + "\"'", 255,
              "the file's name");
  device.Check(AdbInstallAppFromPCPath(device.serial(), options.file.c_str(), device.cancel()),
               "install " + options.file);
  tool.Report("Installed " + FileName(options.file) + ".");
}

}  // namespace

void AddAppInstallCommand(CLI::App& group, Tool& tool) {
  AddCommand<Options>(group, tool, {"install", "Install an APK file of this computer", kFooter}, Describe,
                      Run);
}

}  // namespace darokleim::cli
