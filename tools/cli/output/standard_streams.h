#ifndef DAROKLEIM_TOOLS_CLI_OUTPUT_STANDARD_STREAMS_H
#define DAROKLEIM_TOOLS_CLI_OUTPUT_STANDARD_STREAMS_H

#include <string_view>

namespace darokleim::cli {

// Prepares descriptors 0 to 2, before anything else is opened: those that are closed are taken, so that no file
// of the library lands on them, and what the library itself prints goes to the null device.
// Returns a descriptor of the standard output that the tool was started with.
int TakeStandardOutput();

// "darokleim: " and the message, on standard error.
void PrintError(std::string_view message);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_OUTPUT_STANDARD_STREAMS_H
