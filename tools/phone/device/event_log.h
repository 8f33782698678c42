#ifndef DAROKLEIM_TOOLS_PHONE_DEVICE_EVENT_LOG_H
#define DAROKLEIM_TOOLS_PHONE_DEVICE_EVENT_LOG_H

#include <optional>
#include <string>
#include <string_view>

namespace darokleim::phone {

// One entry of the phone's log.
struct LogEntry {
  long long seconds = 0;
  int milliseconds = 0;
  int process = 0;
  char priority = 'I';  // V D I W E F
  std::string tag;
  std::string message;
};

inline constexpr char kLogRecord[] = "log";

// With the time and process of now.
void WriteLog(char priority, const std::string& tag, const std::string& message);
std::optional<LogEntry> ParseLogLine(std::string_view line);

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_DEVICE_EVENT_LOG_H
