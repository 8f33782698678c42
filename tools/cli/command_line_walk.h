// What stands on a command line of the tool that is not finished.
#ifndef DAROKLEIM_TOOLS_CLI_COMMAND_LINE_WALK_H
#define DAROKLEIM_TOOLS_CLI_COMMAND_LINE_WALK_H

#include <CLI/App.hpp>
#include <functional>
#include <string>
#include <vector>

namespace darokleim::cli {

// Where the next word stands.
struct CommandLinePlace {
  const CLI::App* command;             // the innermost subcommand so far
  const CLI::Option* value = nullptr;  // the option or the positional argument that the word is a value of
  bool after_option = false;           // an option wants its value here, so that nothing else may stand
  bool only_positionals = false;       // behind "--"
};

// Follows the words behind the tool's name. Calls `on_value` with each option that has a value, and the value.
CommandLinePlace WalkCommandLine(
    const CLI::App& root, const std::vector<std::string>& words,
    const std::function<void(const CLI::Option& option, const std::string& value)>& on_value);

// The subcommands and options that --help shows.
std::vector<const CLI::App*> ShownSubcommands(const CLI::App& command);
std::vector<const CLI::Option*> ShownOptions(const CLI::App& command);
std::vector<const CLI::Option*> Positionals(const CLI::App& command);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_COMMAND_LINE_WALK_H
