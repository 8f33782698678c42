// AdbKillDaemon, AdbStartDaemon, AdbStartDaemonEx, AdbRestartDaemon: the adb server of the host.
#include "src/core/server_control.h"

#include <string>
#include <string_view>

#include "darokleim.h"
#include "src/core/adb_run.h"
#include "src/core/call_log.h"
#include "src/core/text.h"
#include "src/platform/log_library.h"

namespace darokleim::sdk {
namespace {

constexpr int kServerPort = 5037;

void LogOutput(const AdbRun& run) {
  if (run.has_output()) LogEx(kLogModule, kLogInfo, "%s", std::string(run.output()).c_str());
}

// 1 is no failure: it tells applications that adb reported the start of a server before anything else. adb
// itself puts "* " before the phrase, so that most starts give the channel's value.
int StartCode(const AdbRun& run) {
  constexpr std::string_view kStarted = "daemon started successfully";
  return run.output().substr(0, kStarted.size()) == kStarted ? 1 : run.status();
}

int StartServer(const char* function, bool kill_first, const bool* cancel) {
  CallLog log(function, kServerWording);
  if (kill_first) {
    LogEx(kLogModule, kLogInfo, "%s adb not been killed,killing now", function);
    AdbKillDaemon(nullptr);
  }
  const AdbRun run(" start-server", cancel);
  LogOutput(run);
  return log.Leave(StartCode(run));
}

}  // namespace
}  // namespace darokleim::sdk

void AdbKillDaemon(const bool* cancel) {
  using namespace darokleim::sdk;
  CallLog log("AdbKillDaemon", kServerWording);
  LogOutput(AdbRun(" kill-server", cancel));
  KillListenNetProcess(kServerPort);
  log.Leave(ADB_RESULT_OK);
}

int AdbStartDaemon(bool kill_first, const bool* cancel) {
  return darokleim::sdk::StartServer("AdbStartDaemon", kill_first, cancel);
}

int AdbStartDaemonEx(bool kill_first, const bool* cancel) {
  return darokleim::sdk::StartServer("AdbStartDaemonEx", kill_first, cancel);
}

int AdbRestartDaemon() {
  return AdbStartDaemon(true, nullptr);
}
