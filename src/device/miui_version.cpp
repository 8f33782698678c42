// AdbGetMiuiVersion: the version of MIUI, from one of two sources.
#include <string>
#include <string_view>

#include "darokleim.h"
#include "src/core/call_log.h"
#include "src/core/caller_buffer.h"
#include "src/device/miui_texts.h"
#include "src/device/property.h"
#include "src/platform/log_library.h"

namespace darokleim::sdk {
namespace {

constexpr char kFunction[] = "AdbGetMiuiVersion";

void LogUnread(const char* what, int code) {
  LogEx(kLogModule, kLogError, "%s , get versoin %s failed.GetPropInfo return %d", kFunction, what, code);
}

// The name before its first carriage return, and the date of the build. On phones that end lines in a line
// feed alone the name keeps it, mid-version; applications know.
int ComposeFromBuildDate(std::string_view name, const char* serial, const bool* cancel,
                         std::string& version) {
  const Property time_code(serial, "ro.miui.version.code_time", cancel);
  if (!time_code.has_value()) {
    LogUnread("code time", time_code.code());
    return ADB_RESULT_MIUI_TIME_CODE_FAILED;
  }
  const std::string_view seconds = time_code.value();
  version = std::string(name.substr(0, name.find('\r'))) + ".";
  const bool appended =
      AppendMiuiVersionByTimeCode(std::string(seconds.substr(0, seconds.rfind('\r'))), version);
  return appended ? ADB_RESULT_OK : ADB_RESULT_MIUI_TIME_CODE_FAILED;
}

int ComposeFromBuildNumber(const char* serial, const bool* cancel, std::string& version) {
  const Property build_number(serial, "ro.build.version.incremental", cancel);
  if (!build_number.has_value()) {
    LogUnread("incremental", build_number.code());
    return ADB_RESULT_MIUI_TIME_CODE_FAILED;
  }
  const auto found = VersionInBuildNumber(build_number.value());
  if (!found) {
    LogEx(kLogModule, kLogError, "%s , no version in incremental:%s", kFunction,
          std::string(build_number.value()).c_str());
    return ADB_RESULT_MIUI_TIME_CODE_FAILED;
  }
  version = *found;
  return ADB_RESULT_OK;
}

int Compose(const char* serial, const bool* cancel, std::string& version) {
  const Property name(serial, "ro.miui.ui.version.name", cancel);
  if (!name.has_value()) {
    LogUnread("name", ADB_RESULT_MIUI_VERSION_NAME_FAILED);
    return ADB_RESULT_MIUI_VERSION_NAME_FAILED;
  }
  LogEx(kLogModule, kLogInfo, "%s ,version name now have is %s.", kFunction,
        std::string(name.value()).c_str());
  const std::string_view number = AfterFirstV(name.value());
  return IsDatedName(number) ? ComposeFromBuildDate(number, serial, cancel, version)
                             : ComposeFromBuildNumber(serial, cancel, version);
}

}  // namespace
}  // namespace darokleim::sdk

int AdbGetMiuiVersion(const char* serial, char* buffer, int buffer_size, const bool* cancel) {
  using namespace darokleim::sdk;
  CallLog log(kFunction);
  if (AnyNull(serial, buffer)) return log.InvalidParam();
  std::string version;
  const int composed = Compose(serial, cancel, version);
  if (composed != ADB_RESULT_OK || version.empty()) return log.Leave(composed);
  const int code = FillCallerBuffer(version, buffer, buffer_size, ShownLength(version));
  LogEx(kLogModule, kLogInfo, "%s find version %s .", kFunction, buffer_size > 0 ? buffer : "");
  return log.Leave(code);
}
