// The channel's own log: a line for each command, and what else helps to find a fault.
#ifndef DAROKLEIM_CHANNEL_CHANNEL_LOG_H
#define DAROKLEIM_CHANNEL_CHANNEL_LOG_H

#include <chrono>
#include <string>
#include <string_view>

namespace darokleim::channel {

// Opens adb_channel.log in log_dir. When it cannot be opened, the channel works without a log.
void OpenLog(const void* log_context, const std::string& log_dir);

// error: an errno value.
void LogNotStarted(const std::string& program, int error);

void LogNotices(std::string_view notices);

// An environment variable whose value is not used as it is.
void LogIgnoredVariable(const char* name, const char* value, const char* reason);

// The command whose line comes next was ended because its time was up.
void LogTimeIsUp();

// How a command was run.
enum class Route {
  kAdb,
  kDirect,  // without adb
};

// Times one command and writes its line.
class CommandTimer {
 public:
  void Log(const char* arguments, Route route, int status, long long bytes) const;

 private:
  const std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

}  // namespace darokleim::channel

#endif  // DAROKLEIM_CHANNEL_CHANNEL_LOG_H
