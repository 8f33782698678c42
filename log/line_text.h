// The text of one log line, made from the arguments of LogEx.
#ifndef DAROKLEIM_LOG_LINE_TEXT_H
#define DAROKLEIM_LOG_LINE_TEXT_H

#include <cstdarg>
#include <cstddef>
#include <string>
#include <string_view>

namespace darokleim::log {

// The text as printf would print it. Of a text longer than kLongestText bytes its beginning, followed by how much was
// cut, so that an answer of any size costs no more memory than that. A null %s gives "(null)". Where an argument cannot be converted (a
// wide text that the locale cannot represent) the text is the format itself, so that the call still leaves a trace.
constexpr std::size_t kLongestText = 64 * 1024;

std::string FormatText(const char* format, va_list arguments);

// The text on one line and without an effect on a terminal: line feed and carriage return as \n and \r; as \xHH every
// other control byte except the tab, the control characters U+0080 to U+009F in UTF-8, and a byte 0x80 to 0x9f outside
// valid UTF-8, which some terminals take for such a character. Every other byte is kept, also one that is not valid
// UTF-8, and so is a backslash.
std::string OnOneLine(std::string_view text);

}  // namespace darokleim::log

#endif  // DAROKLEIM_LOG_LINE_TEXT_H
