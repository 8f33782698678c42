#ifndef DAROKLEIM_TOOLS_CLI_COMMAND_LINE_MANUAL_PAGE_H
#define DAROKLEIM_TOOLS_CLI_COMMAND_LINE_MANUAL_PAGE_H

#include <string>

#include "tools/cli/command_line/command.h"

namespace darokleim::cli {

// The tool's manual page, darokleim.1, made from what --help says of each command.
std::string ManualPage(const Command& root, const std::string& version);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_COMMAND_LINE_MANUAL_PAGE_H
