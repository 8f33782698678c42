#include "channel/channel_log.h"

#include <algorithm>
#include <system_error>

#include "channel/status.h"
#include "src/platform/log_library.h"

namespace darokleim::channel {
namespace {

constexpr char kModule[] = "AdbChannel";
constexpr int kOutcome = 1;
constexpr int kError = 3;

}  // namespace

void OpenLog(const void* log_context, const char* log_dir) {
  if (log_dir == nullptr) return;
  InitLogEx(log_context, kModule, (std::string(log_dir) + "/adb_channel.log").c_str());
}

void LogNotStarted(const std::string& program, int error) {
  LogEx(kModule, kError, "%s cannot be started: %s", program.c_str(),
        std::generic_category().message(error).c_str());
}

void LogNotices(std::string_view notices) {
  while (!notices.empty()) {
    const std::string line(notices.substr(0, notices.find_first_of("\r\n")));
    LogEx(kModule, kOutcome, "left out: %s", line.c_str());
    notices.remove_prefix(std::min(notices.find('\n'), notices.size() - 1) + 1);
  }
}

void LogIgnoredVariable(const char* name, const char* value, const char* reason) {
  LogEx(kModule, kError, "%s=%s is ignored: %s", name, value, reason);
}

void CommandTimer::Log(const char* arguments, Route route, int status, long long bytes) const {
  using std::chrono::duration_cast;
  using std::chrono::milliseconds;
  const auto spent = duration_cast<milliseconds>(std::chrono::steady_clock::now() - start_);
  LogEx(kModule, status < kNotInitialised ? kOutcome : kError, "%s%s%s: status %d, %lld bytes, %lld ms",
        route == Route::kDirect ? "direct" : "adb", *arguments == ' ' ? "" : " ", arguments, status, bytes,
        static_cast<long long>(spent.count()));
}

}  // namespace darokleim::channel
