// This process, as the system knows it.
#ifndef DAROKLEIM_TOOLS_CLI_HOST_OWN_PROCESS_H
#define DAROKLEIM_TOOLS_CLI_HOST_OWN_PROCESS_H

#include <string>
#include <vector>

namespace darokleim::cli {

// The words that this process was started with, as `ps` shows them; empty when the system does not say.
std::vector<std::string> OwnCommandLine();

// The directory of the running executable, symbolic links resolved; empty when the system does not say.
std::string ExecutableDirectory();

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_HOST_OWN_PROCESS_H
