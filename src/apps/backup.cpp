// AdbBackupApp, AdbRestoreApp, AdbStopDeviceBackupRestoreProcess: backups, which the user confirms on the device.
#include "darokleim.h"
#include "src/core/adb_run.h"
#include "src/core/argument_text.h"
#include "src/core/call_log.h"

using namespace darokleim::sdk;

int AdbBackupApp(const char* serial, const char* package, const char* host_path, const bool* cancel) {
  CallLog log(__func__);
  if (AnyNull(serial, package, host_path)) return log.InvalidParam();
  const auto args = Measured(" -s %s backup -f \"%s\" -noapk -nosystem %s", serial, host_path, package);
  return log.Leave(AdbRun(args, cancel).Classify());
}

int AdbRestoreApp(const char* serial, const char* host_path, const bool* cancel) {
  CallLog log(__func__);
  const auto args = Measured(" -s %s restore \"%s\"", serial, host_path);
  return log.Leave(AdbRun(args, cancel).Classify());
}

int AdbStopDeviceBackupRestoreProcess(const char* serial, const bool* cancel) {
  CallLog log(__func__);
  const auto args = Cut(128, " -s %s shell am force-stop com.android.backupconfirm", serial);
  return log.Leave(AdbRun(args, cancel).Classify());
}
