#ifndef DAROKLEIM_TOOLS_CLI_OWN_COMMAND_LINE_H
#define DAROKLEIM_TOOLS_CLI_OWN_COMMAND_LINE_H

#include <string>
#include <vector>

namespace darokleim::cli {

// The words that this process was started with, as `ps` shows them; empty when the system does not tell.
std::vector<std::string> OwnCommandLine();

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_OWN_COMMAND_LINE_H
