// AdbSdkInit, AdbConfigDeviceBusybox: the start of the library, and the resource that it installs on devices.
#include "src/core/sdk.h"

#include <cstdio>
#include <filesystem>
#include <system_error>

#include "darokleim.h"
#include "src/core/call_log.h"
#include "src/platform/command_channel.h"
#include "src/platform/log_library.h"

using namespace darokleim::sdk;

bool is_inited = false;
std::string s_busybox_fullpath;

namespace darokleim::sdk {
namespace {

constexpr char kVersion[] = DAROKLEIM_VERSION "-D-4c1143f";

// Accepts an entry of any kind; one whose status cannot be read counts as missing.
bool Exists(const std::string& path) {
  std::error_code unreadable;
  return std::filesystem::exists(path, unreadable);
}

void OpenLog(const void* log_context, const char* log_dir) {
  const std::string log_path = std::string(log_dir) + "/adb_sdk.log";
  if (!InitLogEx(log_context, kLogModule, log_path.c_str())) std::puts("Fail to init log!");
  LogEx(kLogModule, kLogInfo, "Adb Sdk version: %s.", kVersion);
}

}  // namespace
}  // namespace darokleim::sdk

// Without enter and leave lines: the log is opened here.
int AdbSdkInit(const char* resource_dir, const void* log_context, const char* log_dir) {
  if (AnyNull(resource_dir, log_context, log_dir)) return ADB_RESULT_INVALID_PARAM;
  if (is_inited) return ADB_RESULT_OK;
  is_inited = true;

  const std::string adb_path = std::string(resource_dir) + "/adb";
  s_busybox_fullpath = std::string(resource_dir) + "/busybox";
  OpenLog(log_context, log_dir);
  if (!Exists(adb_path) || !Exists(s_busybox_fullpath)) {
    LogEx(kLogModule, kLogInfo, "Resource file not complete!");
    return ADB_RESULT_RESOURCE_INCOMPLETE;
  }
  InitAdbCommuncation2Server(adb_path.c_str(), log_dir, log_context);
  return ADB_RESULT_OK;
}

// Without enter and leave lines: each step writes its own.
int AdbConfigDeviceBusybox(const char* serial, const bool* cancel) {
  constexpr char kDevicePath[] = "/data/local/tmp/busybox";
  bool exists = false;
  if (const int code = AdbCheckFileExisted(serial, kDevicePath, &exists, cancel)) return code;
  if (!exists) {
    if (const int code = AdbPushFile(serial, s_busybox_fullpath.c_str(), kDevicePath, cancel)) return code;
  }
  return AdbChmodFile(serial, kDevicePath, "a+x", cancel);
}
