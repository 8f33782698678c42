#ifndef DAROKLEIM_TOOLS_CLI_COMMAND_LINE_ROFF_TEXT_H
#define DAROKLEIM_TOOLS_CLI_COMMAND_LINE_ROFF_TEXT_H

#include <string>
#include <string_view>

namespace darokleim::cli {

// A line of UTF-8 text as the formatters of manual pages read it, whatever it holds.
std::string RoffLine(std::string_view text);

// Several lines, of which those that begin with two spaces keep their layout.
std::string RoffText(std::string_view text);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_COMMAND_LINE_ROFF_TEXT_H
