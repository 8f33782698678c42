// Text for a terminal.
#ifndef DAROKLEIM_TOOLS_CLI_OUTPUT_TERMINAL_TEXT_H
#define DAROKLEIM_TOOLS_CLI_OUTPUT_TERMINAL_TEXT_H

#include <cstddef>
#include <string>
#include <string_view>

namespace darokleim::cli {

// The text with every control character, those that reorder text included, and every byte that is not UTF-8 written as \n, \t, \x1b …, so that no name
// moves the cursor or changes colours. `keep` are control characters that stay.
std::string EscapeControls(std::string_view text, std::string_view keep = "");

// The bytes of the UTF-8 character that the text begins with; 0 when it begins with none.
std::size_t LengthOfCharacter(std::string_view text);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_OUTPUT_TERMINAL_TEXT_H
