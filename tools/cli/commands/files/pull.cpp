// darokleim pull
#include <darokleim.h>
#include <json/value.h>

#include <filesystem>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/commands/files/transfer.h"
#include "tools/cli/device/device_entry.h"
#include "tools/cli/device/file_listing.h"
#include "tools/cli/errors.h"
#include "tools/cli/host/host_file.h"
#include "tools/cli/output/human_text.h"
#include "tools/cli/output/progress.h"
#include "tools/cli/output/result_text.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

namespace fs = std::filesystem;

constexpr char kFooter[] = R"(Examples:
  darokleim pull /sdcard/DCIM/a.jpg              into the current folder
  darokleim pull /sdcard/DCIM/a.jpg b.jpg        under another name
  darokleim pull "/sdcard/my photos" ~/Pictures    a folder with everything in it
  darokleim pull /sdcard/a.txt /sdcard/b.txt .   several, into a folder

A file appears under its name once it is complete; until then, and after a failure or Ctrl-C, an existing file is kept. A
folder is merged into an existing one. Times and modes are those of the device.)";

struct Options {
  bool json = false;
  std::vector<DevicePath> sources;
  HostPath target{"."};
};

void Describe(Command& command, Options& options) {
  command.Positional("SOURCE", options.sources, "Files or folders on the device").Required();
  command.Positional(
      "TARGET", options.target,
      "Where to put them on this computer: a path or a folder. Needed for two or more sources; otherwise "
      "the current folder");
  command.JsonFlag(options.json, "an array of {source, target, files, bytes, seconds, skipped}");
}

fs::path TargetOnHost(const std::string& named, const DevicePath& source, bool must_be_folder) {
  fs::path target = AbsolutePath(named);
  std::error_code error;
  if (fs::is_directory(target, error)) return target / source.Name();
  if (must_be_folder || named.ends_with('/')) {
    throw ToolError("cannot pull into " + named + ": no such folder on this computer.");
  }
  if (!fs::is_directory(target.parent_path(), error)) {
    throw ToolError("cannot pull to " + named +
                    ": no such folder on this computer: " + target.parent_path().native());
  }
  return target;
}

void CheckKinds(const DeviceEntry& entry, const std::string& action, const fs::path& target) {
  std::error_code error;
  const auto there = fs::status(target, error);
  if (!fs::exists(there)) return;
  if (entry.is_folder && !fs::is_directory(there)) {
    throw ToolError("cannot " + action + ": " + target.native() + " is a file.");
  }
  if (!entry.is_folder && fs::is_directory(there)) {
    throw ToolError("cannot " + action + ": " + target.native() + " is a folder.");
  }
}

// What should arrive of a source.
struct Expected {
  std::uint64_t bytes = 0;
  std::vector<ListedFile> files;  // of a folder
};

Expected Look(const Tool& tool, const Device& device, const DevicePath& source, const DeviceEntry& entry) {
  if (!entry.is_folder) return {entry.size.value_or(0), {}};
  const Progress progress(!tool.is_quiet(), WaitingLine("listing " + source.text()));
  Expected expected{0, ListFiles(device, source, {true, true})};
  for (const auto& file : expected.files) expected.bytes += file.size;
  return expected;
}

// The library does not report which files of a folder arrived. A listed file that did not arrive counts as missing if
// the device still has it under this name: an older ls writes some names differently.
void CheckFolder(const Device& device, const DevicePath& source, const std::string& action,
                 const Expected& expected, const fs::path& folder) {
  std::error_code error;
  for (const auto& file : expected.files) {
    const fs::path copy = folder.native() + file.path.substr(source.IsRoot() ? 0 : source.text().size());
    if (fs::exists(fs::symlink_status(copy, error)) && fs::file_size(copy, error) >= file.size) continue;
    if (HasLostBytes(file.path) || !EntryExists(device, DevicePath(file.path))) continue;
    throw ToolError("cannot " + action + ": " + file.path + " is incomplete.");
  }
}

void CheckArrived(const Device& device, const DevicePath& source, const std::string& action,
                  const DeviceEntry& entry, const Expected& expected, const fs::path& copy) {
  std::error_code error;
  const bool whole = entry.is_folder ? fs::is_directory(copy, error)
                                     : fs::exists(copy, error) && SizeOnHost(copy) >= expected.bytes;
  if (!whole) throw ToolError("cannot " + action + ": it is incomplete.");
  if (entry.is_folder) CheckFolder(device, source, action, expected, copy);
}

void Receive(const Tool& tool, const Device& device, const DevicePath& source, const DeviceEntry& entry,
             const Expected& expected, const fs::path& copy) {
  const std::string action = "pull " + source.text();
  int code = ADB_RESULT_OK;
  {
    const Progress progress(
        !tool.is_quiet(),
        TransferLine(source.Name(), expected.bytes, [&copy](const bool*) { return SizeOnHost(copy); }));
    code = AdbPullFile(device.serial(), source.c_str(), copy.c_str(), device.cancel());
  }
  // The library understands only the report on a single file; a failure of adb itself has another code. What arrived
  // decides.
  const bool may_be_well = MayComeFromAName(code) || (entry.is_folder && code == ADB_RESULT_PROTOCOL_FAULT);
  device.Check(may_be_well ? ADB_RESULT_OK : code, action);
  try {
    CheckArrived(device, source, action, entry, expected, copy);
  } catch (const ToolError&) {
    if (MayComeFromAName(code)) device.Check(code, action);
    throw;
  }
}

Transfer Pull(const Tool& tool, const Device& device, const DevicePath& source, const fs::path& target) {
  const std::string action = "pull " + source.text();
  const auto entry = RequireEntry(device, source, action);
  CheckKinds(entry, action, target);
  const auto expected = Look(tool, device, source, entry);
  UnfinishedOnHost copy(target);
  const Stopwatch watch;
  Receive(tool, device, source, entry, expected, copy.path());
  Transfer transfer{source.text(), target.native(), 1, SizeOnHost(copy.path()), watch.Seconds()};
  if (entry.is_folder) transfer.files = FilesBelow(copy.path()).size();
  copy.PutInPlace();
  return transfer;
}

void Run(Tool& tool, const Options& options) {
  const bool must_be_folder = options.sources.size() > 1;
  std::vector<Transfer> transfers;
  for (const auto& source : options.sources) {
    if (source.IsRoot()) throw ToolError("cannot pull /: name a folder in it.");
    transfers.push_back(
        Pull(tool, tool.device(), source, TargetOnHost(options.target.text, source, must_be_folder)));
    if (!options.json) ReportTransfer(tool, transfers.back());
  }
  if (options.json) tool.output().WriteJson(TransfersJson(transfers));
}

}  // namespace

void AddPullCommand(Command& root) {
  AddCommand<Options>(root, {"pull", "Copy files and folders from the device", kFooter}, Describe, Run);
}

}  // namespace darokleim::cli
