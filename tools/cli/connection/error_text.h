// The client's errors as this tool reports them.
#ifndef DAROKLEIM_TOOLS_CLI_CONNECTION_ERROR_TEXT_H
#define DAROKLEIM_TOOLS_CLI_CONNECTION_ERROR_TEXT_H

#include <darokleim/client.hpp>
#include <string>

#include "tools/cli/errors.h"

namespace darokleim::cli {

// What was tried, what went wrong, in the phone's own words where it has any, and what to do.
std::string ErrorText(const dk::Error& error);

// The object that JSON documents hold for an error: {code, message, path, reason, words, errno, exit_status, on_host}. `text` is
// its message; members that say nothing are left out.
std::string ErrorJson(const dk::Error& error, const std::string& text);
// Of an error of this tool's own; `code` is FAILED, USAGE, NO_DEVICE or CANCELLED.
std::string ErrorJson(const char* code, const std::string& text);

ExitStatus ExitStatusFor(dk_code code);

// Whether the next of several paths or packages may fare better: not so when the phone is gone, or the time is over.
bool IsOfOneOperand(dk_code code);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_CONNECTION_ERROR_TEXT_H
