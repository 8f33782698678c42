#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <deque>
#include <map>
#include <string>
#include <vector>

#include "tools/phone/common/io.h"
#include "tools/phone/common/numbers.h"
#include "tools/phone/common/wire.h"
#include "tools/phone/device/layout.h"
#include "tools/phone/device/programs/programs.h"
#include "tools/phone/device/properties.h"
#include "tools/phone/device/records.h"

namespace darokleim::phone {

namespace {

constexpr useconds_t kFollowMicroseconds = 20 * 1000;
constexpr std::string_view kPriorities = "VDIWEFS";

struct LogcatOptions {
  bool clear = false;
  bool follow = true;
  bool size = false;
  bool binary = false;
  size_t last = 0;  // 0: all
  std::string format;
  std::map<std::string, char> least;  // the lowest priority shown of a tag
  char least_of_others = 'V';
};

// "TAG:PRIORITY", "TAG", "*:PRIORITY".
void AddFilter(const std::string& filter, LogcatOptions* options) {
  const size_t colon = filter.rfind(':');
  const std::string tag = filter.substr(0, colon);
  char priority = colon == std::string::npos || colon + 1 >= filter.size() ? 'V' : filter[colon + 1];
  if (priority == '*') priority = 'V';
  if (tag == "*") {
    options->least_of_others = priority;
  } else {
    options->least[tag] = priority;
  }
}

void AddFilters(const std::string& filters, LogcatOptions* options) {
  for (const std::string& filter : Split(filters, ' ')) {
    if (!filter.empty() && filter != "''" && filter != "\"\"") AddFilter(filter, options);
  }
}

std::string OptionValue(const Words& words, size_t* i) {
  if (words[*i].size() > 2) return words[*i].substr(2);
  return *i + 1 < words.size() ? words[++*i] : "";
}

LogcatOptions ParseWords(const Words& words) {
  LogcatOptions options;
  options.format = IsLegacyPhone() ? "brief" : "threadtime";
  bool filtered = false;
  for (size_t i = 0; i < words.size(); ++i) {
    const std::string option = words[i].substr(0, 2);
    if (option == "-c") {
      options.clear = true;
    } else if (option == "-d") {
      options.follow = false;
    } else if (option == "-B") {
      options.binary = true;
    } else if (option == "-g") {
      options.size = true;
    } else if (option == "-s") {
      options.least_of_others = 'S';
    } else if (option == "-t" || option == "-T") {
      if (option == "-t") options.follow = false;
      options.last = ParseNumber<size_t>(OptionValue(words, &i)).value_or(0);
    } else if (option == "-v") {
      options.format = OptionValue(words, &i);
    } else if (option == "-b") {
      OptionValue(words, &i);  // there is only one buffer
    } else if (!words[i].empty() && words[i][0] != '-') {
      AddFilters(words[i], &options);
      filtered = true;
    }
  }
  const char* from_environment = std::getenv("ANDROID_LOG_TAGS");
  if (!filtered && from_environment != nullptr) AddFilters(from_environment, &options);
  return options;
}

bool IsShown(const LogEntry& entry, const LogcatOptions& options) {
  const auto tag = options.least.find(entry.tag);
  const char least = tag == options.least.end() ? options.least_of_others : tag->second;
  return least != 'S' && kPriorities.find(entry.priority) >= kPriorities.find(least);
}

std::string Format(const LogEntry& entry, const std::string& format) {
  const time_t seconds = static_cast<time_t>(entry.seconds);
  tm local = {};
  localtime_r(&seconds, &local);
  std::array<char, 32> date;
  std::strftime(date.data(), date.size(), "%m-%d %H:%M:%S", &local);
  std::array<char, 96> head;
  const auto with_head = [&](int) { return std::string(head.data()) + entry.message; };
  if (format == "raw") return entry.message;
  if (format == "tag") return std::string(1, entry.priority) + "/" + entry.tag + ": " + entry.message;
  if (format == "process") {
    return with_head(std::snprintf(head.data(), head.size(), "%c(%5d) ", entry.priority, entry.process));
  }
  const std::string tag = entry.tag;
  if (format == "time" || format == "threadtime") {
    std::snprintf(head.data(), head.size(), "%s.%03d ", date.data(), entry.milliseconds);
    const std::string time = head.data();
    if (format == "time") {
      std::snprintf(head.data(), head.size(), "(%5d): ", entry.process);
      return time + entry.priority + "/" + tag + head.data() + entry.message;
    }
    std::snprintf(head.data(), head.size(), "%5d %5d %c ", entry.process, entry.process, entry.priority);
    return time + head.data() + tag + ": " + entry.message;
  }
  std::snprintf(head.data(), head.size(), "(%5d): ", entry.process);
  return std::string(1, entry.priority) + "/" + tag + head.data() + entry.message;
}

// Reads the log line by line, and goes on where it ended when asked again. A log that was cleared is read from its start again.
class LogReader {
 public:
  LogReader() : path_(std::string(kStateFolder) + "/" + kLogRecord) { Open(); }

