#ifndef DAROKLEIM_TOOLS_CLI_COMMAND_LINE_SUGGESTION_H
#define DAROKLEIM_TOOLS_CLI_COMMAND_LINE_SUGGESTION_H

#include <string>
#include <string_view>
#include <vector>

namespace darokleim::cli {

// The word of `known` that `word` was probably meant to be: it begins like it, or differs by a few letters. Empty when
// there is none.
std::string NearestWord(std::string_view word, const std::vector<std::string>& known);

// " Did you mean NEAREST?", or nothing.
std::string Suggestion(std::string_view word, const std::vector<std::string>& known);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_COMMAND_LINE_SUGGESTION_H
