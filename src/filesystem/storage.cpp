// AdbGetFirstSDCardPath, AdbGetStorageFreeSpace, AdbSearchSDCardPath, AdbSearchExternalSDCardPath: the storage of
// a device.
#include <json/value.h>

#include <string>
#include <string_view>

#include "darokleim.h"
#include "src/core/adb_run.h"
#include "src/core/argument_text.h"
#include "src/core/call_log.h"
#include "src/core/caller_output.h"
#include "src/core/text.h"
#include "src/filesystem/json_text.h"
#include "src/filesystem/storage_output.h"
#include "src/platform/log_library.h"

using namespace darokleim::sdk;

namespace darokleim::sdk {
namespace {

// "/sdcard", then "/sdcard0" to "/sdcard9".
constexpr int kCandidates = 11;
constexpr int kRoomForCandidate = sizeof "/sdcard0";

std::string Candidate(int index) {
  return index == 0 ? "/sdcard" : "/sdcard" + std::to_string(index - 1);
}

// Deliberately not the standard wording: a null serial is logged as progress, not as an error, with a leave line.
constexpr LogWording kSearchWording{kLogInfo, "%s Enter.", "%s Leave %d", kLogInfo, "%s Param is Invalid"};

// Runs the search, converts the listing with to_text and hands the text out. The channel's status alone decides: the
// listing is not searched for adb's messages, because volumes can have any name.
template <typename ToText>
int Search(CallLog& log, const char* serial, const bool* cancel, ToText to_text, char** out, int* out_len) {
  if (AnyNull(serial)) return log.Leave(log.InvalidParam());
  std::string text;
  {
    // Without the leading space of other commands: part of the interface to the channel.
    const AdbRun run(Cut(256, "-s %s shell ls -l /storage", serial), cancel);
    if (run.status() != 0) {
      LogEx(kLogModule, kLogInfo, "%s Execute Command Failed. Error = %d.", log.function(), run.status());
      return log.Leave(run.status());
    }
    text = to_text(run.output());
  }  // The listing is given back before the text is copied.
  *out_len = static_cast<int>(text.size());
  *out = NewTerminatedBlock(text);
  return log.Leave(ADB_RESULT_OK);
}

std::string VolumesAsJson(std::string_view listing) {
  Json::Value paths;
  for (const std::string& path : VolumePaths(listing)) paths.append(path);
  return JsonToString(paths);
}

}  // namespace
}  // namespace darokleim::sdk

int AdbGetFirstSDCardPath(const char* serial, char* buffer, int buffer_size, const bool* cancel) {
  CallLog log(__func__);
  if (AnyNull(serial, buffer)) return log.InvalidParam();
  if (buffer_size < kRoomForCandidate) {
    LogEx(kLogModule, kLogError, "%s, buffer is too little.", log.function());
    // Deliberately without a leave line: refused like a null argument.
    return ADB_RESULT_BUFFER_TOO_SMALL;
  }
  int code = ADB_RESULT_OK;
  for (int i = 0; i < kCandidates; ++i) {
    const std::string path = Candidate(i);
    const AdbRun run(Cut(256, " -s %s shell stat \"%s\"", serial, path.c_str()), cancel);
    code = run.Classify();
    if (!run.has_output()) continue;
    if (code == ADB_RESULT_OK) FillCallerBuffer(path, buffer, buffer_size);
    if (code == ADB_RESULT_OK || code == ADB_RESULT_NO_DEVICE) break;
  }
  return log.Leave(code);
}

int AdbGetStorageFreeSpace(const char* serial, const char* path, unsigned long long* free_bytes,
                           const bool* cancel) {
  CallLog log(__func__);
  if (AnyNull(serial, path, free_bytes)) return log.InvalidParam();
  *free_bytes = 0;
  const AdbRun run(Measured(" -s %s shell df %s | grep /", serial, path), cancel);
  if (!run.has_output()) {
    LogEx(kLogModule, kLogInfo, "out buf empty, serial %s", serial);
    return log.Leave(run.status());
  }
  LogEx(kLogModule, kLogInfo, "out buf: %.*s", PrintedLength(run.output()), run.output().data());
  const int code = run.Classify();
  if (code != ADB_RESULT_OK) return log.Leave(code);
  const auto found = FreeBytes(run.output());
  if (!found) {
    LogEx(kLogModule, kLogInfo, "%s Execute Command Failed. Output is Invalid", log.function());
    return log.Leave(ADB_RESULT_PROTOCOL_FAULT);
  }
  *free_bytes = *found;
  return log.Leave(ADB_RESULT_OK);
}

int AdbSearchSDCardPath(const char* serial, char** paths, int* paths_len, const bool* cancel) {
  CallLog log(__func__, kSearchWording);
  const int code = Search(log, serial, cancel, VolumesAsJson, paths, paths_len);
  if (code == ADB_RESULT_OK) LogEx(kLogModule, kLogInfo, "%s Out Path: %s", log.function(), *paths);
  return code;
}

int AdbSearchExternalSDCardPath(const char* serial, char** path, int* path_len, const bool* cancel) {
  CallLog log(__func__, kSearchWording);
  return Search(log, serial, cancel, CardPath, path, path_len);
}
