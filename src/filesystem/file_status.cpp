// AdbCheckFileExisted, AdbGetFileSize, AdbGetFileCreateTime and two fallbacks: existence, size and time of one file.
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "darokleim.h"
#include "src/core/adb_run.h"
#include "src/core/argument_text.h"
#include "src/core/call_log.h"
#include "src/core/string_helper.h"
#include "src/core/text.h"
#include "src/filesystem/adb_ls_listing.h"
#include "src/filesystem/device_path.h"
#include "src/filesystem/stat_output.h"

using namespace darokleim::sdk;

namespace darokleim::sdk {
namespace {

constexpr LogWording kExistenceWording{kLogInfo, nullptr, nullptr, kLogError, "%s, invalid param."};
constexpr LogWording kFallbackWording{kLogInfo, "%s Enter ...", "%s Leave.", kLogError, nullptr};

// Whether the listing of a path shows it. Old phones escape the spaces in names; the listing of an empty directory is
// empty.
bool ListingShows(std::string_view listing, const char* path) {
  std::string escaped = path;
  replace(escaped, " ", "\\ ");
  return listing.empty() || Contains(listing, path) || Contains(listing, escaped);
}

int TimeFromStat(const char* serial, const char* device_path, unsigned long long* time, const bool* cancel) {
  const AdbRun run(Measured(" -s %s shell stat -c %%Y \"\"%s\"\"", serial, device_path), cancel);
  const int code = run.Classify();
  if (code == ADB_RESULT_OK) *time = static_cast<unsigned long long>(LeadingInteger(run.output()));
  return code;
}

// The time column of the first line "mode size time name" that holds the name anywhere. Deliberately simple: a name
// with spaces makes more than four columns and is never found.
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

int AdbCheckFileExisted(const char* serial, const char* device_path, bool* exists, const bool* cancel) {
  const CallLog log(__func__, kExistenceWording);
  if (AnyNull(serial, device_path) || AnyNull(exists)) return log.InvalidParam();
  *exists = false;
  const AdbRun run(Measured(" -s %s shell ls \"\"%s\"\"", serial, device_path), cancel);
  if (!run.has_output()) {
    // Deliberate: a command that printed nothing reported no error.
    *exists = true;
    return run.status();
  }
  const int code = run.Classify();
  const bool missing = code == ADB_RESULT_NO_SUCH_FILE || code == ADB_RESULT_NO_CLOSING_QUOTE;
  if (code != ADB_RESULT_OK && !missing) return code;
  *exists = !missing && ListingShows(run.output(), device_path);
  // The shell may have misread the path: adb's own listing decides.
  if (!*exists) AdbCheckFileExistedUsingFolderContent(serial, device_path, exists, cancel);
  return ADB_RESULT_OK;
}

int AdbCheckFileExistedUsingFolderContent(const char* serial, const char* device_path, bool* exists,
                                          const bool* cancel) {
  CallLog log(__func__, kFallbackWording);
  const auto path = SplitAtLastSlash(device_path);
  if (!path) return ADB_RESULT_OK;  // deliberately without a leave line: nothing was run
  const AdbRun run = RunAdbLs(serial, path->parent, cancel);
  for (const FileInfo& entry : DecodeADBLSOut(std::string(path->parent), run.output().data(),
                                              static_cast<int>(run.output().size()))) {
    if (entry.file != device_path) continue;
    *exists = true;
    break;
  }
  return log.Leave(run.status());
}

int AdbGetFileSize(const char* serial, const char* device_path, unsigned long long* size,
                   const bool* cancel) {
  CallLog log(__func__);
  if (AnyNull(serial, device_path)) return log.InvalidParam();
  *size = 0;
  const AdbRun run(Measured(" -s %s shell stat \"\"%s\"\"", serial, device_path), cancel);
  const int code = run.Classify();
  if (!run.has_output() || code != ADB_RESULT_OK) return log.Leave(code);
  const auto found = SizeInStatOutput(run.output());
  *size = found.value_or(0);
  return log.Leave(found ? ADB_RESULT_OK : ADB_RESULT_PROTOCOL_FAULT);
}

int AdbGetFileCreateTime(const char* serial, const char* device_path, unsigned long long* time,
                         const bool* cancel) {
  CallLog log(__func__);
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
  CallLog log(__func__, kFallbackWording);
  const auto path = SplitAtLastSlash(device_path);
  if (!path) return ADB_RESULT_OK;  // deliberately without a leave line: nothing was run
  const AdbRun run = RunAdbLs(serial, path->parent, cancel);
  if (const auto found = TimeInAdbLs(run.output(), path->name)) *time = *found;
  return log.Leave(run.status());
}
