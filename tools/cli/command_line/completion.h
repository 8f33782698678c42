#ifndef DAROKLEIM_TOOLS_CLI_COMMAND_LINE_COMPLETION_H
#define DAROKLEIM_TOOLS_CLI_COMMAND_LINE_COMPLETION_H

#include <string>
#include <vector>

#include "tools/cli/command_line/command.h"

namespace darokleim::cli {

// What a shell may offer for the last of the words after the tool's name, which may be empty: a line for each, with a
// description after a tab. ":files" and ":directories" stand for those of this computer. Serial numbers and packages come
// from the devices; errors are not reported.
std::vector<std::string> Completions(const Command& root, Tool& tool, std::vector<std::string> words);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_COMMAND_LINE_COMPLETION_H
