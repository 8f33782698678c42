// darokleim du
#include <darokleim.h>
#include <json/value.h>

#include <string>
#include <vector>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/device/device_entry.h"
#include "tools/cli/device/file_listing.h"
#include "tools/cli/errors.h"
#include "tools/cli/output/human_text.h"
#include "tools/cli/output/progress.h"
#include "tools/cli/output/table.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] = R"(Examples:
  darokleim --busybox ~/busybox-arm64 du /sdcard/DCIM
  darokleim du --json /sdcard/DCIM "/sdcard/my photos"

The library first copies a busybox to the device, as /data/local/tmp/busybox, unless one is there. Name one that runs on
the device with --busybox. A folder that adb may not read completely cannot be measured.)";

constexpr char kBusyboxOnDevice[] = "/data/local/tmp/busybox";
constexpr std::uint64_t kUnit = 1024;  // bytes, of the device's du

struct Options {
  bool json = false;
  std::vector<DevicePath> paths;
};

void Describe(Command& command, Options& options) {
  command.Positional("PATH", options.paths, "Folders on the device").Required();
  command.JsonFlag(options.json, "an array of {path, size}, in bytes");
}

void CheckBusybox(const Session& session, const Device& device) {
  if (session.has_busybox() || EntryExists(device, DevicePath(kBusyboxOnDevice))) return;
  throw ToolError(
      "cannot measure folders: the library needs a busybox on the device for that, and none is available. "
      "Name one "
      "that runs on the device with --busybox PATH.");
}

std::uint64_t Measure(const Device& device, const DevicePath& path) {
  const std::string action = "measure " + path.text();
  RequireEntry(device, path, action);
  long long units = 0;
  const int code = AdbGetDirSize(device.serial(), path.c_str(), &units, device.cancel());
  const bool is_empty = code == ADB_RESULT_OK && units == 0 && ListFiles(device, path, {true, true}).empty();
  if (code == ADB_RESULT_PROTOCOL_FAULT || (code == ADB_RESULT_OK && units <= 0 && !is_empty)) {
    throw ToolError(
        "cannot " + action +
        ": the device did not report its size. adb may not be allowed to read parts of the folder.");
  }
  device.Check(code, action);
  return static_cast<std::uint64_t>(units) * kUnit;
}

void Run(Tool& tool, const Options& options) {
  const Device& device = tool.device();
  CheckBusybox(tool.session(), device);
  Table table;
  Json::Value json(Json::arrayValue);
  for (const auto& path : options.paths) {
    const Progress progress(!tool.is_quiet(), WaitingLine("measuring " + path.text()));
    const auto size = Measure(device, path);
    table.AddRow({SizeText(size), tool.output().Shown(path.text())});
    Json::Value& entry = json.append(Json::objectValue);
    entry["path"] = path.text();
    entry["size"] = Json::UInt64(size);
  }
  if (options.json) {
    tool.output().WriteJson(json);
  } else {
    tool.output().Write(table.Text());
  }
}

}  // namespace

void AddDuCommand(Command& root) {
  AddCommand<Options>(root, {"du", "Measure folders of the device", kFooter}, Describe, Run);
}

}  // namespace darokleim::cli