  std::vector<LogEntry> ReadNew() {
    if (!file_.valid()) Open();
    std::vector<LogEntry> entries;
    if (!file_.valid()) return entries;
    if (lseek(file_.get(), 0, SEEK_END) < offset_) {
      offset_ = 0;
      rest_.clear();
    }
    lseek(file_.get(), offset_, SEEK_SET);
    std::array<char, 65536> buffer;
    ssize_t count;
    while ((count = ReadSome(file_.get(), buffer.data(), buffer.size())) > 0) {
      offset_ += count;
      rest_.append(buffer.data(), static_cast<size_t>(count));
      TakeLines(&entries);
    }
    return entries;
  }

 private:
  void Open() { file_.Reset(open(path_.c_str(), O_RDONLY | O_CLOEXEC)); }

  void TakeLines(std::vector<LogEntry>* entries) {
    size_t start = 0;
    for (size_t end; (end = rest_.find('\n', start)) != std::string::npos; start = end + 1) {
      auto entry = ParseLogLine(std::string_view(rest_).substr(start, end - start));
      if (entry) entries->push_back(std::move(*entry));
    }
    rest_.erase(0, start);
  }

  std::string path_;
  base::UniqueFd file_;
  off_t offset_ = 0;
  std::string rest_;
};

void PutNumber(std::string* record, std::uint32_t number, int bytes) {
  for (int i = 0; i < bytes; ++i) record->push_back(static_cast<char>(number >> (8 * i)));
}

// As the log itself keeps an entry: the lengths of what follows the header and of the header, process, thread, time, buffer
// and user, then the priority as a number, the tag and the message, each with a zero byte.
std::string Binary(const LogEntry& entry) {
  constexpr std::uint32_t kHeader = 28;
  std::string payload(1, static_cast<char>(kPriorities.find(entry.priority) + 2));
  payload.append(entry.tag).push_back('\0');
  payload.append(entry.message).push_back('\0');
  std::string record;
  PutNumber(&record, static_cast<std::uint32_t>(payload.size()), 2);
  PutNumber(&record, kHeader, 2);
  for (const long long number : {static_cast<long long>(entry.process), static_cast<long long>(entry.process),
                                 entry.seconds, entry.milliseconds * 1000000LL, 0LL, 0LL}) {
    PutNumber(&record, static_cast<std::uint32_t>(number), 4);
  }
  return record + payload;
}

void Print(const std::vector<LogEntry>& entries, const LogcatOptions& options, size_t last) {
  std::deque<std::string> lines;
  for (const LogEntry& entry : entries) {
    if (!IsShown(entry, options)) continue;
    lines.push_back(options.binary ? Binary(entry) : Format(entry, options.format) + "\n");
    if (last != 0 && lines.size() > last) lines.pop_front();
  }
  for (const std::string& line : lines) std::fwrite(line.data(), 1, line.size(), stdout);
  std::fflush(stdout);
}

}  // namespace

int RunLogcat(const Words& words) {
  const LogcatOptions options = ParseWords(words);
  const std::string path = std::string(kStateFolder) + "/" + kLogRecord;
  if (options.clear) {
    if (access(path.c_str(), F_OK) == 0 && truncate(path.c_str(), 0) != 0) {
      std::fprintf(stderr, "failed to clear the 'main' log\n");
      return 1;
    }
    return 0;
  }
  if (options.size) {
    std::printf("main: ring buffer is 256KiB (1KiB consumed), max entry is 5120B, max payload is 4068B\n");
    return 0;
  }
  if (!options.binary) std::printf("--------- beginning of main\n");
  LogReader reader;
  Print(reader.ReadNew(), options, options.last);
  while (options.follow) {
    usleep(kFollowMicroseconds);
    Print(reader.ReadNew(), options, 0);
    if (std::ferror(stdout) != 0) return 1;
  }
  return 0;
}

// log [-p PRIORITY] [-t TAG] MESSAGE…
int RunLog(const Words& words) {
  char priority = 'I';
  std::string tag = "log";
  std::string message;
  for (size_t i = 0; i < words.size(); ++i) {
    if (words[i] == "-p" && i + 1 < words.size()) {
      priority = static_cast<char>(std::toupper(static_cast<unsigned char>(words[++i][0])));
    } else if (words[i] == "-t" && i + 1 < words.size()) {
      tag = words[++i];
    } else {
      message += (message.empty() ? "" : " ") + words[i];
    }
  }
  WriteLog(priority, tag, message);
  return 0;
}

}  // namespace darokleim::phone
