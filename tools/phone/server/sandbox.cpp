#include "tools/phone/server/sandbox.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <unistd.h>

#include "tools/phone/device/filesystem_view/view_paths.h"
#include "tools/phone/device/layout.h"

extern char** environ;

namespace darokleim::phone {

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
  add("--ro-bind", folder.files(), "/");
  for (const char* writable : {"/data", "/cache", "/mnt"}) add("--bind", folder.files() + writable, writable);
  for (const StorageVolume& volume : folder.volumes())
    add("--bind", folder.files() + volume.kept_in, volume.shown_at);
  command.insert(command.end(), {"--proc", "/proc", "--dev", "/dev"});
  add("--bind", folder.state(), kStateFolder);
  add("--ro-bind", parts.shell, kShell);
  add("--ro-bind", parts.toybox, kToybox);
  add("--ro-bind", parts.program, kDeviceProgram);
  add("--ro-bind", parts.view, VIEW_LIBRARY);
  for (const std::string& library : parts.libraries) add("--ro-bind", library, library);
  command.push_back("--");
  command.push_back(kDeviceProgram);
  command.insert(command.end(), daemon_arguments.begin(), daemon_arguments.end());
  return command;
}

pid_t StartSandbox(const std::vector<std::string>& command, base::UniqueFd link) {
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
