#include "tools/cli/commands/files/folder_push.h"

#include <darokleim.h>

#include <exception>
#include <map>
#include <string>
#include <vector>

#include "tools/cli/device/device_entry.h"
#include "tools/cli/device/file_changes.h"
#include "tools/cli/device/file_listing.h"
#include "tools/cli/errors.h"
#include "tools/cli/host/host_file.h"
#include "tools/cli/output/human_text.h"
#include "tools/cli/output/progress.h"
#include "tools/cli/output/result_text.h"
#include "tools/cli/output/standard_streams.h"

namespace darokleim::cli {
namespace {

// What is below the target on the device, by path.
using Files = std::map<std::string, ListedFile>;

Files FilesOnDevice(const Device& device, const DevicePath& folder) {
  Files files;
  for (auto& file : ListFilesByService(device, folder)) files.emplace(file.path, file);
  return files;
}

bool IsUnchanged(const Files& before, const ListedFile& file) {
  const auto found = before.find(file.path);
  return found != before.end() && found->second.size == file.size && found->second.seconds == file.seconds;
}

class FolderPush {
 public:
  FolderPush(const Device& device, const PushSource& source, const DevicePath& target)
      : device_(device), source_(source), target_(target), files_(FilesBelow(source.path)) {
    is_there_ = EntryExists(device, target);
    if (is_there_) before_ = FilesOnDevice(device, target);
  }

  const std::vector<HostFile>& files() const { return files_; }

  void Run() const {
    const std::string action = "push " + source_.path.native();
    // adb puts a folder into an existing one, under its own name.
    const int code = RunPush(device_, source_, is_there_ ? target_.Parent() : target_);
    try {
      device_.Check(MayComeFromAName(code) ? ADB_RESULT_OK : code, action);
      CheckArrived(action);
    } catch (const std::exception&) {
      CleanUp();
      if (MayComeFromAName(code)) device_.Check(code, action);
      throw;
    }
  }

 private:
  // An unchanged file was skipped. A name that the listing cannot carry is looked up alone.
  void CheckArrived(const std::string& action) const {
    const auto now = FilesOnDevice(device_, target_);
    for (const auto& file : files_) {
      const auto path = target_.Child(file.path);
      const auto listed = now.find(path.text());
      if (listed != now.end() && (listed->second.size == file.size || IsUnchanged(before_, listed->second))) {
        continue;
      }
      const auto entry = FindEntry(device_, path);
      if (!entry || entry->size.value_or(file.size) != file.size) {
        throw ToolError("cannot " + action + ": " + file.path + " is incomplete on the device.");
      }
    }
  }

  // The file that was being written has its final name.
  void CleanUp() const try {
    const CleanUpScope limit;
    const Device device = device_.ForCleaningUp();
    if (!EntryExists(device, target_)) return;
    const auto now = FilesOnDevice(device, target_);
    for (const auto& file : files_) {
      const auto path = target_.Child(file.path);
      const auto listed = now.find(path.text());
      if (listed == now.end() || listed->second.size >= file.size || IsUnchanged(before_, listed->second)) {
        continue;
      }
      RemoveFile(device, path);
      PrintError("deleted, because it is incomplete: " + path.text());
    }
  } catch (const ToolError& error) {
    PrintError("an incomplete file may be left below " + target_.text() + ": " + error.what());
  }

  const Device& device_;
  const PushSource& source_;
  const DevicePath& target_;
  std::vector<HostFile> files_;
  bool is_there_ = false;
  Files before_;
};

}  // namespace

Transfer PushFolder(const Tool& tool, const Device& device, const PushSource& source,
                    const DevicePath& target) {
  const FolderPush push(device, source, target);
  Transfer transfer{source.path.native(), target.text(), push.files().size(), 0};
  for (const auto& file : push.files()) transfer.bytes += file.size;
  const Progress progress(!tool.is_quiet(),
                          WaitingLine(source.path.filename().native() + "  " +
                                      CountText(transfer.files, "file") + ", " + SizeText(transfer.bytes)));
  const Stopwatch watch;
  push.Run();
  transfer.seconds = watch.Seconds();
  return transfer;
}

}  // namespace darokleim::cli
