// darokleim cp
#include <darokleim.h>

#include <string>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/device/device_entry.h"
#include "tools/cli/device/file_changes.h"
#include "tools/cli/errors.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] = R"(Examples:
  darokleim cp /sdcard/a.txt /sdcard/b.txt
  darokleim cp "/sdcard/my photo.jpg" /sdcard/DCIM   copies into the folder DCIM, if there is one

Copies one file within the device, replacing an existing file at the new path once the copy is complete.)";

struct Options {
  DevicePath source, destination;
};

void Describe(Command& command, Options& options) {
  command.Positional("SOURCE", options.source, "File on the device").Required();
  command.Positional("DESTINATION", options.destination, "Path of the copy, or a folder for it").Required();
}

void Copy(const Device& device, const DevicePath& source, const DeviceEntry& entry,
          const DevicePath& target) {
  const std::string action = "copy " + source.text() + " to " + target.text();
  UnfinishedFile copy(device, target);
  device.Check(AdbCopyFile(device.serial(), source.c_str(), copy.path().c_str(), device.cancel()), action);
  const auto copied = FindEntry(device, copy.path());
  if (!copied || copied->size != entry.size) {
    throw ToolError(
        "cannot " + action +
        ": the copy on the device is incomplete. The storage may be full, or adb may not be allowed to "
        "read the file or to write there.");
  }
  copy.PutInPlace();
}

void Run(Tool& tool, const Options& options) {
  const Device& device = tool.device();
  const DevicePath& source = options.source;
  const std::string action = "copy " + source.text();
  const auto entry = RequireEntry(device, source, action);
  if (entry.is_folder) throw ToolError("cannot " + action + ": it is a folder; only files can be copied.");
  const auto target = TargetFor(device, options.destination, source.Name());
  if (target.text() == source.text()) throw ToolError("cannot " + action + ": that is the file itself.");
  const auto replaced = FindEntry(device, target);
  if (replaced && replaced->is_folder) {
    throw ToolError("cannot " + action + ": " + target.text() + " is a folder.");
  }
  Copy(device, source, entry, target);
}

}  // namespace

void AddCpCommand(Command& root) {
  AddCommand<Options>(root, {"cp", "Copy a file on the device", kFooter}, Describe, Run);
}

}  // namespace darokleim::cli
