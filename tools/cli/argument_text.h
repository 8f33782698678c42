// Texts as the library's functions take them: it puts them into adb's command as they are. Where a function puts
// quotes around a path, the channel's assistance, which the tool asks for, carries the path through whatever it holds.
#ifndef DAROKLEIM_TOOLS_CLI_ARGUMENT_TEXT_H
#define DAROKLEIM_TOOLS_CLI_ARGUMENT_TEXT_H

#include <string>
#include <string_view>

namespace darokleim::cli {

// For a bare place, without quotes: chmod, find, df. A plain text stays as it is.
std::string ForBarePlace(std::string_view text);

// Throws ToolError for a path that holds what stands between two paths of one command.
void CheckCanBeCarried(std::string_view path);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_ARGUMENT_TEXT_H
