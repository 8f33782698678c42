// The text of one log line, made from the arguments of LogEx.
#ifndef DAROKLEIM_LOG_LINE_TEXT_H
#define DAROKLEIM_LOG_LINE_TEXT_H

#include <cstdarg>
#include <string>
#include <string_view>

namespace darokleim::log {

// The text as printf would print it, of any length. A null %s gives "(null)". Where an argument cannot be converted (a
// wide text that the locale cannot represent) the text is the format itself, so that the call still leaves a trace.
std::string FormatText(const char* format, va_list arguments);

// The text on one line: line feed and carriage return as \n and \r, other control bytes but the tab as \xHH.
// Every other byte stays, also one that is not valid UTF-8, and so does a backslash.
std::string OnOneLine(std::string_view text);

}  // namespace darokleim::log

#endif  // DAROKLEIM_LOG_LINE_TEXT_H
