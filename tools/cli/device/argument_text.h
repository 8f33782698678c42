// Texts as the library's functions take them: it puts them into adb's command as they are. Where a function puts
// quotes around a path, the channel's assistance, which the tool asks for, carries the path through whatever it holds.
#ifndef DAROKLEIM_TOOLS_CLI_DEVICE_ARGUMENT_TEXT_H
#define DAROKLEIM_TOOLS_CLI_DEVICE_ARGUMENT_TEXT_H

#include <cstddef>
#include <string>
#include <string_view>

namespace darokleim::cli {

// For a place without quotes: chmod, find, df. A text that needs no quotes is returned as it is.
std::string ForBarePlace(std::string_view text);

// Throws ToolError for a path that holds the separator of two paths of one command.
void CheckCanBeCarried(std::string_view path);

// The library cuts some of its commands at a fixed length and reports nothing, and the rest may do something else.
// Throws ToolError for a command of more than `limit` bytes; `what` is the part that is too long.
void CheckLength(const std::string& command, std::size_t limit, const std::string& what);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_DEVICE_ARGUMENT_TEXT_H
