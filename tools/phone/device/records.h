#ifndef DAROKLEIM_TOOLS_PHONE_DEVICE_RECORDS_H
#define DAROKLEIM_TOOLS_PHONE_DEVICE_RECORDS_H

#include <optional>
#include <string>
#include <string_view>

namespace darokleim::phone {

// What happened to the phone, a line each.
inline constexpr char kInputRecord[] = "input";          // typed, pressed, touched
inline constexpr char kActivityRecord[] = "activities";  // started and stopped
inline constexpr char kLogRecord[] = "log";              // written with WriteLog

void AppendRecord(const std::string& record, std::string line);

// One entry of the phone's log.
struct LogEntry {
  long long seconds = 0;
  int milliseconds = 0;
  int process = 0;
  char priority = 'I';  // V D I W E F
  std::string tag;
  std::string message;
};

// With the time and process of now.
void WriteLog(char priority, const std::string& tag, const std::string& message);
std::optional<LogEntry> ParseLogLine(std::string_view line);

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_DEVICE_RECORDS_H
