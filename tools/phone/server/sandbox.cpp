#include "tools/phone/server/sandbox.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <stdexcept>

#include "tools/phone/common/wire.h"
#include "tools/phone/device/filesystem_view/view_paths.h"
#include "tools/phone/device/layout.h"

namespace darokleim::phone {

namespace {

namespace fs = std::filesystem;

std::string FindInPath(const std::string& name) {
  const char* path = std::getenv("PATH");
  for (const std::string& folder : Split(path != nullptr ? path : "/usr/bin:/bin", ':')) {
    const fs::path candidate = fs::path(folder) / name;
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

// Beside the program, as it is built and as it is installed.
std::string FindView(const std::string& program) {
  const fs::path folder = fs::path(program).parent_path();
  for (const char* place : {"../lib", DAROKLEIM_PHONE_LIBRARY_FOLDER}) {
    const fs::path candidate = folder / place / DAROKLEIM_PHONE_VIEW;
    std::error_code error;
    if (fs::exists(candidate, error)) return fs::canonical(candidate).string();
  }
  throw std::runtime_error(std::string(DAROKLEIM_PHONE_VIEW) + " is not beside " + program);
}

// The absolute paths among the words of what the loader prints of a program that it is to trace, as ldd has it do:
// "name => /path (address)", and the loader's own line.
void AddLibrariesOf(const std::string& program, std::set<std::string>* libraries) {
  FILE* listing = popen(("LD_TRACE_LOADED_OBJECTS=1 exec '" + program + "' 2>/dev/null").c_str(), "r");
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

}  // namespace

SandboxParts FindSandboxParts() {
  SandboxParts parts;
  parts.program = ThisProgram();
  parts.view = FindView(parts.program);
  parts.bubblewrap = FindInPath("bwrap");
  parts.shell = FindInPath("mksh");
  parts.toybox = FindInPath("toybox");
  std::set<std::string> libraries;
  for (const std::string& program : {parts.shell, parts.toybox, parts.program})
    AddLibrariesOf(program, &libraries);
  if (access(kCharacters, R_OK) == 0) libraries.insert(kCharacters);
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
                                      "--clearenv",
                                      "--chdir",
                                      "/"};
  const auto add = [&command](const char* how, const std::string& source, const std::string& target) {
    command.insert(command.end(), {how, source, target});
  };
  // What is bound writable is in a folder that is not: no program of the phone can put a link in its place.
  add("--ro-bind", folder.files(), "/");
  for (const char* writable : {"/data", "/cache", "/mnt"}) add("--bind", folder.files() + writable, writable);
  for (const StorageVolume& volume : folder.volumes())
    add("--bind", folder.files() + volume.path, volume.path);
  command.insert(command.end(), {"--proc", "/proc", "--dev", "/dev"});
  add("--bind", folder.state(), kStateFolder);
  add("--ro-bind", folder.setup(), kSetupFolder);
  add("--ro-bind", parts.shell, kShell);
  add("--ro-bind", parts.toybox, kToybox);
  add("--ro-bind", parts.program, kDeviceProgram);
  add("--ro-bind", parts.view, VIEW_LIBRARY);
  for (const std::string& library : parts.libraries) add("--ro-bind", library, library);
  command.insert(command.end(), {"--", kDeviceProgram});
  command.insert(command.end(), daemon_arguments.begin(), daemon_arguments.end());
  return command;
}

pid_t StartSandbox(const std::vector<std::string>& command, base::UniqueFd link) {
  std::vector<char*> arguments;
  arguments.reserve(command.size() + 1);
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
