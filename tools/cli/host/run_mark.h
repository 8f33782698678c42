// Names of files that are not finished, from which a later run sees whether the run that made them has ended.
#ifndef DAROKLEIM_TOOLS_CLI_HOST_RUN_MARK_H
#define DAROKLEIM_TOOLS_CLI_HOST_RUN_MARK_H

#include <string>
#include <string_view>

namespace darokleim::cli {

// A name of this run alone, of letters, digits and a hyphen. It is backed by a locked file in the user's cache for as
// long as this process lives, however it ends. Throws ToolError when that file cannot be made.
std::string OwnRunName();

// Whether the name is one of an earlier run of this user on this computer, and that run has ended.
bool HasEnded(std::string_view run_name);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_HOST_RUN_MARK_H
