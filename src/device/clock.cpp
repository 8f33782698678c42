// AdbGetDeviceCurrentTime: the time of the device's clock.
#include "darokleim.h"
#include "src/core/adb_run.h"
#include "src/core/argument_text.h"
#include "src/core/call_log.h"
#include "src/core/caller_output.h"

using namespace darokleim::sdk;

int AdbGetDeviceCurrentTime(const char* serial, char* buffer, int buffer_size, const bool* cancel) {
  CallLog log(__func__);
  if (AnyNull(serial, buffer)) return log.InvalidParam();
  FillCallerBuffer("", buffer, buffer_size);
  // One pair of single quotes around command and format, as the channel expects it.
  const AdbRun run(Cut(256, " -s %s 'shell date +\"%%Y-%%m-%%d %%H:%%M:%%S\"'", serial), cancel);
  const int code = run.Classify();
  if (!run.has_output() || code != ADB_RESULT_OK) return log.Leave(code);
  return log.Leave(FillCallerBuffer(run.output(), buffer, buffer_size));
}
