#include "tools/cli/device/device_entry.h"

#include <darokleim.h>

#include "tools/cli/device/argument_text.h"
#include "tools/cli/device/file_listing.h"
#include "tools/cli/errors.h"

namespace darokleim::cli {
namespace {

std::string Action(const DevicePath& path) {
  return "look at " + path.text();
}

// Only for failures of the connection and of the call: what stat says of the path is an answer.
void CheckConnection(const Device& device, int code, const DevicePath& path) {
  const bool is_answer = code == ADB_RESULT_NO_SUCH_FILE || code == ADB_RESULT_PROTOCOL_FAULT ||
                         code == ADB_RESULT_SHELL_NOT_FOUND;
  device.Check(is_answer ? ADB_RESULT_OK : code, Action(path));
}

// Through a folder's own "." entry, which nothing else has.
bool IsFolder(const Device& device, const DevicePath& path) {
  unsigned long long size = 0;
  const std::string inside = (path.IsRoot() ? "" : path.text()) + "/.";
  const int code = AdbGetFileSize(device.serial(), inside.c_str(), &size, device.cancel());
  CheckConnection(device, code, path);
  return code == ADB_RESULT_OK;
}

bool IsInItsFolder(const Device& device, const DevicePath& path) {
  bool exists = false;
  device.Check(AdbCheckFileExistedUsingFolderContent(device.serial(), path.c_str(), &exists, device.cancel()),
               Action(path));
  return exists;
}

// What is directly in the root is not found through its folder, which adb does not list. It is on some storage.
bool IsInTheRoot(const Device& device, const DevicePath& path) {
  unsigned long long free_bytes = 0;
  const std::string argument = ForBarePlace(path.text());
  return AdbGetStorageFreeSpace(device.serial(), argument.c_str(), &free_bytes, device.cancel()) ==
         ADB_RESULT_OK;
}

// AdbCheckFileExisted takes a path that ls reports an error for as existing, so its folder is searched as well.
bool ExistsWithoutStat(const Device& device, const DevicePath& path) {
  if (path.Parent().IsRoot()) return IsInTheRoot(device, path);
  bool exists = false;
  device.Check(AdbCheckFileExisted(device.serial(), path.c_str(), &exists, device.cancel()), Action(path));
  return exists && IsInItsFolder(device, path);
}

// On a device without stat.
std::optional<DeviceEntry> FindWithoutStat(const Device& device, const DevicePath& path) {
  if (path.IsRoot()) return DeviceEntry{true, std::nullopt};
  if (!ExistsWithoutStat(device, path)) return std::nullopt;
  if (const auto file = ListFile(device, path)) return DeviceEntry{false, file->size};
  return DeviceEntry{true, std::nullopt};
}

}  // namespace

std::optional<DeviceEntry> FindEntry(const Device& device, const DevicePath& path) {
  unsigned long long size = 0;
  const int code = AdbGetFileSize(device.serial(), path.c_str(), &size, device.cancel());
  CheckConnection(device, code, path);
  switch (code) {
    case ADB_RESULT_OK:
      if (IsFolder(device, path)) return DeviceEntry{true, std::nullopt};
      return DeviceEntry{false, size};
    case ADB_RESULT_SHELL_NOT_FOUND:
      return FindWithoutStat(device, path);
    case ADB_RESULT_PROTOCOL_FAULT:  // stat was refused, or the path leads through a file
      if (IsInItsFolder(device, path)) return DeviceEntry{};
      return std::nullopt;
    default:
      return std::nullopt;
  }
}

bool EntryExists(const Device& device, const DevicePath& path) {
  return FindEntry(device, path).has_value();
}

DeviceEntry RequireEntry(const Device& device, const DevicePath& path, const std::string& action) {
  const auto entry = FindEntry(device, path);
  if (!entry) {
    throw ToolError("cannot " + action + ". No such file: " + path.text() + ". Paths are case-sensitive.");
  }
  return *entry;
}

DevicePath TargetFor(const Device& device, const DevicePath& path, const std::string& name) {
  const auto entry = FindEntry(device, path);
  return entry && entry->is_folder ? path.Child(name) : path;
}

}  // namespace darokleim::cli
