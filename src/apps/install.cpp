// AdbInstallAppFromPCPath, AdbInstallAppFromDevicePath: one APK file.
#include <string>
#include <string_view>

#include "darokleim.h"
#include "src/core/adb_run.h"
#include "src/core/argument_text.h"
#include "src/core/call_log.h"
#include "src/core/device_temp_dir.h"

namespace darokleim::sdk {
namespace {

// Package managers often do not say that it was the space; with less than this, applications are told so.
constexpr unsigned long long kRoomForInstall = 200ULL * 1024 * 1024;

// Free space that cannot be read counts as none.
bool LacksRoom(const char* serial) {
  unsigned long long free_bytes = 0;
  AdbGetStorageFreeSpace(serial, "/sdcard", &free_bytes, nullptr);
  return free_bytes < kRoomForInstall;
}

}  // namespace
}  // namespace darokleim::sdk

int AdbInstallAppFromPCPath(const char* serial, const char* host_path, const bool* cancel) {
  using namespace darokleim::sdk;
  CallLog log("AdbInstallAppFromPCPath");
  const std::string_view path = host_path;
  const std::string staged = std::string(kDeviceTempDir).append(path.substr(path.rfind('/') + 1));
  int code = AdbPushFile(serial, host_path, staged.c_str(), cancel);
  if (code == ADB_RESULT_OK) code = AdbInstallAppFromDevicePath(serial, staged.c_str(), cancel);
  // Also after a failed push, which may have left a part.
  AdbRemoveFile(serial, staged.c_str(), cancel);
  return log.Leave(code);
}

int AdbInstallAppFromDevicePath(const char* serial, const char* device_path, const bool* cancel) {
  using namespace darokleim::sdk;
  CallLog log("AdbInstallAppFromDevicePath");
  if (AnyNull(serial, device_path)) return log.InvalidParam();
  // The double quotes inside the single ones are for the device's shell.
  const auto args = Cut(256, " -s %s shell pm install -r '\"%s\"'", serial, device_path);
  int code = AdbRun(args, cancel).Classify();
  if (code == ADB_RESULT_FAILURE && LacksRoom(serial)) code = ADB_RESULT_NOT_ENOUGH_SPACE;
  return log.Leave(code);
}
