#include "channel/channel_log.h"

#include <algorithm>
#include <new>
#include <system_error>

#include "channel/command/logged_arguments.h"
#include "channel/status.h"
#include "src/platform/log_library.h"

namespace darokleim::channel {
namespace {

constexpr char kModule[] = "AdbChannel";
constexpr int kOutcome = 1;
constexpr int kError = 3;

}  // namespace

void OpenLog(const void* log_context, const std::string& log_dir) {
  InitLogEx(log_context, kModule, (log_dir + "/adb_channel.log").c_str());
}

void LogNotStarted(const std::string& program, int error) {
  LogEx(kModule, kError, "%s cannot be started: %s", program.c_str(),
        std::generic_category().message(error).c_str());
}

void LogNotices(std::string_view notices) {
  while (!notices.empty()) {
    const std::string_view line = notices.substr(0, notices.find_first_of("\r\n"));
    LogEx(kModule, kOutcome, "left out: %.*s", static_cast<int>(line.size()), line.data());
    notices.remove_prefix(std::min(notices.find('\n'), notices.size() - 1) + 1);
  }
}

void LogIgnoredVariable(const char* name, const char* value, const char* reason) {
  LogEx(kModule, kError, "%s=%s is ignored: %s", name, value, reason);
}

void LogTimeIsUp() {
  LogEx(kModule, kError, "the next command was ended: DAROKLEIM_CHANNEL_TIMEOUT has passed");
}

void CommandTimer::Log(const char* arguments, Route route, int status, long long bytes) const {
  using std::chrono::duration_cast;
  using std::chrono::milliseconds;
  const auto spent = duration_cast<milliseconds>(std::chrono::steady_clock::now() - start_);
  // The command has ended: its outcome must not change because its line needs memory.
  std::string logged;
  const char* shown = " (not enough memory to log the arguments)";
  try {
    logged = LoggedArguments(arguments);
    shown = logged.c_str();
  } catch (const std::bad_alloc&) {
  }
  LogEx(kModule, status < kNotInitialised ? kOutcome : kError, "%s%s%s: status %d, %lld bytes, %lld ms",
        route == Route::kDirect ? "direct" : "adb", *shown == ' ' ? "" : " ", shown, status, bytes,
        static_cast<long long>(spent.count()));
}

}  // namespace darokleim::channel
