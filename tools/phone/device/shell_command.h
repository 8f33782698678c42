#ifndef DAROKLEIM_TOOLS_PHONE_DEVICE_SHELL_COMMAND_H
#define DAROKLEIM_TOOLS_PHONE_DEVICE_SHELL_COMMAND_H

#include <sys/types.h>

#include <optional>

#include "base/unique_fd.h"
#include "tools/phone/device/shell_service.h"

namespace darokleim::phone {

// A running command, the leader of a session of its own.
struct ShellCommand {
  pid_t pid = -1;
  base::UniqueFd input;   // what the command reads
  base::UniqueFd output;  // what it prints
  base::UniqueFd errors;  // not valid when they go with the output
};

std::optional<ShellCommand> StartShellCommand(const ShellRequest& request);

// Hangs up on the command and every other process of its session, then kills those that stay.
void EndSession(pid_t leader);

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_DEVICE_SHELL_COMMAND_H
