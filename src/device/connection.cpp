// AdbAuthenticateShow, AdbReconnectDevice, AdbReboot: connecting again.
#include <string>

#include "darokleim.h"
#include "src/core/adb_run.h"
#include "src/core/argument_text.h"
#include "src/core/call_log.h"
#include "src/core/classifier.h"
#include "src/core/text.h"
#include "src/platform/log_library.h"

using namespace darokleim::sdk;

namespace darokleim::sdk {
namespace {

constexpr LogWording kSerialWording{kLogInfo, nullptr, "%s Leave, return %d.", kLogError, nullptr};

// The result of `reconnect`: 1 unless the output holds a known adb error. The classifier gets 1 as the status, so the
// words that adb prints on success never decide: applications take 1 for success, and 0 must not occur.
int ReconnectCode(const AdbRun& run, const char* serial) {
  constexpr int kAsked = 1;
  if (!run.has_output()) return kAsked;
  const int code = Classify(run.output(), kAsked);
  if (code != ADB_RESULT_OK) return code;
  const bool reconnecting = Contains(run.output(), "reconnecting") && Contains(run.output(), serial);
  return reconnecting ? ADB_RESULT_OK : kAsked;
}

}  // namespace
}  // namespace darokleim::sdk

int AdbAuthenticateShow(const char* serial, const bool* cancel) {
  CallLog log(__func__, kSerialWording);
  LogEx(kLogModule, kLogInfo, "%s Enter, serial %s.", log.function(), serial);
  const AdbRun run(Cut(256, " -s %s reconnect", serial), cancel);
  return log.Leave(ReconnectCode(run, serial));
}

int AdbReconnectDevice() {
  CallLog log(__func__, kServerWording);
  const bool never_cancelled = false;
  const AdbRun run(" reconnect", &never_cancelled);
  return log.Leave(run.status());
}

int AdbReboot(const char* serial, const bool* cancel) {
  CallLog log(__func__);
  if (AnyNull(serial)) return log.InvalidParam();
  const AdbRun run(Cut(128, " -s %s reboot", serial), cancel);
  return log.Leave(run.Classify());
}
