#ifndef DAROKLEIM_TOOLS_CLI_COMMAND_LINE_PARSE_H
#define DAROKLEIM_TOOLS_CLI_COMMAND_LINE_PARSE_H

#include <string>

#include "tools/cli/command_line/command.h"

namespace darokleim::cli {

// What a whole command line asks for: a text to print (help or version), or a command to run.
struct ParsedLine {
  std::string text;
  const Command* command = nullptr;
};

// Gives the words to the variables of the arguments. Options of a command may also follow the names of its
// subcommands. `version` is what --version prints. Throws UsageError, which points to the help of the command.
ParsedLine ParseCommandLine(const Command& root, const std::string& version, int argc,
                            const char* const* argv);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_COMMAND_LINE_PARSE_H
