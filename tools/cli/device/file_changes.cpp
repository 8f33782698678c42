#include "tools/cli/device/file_changes.h"

#include <darokleim.h>
#include <unistd.h>

#include "tools/cli/device/device_entry.h"
#include "tools/cli/errors.h"
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

DevicePath UnfinishedBeside(const DevicePath& path) {
  return path.Parent().Child(".darokleim-" + std::to_string(getpid()) + ".unfinished");
}

void UnfinishedFile::PutInPlace() {
  Rename(device_, path_, final_path_);
  in_place_ = true;
}

UnfinishedFile::~UnfinishedFile() {
  if (in_place_) return;
  const int code = AdbRemoveFile(device_.serial(), path_.c_str(), nullptr);
  if (code != ADB_RESULT_OK && code != ADB_RESULT_NO_SUCH_FILE) {
    PrintError("an unfinished file may be left on the device: " + path_.text());
  }
}

}  // namespace darokleim::cli
