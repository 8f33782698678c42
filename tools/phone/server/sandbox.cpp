#include "server/sandbox.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <stdexcept>

#include "common/io.h"
#include "common/wire.h"
#include "device/layout.h"

extern char** environ;

namespace darokleim::phone {

namespace {

namespace fs = std::filesystem;

std::string FindInPath(const std::string& name) {
  const char* path = std::getenv("PATH");
  for (const std::string& folder : Split(path != nullptr ? path : "/usr/bin:/bin", ':')) {
    const std::string candidate = folder + "/" + name;
    if (access(candidate.c_str(), X_OK) == 0) return fs::canonical(candidate).string();
  }
  throw std::runtime_error("'" + name +
                           "' is not in PATH; the simulated phone needs bubblewrap (bwrap), mksh and toybox");
}

std::string ThisProgram() {
#if defined(__linux__)
  return fs::read_symlink("/proc/self/exe").string();
#else
  throw std::runtime_error("the simulated phone runs on Linux only: its phones live in Linux namespaces");
#endif
}

// The absolute paths among the words of what ldd prints: "name => /path (address)" and the loader's own line.
void AddLibrariesOf(const std::string& program, std::set<std::string>* libraries) {
  FILE* listing = popen(("ldd '" + program + "' 2>/dev/null").c_str(), "r");
  if (listing == nullptr) return;
  char line[4096];
  while (std::fgets(line, sizeof(line), listing) != nullptr) {
    for (const std::string& word : Split(line, ' ')) {
      const size_t start = word.find_first_not_of('\t');
      if (start != std::string::npos && word[start] == '/') libraries->insert(word.substr(start));
    }
  }
  pclose(listing);
}

void AddReadOnly(std::vector<std::string>* command, const std::string& source, const std::string& target) {
  command->insert(command->end(), {"--ro-bind", source, target});
}

}  // namespace

SandboxParts FindSandboxParts() {
  SandboxParts parts;
  parts.program = ThisProgram();
  parts.bubblewrap = FindInPath("bwrap");
  parts.shell = FindInPath("mksh");
  parts.toybox = FindInPath("toybox");
  std::set<std::string> libraries;
  for (const std::string& program : {parts.shell, parts.toybox, parts.program})
    AddLibrariesOf(program, &libraries);
  parts.libraries.assign(libraries.begin(), libraries.end());
  return parts;
}

std::vector<std::string> SandboxCommand(const SandboxParts& parts, const PhoneFolder& folder,
                                        const std::vector<std::string>& daemon_arguments) {
  const std::string user = std::to_string(kShellUser);
  std::vector<std::string> command = {parts.bubblewrap,
                                      "--unshare-user",
                                      "--unshare-pid",
                                      "--unshare-net",
                                      "--unshare-ipc",
                                      "--unshare-uts",
                                      "--uid",
                                      user,
                                      "--gid",
                                      user,
                                      "--hostname",
                                      "localhost",
                                      "--cap-drop",
                                      "ALL",
                                      "--as-pid-1",
                                      "--die-with-parent",
                                      "--bind",
                                      folder.files(),
                                      "/",
                                      "--proc",
                                      "/proc",
                                      "--dev",
                                      "/dev",
                                      "--bind",
                                      folder.state(),
                                      kStateFolder,
                                      "--bind",
                                      folder.files() + "/data/media",
                                      "/storage/emulated",
                                      "--clearenv",
                                      "--chdir",
                                      "/"};
  AddReadOnly(&command, parts.shell, "/system/bin/sh");
  AddReadOnly(&command, parts.toybox, "/system/bin/toybox");
  AddReadOnly(&command, parts.program, kDeviceProgram);
  for (const std::string& library : parts.libraries) AddReadOnly(&command, library, library);
  command.push_back("--");
  command.push_back(kDeviceProgram);
  command.insert(command.end(), daemon_arguments.begin(), daemon_arguments.end());
  return command;
}

pid_t StartSandbox(const std::vector<std::string>& command, UniqueFd link) {
  std::vector<char*> arguments;
  for (const std::string& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);

  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_adddup2(&files, link.get(), kLinkDescriptor);

  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  sigset_t none;
  sigset_t defaults;
  sigemptyset(&none);
  sigemptyset(&defaults);
  sigaddset(&defaults, SIGPIPE);
  sigaddset(&defaults, SIGINT);
  sigaddset(&defaults, SIGTERM);
  posix_spawnattr_setsigmask(&attributes, &none);
  posix_spawnattr_setsigdefault(&attributes, &defaults);
  // A group of its own, so that Ctrl-C reaches the server alone, which then switches its phones off.
  posix_spawnattr_setpgroup(&attributes, 0);
  posix_spawnattr_setflags(&attributes,
                           POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETPGROUP);

  pid_t pid = -1;
  const int error = posix_spawn(&pid, arguments[0], &files, &attributes, arguments.data(), environ);
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&files);
  return error == 0 ? pid : -error;
}

}  // namespace darokleim::phone
