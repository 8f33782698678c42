// AdbGetStorageFreeSpace: how much room a storage of the device has left.
#include <string>

#include "darokleim.h"
#include "src/core/adb_run.h"
#include "src/core/argument_text.h"
#include "src/core/call_log.h"
#include "src/filesystem/df_output.h"
#include "src/platform/log_library.h"

int AdbGetStorageFreeSpace(const char* serial, const char* path, unsigned long long* free_bytes,
                           const bool* cancel) {
  using namespace darokleim::sdk;
  CallLog log("AdbGetStorageFreeSpace");
  if (AnyNull(serial, path, free_bytes)) return log.InvalidParam();
  *free_bytes = 0;
  const AdbRun run(Measured(" -s %s shell df %s | grep /", serial, path), cancel);
  if (!run.has_output()) {
    LogEx(kLogModule, kLogInfo, "out buf empty, serial %s", serial);
    return log.Leave(run.status());
  }
  LogEx(kLogModule, kLogInfo, "out buf: %s", std::string(run.output()).c_str());
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
