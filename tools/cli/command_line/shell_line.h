// A command line as a person types it into a shell of this computer, up to where it is unfinished.
#ifndef DAROKLEIM_TOOLS_CLI_COMMAND_LINE_SHELL_LINE_H
#define DAROKLEIM_TOOLS_CLI_COMMAND_LINE_SHELL_LINE_H

#include <string>
#include <string_view>
#include <vector>

namespace darokleim::cli {

struct ShellWord {
  std::string text;          // without quotes and backslashes
  std::size_t begin = 0;     // where it begins in the line
  char open_quote = 0;       // ' or " where it is not closed
  std::size_t quote_at = 0;  // where that quote is in the line
};

// The words as the shell would see them, the last one perhaps empty: it is what is to be completed.
std::vector<ShellWord> SplitShellLine(std::string_view line);

// The text so that the shell reads it as it is, inside of that quote (0: outside), which stays open.
std::string QuotedFor(char open_quote, std::string_view text);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_COMMAND_LINE_SHELL_LINE_H
