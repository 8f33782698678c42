// AdbGetAppVersion: the version of an installed package.
#include "darokleim.h"
#include "src/apps/package_output.h"
#include "src/apps/unchecked_buffer.h"
#include "src/core/adb_run.h"
#include "src/core/argument_text.h"
#include "src/core/call_log.h"
#include "src/core/classifier.h"

int AdbGetAppVersion(const char* serial, const char* package, char* buffer, int /*buffer_size*/,
                     const bool* cancel) {
  using namespace darokleim::sdk;
  CallLog log("AdbGetAppVersion");
  if (AnyNull(serial, package, buffer)) return log.InvalidParam();
  buffer[0] = '\0';
  // The blank at the end is part of the command.
  const AdbRun run(Cut(256, " -s %s shell dumpsys package %s ", serial, package), cancel);
  if (!run.has_output()) return log.Leave(run.status());
  // Dumps hold the word "Failure" for reasons of their own.
  constexpr bool kLineFailureOnly = true;
  const int code = Classify(run.output(), run.status(), kLineFailureOnly);
  if (code != ADB_RESULT_OK) return log.Leave(code);
  return log.Leave(FillWithFirstFound(run.output(), FindVersion, buffer));
}
