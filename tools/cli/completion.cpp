#include "tools/cli/completion.h"

#include <darokleim.h>

#include <algorithm>
#include <array>
#include <exception>
#include <string_view>

#include "tools/cli/command_line_walk.h"
#include "tools/cli/device_list.h"
#include "tools/cli/library_block.h"

namespace darokleim::cli {
namespace {

using Lines = std::vector<std::string>;

// Up to its first line end or sentence end, so that it fits into a shell's list.
std::string Short(const std::string& description) {
  return description.substr(0, description.find_first_of(";\n"));
}

void AddSubcommands(const CLI::App& command, Lines* lines) {
  for (const auto* subcommand : ShownSubcommands(command)) {
    lines->push_back(subcommand->get_name() + "\t" + Short(subcommand->get_description()));
  }
}

// The options of the command and, as they may stand anywhere, of those around it.
void AddOptions(const CLI::App* command, Lines* lines) {
  for (; command != nullptr; command = command->get_parent()) {
    for (const auto* option : ShownOptions(*command)) {
      const bool is_inherited_help = command->get_subcommands().empty() && option == command->get_help_ptr();
      if (is_inherited_help) continue;
      for (const auto& name : option->get_lnames()) {
        lines->push_back("--" + name + "\t" + Short(option->get_description()));
      }
    }
  }
}

void AddSerials(Tool& tool, Lines* lines) {
  constexpr int kRoom = 1 << 16;  // for thousands of devices
  std::vector<char> list(kRoom);
  if (AdbGetDevices(list.data(), kRoom, tool.session().cancel()) != ADB_RESULT_OK) return;
  for (const auto& device : ParseDeviceList(list.data())) {
    lines->push_back(device.serial + "\t" + device.state);
  }
}

void AddPackages(Tool& tool, Lines* lines) {
  constexpr std::string_view kPrefix = "package:";
  LibraryBlock list;
  if (AdbGetPackagesNameList(tool.device().serial(), nullptr, list.text(), list.length()) != ADB_RESULT_OK) {
    return;
  }
  auto text = list.Bytes();
  while (!text.empty()) {
    const auto line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    if (line.substr(0, kPrefix.size()) != kPrefix) continue;
    const auto name = line.substr(kPrefix.size());
    lines->push_back(std::string(name.substr(0, name.find_last_not_of('\r') + 1)));
  }
}

// From "NAME:{one,two}", as the help shows an option that takes one of several values.
void AddNamedValues(const std::string& type, Lines* lines) {
  const auto open = type.find('{');
  if (open == std::string::npos || type.back() != '}') return;
  std::string_view values = std::string_view(type).substr(open + 1, type.size() - open - 2);
  while (!values.empty()) {
    const auto value = values.substr(0, values.find(','));
    lines->emplace_back(value);
    values.remove_prefix(std::min(value.size() + 1, values.size()));
  }
}

void AddValues(const CLI::Option& option, Tool& tool, Lines* lines) {
  const std::string name = option.get_positional() ? option.get_name(true) : option.get_type_name();
  const auto& description = option.get_description();
  if (name == "SERIAL") {
    AddSerials(tool, lines);
  } else if (name == "PACKAGE") {
    AddPackages(tool, lines);
  } else if (name == "DIRECTORY") {
    lines->push_back(":directories");
  } else if ((name == "PATH" && !option.get_positional()) ||
             (description.find("this computer") != std::string::npos &&
              name.find("PORT") == std::string::npos)) {
    lines->push_back(":files");
  } else {
    AddNamedValues(option.get_type_name(), lines);
  }
}

void AddAll(const CommandLinePlace& place, const std::string& last, Tool& tool, Lines* lines) {
  const bool is_option = !place.after_option && !place.only_positionals && last.substr(0, 1) == "-";
  if (is_option) {
    AddOptions(place.command, lines);
    return;
  }
  if (!place.after_option && !place.only_positionals) AddSubcommands(*place.command, lines);
  if (place.value != nullptr) AddValues(*place.value, tool, lines);
}

void KeepThoseThatBeginWith(const std::string& beginning, Lines* lines) {
  const auto differs = [&beginning](const std::string& line) {
    return line.front() != ':' && line.substr(0, beginning.size()) != beginning;
  };
  lines->erase(std::remove_if(lines->begin(), lines->end(), differs), lines->end());
}

// The options that decide which device answers, and through which adb.
void TakeSessionOption(const CLI::Option& option, const std::string& value, SessionOptions* session) {
  if (option.check_lname("serial")) session->serial = value;
  if (option.check_lname("adb")) session->adb = value;
}

}  // namespace

Lines Completions(const CLI::App& root, Tool& tool, const std::vector<std::string>& words) {
  Lines lines;
  if (words.empty()) return lines;
  const std::string last = words.back() == "=" ? "" : words.back();
  const auto place =
      WalkCommandLine(root, {words.begin(), words.end() - 1}, [&tool](const auto& option, const auto& value) {
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

}  // namespace darokleim::cli
