#ifndef DAROKLEIM_TOOLS_CLI_COMMAND_LINE_UNFINISHED_LINE_H
#define DAROKLEIM_TOOLS_CLI_COMMAND_LINE_UNFINISHED_LINE_H

#include <functional>
#include <string>
#include <vector>

#include "tools/cli/command_line/command.h"

namespace darokleim::cli {

// The place of the next word on a command line that is not finished.
struct CommandLinePlace {
  const Command* command = nullptr;     // the innermost subcommand so far
  std::vector<const Argument*> values;  // what the word may be a value of
  bool after_option = false;            // an option needs its value here, so that nothing else is possible
  bool only_positionals = false;        // after "--"
};

// Follows the words after the tool's name. Calls `on_value` with each option that has a value, and the value.
CommandLinePlace FindPlace(
    const Command& root, const std::vector<std::string>& words,
    const std::function<void(const Argument& option, const std::string& value)>& on_value);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_COMMAND_LINE_UNFINISHED_LINE_H
