// darokleim busybox
#include <darokleim.h>

#include <string>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/errors.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] =
    R"(Copies the busybox that --busybox names to /data/local/tmp/busybox, unless a file is there already, and makes it
executable. `darokleim du` does this by itself.

Examples:
  darokleim busybox --busybox ~/android/busybox-arm64)";

void Run(Tool& tool) {
  const auto& device = tool.device();
  const int code = AdbConfigDeviceBusybox(device.serial(), device.cancel());
  tool.session().CheckCancelled("install busybox");
  if (code != ADB_RESULT_OK && !tool.session().has_busybox()) {
    throw ToolError(
        "cannot install busybox: none was found. Name one that runs on the device with --busybox PATH.");
  }
  device.Check(code, "install busybox");
  tool.Report("busybox is at /data/local/tmp/busybox on the device.");
}

}  // namespace

void AddBusyboxCommand(Command& root) {
  AddCommand(root, {"busybox", "Install busybox on the device", kFooter}, Run);
}

}  // namespace darokleim::cli
