#ifndef DAROKLEIM_TOOLS_CLI_COMPLETION_H
#define DAROKLEIM_TOOLS_CLI_COMPLETION_H

#include <CLI/App.hpp>
#include <string>
#include <vector>

#include "tools/cli/tool.h"

namespace darokleim::cli {

// What a shell may offer for the last of the words, which stand behind the tool's name and of which the last may be
// empty: a line for each, of which what follows a tab describes it. ":files" and ":directories" stand for those of
// this computer. Serial numbers and packages come from the devices. Nothing is told of what goes wrong.
std::vector<std::string> Completions(const CLI::App& root, Tool& tool, const std::vector<std::string>& words);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_COMPLETION_H
