// A shell of the device between this process's standard streams.
#ifndef DAROKLEIM_TOOLS_CLI_COMMANDS_SHELL_SHELL_SESSION_H
#define DAROKLEIM_TOOLS_CLI_COMMANDS_SHELL_SHELL_SESSION_H

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "tools/cli/tool.h"

namespace darokleim::cli {

struct SessionRequest {
  std::optional<std::string> command = {};  // none: a shell
  bool has_terminal = false;                // of the device
};

// Passes standard input on until it or the command ends. With a terminal on both sides, every key goes to the device, and
// the size of the window follows. `receive` runs on a thread of its own; what it throws ends the session and is thrown. Returns the
// exit status, 0 where the device does not say it.
int RunShellSession(Tool& tool, const SessionRequest& request,
                    const std::function<void(dk_stream stream, std::string_view data)>& receive);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_COMMANDS_SHELL_SHELL_SESSION_H
