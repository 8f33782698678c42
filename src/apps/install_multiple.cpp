// AdbInstallMultipleAppFromPCPath: the APK files of a split package, installed as one.
#include <string>

#include "darokleim.h"
#include "src/apps/package_files.h"
#include "src/core/adb_run.h"
#include "src/core/call_log.h"
#include "src/platform/log_library.h"

namespace darokleim::sdk {
namespace {

// Stands in the log line for a list that cannot be read; a fixed mark that log readers know.
constexpr int kParseFailureMark = 2264;

}  // namespace
}  // namespace darokleim::sdk

int AdbInstallMultipleAppFromPCPath(const char* serial, const char* json_paths, const bool* cancel) {
  using namespace darokleim::sdk;
  CallLog log("AdbInstallMultipleAppFromPCPath");
  const auto files = ReadPackageFiles(json_paths);
  if (!files) {
    LogEx(kLogModule, kLogError, "%s(%d): Json parse failed.", log.function(), kParseFailureMark);
    return ADB_RESULT_JSON_PARSE_FAILED;
  }
  // No blank at the front, unlike other commands: part of the interface to the channel.
  std::string args = std::string("-s ") + serial + " install-multiple -r";
  for (const std::string& file : *files) args.append(" \"").append(file).append("\"");
  return log.Leave(AdbRun(args, cancel).Classify());
}
