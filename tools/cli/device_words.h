// Words that go into a command of the device as they are, and must be checked for that.
#ifndef DAROKLEIM_TOOLS_CLI_DEVICE_WORDS_H
#define DAROKLEIM_TOOLS_CLI_DEVICE_WORDS_H

#include <CLI/App.hpp>
#include <cstddef>
#include <string>

namespace darokleim::cli {

// A positional argument PACKAGE, required.
void AddPackageArgument(CLI::App& command, std::string& package);

// A positional argument of this name, in capitals, for a TCP port, 1 to 65535, required.
void AddPortArgument(CLI::App& command, const std::string& name, std::string& port,
                     const std::string& description);

// Checks that a word is not empty, consists of ASCII letters, digits and the characters in `others`, and does not
// begin with a hyphen. `what` completes "is no …".
CLI::Validator WordOf(const std::string& others, const std::string& what);

// The library cuts some of its commands at a fixed length without a word, and what is left may do something else.
// Throws ToolError for a command of more than `limit` bytes; `what` is the part that is too long.
void CheckLength(const std::string& command, std::size_t limit, const std::string& what);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_DEVICE_WORDS_H
