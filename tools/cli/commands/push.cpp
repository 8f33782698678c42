// darokleim push
#include <darokleim.h>

#include <string>
#include <vector>

#include "tools/cli/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/device_entry.h"
#include "tools/cli/errors.h"
#include "tools/cli/file_changes.h"
#include "tools/cli/folder_push.h"
#include "tools/cli/progress.h"
#include "tools/cli/push_source.h"
#include "tools/cli/transfer.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] = R"(Examples:
  darokleim push a.jpg /sdcard/DCIM              into the folder DCIM, if there is one
  darokleim push a.jpg "/sdcard/my photo.jpg"    under another name
  darokleim push ~/Pictures /sdcard              a folder with everything in it
  darokleim push --update *.mp3 /sdcard/Music    only those that are newer than the device's

A file appears under its name once it is whole; until then, and after a failure or Ctrl-C, what stood there stays. A
folder is merged into one that is there, where files of the same size and time are passed over; of what Ctrl-C leaves of
it, files that are not whole are deleted.)";

struct Options {
  bool json = false;
  bool update = false;
  std::vector<std::string> paths;
};

void Describe(CLI::App& command, Options& options) {
  command
      .add_option("PATH", options.paths,
                  "Files or folders on this computer, and at the end where to put them on the device")
      ->required()
      ->expected(2, -1);
  command.add_flag("--update", options.update, "Pass over files of which the device has one at least as new");
  AddJsonFlag(command, options.json, "an array of {source, target, files, bytes, seconds, skipped}");
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
    throw ToolError("cannot " + action + ": it did not arrive whole. The storage may be full.");
  }
  copy.PutInPlace();
  return transfer;
}

DevicePath TargetOnDevice(const Device& device, const std::string& named, const PushSource& source,
                          bool must_be_folder) {
  DevicePath path(named);
  const auto entry = FindEntry(device, path);
  if (entry && entry->is_folder) return path.Child(source.path.filename().native());
  if (must_be_folder || named.ends_with('/')) {
    throw ToolError("cannot push into " + named +
                    ": there is no such folder on the device. `darokleim mkdir` makes one.");
  }
  return path;
}

void CheckKinds(const Device& device, const PushSource& source, const DevicePath& target) {
  const auto entry = FindEntry(device, target);
  if (!entry || entry->is_folder == source.is_folder) return;
  throw ToolError("cannot push " + source.path.native() + ": a " + (entry->is_folder ? "folder" : "file") +
                  " stands at " + target.text() + " on the device.");
}

void Run(Tool& tool, const Options& options) {
  std::vector<PushSource> sources;
  for (std::size_t i = 0; i + 1 < options.paths.size(); ++i)
    sources.push_back(FindPushSource(options.paths[i]));
  std::vector<Transfer> transfers;
  for (const auto& source : sources) {
    const Device& device = tool.device();
    const auto target = TargetOnDevice(device, options.paths.back(), source, sources.size() > 1);
    CheckKinds(device, source, target);
    transfers.push_back(source.is_folder ? PushFolder(tool, device, source, target)
                                         : PushFile(tool, device, source, target, options.update));
    if (!options.json) ReportTransfer(tool, transfers.back());
  }
  if (options.json) tool.output().WriteJson(TransfersJson(transfers));
}

}  // namespace

void AddPushCommand(CLI::App& app, Tool& tool) {
  AddCommand<Options>(app, tool, {"push", "Copy files and folders to the device", kFooter}, Describe, Run);
}

}  // namespace darokleim::cli
