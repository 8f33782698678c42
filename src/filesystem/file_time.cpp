// AdbGetFileCreateTime and its fallback: when a file was last changed, in seconds since 1970.
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "darokleim.h"
#include "src/core/adb_run.h"
#include "src/core/argument_text.h"
#include "src/core/call_log.h"
#include "src/core/numbers.h"
#include "src/core/string_helper.h"
#include "src/core/text.h"
#include "src/filesystem/adb_ls_run.h"
#include "src/filesystem/device_path.h"

namespace darokleim::sdk {
namespace {

constexpr LogWording kFallbackWording{kLogInfo, "%s Enter ...", "%s Leave.", kLogError, nullptr};

int TimeFromStat(const char* serial, const char* device_path, unsigned long long* time, const bool* cancel) {
  const AdbRun run(Measured(" -s %s shell stat -c %%Y \"\"%s\"\"", serial, device_path), cancel);
  const int code = run.Classify();
  if (code == ADB_RESULT_OK) *time = static_cast<unsigned long long>(LeadingInteger(run.output()));
  return code;
}

// The time column of the first line "mode size time name" that mentions the name anywhere. Deliberately
// simple: a name with blanks makes more than four columns and is never found.
std::optional<unsigned long long> TimeInAdbLs(std::string_view listing, std::string_view name) {
  std::optional<unsigned long long> time;
  ForEachPiece(listing, "\n", [&](std::string_view line) {
    if (!Contains(line, name)) return true;
    std::vector<std::string> columns;
    if (StringHelper::StringSplit(columns, std::string(line), " ") != 4) return true;
    time = std::strtoul(columns[2].c_str(), nullptr, 16);
    return false;
  });
  return time;
}

}  // namespace
}  // namespace darokleim::sdk

int AdbGetFileCreateTime(const char* serial, const char* device_path, unsigned long long* time,
                         const bool* cancel) {
  using namespace darokleim::sdk;
  CallLog log("AdbGetFileCreateTime");
  if (AnyNull(serial, device_path) || AnyNull(time)) return log.InvalidParam();
  *time = 0;
  int code = TimeFromStat(serial, device_path, time, cancel);
  if (code == ADB_RESULT_SHELL_NOT_FOUND) {
    code = AdbGetFileCreateTimeFromLs(serial, device_path, time, cancel);
  }
  return log.Leave(code);
}

int AdbGetFileCreateTimeFromLs(const char* serial, const char* device_path, unsigned long long* time,
                               const bool* cancel) {
  using namespace darokleim::sdk;
  CallLog log("AdbGetFileCreateTimeFromLs", kFallbackWording);
  const auto path = SplitAtLastSlash(device_path);
  if (!path) return ADB_RESULT_OK;
  const AdbRun run = RunAdbLs(serial, path->parent, cancel);
  if (const auto found = TimeInAdbLs(run.output(), path->name)) *time = *found;
  return log.Leave(run.status());
}
