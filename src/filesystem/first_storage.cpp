// AdbGetFirstSDCardPath: where a device keeps its shared storage.
#include <string>

#include "darokleim.h"
#include "src/core/adb_run.h"
#include "src/core/argument_text.h"
#include "src/core/call_log.h"
#include "src/core/caller_buffer.h"
#include "src/platform/log_library.h"

namespace darokleim::sdk {
namespace {

// "/sdcard", then "/sdcard0" to "/sdcard9".
constexpr int kCandidates = 11;
constexpr int kRoomForCandidate = sizeof "/sdcard0";

std::string Candidate(int index) {
  return index == 0 ? "/sdcard" : "/sdcard" + std::to_string(index - 1);
}

}  // namespace
}  // namespace darokleim::sdk

int AdbGetFirstSDCardPath(const char* serial, char* buffer, int buffer_size, const bool* cancel) {
  using namespace darokleim::sdk;
  CallLog log("AdbGetFirstSDCardPath");
  if (AnyNull(serial, buffer)) return log.InvalidParam();
  if (buffer_size < kRoomForCandidate) {
    LogEx(kLogModule, kLogError, "%s, buffer is too little.", log.function());
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
