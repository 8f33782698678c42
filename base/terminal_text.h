// Text of unknown origin, to be shown to a person: in a terminal, a window, a message.
#ifndef DAROKLEIM_BASE_TERMINAL_TEXT_H
#define DAROKLEIM_BASE_TERMINAL_TEXT_H

#include <string>
#include <string_view>

namespace darokleim::base {

// The text with every control character, those that reorder text included, and every byte that is not UTF-8 written as
// \n, \t, \x1b …, so that no name moves the cursor or changes colours. `keep` are control characters that stay.
std::string EscapeControls(std::string_view text, std::string_view keep = "");

}  // namespace darokleim::base

#endif  // DAROKLEIM_BASE_TERMINAL_TEXT_H
