#ifndef DAROKLEIM_TOOLS_PHONE_SERVER_SANDBOX_H
#define DAROKLEIM_TOOLS_PHONE_SERVER_SANDBOX_H

#include <sys/types.h>

#include <string>
#include <vector>

#include "base/unique_fd.h"
#include "tools/phone/server/phone_folder.h"

namespace darokleim::phone {

// What of the host a phone needs to see. Found once for all phones.
struct SandboxParts {
  std::string bubblewrap;
  std::string shell;  // mksh
  std::string toybox;
  std::string program;                 // this program, which is the phone's daemon and its own programs
  std::string view;                    // the library of the phone's file system view
  std::vector<std::string> libraries;  // and what else the programs read, at the same place in the phone
};

// Throws std::runtime_error that names what is missing.
SandboxParts FindSandboxParts();

// The command line that runs the phone's daemon as the first process of namespaces of its own (files,
// processes, network, users), seeing the phone's folder as "/" and nothing else of the host but what
// `parts` names, read-only.
std::vector<std::string> SandboxCommand(const SandboxParts& parts, const PhoneFolder& folder,
                                        const std::vector<std::string>& daemon_arguments);

// Starts it with `link` as the phone's end of the link. The sandbox ends when the calling thread does. Negative:
// an errno.
pid_t StartSandbox(const std::vector<std::string>& command, base::UniqueFd link);

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_SERVER_SANDBOX_H
