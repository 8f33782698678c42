#include "tools/cli/command_line/completion.h"

#include <darokleim.h>

#include <algorithm>
#include <chrono>
#include <exception>
#include <string_view>

#include "base/terminal_text.h"
#include "tools/cli/cancel_on_signal.h"
#include "tools/cli/command_line/unfinished_line.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/device/device_list.h"
#include "tools/cli/device/library_block.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

using Lines = std::vector<std::string>;

// A person waits for it.
constexpr std::chrono::milliseconds kLongestQuestion{150};

// Up to its first line break or semicolon, so that it fits into a shell's list.
std::string Short(const std::string& description) {
  return description.substr(0, description.find_first_of(";\n"));
}

void AddSubcommands(const Command& command, Lines* lines) {
  for (const auto& subcommand : command.subcommands()) {
    if (!subcommand->is_hidden())
      lines->push_back(subcommand->name() + "\t" + Short(subcommand->description()));
  }
}

// The options of the command and of those around it, which may be anywhere on the line.
void AddOptions(const Command* command, Lines* lines) {
  lines->emplace_back("--help\tPrint this help message and exit");
  for (; command != nullptr; command = command->parent()) {
    for (const auto* option : command->Options()) {
      for (const auto& name : option->long_names()) {
        lines->push_back("--" + name + "\t" + Short(option->help()));
      }
    }
  }
}

void AddSerials(Tool& tool, Lines* lines) {
  constexpr int kRoom = 1 << 16;  // for thousands of devices
  std::vector<char> list(kRoom);
  tool.session();
  if (AdbGetDevices(list.data(), kRoom, CancelFlag()) != ADB_RESULT_OK) return;
  for (const auto& device : ParseDeviceList(list.data())) {
    // A name that the tool would refuse must not reach the shell.
    if (IsSerial(device.serial)) lines->push_back(device.serial + "\t" + base::EscapeControls(device.state));
  }
}

void AddPackages(Tool& tool, Lines* lines) {
  constexpr std::string_view kPrefix = "package:";
  LibraryBlock list;
  if (WithoutFlag([&] {
        return AdbGetPackagesNameList(tool.device().serial(), nullptr, list.text(), list.length());
      }) != ADB_RESULT_OK) {
    return;
  }
  auto text = list.Bytes();
  while (!text.empty()) {
    const auto line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    if (line.substr(0, kPrefix.size()) != kPrefix) continue;
    const auto name = line.substr(kPrefix.size());
    const std::string package(name.substr(0, name.find_last_not_of('\r') + 1));
    if (IsPackageName(package)) lines->push_back(package);
  }
}

// What is in the folder that the unfinished path names so far; the folder's own server and no other is asked, and only briefly.
void AddDevicePaths(Tool& tool, const std::string& last, Lines* lines) {
  const auto slash = last.rfind('/');
  if (slash == std::string::npos) {
    lines->emplace_back("/");
    return;
  }
  ConnectionOptions options = tool.session_options();
  options.timeout.value = kLongestQuestion;
  Connection connection(options, /*may_start_server=*/false);
  const std::string folder = last.substr(0, slash + 1);
  for (const auto& entry : connection.phone().list(folder, connection.limits()).value()) {
    // The shell's lists are lines of text.
    if (base::EscapeControls(entry.name) != entry.name) continue;
    lines->push_back(folder + entry.name + (entry.type == DK_DIRECTORY ? "/" : ""));
  }
}

void AddValues(const Argument& argument, const std::string& last, Tool& tool, Lines* lines) {
  lines->insert(lines->end(), argument.values().begin(), argument.values().end());
  switch (argument.kind()) {
    case ValueKind::kHostPath:
    case ValueKind::kHostOrDevicePath:
      lines->emplace_back(":files");
      return;
    case ValueKind::kHostDirectory:
      lines->emplace_back(":directories");
      return;
    case ValueKind::kPackage:
      AddPackages(tool, lines);
      return;
    case ValueKind::kSerial:
      AddSerials(tool, lines);
      return;
    case ValueKind::kDevicePath:
      AddDevicePaths(tool, last, lines);
      return;
    case ValueKind::kText:
    case ValueKind::kNumber:
    case ValueKind::kPort:
      return;
  }
}

void AddAll(const CommandLinePlace& place, const std::string& last, Tool& tool, Lines* lines) {
  const bool is_option = !place.after_option && !place.only_positionals && last.substr(0, 1) == "-";
  if (is_option) {
    AddOptions(place.command, lines);
    return;
  }
  if (!place.after_option && !place.only_positionals) AddSubcommands(*place.command, lines);
  for (const auto* argument : place.values) AddValues(*argument, last, tool, lines);
}

void KeepThoseThatBeginWith(const std::string& beginning, Lines* lines) {
  const auto differs = [&beginning](const std::string& line) {
    return line.front() != ':' && line.substr(0, beginning.size()) != beginning;
  };
  lines->erase(std::remove_if(lines->begin(), lines->end(), differs), lines->end());
}

// The options that decide which device answers, and through which adb.
void TakeSessionOption(const Argument& option, const std::string& value, SessionOptions* session) {
  if (option.DisplayName() == "--serial" && IsSerial(value)) session->serial = {value};
  if (option.DisplayName() == "--adb") session->adb = {value};
}

struct Options {
  std::vector<std::string> words;
};

void Describe(Command& command, Options& options) {
  command.Positional("WORD", options.words, "The words after the tool's name, the last of them unfinished");
}

void Run(Tool& tool, const Options& options) {
  std::string text;
  for (const auto& line : Completions(tool.command_line(), tool, options.words)) text += line + "\n";
  tool.output().Write(text);
}

}  // namespace

Lines Completions(const Command& root, Tool& tool, const std::vector<std::string>& words) {
  Lines lines;
  if (words.empty()) return lines;
  const std::string last = words.back() == "=" ? "" : words.back();
  const auto place = FindPlace(root, {words.begin(), words.end() - 1},
                               [&tool](const Argument& option, const std::string& value) {
                                 TakeSessionOption(option, value, &tool.session_options());
                               });
  try {
    AddAll(place, last, tool, &lines);
  } catch (const std::exception&) {
    // Without adb or a device there is nothing to offer.
  }
  KeepThoseThatBeginWith(last, &lines);
  return lines;
}

void AddCompleteCommand(Command& root) {
  AddCommand<Options>(root, {"complete", "Print what may come next on a command line", ""}, Describe, Run)
      .Hide();
}

}  // namespace darokleim::cli
