// AdbPushFile, AdbPullFile, AdbScreencapToPC: files between host and device.
#include <filesystem>
#include <string>

#include "darokleim.h"
#include "src/core/adb_run.h"
#include "src/core/argument_text.h"
#include "src/core/call_log.h"
#include "src/core/text.h"
#include "src/filesystem/device_path.h"

using namespace darokleim::sdk;

namespace darokleim::sdk {
namespace {

// Without enter and leave lines: the channel's log has a line for each transfer.
constexpr LogWording kTransferWording{kLogInfo, nullptr, nullptr, kLogError, "%s, invalid param."};

}  // namespace
}  // namespace darokleim::sdk

int AdbPushFile(const char* serial, const char* host_path, const char* device_path, const bool* cancel) {
  const CallLog log(__func__, kTransferWording);
  if (AnyNull(serial, host_path, device_path)) return log.InvalidParam();
  const AdbRun run(Measured(" -s %s push --sync \"%s\" \"%s\"", serial, host_path, device_path), cancel);
  const bool done = Contains(run.output(), "file pushed") || Contains(run.output(), "file skipped");
  if (run.status() == 0 && done) return ADB_RESULT_OK;
  return run.Classify();
}

// Unlike a push, a pull succeeds only when adb reports the file; the result is 1 when it does not.
int AdbPullFile(const char* serial, const char* device_path, const char* host_path, const bool* cancel) {
  const CallLog log(__func__, kTransferWording);
  if (AnyNull(serial, device_path, host_path)) return log.InvalidParam();
  const AdbRun run(Measured(" -s %s pull -a \"%s\" \"%s\"", serial, device_path, host_path), cancel);
  const int code = run.Classify();
  if (!run.has_output() || code != ADB_RESULT_OK) return code;
  const bool done = Contains(run.output(), "file pulled") || Contains(run.output(), "file skipped");
  return done ? ADB_RESULT_OK : ADB_RESULT_PROTOCOL_FAULT;
}

// The first failing step ends the function without a leave line, that step has written its own lines. After a failed
// pull the file stays on the device.
int AdbScreencapToPC(const char* serial, const char* host_path, const bool* cancel) {
  CallLog log(__func__);
  if (AnyNull(serial, host_path)) return log.InvalidParam();
  const std::string name = std::filesystem::path(host_path).filename().string();
  if (name.empty()) return ADB_RESULT_INVALID_PARAM;
  const std::string device_path = kDeviceTempDir + name;
  int code = AdbScreencapToDevice(serial, device_path.c_str(), cancel);
  if (code == ADB_RESULT_OK) code = AdbPullFile(serial, device_path.c_str(), host_path, cancel);
  if (code == ADB_RESULT_OK) code = AdbRemoveFile(serial, device_path.c_str(), cancel);
  return code == ADB_RESULT_OK ? log.Leave(code) : code;
}
