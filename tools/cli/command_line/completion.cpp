#include "tools/cli/command_line/completion.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <sstream>
#include <string_view>

#include "base/terminal_text.h"
#include "tools/cli/command_line/shell_line.h"
#include "tools/cli/command_line/unfinished_line.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/connection/device_table.h"
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

// To the server that runs; none is started, and it is asked only briefly.
Connection BriefConnection(Tool& tool) {
  ConnectionOptions options = tool.global_options();
  options.timeout.value = kLongestQuestion;
  return Connection(options, /*may_start_server=*/false);
}

void AddSerials(Tool& tool, Lines* lines) {
  Connection connection = BriefConnection(tool);
  for (const auto& device : connection.client().devices(connection.limits()).value()) {
    // A name that the tool would refuse must not reach the shell.
    if (IsSerial(device.serial)) lines->push_back(device.serial + "\t" + StateName(device));
  }
}

// By the command that lists names alone: all that the client knows of an application takes longer.
void AddPackages(Tool& tool, Lines* lines) {
  constexpr std::string_view kPrefix = "package:";
  Connection connection = BriefConnection(tool);
  std::istringstream listed(
      connection.phone().run({"pm", "list", "packages"}, connection.limits()).value().out);
  for (std::string line; std::getline(listed, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.substr(0, kPrefix.size()) != kPrefix) continue;
    line.erase(0, kPrefix.size());
    if (IsPackageName(line)) lines->push_back(line);
  }
}

// What is in the folder that the unfinished path names so far.
void AddDevicePaths(Tool& tool, const std::string& last, Lines* lines) {
  const auto slash = last.rfind('/');
  if (slash == std::string::npos) {
    lines->emplace_back("/");
    return;
  }
  Connection connection = BriefConnection(tool);
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
void TakeGlobalOption(const Argument& option, const std::string& value, GlobalOptions* options) {
  if (option.DisplayName() == "--serial" && IsSerial(value)) options->serial = {value};
  if (option.DisplayName() == "--adb") options->adb = {value};
}

struct Options {
  std::vector<std::string> words;
  std::string line, word;
};

void Describe(Command& command, Options& options) {
  command.Positional("WORD", options.words, "The words after the tool's name, the last of them unfinished");
  command.Option("--line", options.line, "Instead, the line of a shell up to the cursor");
  command.Option("--word", options.word, "What bash takes for the word of the line that is unfinished");
}

// What is put after the part of the line that the shell keeps, quoted: bash also ends words at = and :, and at a quote that is
// open.
class Replacement {
 public:
  Replacement(std::string_view line, std::string_view word) : word_(SplitShellLine(line).back()) {
    // bash's word goes on after a cursor in its middle.
    std::size_t begin = line.ends_with(word) ? line.size() - word.size() : word_.begin;
    if (word.find_first_not_of("=:") == std::string_view::npos) begin = line.size();
    begin = word_.open_quote == 0 ? std::max(begin, word_.begin) : word_.quote_at + 1;
    kept_ = SplitShellLine(line.substr(word_.begin, begin - word_.begin)).back().text;
  }

  std::string For(const std::string& candidate) const {
    if (candidate.front() == ':') return candidate + "\t" + word_.text.substr(kept_.size());
    const auto description = candidate.find('\t');
    std::string text = candidate.substr(0, description);
    if (text.starts_with(kept_)) text.erase(0, kept_.size());
    text = QuotedFor(word_.open_quote, text);
    return description == std::string::npos ? text : text + candidate.substr(description);
  }

 private:
  ShellWord word_;
  std::string kept_;
};

Lines CompletionsOfLine(const Command& root, Tool& tool, const Options& options) {
  std::vector<std::string> words;
  for (const ShellWord& word : SplitShellLine(options.line)) words.push_back(word.text);
  words.erase(words.begin());  // the tool's name
  const Replacement replacement(options.line, options.word);
  Lines lines = Completions(root, tool, words);
  for (std::string& line : lines) line = replacement.For(line);
  return lines;
}

void Run(Tool& tool, const Options& options) {
  const Lines lines = options.line.empty() ? Completions(tool.command_line(), tool, options.words)
                                           : CompletionsOfLine(tool.command_line(), tool, options);
  std::string text;
  for (const auto& line : lines) text += line + "\n";
  tool.output().Write(text);
}

// "--option=" of a word "--option=value", which is completed as the value.
std::string OptionIn(const std::string& word) {
  const auto equals = word.find('=');
  return word.substr(0, 2) == "--" && equals != std::string::npos ? word.substr(0, equals + 1) : "";
}

}  // namespace

Lines Completions(const Command& root, Tool& tool, std::vector<std::string> words) {
  Lines lines;
  if (words.empty()) return lines;
  const std::string option = OptionIn(words.back());
  if (!option.empty()) {
    words.push_back(words.back().substr(option.size()));
    words[words.size() - 2] = option.substr(0, option.size() - 1);
  }
  const std::string last = words.back() == "=" ? "" : words.back();
  const auto place = FindPlace(root, {words.begin(), words.end() - 1},
                               [&tool](const Argument& argument, const std::string& value) {
                                 TakeGlobalOption(argument, value, &tool.global_options());
                               });
  try {
    AddAll(place, last, tool, &lines);
  } catch (const std::exception&) {
    // Without a server or a device there is nothing to offer.
  }
  KeepThoseThatBeginWith(last, &lines);
  for (std::string& line : lines) {
    if (line.front() != ':') line.insert(0, option);
  }
  return lines;
}

void AddCompleteCommand(Command& root) {
  AddCommand<Options>(root, {"complete", "Print what may come next on a command line", ""}, Describe, Run)
      .Hide();
}

}  // namespace darokleim::cli
