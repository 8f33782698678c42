// AdbSearchSDCardPath, AdbSearchExternalSDCardPath: the storage volumes of a device.
#include <json/value.h>

#include <string>
#include <string_view>

#include "darokleim.h"
#include "src/core/adb_run.h"
#include "src/core/argument_text.h"
#include "src/core/call_log.h"
#include "src/core/handed_out.h"
#include "src/filesystem/json_text.h"
#include "src/filesystem/storage_listing.h"
#include "src/platform/log_library.h"

namespace darokleim::sdk {
namespace {

// Older than the standard wording: a null serial is logged below the errors, and with a leave line.
constexpr LogWording kSearchWording{kLogInfo, "%s Enter.", "%s Leave %d", kLogInfo, "%s Param is Invalid"};

// Runs the search and hands out what the listing is turned into. The listing is not searched for messages
// of adb: names of volumes may be any words. The channel's value alone decides.
template <typename TextOf>
int Search(CallLog& log, const char* serial, const bool* cancel, TextOf text_of, char** out, int* out_len) {
  if (AnyNull(serial)) return log.Leave(log.InvalidParam());
  // No blank at the front, unlike other commands: part of the interface to the channel.
  const AdbRun run(Cut(256, "-s %s shell ls -l /storage", serial), cancel);
  if (run.status() != 0) {
    LogEx(kLogModule, kLogInfo, "%s Execute Command Failed. Error = %d.", log.function(), run.status());
    return log.Leave(run.status());
  }
  const std::string text = text_of(run.output());
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

int AdbSearchSDCardPath(const char* serial, char** paths, int* paths_len, const bool* cancel) {
  using namespace darokleim::sdk;
  CallLog log("AdbSearchSDCardPath", kSearchWording);
  const int code = Search(log, serial, cancel, VolumesAsJson, paths, paths_len);
  if (code == ADB_RESULT_OK) LogEx(kLogModule, kLogInfo, "%s Out Path: %s", log.function(), *paths);
  return code;
}

int AdbSearchExternalSDCardPath(const char* serial, char** path, int* path_len, const bool* cancel) {
  using namespace darokleim::sdk;
  CallLog log("AdbSearchExternalSDCardPath", kSearchWording);
  return Search(log, serial, cancel, CardPath, path, path_len);
}
