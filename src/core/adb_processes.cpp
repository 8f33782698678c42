// KillListenNetProcess: the adb processes that `kill-server` leaves.
#include <signal.h>
#include <stdio.h>
#include <sys/types.h>

#include <array>
#include <cerrno>
#include <limits>
#include <memory>
#include <string_view>

#include "src/core/call_log.h"
#include "src/core/numbers.h"
#include "src/core/server_control.h"
#include "src/core/text.h"
#include "src/platform/log_library.h"

namespace darokleim::sdk {
namespace {

// The word, not the port, finds the processes: "my-adb" and "adb.txt" hold it, "adbd" and "my_adb" do not.
constexpr char kListCommand[] = "ps -ax | grep -w adb | awk '{ print $1 }'";

#if defined(__linux__)
constexpr char kPipeMode[] = "re";  // not inherited by what other threads start meanwhile
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

// A number that the end of the buffer cut in two names another process.
std::string_view WithoutCutNumber(std::string_view list, int next) {
  if (next == EOF || next == '\n') return list;
  return list.substr(0, list.rfind('\n') + 1);
}

}  // namespace
}  // namespace darokleim::sdk

int KillListenNetProcess(int /*port*/) {
  using namespace darokleim::sdk;
  const std::unique_ptr<FILE, ClosePipe> pipe(popen(kListCommand, kPipeMode));
  if (!pipe) {
    LogEx(kLogModule, kLogError, "%s Pipe Create Failed. Error = %d", "KillListenNetProcess", errno);
    return 0;
  }
  // A fixed limit, on purpose: what is listed further down is spared.
  std::array<char, 511> buffer;
  const std::string_view list(buffer.data(), fread(buffer.data(), 1, buffer.size(), pipe.get()));
  ForEachPiece(WithoutCutNumber(list, fgetc(pipe.get())), "\n", [](std::string_view id) {
    KillProcess(id);
    return true;
  });
  return 0;
}
