#ifndef DAROKLEIM_TOOLS_PHONE_SERVER_SANDBOX_PARTS_H
#define DAROKLEIM_TOOLS_PHONE_SERVER_SANDBOX_PARTS_H

#include <string>
#include <vector>

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

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_SERVER_SANDBOX_PARTS_H
