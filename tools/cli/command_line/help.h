#ifndef DAROKLEIM_TOOLS_CLI_COMMAND_LINE_HELP_H
#define DAROKLEIM_TOOLS_CLI_COMMAND_LINE_HELP_H

#include <string>

#include "tools/cli/command_line/command.h"

namespace darokleim::cli {

// What --help prints.
std::string HelpText(const Command& command);

// "See `darokleim ls --help`."
std::string HelpHint(const Command& command);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_COMMAND_LINE_HELP_H
