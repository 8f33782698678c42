// AdbGetFileSize: the size in bytes that the device's stat prints.
#include "darokleim.h"
#include "src/core/adb_run.h"
#include "src/core/argument_text.h"
#include "src/core/call_log.h"
#include "src/filesystem/stat_output.h"

int AdbGetFileSize(const char* serial, const char* device_path, unsigned long long* size,
                   const bool* cancel) {
  using namespace darokleim::sdk;
  CallLog log("AdbGetFileSize");
  if (AnyNull(serial, device_path)) return log.InvalidParam();
  *size = 0;
  const AdbRun run(Measured(" -s %s shell stat \"\"%s\"\"", serial, device_path), cancel);
  const int code = run.Classify();
  if (!run.has_output() || code != ADB_RESULT_OK) return log.Leave(code);
  const auto found = SizeInStatOutput(run.output());
  *size = found.value_or(0);
  return log.Leave(found ? ADB_RESULT_OK : ADB_RESULT_PROTOCOL_FAULT);
}
