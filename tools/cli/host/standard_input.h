#ifndef DAROKLEIM_TOOLS_CLI_HOST_STANDARD_INPUT_H
#define DAROKLEIM_TOOLS_CLI_HOST_STANDARD_INPUT_H

#include <cstddef>
#include <string>

namespace darokleim::cli {

// At least one byte and at most so many; empty at the end. Throws Cancelled after a signal, and ToolError when the time is over or the
// input cannot be read.
std::size_t ReadStandardInput(char* buffer, std::size_t capacity);
std::string ReadStandardInput(std::size_t most);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_HOST_STANDARD_INPUT_H
