#include "tools/cli/command_line/manual_page.h"

#include <algorithm>

#include "darokleim.h"
#include "tools/cli/command_line/roff_text.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

constexpr char kDescription[] =
    "darokleim manages Android devices over adb, Google's Android Debug Bridge: it lists and describes "
    "devices, moves "
    "and measures files, installs and removes applications, shows the log, maps ports and more.\n\n"
    "Each command has a --help of its own. Output is for people; with --json, for programs. Commands ask the "
    "adb server, "
    "and start adb only where no server runs; sdk calls a function of the library libdarokleim, which runs "
    "adb.";

constexpr char kExitStatus[] = R"(.TP
0
The command did what it was asked.
.TP
1
It failed, or one of several things did. Standard error says what could not be done, why, and what helps.
.TP
2
The command line is wrong.
.TP
3
No device can be used: none is attached, none is ready, or the named one is not. No adb server can be reached.
.TP
130
It was cancelled: Ctrl\-C, a terminate signal, or the end of the terminal.
.PP
.B shell
has the exit status of the command on the device.
)";

constexpr char kEnvironment[] = R"(.TP
.B ANDROID_SERIAL
The device, where \-s names none.
.TP
.BR ANDROID_HOME ", " ANDROID_SDK_ROOT
An Android SDK, in which adb is searched for.
.TP
.B ANDROID_ADB_SERVER_PORT
The port of the adb server on this computer, 5037 otherwise.
.TP
.B ADB_SERVER_SOCKET
Where the adb server is, as adb takes it: tcp:HOST:PORT.
.TP
.B NO_COLOR
Not empty: no colours, on a terminal either.
.TP
.B DAROKLEIM_LOG_LEVEL
Of
.BR sdk :
the lowest level written to the logs: 0 trace, 1 progress (the default), 2 command lines, 3 errors.
.TP
.B DAROKLEIM_CHANNEL
Of
.BR sdk :
how commands reach the device: plain, assist or direct.
)";

constexpr char kFiles[] = R"(.TP
.IR ~/.local/state/darokleim/ ", on macOS " ~/Library/Logs/darokleim/
The logs of
.BR sdk ,
adb_sdk.log and adb_channel.log, unless \-\-log\-dir names another directory.
)";

// "-s, --serial SERIAL", "PATH"
std::string Heading(const Argument& argument) {
  std::string names;
  for (const auto& name : argument.short_names()) names += (names.empty() ? "-" : ", -") + name;
  const std::string hyphens = argument.is_positional() ? "" : "--";
  for (const auto& name : argument.long_names())
    names.append(names.empty() ? "" : ", ").append(hyphens).append(name);
  std::string heading = ".B " + RoffLine(names);
  if (!argument.value_name().empty()) heading += " \\fI" + RoffLine(argument.value_name()) + "\\fP";
  return heading + "\n";
}

std::string AllowedValues(const Argument& argument) {
  std::string values;
  for (const auto& value : argument.values()) values += (values.empty() ? " One of: " : ", ") + value;
  return values.empty() ? "" : values + ".";
}

std::string Entry(const Argument& argument) {
  return ".TP\n" + Heading(argument) + RoffLine(argument.help() + "." + AllowedValues(argument)) + "\n";
}

std::string Entries(const Command& command) {
  std::string text;
  for (const auto* positional : command.Positionals()) text += Entry(*positional);
  for (const auto* option : command.Options()) text += Entry(*option);
  return text;
}

std::string Usage(const Command& command) {
  std::string arguments;
  if (!command.Options().empty()) arguments += " [option ...]";
  for (const auto* positional : command.Positionals()) {
    const std::string name = positional->DisplayName() + (positional->takes_several_words() ? " ..." : "");
    arguments += positional->is_required() ? " " + name : " [" + name + "]";
  }
  if (!command.subcommands().empty()) arguments += " COMMAND";
  if (!arguments.empty()) arguments.erase(0, 1);
  return ".B " + RoffLine(command.FullName()) + "\n" + RoffLine(arguments) + "\n";
}

std::string Aliases(const Command& command) {
  std::string text;
  for (const auto& alias : command.aliases()) text += " Also called " + alias + ".";
  return text;
}

std::string Section(const Command& command) {
  const std::string full_name = command.FullName();
  std::string text = ".SS " + RoffLine(full_name.substr(full_name.find(' ') + 1)) + "\n" + Usage(command) +
                     ".PP\n" + RoffLine(command.description() + "." + Aliases(command)) + "\n" +
                     Entries(command);
  // A group's footer is printed once, with the group.
  if (command.footer() != command.parent()->footer()) text += ".PP\n" + RoffText(command.footer());
  for (const auto& subcommand : command.subcommands()) {
    if (!subcommand->is_hidden()) text += Section(*subcommand);
  }
  return text;
}

void Run(Tool& tool) {
  tool.output().Write(ManualPage(tool.command_line(), DAROKLEIM_VERSION));
}

}  // namespace

std::string ManualPage(const Command& root, const std::string& version) {
  std::string page = ".TH DAROKLEIM 1 \"\" \"darokleim " + version + "\" \"User Commands\"\n";
  page += ".SH NAME\ndarokleim \\- " + RoffLine("manage Android devices over adb") + "\n";
  page += ".SH SYNOPSIS\n" + Usage(root);
  page += ".SH DESCRIPTION\n" + RoffText(kDescription);
  page += ".SH OPTIONS\nThey may precede or follow the command.\n" + Entries(root);
  page += ".SH COMMANDS\n";
  for (const auto& command : root.subcommands()) {
    if (!command->is_hidden()) page += Section(*command);
  }
  page += std::string(".SH EXIT STATUS\n") + kExitStatus;
  page += std::string(".SH ENVIRONMENT\n") + kEnvironment;
  page += std::string(".SH FILES\n") + kFiles;
  page += ".SH SEE ALSO\n.BR adb (1),\n.BR darokleim\\-phone (1)\n";
  return page;
}

void AddManualCommand(Command& root) {
  AddCommand(root, {"manual", "Print the manual page, darokleim.1", ""}, Run).Hide();
}

}  // namespace darokleim::cli
