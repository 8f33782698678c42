#include "tools/cli/commands/device/log_text.h"

#include <time.h>

#include <algorithm>
#include <cstdio>
#include <string_view>

#include "tools/cli/output/json_text.h"

namespace darokleim::cli {
namespace {

std::string DateAndTime(std::int64_t seconds, bool utc) {
  const auto time = static_cast<time_t>(seconds);
  tm parts{};
  char text[32] = "";
  const bool converted = (utc ? gmtime_r(&time, &parts) : localtime_r(&time, &parts)) != nullptr;
  if (converted) strftime(text, sizeof text, "%m-%d %H:%M:%S", &parts);
  return text;
}

// What precedes the tag.
std::string Head(const LogRecord& record, bool utc) {
  constexpr std::int32_t kNanosecondsPerMillisecond = 1'000'000;
  char text[64];
  std::snprintf(text, sizeof text, ".%03d %5u %5u %c ", record.nanoseconds / kNanosecondsPerMillisecond,
                record.process, record.thread, record.level);
  return DateAndTime(record.seconds, utc) + text;
}

}  // namespace

std::string TextOf(const Output& output, const LogRecord& record, bool utc) {
  const std::string head = Head(record, utc) + output.Shown(record.tag) + ": ";
  std::string_view rest = record.text;
  std::string lines;
  do {
    std::string_view line = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(line.size() + 1, rest.size()));
    while (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    lines += head + output.Shown(line) + "\n";
  } while (!rest.empty());
  return lines;
}

std::string JsonOf(const LogRecord& record) {
  JsonObject json;
  json.Integer("time", record.seconds).Integer("nanoseconds", record.nanoseconds);
  json.Text("level", std::string(1, record.level)).Unsigned("process", record.process);
  return json.Unsigned("thread", record.thread).Text("tag", record.tag).Text("text", record.text).text();
}

}  // namespace darokleim::cli
