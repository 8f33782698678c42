// AdbGetMiuiVersion, AppendMiuiVersionByTimeCode: the version of MIUI.
#include <ctime>
#include <exception>
#include <limits>
#include <stdexcept>
#include <string>
#include <string_view>

#include "darokleim.h"
#include "src/core/call_log.h"
#include "src/core/caller_output.h"
#include "src/core/text.h"
#include "src/device/miui_texts.h"
#include "src/device/property.h"
#include "src/platform/log_library.h"

using namespace darokleim::sdk;

namespace darokleim::sdk {
namespace {

// The date in UTC. Throws when the text does not begin with a number, or when the number is not a time.
std::tm DateOf(const std::string& time_code) {
  const unsigned long seconds = std::stoul(time_code);
  if (seconds > static_cast<unsigned long>(std::numeric_limits<std::time_t>::max())) {
    throw std::out_of_range("no time: " + time_code);
  }
  const auto time = static_cast<std::time_t>(seconds);
  std::tm date;
  if (!gmtime_r(&time, &date)) throw std::out_of_range("no date: " + time_code);
  return date;
}

// MIUI counts years from 2010, and its versions name the day after the build.
std::string DottedDate(const std::tm& date) {
  constexpr int kFirstYear = 2010 - 1900;
  return std::to_string(date.tm_year - kFirstYear) + "." + std::to_string(date.tm_mon + 1) + "." +
         std::to_string(date.tm_mday + 1);
}

void LogUnread(const CallLog& log, const char* what, int code) {
  LogEx(kLogModule, kLogError, "%s , get versoin %s failed.GetPropInfo return %d", log.function(), what,
        code);
}

// The name up to its first carriage return, and the date of the build. On phones that end lines in LF alone the line
// feed after the name stays inside the version; applications rely on it.
int ComposeFromBuildDate(const CallLog& log, std::string_view name, const char* serial, const bool* cancel,
                         std::string& version) {
  const Property time_code(serial, "ro.miui.version.code_time", cancel);
  if (!time_code.has_value()) {
    LogUnread(log, "code time", time_code.code());
    return ADB_RESULT_MIUI_TIME_CODE_FAILED;
  }
  const std::string_view seconds = time_code.value();
  constexpr std::size_t kLongestDate = 24;
  name = name.substr(0, name.find('\r'));
  version.reserve(name.size() + 1 + kLongestDate);
  version.assign(name).append(".");
  const bool appended =
      AppendMiuiVersionByTimeCode(std::string(seconds.substr(0, seconds.rfind('\r'))), version);
  return appended ? ADB_RESULT_OK : ADB_RESULT_MIUI_TIME_CODE_FAILED;
}

int ComposeFromBuildNumber(const CallLog& log, const char* serial, const bool* cancel, std::string& version) {
  const Property build_number(serial, "ro.build.version.incremental", cancel);
  if (!build_number.has_value()) {
    LogUnread(log, "incremental", build_number.code());
    return ADB_RESULT_MIUI_TIME_CODE_FAILED;
  }
  const auto found = VersionInBuildNumber(build_number.value());
  if (!found) {
    LogEx(kLogModule, kLogError, "%s , no version in incremental:%.*s", log.function(),
          PrintedLength(build_number.value()), build_number.value().data());
    return ADB_RESULT_MIUI_TIME_CODE_FAILED;
  }
  version = *found;
  return ADB_RESULT_OK;
}

int Compose(const CallLog& log, const char* serial, const bool* cancel, std::string& version) {
  const Property name(serial, "ro.miui.ui.version.name", cancel);
  if (!name.has_value()) {
    LogUnread(log, "name", ADB_RESULT_MIUI_VERSION_NAME_FAILED);
    return ADB_RESULT_MIUI_VERSION_NAME_FAILED;
  }
  LogEx(kLogModule, kLogInfo, "%s ,version name now have is %.*s.", log.function(),
        PrintedLength(name.value()), name.value().data());
  const std::string_view number = AfterFirstV(name.value());
  return IsDatedName(number) ? ComposeFromBuildDate(log, number, serial, cancel, version)
                             : ComposeFromBuildNumber(log, serial, cancel, version);
}

}  // namespace
}  // namespace darokleim::sdk

// Passed by value because the types are part of the linkage name.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
bool AppendMiuiVersionByTimeCode(std::string time_code, std::string& version) {
  LogEx(kLogModule, kLogInfo, "%s Enter.With time code:%s", __func__, time_code.c_str());
  try {
    version += DottedDate(DateOf(time_code));
  } catch (const std::exception& failure) {
    LogEx(kLogModule, kLogError, "%s Exception Catch:%s", __func__, failure.what());
    return false;
  }
  LogEx(kLogModule, kLogInfo, "%s Leave.With version output:%s", __func__, version.c_str());
  return true;
}

int AdbGetMiuiVersion(const char* serial, char* buffer, int buffer_size, const bool* cancel) {
  CallLog log(__func__);
  if (AnyNull(serial, buffer)) return log.InvalidParam();
  std::string version;
  const int composed = Compose(log, serial, cancel, version);
  if (composed != ADB_RESULT_OK || version.empty()) return log.Leave(composed);
  const int code = FillCallerBuffer(version, buffer, buffer_size, ShownLength(version));
  LogEx(kLogModule, kLogInfo, "%s find version %s .", log.function(), buffer_size > 0 ? buffer : "");
  return log.Leave(code);
}
