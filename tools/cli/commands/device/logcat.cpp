// darokleim logcat
#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/commands/device/log_text.h"
#include "tools/cli/errors.h"
#include "tools/cli/event_queue.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] =
    R"(Shows the log until Ctrl-C, in this computer's time zone. A filter is TAG:PRIORITY, with one of the priorities V D I W
E F S, for messages of that priority or a higher one; "*:W" is all warnings and errors. With a filter, only what filters
let through is shown.

Examples:
  darokleim logcat                               everything, as it is logged
  darokleim logcat ActivityManager:I MyApp:V     of two tags
  darokleim logcat --dump --lines 100 "*:E"      the last 100 errors, then ends
  darokleim logcat --json                        an object for each record, each on a line of its own
  darokleim logcat --clear                       clear the log)";

struct LogFilter {
  static constexpr ValueKind kKind = ValueKind::kText;
  static LogFilter Parse(const std::string& word) {
    CheckWord(word, "._-:*/$", "filter");
    return {word};
  }
  std::string text;
};

struct LogBuffer {
  static constexpr ValueKind kKind = ValueKind::kText;
  static LogBuffer Parse(const std::string& word) {
    CheckWord(word, ",", "log name");
    return {word};
  }
  std::string name;
};

struct Options {
  std::vector<LogFilter> filters;
  LogBuffer buffer;
  int lines = 0;  // 0: all
  bool dump = false;
  bool only_new = false;
  bool clear = false;
  bool utc = false;
};

void Describe(Command& command, Options& options) {
  auto& filters =
      command.Positional("TAG:PRIORITY", options.filters, "What to show; everything without a filter");
  auto& buffer =
      command
          .Option("-b,--buffer", options.buffer,
                  "Which of the device's logs: main, system, crash, radio, events, all; several with commas")
          .Called("NAME");
  auto& dump = command.Flag("-d,--dump", options.dump, "Show what the log holds now, and end");
  auto& lines =
      command.Option("-n,--lines", options.lines, "Of what the log holds now, the last NUMBER records")
          .Between(1, 1000000);
  auto& only_new = command.Flag("--new", options.only_new, "Only what is logged from now on")
                       .Excludes(lines)
                       .Excludes(dump);
  auto& utc = command.UtcFlag(options.utc);
  auto& clear = command.Flag("-c,--clear", options.clear, "Clear the log and show nothing");
  clear.Excludes(filters).Excludes(buffer).Excludes(dump).Excludes(lines).Excludes(only_new).Excludes(utc);
}

bool IsForAllTags(const LogFilter& filter) {
  return !filter.text.empty() && filter.text.front() == '*';
}

dk::LogOptions ForPhone(const Options& options) {
  dk::LogOptions log;
  for (const auto& filter : options.filters) log.filters.push_back(filter.text);
  const bool names_the_rest = std::any_of(options.filters.begin(), options.filters.end(), IsForAllTags);
  if (!log.filters.empty() && !names_the_rest) log.filters.emplace_back("*:S");
  log.buffers = options.buffer.name;
  log.only_new = options.only_new;
  log.stop_at_end = options.dump;
  log.most_old = static_cast<std::size_t>(options.lines);
  return log;
}

void Clear(Tool& tool) {
  tool.phone().clear_log(tool.limits()).value();
  tool.Report("The log is cleared.");
}

void Follow(Tool& tool, const Options& options) {
  EventQueue<LogRecord> records;
  std::optional<dk::Error> failure;  // written before the end of the records
  const dk::Log log =
      tool.phone()
          .log(
              ForPhone(options), [&records](const dk_log_record& record) { records.Push(LogRecord(record)); },
              [&](dk_code, const dk::Error* error) {
                if (error != nullptr) failure = *error;
                records.End();
              },
              tool.limits())
          .value();
  struct Closing {
    ~Closing() { queue.Close(); }
    EventQueue<LogRecord>& queue;
  } const closing{records};
  tool.PrintsLines();
  while (const auto record = records.Pop()) {
    tool.output().Write(tool.is_json() ? JsonOf(*record) + "\n"
                                       : TextOf(tool.output(), *record, options.utc));
  }
  if (failure) throw dk::Error(*failure);
}

void Run(Tool& tool, const Options& options) {
  options.clear ? Clear(tool) : Follow(tool, options);
}

}  // namespace

void AddLogcatCommand(Command& root) {
  AddCommand<Options>(root, {"logcat", "Show the device's log as it is written", kFooter}, Describe, Run);
}

}  // namespace darokleim::cli
