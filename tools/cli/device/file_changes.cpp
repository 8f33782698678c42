#include "tools/cli/device/file_changes.h"

#include <darokleim.h>

#include <string_view>

#include "tools/cli/device/device_entry.h"
#include "tools/cli/device/file_listing.h"
#include "tools/cli/errors.h"
#include "tools/cli/host/run_mark.h"
#include "tools/cli/output/standard_streams.h"

namespace darokleim::cli {
namespace {

// For a change that the device reported as done but did not make. Such phones give no reason.
[[noreturn]] void ThrowNotDone(const std::string& action) {
  throw ToolError(
      "cannot " + action +
      ": the device did not do it and gave no known reason. adb may not be allowed to write there; "
      "the device's own words are in the log, adb_sdk.log.");
}

constexpr char kUnfinishedBegin[] = ".darokleim-";
constexpr char kUnfinishedEnd[] = ".unfinished";

// Whether a file of this name was left by a run that has ended.
bool IsLeftover(std::string_view name) {
  const std::string_view begin = kUnfinishedBegin;
  const std::string_view end = kUnfinishedEnd;
  if (name.size() < begin.size() + end.size() || !name.starts_with(begin) || !name.ends_with(end))
    return false;
  return HasEnded(name.substr(begin.size(), name.size() - begin.size() - end.size()));
}

// A folder that cannot be listed is left as it is.
void RemoveLeftovers(const Device& device, const DevicePath& folder) {
  for (const auto& name : NamesOfFiles(device, folder)) {
    if (IsLeftover(name)) AdbRemoveFile(device.serial(), folder.Child(name).c_str(), device.cancel());
  }
}

// Also after a cancel.
void Delete(const Device& device, const std::string& path) {
  const CleanUpScope limit;
  const int code = AdbRemoveFile(device.serial(), path.c_str(), CleanUpScope::flag());
  if (code != ADB_RESULT_OK && code != ADB_RESULT_NO_SUCH_FILE) {
    PrintError("an unfinished file may be left on the device: " + path);
  }
}

}  // namespace

void MakeFolder(const Device& device, const DevicePath& path) {
  const std::string action = "make the folder " + path.text();
  device.Check(AdbCreateDir(device.serial(), path.c_str(), device.cancel()), action);
  const auto entry = FindEntry(device, path);
  if (!entry || !entry->is_folder) ThrowNotDone(action);
}

void RemoveFile(const Device& device, const DevicePath& path) {
  const std::string action = "delete " + path.text();
  device.Check(AdbRemoveFile(device.serial(), path.c_str(), device.cancel()), action);
  if (EntryExists(device, path)) ThrowNotDone(action);
}

void Rename(const Device& device, const DevicePath& from, const DevicePath& to) {
  const std::string action = "move " + from.text() + " to " + to.text();
  device.Check(AdbRenameFile(device.serial(), from.c_str(), to.c_str(), device.cancel()), action);
  if (EntryExists(device, from) || !EntryExists(device, to)) ThrowNotDone(action);
}

UnfinishedFile::UnfinishedFile(const Device& device, const DevicePath& final_path)
    : device_(device),
      final_path_(final_path),
      path_(final_path.Parent().Child(kUnfinishedBegin + OwnRunName() + kUnfinishedEnd)) {
  RemoveLeftovers(device, final_path.Parent());
}

void UnfinishedFile::PutInPlace() {
  Rename(device_, path_, final_path_);
  in_place_ = true;
}

UnfinishedFile::~UnfinishedFile() {
  if (!in_place_) Delete(device_, path_.text());
}

StagedFile::~StagedFile() {
  if (!is_gone_) Delete(device_, path_);
}

}  // namespace darokleim::cli
