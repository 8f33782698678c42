#include "tools/cli/command_line/help.h"

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/cli/command_line/suggestion.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/errors.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

constexpr std::size_t kWidth = 100;
constexpr std::size_t kWidestName = 30;  // a longer one has its description on the next line

using Rows = std::vector<std::pair<std::string, std::string>>;

// The text in lines of the width, each after the first with that many spaces before it.
std::string Wrapped(std::string_view text, std::size_t indentation) {
  std::string wrapped;
  std::size_t column = indentation;
  while (!text.empty()) {
    const std::string_view word = text.substr(0, text.find(' '));
    text.remove_prefix(std::min(word.size() + 1, text.size()));
    if (column > indentation && column + 1 + word.size() > kWidth) {
      wrapped += "\n" + std::string(indentation, ' ');
      column = indentation;
    } else if (column > indentation) {
      wrapped += ' ';
      ++column;
    }
    wrapped.append(word);
    column += word.size();
  }
  return wrapped + "\n";
}

std::string Section(const char* title, const Rows& rows) {
  if (rows.empty()) return "";
  std::size_t widest = 0;
  for (const auto& [name, text] : rows) {
    if (name.size() <= kWidestName) widest = std::max(widest, name.size());
  }
  const std::size_t indentation = widest + 4;
  std::string section = std::string("\n") + title + ":\n";
  for (const auto& [name, text] : rows) {
    section += "  " + name;
    section += name.size() <= widest ? std::string(indentation - 2 - name.size(), ' ')
                                     : "\n" + std::string(indentation, ' ');
    section += Wrapped(text, indentation);
  }
  return section;
}

std::string Positional(const Argument& argument) {
  const std::string name = argument.DisplayName() + (argument.takes_several_words() ? "..." : "");
  return argument.is_required() ? name : "[" + name + "]";
}

std::string Usage(const Command& command) {
  std::string usage = "Usage: " + command.FullName();
  if (!command.subcommands().empty()) return usage + " [OPTION]... COMMAND [ARGUMENT]...\n";
  usage += " [OPTION]...";
  for (const auto* argument : command.Positionals()) usage += " " + Positional(*argument);
  return usage + "\n";
}

std::string OptionNames(const Argument& option) {
  std::string names;
  for (const auto& name : option.short_names()) names += (names.empty() ? "-" : ", -") + name;
  if (names.empty()) names = "   ";
  for (const auto& name : option.long_names()) names += (names == "   " ? " --" : ", --") + name;
  if (!option.value_name().empty()) names += " " + option.value_name();
  return names;
}

std::string Described(const Argument& argument) {
  std::string text = argument.help();
  std::string values;
  for (const auto& value : argument.values()) values += (values.empty() ? "" : ", ") + value;
  if (!values.empty()) text += ": " + values;
  if (!argument.default_text().empty()) text += " [" + argument.default_text() + "]";
  return text;
}

Rows PositionalRows(const Command& command) {
  Rows rows;
  for (const auto* argument : command.Positionals()) {
    rows.emplace_back(argument->DisplayName(), Described(*argument));
  }
  return rows;
}

Rows OptionRows(const Command& command) {
  Rows rows;
  for (const auto* option : command.Options()) rows.emplace_back(OptionNames(*option), Described(*option));
  rows.emplace_back("-h, --help", "Print this help");
  return rows;
}

Rows CommandRows(const Command& command) {
  Rows rows;
  for (const auto& subcommand : command.subcommands()) {
    if (!subcommand->is_hidden()) rows.emplace_back(subcommand->name(), subcommand->description());
  }
  return rows;
}

struct Options {
  std::vector<std::string> words;
};

void Describe(Command& command, Options& options) {
  command.Positional("COMMAND", options.words, "A command, or a command and its subcommand");
}

void Run(Tool& tool, const Options& options) {
  const Command* command = &tool.command_line();
  for (const auto& word : options.words) {
    const Command* const next = command->Find(word);
    if (next == nullptr) {
      throw UsageError("\"" + word + "\" is not a command." + Suggestion(word, command->Subcommands()));
    }
    command = next;
  }
  tool.output().Write(HelpText(*command));
}

void PrintVersion(Tool& tool) {
  tool.output().Write(std::string(kVersionText) + "\n");
}

}  // namespace

std::string HelpText(const Command& command) {
  std::string text = command.description() + "\n\n" + Usage(command);
  text += Section("Commands", CommandRows(command));
  text += Section("Arguments", PositionalRows(command));
  text += Section("Options", OptionRows(command));
  if (command.parent() != nullptr) {
    text += "\nThe options of every command (-s, -q, --json, --timeout and more): darokleim --help\n";
  }
  if (!command.footer().empty()) text += "\n" + command.footer() + "\n";
  return text;
}

std::string HelpHint(const Command& command) {
  return "See `" + command.FullName() + " --help`.";
}

void AddHelpCommand(Command& root) {
  constexpr char kFooter[] = R"(Examples:
  darokleim help
  darokleim help app install)";
  AddCommand<Options>(root, {"help", "Show the help of a command", kFooter}, Describe, Run);
}

void AddVersionCommand(Command& root) {
  AddCommand(root, {"version", "Show the version of this tool", "Examples:\n  darokleim version"},
             PrintVersion);
}

}  // namespace darokleim::cli
