#include "tools/cli/manual_page.h"

#include <algorithm>

#include "tools/cli/command_line_walk.h"
#include "tools/cli/roff_text.h"

namespace darokleim::cli {
namespace {

constexpr char kDescription[] =
    "darokleim manages Android devices over adb, Google's Android Debug Bridge: it lists and describes "
    "devices, moves "
    "and measures files, installs and removes applications, shows the log, maps ports and more.\n\n"
    "Each command has a --help of its own. Output is for people; with --json, where a command has it, for "
    "programs.";

constexpr char kExitStatus[] = R"(.TP
0
The command did what it was asked.
.TP
1
It failed. What could not be done, why, and what helps is told on standard error.
.TP
2
The command line is wrong.
.TP
130
It was cancelled with Ctrl\-C.
)";

constexpr char kEnvironment[] = R"(.TP
.B ANDROID_SERIAL
The device, where \-s names none.
.TP
.BR ANDROID_HOME ", " ANDROID_SDK_ROOT
An Android SDK, in which adb is looked for.
.TP
.B ANDROID_ADB_SERVER_PORT
Where adb\(aqs server is; read by adb itself.
.TP
.B NO_COLOR
Not empty: no colours, on a terminal either.
.TP
.B DAROKLEIM_LOG_LEVEL
The lowest level written to the logs: 0 trace, 1 progress (the default), 2 command lines, 3 errors.
.TP
.B DAROKLEIM_CHANNEL_ASSIST
0: hand commands and texts through as they are, for a look at what a device really says.
)";

constexpr char kFiles[] = R"(.TP
.IR ~/.local/state/darokleim/ ", on macOS " ~/Library/Logs/darokleim/
The logs, adb_sdk.log and adb_channel.log, unless \-\-log\-dir names another directory.
)";

// "-s, --serial SERIAL", "PATH ..."
std::string Heading(const CLI::Option& option) {
  std::string names;
  if (option.get_positional()) names = option.get_name(true);
  for (const auto& name : option.get_snames()) names += (names.empty() ? "-" : ", -") + name;
  for (const auto& name : option.get_lnames()) names += (names.empty() ? "--" : ", --") + name;
  std::string heading = ".B " + RoffLine(names);
  const std::string type = option.get_type_name();
  if (!option.get_positional() && option.get_items_expected_max() > 0) {
    heading += " \\fI" + RoffLine(type.substr(0, type.find(':'))) + "\\fP";
  }
  return heading + "\n";
}

std::string AllowedValues(const CLI::Option& option) {
  const std::string type = option.get_type_name();
  const auto open = type.find('{');
  if (open == std::string::npos) return "";
  std::string values = " One of:";
  for (const char c : type.substr(open + 1, type.size() - open - 2)) {
    if (values.back() == ':' || values.back() == ',') values += ' ';
    values += c;
  }
  return values + ".";
}

std::string Entry(const CLI::Option& option) {
  return ".TP\n" + Heading(option) + RoffLine(option.get_description() + "." + AllowedValues(option)) + "\n";
}

std::string Entries(const CLI::App& command) {
  std::string text;
  for (const auto* positional : Positionals(command)) text += Entry(*positional);
  for (const auto* option : ShownOptions(command)) {
    if (option != command.get_help_ptr()) text += Entry(*option);
  }
  return text;
}

bool HasOptions(const CLI::App& command) {
  const auto options = ShownOptions(command);
  return std::any_of(options.begin(), options.end(),
                     [&command](const CLI::Option* option) { return option != command.get_help_ptr(); });
}

std::string Usage(const CLI::App& command) {
  std::string usage = command.get_name();
  for (const auto* parent = command.get_parent(); parent != nullptr; parent = parent->get_parent()) {
    usage.insert(0, parent->get_name() + " ");
  }
  std::string text = ".B " + RoffLine(usage) + "\n";
  std::string arguments;
  if (HasOptions(command)) arguments += "[option ...] ";
  for (const auto* positional : Positionals(command)) {
    const std::string name =
        positional->get_name(true) + (positional->get_items_expected_max() > 1 ? " ..." : "");
    arguments += positional->get_required() ? name + " " : "[" + name + "] ";
  }
  if (!ShownSubcommands(command).empty()) arguments += "COMMAND ";
  if (!arguments.empty()) arguments.pop_back();
  return text + RoffLine(arguments) + "\n";
}

std::string Aliases(const CLI::App& command) {
  std::string text;
  for (const auto& alias : command.get_aliases()) text += " Also called " + alias + ".";
  return text;
}

std::string FullName(const CLI::App& command) {
  const auto* parent = command.get_parent();
  const bool is_of_root = parent->get_parent() == nullptr;
  return is_of_root ? command.get_name() : FullName(*parent) + " " + command.get_name();
}

std::string Section(const CLI::App& command) {
  std::string text = ".SS " + RoffLine(FullName(command)) + "\n" + Usage(command) + ".PP\n" +
                     RoffLine(command.get_description() + "." + Aliases(command)) + "\n" + Entries(command);
  // Those of a group are told once, with the group.
  const bool repeats_its_group =
      command.get_parent() != nullptr && command.get_footer() == command.get_parent()->get_footer();
  if (!repeats_its_group) text += ".PP\n" + RoffText(command.get_footer());
  for (const auto* subcommand : ShownSubcommands(command)) text += Section(*subcommand);
  return text;
}

}  // namespace

std::string ManualPage(const CLI::App& root, const std::string& version) {
  std::string page = ".TH DAROKLEIM 1 \"\" \"darokleim " + version + "\" \"User Commands\"\n";
  page += ".SH NAME\ndarokleim \\- " + RoffLine("manage Android devices over adb") + "\n";
  page += ".SH SYNOPSIS\n" + Usage(root);
  page += ".SH DESCRIPTION\n" + RoffText(kDescription);
  page += ".SH OPTIONS\nThey may stand before and behind the command.\n" + Entries(root);
  page += ".SH COMMANDS\n";
  for (const auto* command : ShownSubcommands(root)) page += Section(*command);
  page += std::string(".SH EXIT STATUS\n") + kExitStatus;
  page += std::string(".SH ENVIRONMENT\n") + kEnvironment;
  page += std::string(".SH FILES\n") + kFiles;
  page += ".SH SEE ALSO\n.BR adb (1),\n.BR darokleim\\-phone (1)\n";
  return page;
}

}  // namespace darokleim::cli
