// AdbKillDaemon, AdbStartDaemon, AdbStartDaemonEx, AdbRestartDaemon: the adb server of the host.
#include "src/core/server_control.h"

#include <signal.h>
#include <stdio.h>
#include <sys/types.h>

#include <array>
#include <cerrno>
#include <limits>
#include <memory>
#include <string>
#include <string_view>

#include "darokleim.h"
#include "src/core/adb_run.h"
#include "src/core/call_log.h"
#include "src/core/text.h"
#include "src/platform/log_library.h"

using namespace darokleim::sdk;

namespace darokleim::sdk {
namespace {

// Processes are found by the word, not by the port: "my-adb" and "adb.txt" hold it, "adbd" and "my_adb" do not.
constexpr char kListCommand[] = "ps -ax | grep -w adb | awk '{ print $1 }'";

#if defined(__linux__)
constexpr char kPipeMode[] = "re";  // not inherited by processes that other threads start meanwhile
#else
constexpr char kPipeMode[] = "r";
#endif

struct ClosePipe {
  void operator()(FILE* pipe) const { pclose(pipe); }
};

void KillProcess(std::string_view id) {
  const long long process = LeadingInteger(id);
  if (process <= 0 || process > std::numeric_limits<pid_t>::max()) return;
  kill(static_cast<pid_t>(process), SIGKILL);
}

// Drops a number that the end of the buffer cut: it would be the id of another process.
std::string_view WithoutCutNumber(std::string_view list, int next) {
  if (next == EOF || next == '\n') return list;
  return list.substr(0, list.rfind('\n') + 1);
}

constexpr int kServerPort = 5037;

void LogOutput(const AdbRun& run) {
  if (run.has_output()) LogEx(kLogModule, kLogInfo, "%.*s", PrintedLength(run.output()), run.output().data());
}

// 1 is not a failure: it means that adb's output began with the report of a started server. adb itself writes "* "
// before the phrase, so the result of most starts is the channel's status.
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

int KillListenNetProcess(int /*port*/) {
  const std::unique_ptr<FILE, ClosePipe> pipe(popen(kListCommand, kPipeMode));
  if (!pipe) {
    LogEx(kLogModule, kLogError, "%s Pipe Create Failed. Error = %d", __func__, errno);
    return 0;
  }
  // A fixed limit, on purpose: processes listed after it are not killed.
  std::array<char, 511> buffer;
  const std::string_view list(buffer.data(), fread(buffer.data(), 1, buffer.size(), pipe.get()));
  ForEachPiece(WithoutCutNumber(list, fgetc(pipe.get())), "\n", [](std::string_view id) {
    KillProcess(id);
    return true;
  });
  return 0;
}

void AdbKillDaemon(const bool* cancel) {
  CallLog log(__func__, kServerWording);
  LogOutput(AdbRun(" kill-server", cancel));
  KillListenNetProcess(kServerPort);
  log.Leave(ADB_RESULT_OK);
}

int AdbStartDaemon(bool kill_first, const bool* cancel) {
  return StartServer(__func__, kill_first, cancel);
}

int AdbStartDaemonEx(bool kill_first, const bool* cancel) {
  return StartServer(__func__, kill_first, cancel);
}

// Without lines of its own: AdbStartDaemon writes them.
int AdbRestartDaemon() {
  return AdbStartDaemon(true, nullptr);
}
