#include "tools/phone/device/records.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>

#include "tools/phone/common/io.h"
#include "tools/phone/common/numbers.h"
#include "tools/phone/common/wire.h"
#include "tools/phone/device/layout.h"

namespace darokleim::phone {

namespace {

// seconds, milliseconds, process, priority, tag, message; separated by tabs, of which only the message may
// hold more.
constexpr size_t kFields = 6;

}  // namespace

void AppendRecord(const std::string& record, std::string line) {
  std::replace(line.begin(), line.end(), '\n', ' ');
  line += "\n";
  const std::string path = std::string(kStateFolder) + "/" + record;
  const base::UniqueFd file(open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0644));
  WriteAll(file.get(), line.data(), line.size());
}

void WriteLog(char priority, const std::string& tag, const std::string& message) {
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  const long long milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
  AppendRecord(kLogRecord, std::to_string(milliseconds / 1000) + "\t" + std::to_string(milliseconds % 1000) +
                               "\t" + std::to_string(getpid()) + "\t" + priority + "\t" + tag + "\t" +
                               message);
}

std::optional<LogEntry> ParseLogLine(std::string_view line) {
  std::vector<std::string> fields = Split(line, '\t');
  if (fields.size() < kFields || fields[3].empty()) return std::nullopt;
  for (size_t i = kFields; i < fields.size(); ++i) fields[kFields - 1] += "\t" + fields[i];
  LogEntry entry;
  entry.seconds = ParseNumber<long long>(fields[0]).value_or(0);
  entry.milliseconds = ParseNumber<int>(fields[1]).value_or(0);
  entry.process = ParseNumber<int>(fields[2]).value_or(0);
  entry.priority = fields[3][0];
  entry.tag = fields[4];
  entry.message = fields[5];
  return entry;
}

}  // namespace darokleim::phone
