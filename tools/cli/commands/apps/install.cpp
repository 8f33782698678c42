// darokleim app install
#include <darokleim.h>

#include <string>

#include "tools/cli/cancel_on_signal.h"
#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/apps/app_commands.h"
#include "tools/cli/commands/apps/package.h"
#include "tools/cli/device/argument_text.h"
#include "tools/cli/device/file_changes.h"
#include "tools/cli/host/host_file.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] =
    R"(Replaces an older version and keeps its data. Some phones ask on their screen first.

Examples:
  darokleim app install notes.apk
  darokleim -s 0123456789ABCDEF app install ~/Downloads/notes.apk)";

struct Options {
  HostPath file;
};

void Describe(Command& command, Options& options) {
  command.Positional("FILE", options.file, "APK file on this computer").Required();
}

void Run(Tool& tool, const Options& options) {
  const std::string& file = options.file.text;
  CheckApkFile(file);
  const auto& device = tool.device();
  const std::string staged = "/data/local/tmp/" + FileName(file);
  CheckLength(" -s " + std::string(device.serial()) + " shell pm install -r '\"" + staged + "\"'", 255,
              "the file's name");
  StagedFile copy(device, staged);
  const int code = AdbInstallAppFromPCPath(device.serial(), AbsolutePath(file).c_str(), device.cancel());
  // The library deletes the copy itself unless it is cancelled.
  if (!IsCancelled()) copy.SetGone();
  device.Check(code, "install " + file);
  tool.Report("Installed " + FileName(file) + ".");
}

}  // namespace

void AddAppInstallCommand(Command& group) {
  AddCommand<Options>(group, {"install", "Install an APK file from this computer", kFooter}, Describe, Run);
}

}  // namespace darokleim::cli
