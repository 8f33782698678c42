// What the phone's programs say of a failure.
#ifndef DAROKLEIM_CLIENT_PHONE_ERRORS_H
#define DAROKLEIM_CLIENT_PHONE_ERRORS_H

#include <string_view>

#include "client/shell.h"

namespace darokleim::client {

// The errno, in Linux numbering, whose words end the text, apart from a line break: programs put the name that it is about
// before it, so that nothing in a name is taken for one. 0 when it ends in none.
int ErrnoAtEnd(std::string_view text);

// The error of a program that works on `path` and failed: by the errno that it names at the end of what it said, otherwise
// DK_COMMAND_FAILED.
Error FromProgram(const Collected& collected, std::string_view what, std::string_view path);

}  // namespace darokleim::client

#endif  // DAROKLEIM_CLIENT_PHONE_ERRORS_H
