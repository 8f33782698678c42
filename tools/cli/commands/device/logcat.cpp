// darokleim logcat
#include <darokleim.h>

#include <string>
#include <vector>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/commands/device/log_lines.h"
#include "tools/cli/commands/device/log_stream.h"
#include "tools/cli/device/argument_text.h"
#include "tools/cli/errors.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] =
    R"(Shows the log until Ctrl-C, which is the usual end: exit status 0. A filter is TAG:PRIORITY, with one of the
priorities V D I W E F S, for messages of that priority or a higher one; "*:W" is all warnings and errors.

Examples:
  darokleim logcat                               everything, as it is logged
  darokleim logcat ActivityManager:I MyApp:V     of two tags
  darokleim logcat --dump --lines 100 "*:E"      the last 100 errors, then ends
  darokleim logcat --json                        {"message": …, "pid": …, "priority": …, "tag": …, …} a line
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
  bool clear = false;
  bool json = false;
};

void Describe(Command& command, Options& options) {
  auto& filters =
      command.Positional("TAG:PRIORITY", options.filters, "What to show; everything without a filter");
  auto& buffer = command
                     .Option("-b,--buffer", options.buffer,
                             "Which of the device's logs: main, system, crash, radio, events, all")
                     .Called("NAME");
  auto& dump = command.Flag("-d,--dump", options.dump, "Show what the log holds now, and end");
  auto& lines = command.Option("-n,--lines", options.lines, "Only the last NUMBER lines").Between(1, 1000000);
  auto& clear = command.Flag("-c,--clear", options.clear, "Clear the log and show nothing");
  auto& json = command.JsonFlag(options.json, "an object for each line, on a line of its own");
  clear.Excludes(filters).Excludes(buffer).Excludes(dump).Excludes(lines).Excludes(json);
}

// As `logcat -s` reads it. The format is the most detailed one that all devices know.
std::string Filter(const Options& options) {
  std::string filter = "-v threadtime";
  if (!options.buffer.name.empty()) filter += " -b " + options.buffer.name;
  if (options.lines > 0) filter += (options.dump ? " -t " : " -T ") + std::to_string(options.lines);
  if (options.dump && options.lines == 0) filter += " -d";
  for (const auto& tag : options.filters) filter += " " + tag.text;
  return options.filters.empty() ? filter + " *:V" : filter;
}

void Clear(Tool& tool) {
  const auto& device = tool.device();
  device.Check(AdbClearLogcat(device.serial(), device.cancel()), "clear the log");
  tool.Report("The log is cleared.");
}

void Run(Tool& tool, const Options& options) {
  if (options.clear) {
    Clear(tool);
    return;
  }
  const auto& device = tool.device();
  const std::string filter = Filter(options);
  CheckLength(" -s " + std::string(device.serial()) + " logcat -s " + filter, 255, "the list of filters");
  LogLines lines(tool.output(), options.json);
  if (FollowLog(device, filter, lines) && !options.dump) {
    throw ToolError("the log has ended: the device was disconnected, or restarts.");
  }
}

}  // namespace

void AddLogcatCommand(Command& root) {
  AddCommand<Options>(root, {"logcat", "Show the device's log as it is written", kFooter}, Describe, Run);
}

}  // namespace darokleim::cli
