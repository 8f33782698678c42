#ifndef DAROKLEIM_TOOLS_PHONE_DEVICE_SHELL_SERVICE_H
#define DAROKLEIM_TOOLS_PHONE_DEVICE_SHELL_SERVICE_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/unique_fd.h"

namespace darokleim::phone {

// A command for the phone's shell and how its streams reach the client.
struct ShellRequest {
  enum class Streams {
    kTerminal,     // one stream through a terminal, lines end in CR LF
    kRawTerminal,  // one stream through a terminal that changes no byte
    kPipes,        // bytes as they are
  };
  std::vector<std::string> command;
  Streams streams = Streams::kTerminal;
  bool packets = false;  // the second protocol: output, errors and exit status apart
  std::string terminal;  // TERM
};

// shell:…, shell,v2,…:…, exec:…, abb:…, abb_exec:…, backup:… and restore:; nothing for other services.
std::optional<ShellRequest> ParseShellService(std::string_view service, bool legacy);

// Runs the command until it and its output have ended, or the client has gone: then the command ends too, with
// everything that it started in its session.
void RunShell(const ShellRequest& request, base::UniqueFd stream);

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_DEVICE_SHELL_SERVICE_H
