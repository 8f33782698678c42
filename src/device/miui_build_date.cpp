// AppendMiuiVersionByTimeCode: the part of a MIUI version that is the date of its build.
#include <ctime>
#include <exception>
#include <limits>
#include <stdexcept>
#include <string>

#include "darokleim.h"
#include "src/core/call_log.h"
#include "src/platform/log_library.h"

namespace darokleim::sdk {
namespace {

// The date in UTC. Throws when the text does not begin with a number, or when that is no time.
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

// MIUI counts years from 2010, and its versions carry the day after the build.
std::string DottedDate(const std::tm& date) {
  constexpr int kFirstYear = 2010 - 1900;
  return std::to_string(date.tm_year - kFirstYear) + "." + std::to_string(date.tm_mon + 1) + "." +
         std::to_string(date.tm_mday + 1);
}

}  // namespace
}  // namespace darokleim::sdk

// By value: the types are part of the linkage name.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
bool AppendMiuiVersionByTimeCode(std::string time_code, std::string& version) {
  using namespace darokleim::sdk;
  constexpr char kFunction[] = "AppendMiuiVersionByTimeCode";
  LogEx(kLogModule, kLogInfo, "%s Enter.With time code:%s", kFunction, time_code.c_str());
  try {
    version += DottedDate(DateOf(time_code));
  } catch (const std::exception& failure) {
    LogEx(kLogModule, kLogError, "%s Exception Catch:%s", kFunction, failure.what());
    return false;
  }
  LogEx(kLogModule, kLogInfo, "%s Leave.With version output:%s", kFunction, version.c_str());
  return true;
}
