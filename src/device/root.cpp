// IsDeviceHadBeenRooted: whether the device has an su program.
#include "darokleim.h"
#include "src/core/adb_run.h"
#include "src/core/argument_text.h"
#include "src/core/call_log.h"
#include "src/core/text.h"
#include "src/platform/log_library.h"

using namespace darokleim::sdk;

namespace darokleim::sdk {
namespace {

struct Probe {
  int code;
  bool found;
};

Probe LookFor(const char* path, const char* serial, const bool* cancel) {
  const AdbRun run(Cut(256, " -s %s shell ls %s", serial, path), cancel);
  const int code = run.Classify();
  if (!run.has_output() || (code != ADB_RESULT_OK && code != ADB_RESULT_NO_SUCH_FILE)) return {code, false};
  // A fixed limit, on purpose: a message after it is ignored.
  constexpr std::size_t kBytesLookedAt = 255;
  return {ADB_RESULT_OK, !Contains(run.output().substr(0, kBytesLookedAt), "No such file")};
}

}  // namespace
}  // namespace darokleim::sdk

int IsDeviceHadBeenRooted(const char* serial, bool* rooted, const bool* cancel) {
  CallLog log(__func__);
  if (AnyNull(serial)) return log.InvalidParam();
  *rooted = false;
  if (LookFor("/system/bin/su", serial, cancel).found) {
    *rooted = true;
    return log.Leave(ADB_RESULT_OK);
  }
  LogEx(kLogModule, kLogInfo, "%s test:sux bigger.", log.function());
  const Probe second = LookFor("/system/xbin/su", serial, cancel);
  *rooted = second.found;
  return log.Leave(second.code);
}
