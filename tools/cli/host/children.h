// The processes that this process has started.
#ifndef DAROKLEIM_TOOLS_CLI_HOST_CHILDREN_H
#define DAROKLEIM_TOOLS_CLI_HOST_CHILDREN_H

#include <signal.h>
#include <sys/types.h>

#include <vector>

namespace darokleim::cli {

// Those that have not been waited for. Empty when the system does not say.
std::vector<pid_t> Children();

// The tool's only children are the adb processes of the library. An adb server is not one of them: it has left its
// parent.
inline void SignalChildren(int number) {
  for (const pid_t child : Children()) kill(child, number);
}

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_HOST_CHILDREN_H
