// AdbInstallAppFromPCPath, AdbInstallAppFromDevicePath, AdbInstallMultipleAppFromPCPath: APK files.
#include <string>
#include <string_view>

#include "darokleim.h"
#include "src/apps/package_files.h"
#include "src/core/adb_run.h"
#include "src/core/argument_text.h"
#include "src/core/call_log.h"
#include "src/filesystem/device_path.h"
#include "src/platform/log_library.h"

using namespace darokleim::sdk;

namespace darokleim::sdk {
namespace {

// Package managers often do not report that space is missing. With less free space than this, a failure is reported
// as one of space.
constexpr unsigned long long kRoomForInstall = 200ULL * 1024 * 1024;

// Free space that cannot be read counts as 0.
bool LacksRoom(const char* serial) {
  unsigned long long free_bytes = 0;
  AdbGetStorageFreeSpace(serial, "/sdcard", &free_bytes, nullptr);
  return free_bytes < kRoomForInstall;
}

// A fixed number in the log line for a list that cannot be read; log readers search for it.
constexpr int kParseFailureMark = 2264;

}  // namespace
}  // namespace darokleim::sdk

int AdbInstallAppFromPCPath(const char* serial, const char* host_path, const bool* cancel) {
  CallLog log(__func__);
  const std::string_view path = host_path;
  const std::string staged = std::string(kDeviceTempDir).append(path.substr(path.rfind('/') + 1));
  int code = AdbPushFile(serial, host_path, staged.c_str(), cancel);
  if (code == ADB_RESULT_OK) code = AdbInstallAppFromDevicePath(serial, staged.c_str(), cancel);
  // Also after a failed push, which may have left a partial file.
  AdbRemoveFile(serial, staged.c_str(), cancel);
  return log.Leave(code);
}

int AdbInstallAppFromDevicePath(const char* serial, const char* device_path, const bool* cancel) {
  CallLog log(__func__);
  if (AnyNull(serial, device_path)) return log.InvalidParam();
  // The double quotes inside the single ones are for the device's shell.
  const auto args = Cut(256, " -s %s shell pm install -r '\"%s\"'", serial, device_path);
  int code = AdbRun(args, cancel).Classify();
  if (code == ADB_RESULT_FAILURE && LacksRoom(serial)) code = ADB_RESULT_NOT_ENOUGH_SPACE;
  return log.Leave(code);
}

int AdbInstallMultipleAppFromPCPath(const char* serial, const char* json_paths, const bool* cancel) {
  CallLog log(__func__);
  const auto files = ReadPackageFiles(json_paths);
  if (!files) {
    LogEx(kLogModule, kLogError, "%s(%d): Json parse failed.", log.function(), kParseFailureMark);
    return ADB_RESULT_JSON_PARSE_FAILED;  // deliberately without a leave line: nothing was run
  }
  // Without the leading space of other commands: part of the interface to the channel.
  std::string args = std::string("-s ") + serial + " install-multiple -r";
  for (const std::string& file : *files) args.append(" \"").append(file).append("\"");
  return log.Leave(AdbRun(args, cancel).Classify());
}
