// darokleim logcat
#include <darokleim.h>

#include <string>
#include <vector>

#include "tools/cli/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/device_words.h"
#include "tools/cli/errors.h"
#include "tools/cli/log_lines.h"
#include "tools/cli/log_stream.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] =
    R"(Shows the log until Ctrl-C, which is the usual end: exit status 0. A filter is TAG:PRIORITY with one of the
priorities V D I W E F S, which stands for itself and what is graver; "*:W" is everything from warnings up.

Examples:
  darokleim logcat                               everything, as it comes
  darokleim logcat ActivityManager:I MyApp:V     of two tags
  darokleim logcat --dump --lines 100 "*:E"      the last 100 errors, then end
  darokleim logcat --json                        {"message": …, "pid": …, "priority": …, "tag": …, …} a line
  darokleim logcat --clear                       empty the log)";

struct Options {
  std::vector<std::string> filters;
  std::string buffer;
  int lines = 0;  // 0: all
  bool dump = false;
  bool clear = false;
  bool json = false;
};

void Describe(CLI::App& command, Options& options) {
  auto* filters =
      command.add_option("TAG:PRIORITY", options.filters, "What to show; everything without a filter")
          ->check(WordOf("._-:*/$", "filter"));
  auto* buffer = command
                     .add_option("-b,--buffer", options.buffer,
                                 "Which of the device's logs: main, system, crash, radio, events, all")
                     ->type_name("NAME")
                     ->check(WordOf(",", "name of a log"));
  auto* dump = command.add_flag("-d,--dump", options.dump, "Show what the log holds and end");
  auto* lines = command.add_option("-n,--lines", options.lines, "Only the last so many lines")
                    ->type_name("NUMBER")
                    ->check(CLI::Range(1, 1000000));
  auto* clear = command.add_flag("-c,--clear", options.clear, "Empty the log and show nothing");
  AddJsonFlag(command, options.json, "an object for each line, on a line of its own");
  clear->excludes(filters)->excludes(buffer)->excludes(dump)->excludes(lines);
  clear->excludes(command.get_option("--json"));
}

// As `logcat -s` reads it. The format is one that all devices know and that tells the most.
std::string Filter(const Options& options) {
  std::string filter = "-v threadtime";
  if (!options.buffer.empty()) filter += " -b " + options.buffer;
  if (options.lines > 0) filter += (options.dump ? " -t " : " -T ") + std::to_string(options.lines);
  if (options.dump && options.lines == 0) filter += " -d";
  for (const auto& tag : options.filters) filter += " " + tag;
  return options.filters.empty() ? filter + " *:V" : filter;
}

void Clear(Tool& tool) {
  const auto& device = tool.device();
  device.Check(AdbClearLogcat(device.serial(), device.cancel()), "empty the log");
  tool.Report("The log is empty.");
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
    throw ToolError("the log has ended: the device is gone, or it restarts.");
  }
}

}  // namespace

void AddLogcatCommand(CLI::App& app, Tool& tool) {
  AddCommand<Options>(app, tool, {"logcat", "Show the device's log as it comes", kFooter}, Describe, Run);
}

}  // namespace darokleim::cli
