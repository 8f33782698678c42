// darokleim push
#include <darokleim.h>
#include <json/value.h>

#include <string>
#include <vector>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/commands/files/folder_push.h"
#include "tools/cli/commands/files/push_source.h"
#include "tools/cli/commands/files/transfer.h"
#include "tools/cli/device/device_entry.h"
#include "tools/cli/device/file_changes.h"
#include "tools/cli/errors.h"
#include "tools/cli/output/progress.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] = R"(Examples:
  darokleim push a.jpg /sdcard/DCIM              into the folder DCIM, if there is one
  darokleim push a.jpg "/sdcard/my photo.jpg"    under another name
  darokleim push ~/Pictures /sdcard              a folder with everything in it
  darokleim push --update *.mp3 /sdcard/Music    only those that are newer than the device's

A file appears under its name once it is complete; until then, and after a failure or Ctrl-C, an existing file is kept. A
folder is merged into an existing one, and files of the same size and time are skipped; after Ctrl-C, incomplete files
are deleted.)";

struct Options {
  bool json = false;
  bool update = false;
  std::vector<HostPath> sources;
  DevicePath target;
};

void Describe(Command& command, Options& options) {
  command.Positional("SOURCE", options.sources, "Files or folders on this computer").Required();
  command.Positional("TARGET", options.target, "Where to put them on the device: a path or a folder")
      .Required();
  command.Flag("--update", options.update, "Skip files of which the device has one at least as new");
  command.JsonFlag(options.json, "an array of {source, target, files, bytes, seconds, skipped}");
}

std::uint64_t SizeOnDevice(const Device& device, const DevicePath& path, const bool* stop) {
  unsigned long long size = 0;
  AdbGetFileSize(device.serial(), path.c_str(), &size, stop);
  return size;
}

bool IsAsNew(const Device& device, const DevicePath& target, const PushSource& source) {
  if (!EntryExists(device, target)) return false;
  unsigned long long modified = 0;
  device.Check(AdbGetFileCreateTime(device.serial(), target.c_str(), &modified, device.cancel()),
               "read the time of " + target.text());
  return modified >= source.modified;
}

Transfer PushFile(const Tool& tool, const Device& device, const PushSource& source, const DevicePath& target,
                  bool update) {
  const std::string action = "push " + source.path.native();
  Transfer transfer{source.path.native(), target.text(), 1, source.size};
  if (update && IsAsNew(device, target, source)) {
    transfer.skipped = true;
    return transfer;
  }
  const Stopwatch watch;
  UnfinishedFile copy(device, target);
  {
    const Progress progress(!tool.is_quiet(), TransferLine(source.path.filename().native(), source.size,
                                                           [&device, &copy](const bool* stop) {
                                                             return SizeOnDevice(device, copy.path(), stop);
                                                           }));
    device.Check(RunPush(device, source, copy.path()), action);
  }
  transfer.seconds = watch.Seconds();
  const auto arrived = FindEntry(device, copy.path());
  if (!arrived || (arrived->size && *arrived->size != source.size)) {
    throw ToolError("cannot " + action + ": it is incomplete on the device. The storage may be full.");
  }
  copy.PutInPlace();
  return transfer;
}

DevicePath TargetOnDevice(const Device& device, const DevicePath& path, const PushSource& source,
                          bool must_be_folder) {
  const auto entry = FindEntry(device, path);
  if (entry && entry->is_folder) return path.Child(source.path.filename().native());
  if (must_be_folder || path.names_a_folder()) {
    throw ToolError("cannot push into " + path.text() +
                    ": no such folder on the device. `darokleim mkdir` makes one.");
  }
  return path;
}

void CheckKinds(const Device& device, const PushSource& source, const DevicePath& target) {
  const auto entry = FindEntry(device, target);
  if (!entry || entry->is_folder == source.is_folder) return;
  throw ToolError("cannot push " + source.path.native() + ": " + target.text() + " on the device is a " +
                  (entry->is_folder ? "folder." : "file."));
}

void Run(Tool& tool, const Options& options) {
  std::vector<PushSource> sources;
  for (const auto& named : options.sources) sources.push_back(FindPushSource(named.text));
  std::vector<Transfer> transfers;
  for (const auto& source : sources) {
    const Device& device = tool.device();
    const auto target = TargetOnDevice(device, options.target, source, sources.size() > 1);
    CheckKinds(device, source, target);
    transfers.push_back(source.is_folder ? PushFolder(tool, device, source, target)
                                         : PushFile(tool, device, source, target, options.update));
    if (!options.json) ReportTransfer(tool, transfers.back());
  }
  if (options.json) tool.output().WriteJson(TransfersJson(transfers));
}

}  // namespace

void AddPushCommand(Command& root) {
  AddCommand<Options>(root, {"push", "Copy files and folders to the device", kFooter}, Describe, Run);
}

}  // namespace darokleim::cli
