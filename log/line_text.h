// The text of one log line, from what a caller gave to LogEx.
#ifndef DAROKLEIM_LOG_LINE_TEXT_H
#define DAROKLEIM_LOG_LINE_TEXT_H

#include <cstdarg>
#include <string>
#include <string_view>

namespace darokleim::log {

// What printf would print, of any length. A null %s gives "(null)". Arguments that cannot be converted (a
// wide text that the locale does not know) give the format itself, so that the call still leaves its trace.
std::string FormatText(const char* format, va_list arguments);

// The text on one line: line feed and carriage return as \n and \r, other control bytes but the tab as \xHH.
// Every other byte stays, also one that is no valid UTF-8, and so does a backslash.
std::string OnOneLine(std::string_view text);

}  // namespace darokleim::log

#endif  // DAROKLEIM_LOG_LINE_TEXT_H
