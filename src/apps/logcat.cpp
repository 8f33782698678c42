// AdbClearLogcat, AdbLogcatAnsync: the log of a device.
#include <cstdio>

#include "darokleim.h"
#include "src/core/adb_run.h"
#include "src/core/argument_text.h"
#include "src/core/call_log.h"
#include "src/platform/command_channel.h"

using namespace darokleim::sdk;

int AdbClearLogcat(const char* serial, const bool* cancel) {
  CallLog log(__func__);
  return log.Leave(AdbRun(Cut(128, " -s %s logcat -c", serial), cancel).Classify());
}

int AdbLogcatAnsync(const char* serial, const char* filter, void* on_output, void* context,
                    const bool* cancel) {
  CallLog log(__func__);
  // A channel may read the command as long as the stream runs, so it is static. Each call overwrites it: two threads
  // must not call at once.
  static char command[256];
  std::snprintf(command, sizeof command, " -s %s logcat -s %s", serial, filter);
  return log.Leave(ExecuteAdbCommandAnsynchronization(command, cancel, context, on_output));
}
