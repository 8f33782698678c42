// darokleim busybox
#include <darokleim.h>

#include <string>

#include "tools/cli/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/errors.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] =
    R"(Copies the busybox that --busybox names to /data/local/tmp/busybox, unless a file is there, and makes it
executable. `darokleim du` does this by itself.

Examples:
  darokleim busybox --busybox ~/android/busybox-arm64)";

void Run(Tool& tool) {
  const auto& device = tool.device();
  const int code = AdbConfigDeviceBusybox(device.serial(), device.cancel());
  tool.session().CheckCancelled();
  if (code != ADB_RESULT_OK && !tool.session().has_busybox()) {
    throw ToolError("there is no busybox to install. Name one that runs on the device with --busybox PATH.");
  }
  device.Check(code, "install busybox");
  tool.Report("busybox is /data/local/tmp/busybox on the device.");
}

}  // namespace

void AddBusyboxCommand(CLI::App& app, Tool& tool) {
  AddCommand(app, tool, {"busybox", "Install busybox on the device", kFooter}, Run);
}

}  // namespace darokleim::cli
