// Quoting for a POSIX shell, a device's or this computer's.
#ifndef DAROKLEIM_BASE_SHELL_QUOTING_H
#define DAROKLEIM_BASE_SHELL_QUOTING_H

#include <string>
#include <string_view>

namespace darokleim::base {

// The text between single quotes, so that a POSIX shell reads it as one word; a single quote becomes '\''.
std::string QuoteForShell(std::string_view text);

}  // namespace darokleim::base

#endif  // DAROKLEIM_BASE_SHELL_QUOTING_H
