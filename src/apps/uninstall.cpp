// AdbCheckAppExist, AdbUninstallApp: commands that the package manager answers with "Success".
#include <string>

#include "darokleim.h"
#include "src/core/adb_run.h"
#include "src/core/argument_text.h"
#include "src/core/call_log.h"
#include "src/core/classifier.h"

using namespace darokleim::sdk;

namespace darokleim::sdk {
namespace {

// Deliberately small: a longer command is cut and then run, and applications rely on it.
constexpr std::size_t kUninstallCapacity = 128;

// Unlike in other functions the channel's status comes first: unless it is 0, the output is not read.
int Ask(const std::string& args, const bool* cancel) {
  const AdbRun run(args, cancel);
  if (run.status() != 0) return run.status();
  return ReportsSuccess(run.output()) ? ADB_RESULT_OK : run.Classify();
}

}  // namespace
}  // namespace darokleim::sdk

int AdbCheckAppExist(const char* serial, const char* package, int keep, const bool* cancel) {
  CallLog log(__func__);
  const char* const option = keep != 0 ? " -k" : "";
  return log.Leave(
      Ask(Cut(kUninstallCapacity, " -s %s shell pm path%s %s", serial, option, package), cancel));
}

int AdbUninstallApp(const char* serial, const char* package, int keep_data, const bool* cancel) {
  CallLog log(__func__);
  const char* const option = keep_data != 0 ? " -k" : "";
  return log.Leave(
      Ask(Cut(kUninstallCapacity, " -s %s shell pm uninstall%s %s", serial, option, package), cancel));
}
