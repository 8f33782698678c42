#ifndef DAROKLEIM_TOOLS_PHONE_SERVER_SANDBOX_H
#define DAROKLEIM_TOOLS_PHONE_SERVER_SANDBOX_H

#include <sys/types.h>

#include <string>
#include <vector>

#include "base/unique_fd.h"
#include "tools/phone/server/phone_folder.h"
#include "tools/phone/server/sandbox_parts.h"

namespace darokleim::phone {

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
