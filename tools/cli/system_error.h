#ifndef DAROKLEIM_TOOLS_CLI_SYSTEM_ERROR_H
#define DAROKLEIM_TOOLS_CLI_SYSTEM_ERROR_H

#include <string>

namespace darokleim::cli {

// "Permission denied" and the like.
std::string SystemErrorText(int error_number);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_SYSTEM_ERROR_H
