// One command of the device's shell for each function. The commands print nothing on success: output that the
// classifier does not know is not an error. How each path is quoted is part of the interface.
#include "darokleim.h"
#include "src/core/adb_run.h"
#include "src/core/argument_text.h"
#include "src/core/call_log.h"

using namespace darokleim::sdk;

int AdbCopyFile(const char* serial, const char* source, const char* destination, const bool* cancel) {
  CallLog log(__func__);
  if (AnyNull(serial, source, destination)) return log.InvalidParam();
  const auto args = Measured(" -s %s shell cp \"%s\" \"%s\"", serial, source, destination);
  return log.Leave(AdbRun(args, cancel).Classify());
}

int AdbRemoveFile(const char* serial, const char* device_path, const bool* cancel) {
  CallLog log(__func__);
  if (AnyNull(serial, device_path)) return log.InvalidParam();
  const auto args = Measured(" -s %s shell rm \"%s\"", serial, device_path);
  return log.Leave(AdbRun(args, cancel).Classify());
}

// The single quotes inside the double ones are for the device's shell.
int AdbRenameFile(const char* serial, const char* old_path, const char* new_path, const bool* cancel) {
  CallLog log(__func__);
  if (AnyNull(serial, old_path, new_path)) return log.InvalidParam();
  const auto args = Measured(" -s %s shell mv \"'%s'\" \"'%s'\"", serial, old_path, new_path);
  return log.Leave(AdbRun(args, cancel).Classify());
}

int AdbCreateDir(const char* serial, const char* device_path, const bool* cancel) {
  CallLog log(__func__);
  const auto args = Measured(" -s %s shell mkdir -p \"\"%s\"\"", serial, device_path);
  return log.Leave(AdbRun(args, cancel).Classify());
}

// Deliberately unquoted: callers pass several paths, or a pattern, at once.
int AdbChmodFile(const char* serial, const char* device_path, const char* mode, const bool* cancel) {
  CallLog log(__func__);
  if (AnyNull(serial, device_path, mode)) return log.InvalidParam();
  const auto args = Measured(" -s %s shell chmod %s %s", serial, mode, device_path);
  return log.Leave(AdbRun(args, cancel).Classify());
}

int AdbScreencapToDevice(const char* serial, const char* device_path, const bool* cancel) {
  CallLog log(__func__);
  if (AnyNull(serial, device_path)) return log.InvalidParam();
  const auto args = Measured(" -s %s shell screencap -p \"%s\"", serial, device_path);
  return log.Leave(AdbRun(args, cancel).Classify());
}
