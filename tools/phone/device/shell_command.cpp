#include "tools/phone/device/shell_command.h"

#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "tools/phone/common/io.h"
#include "tools/phone/common/numbers.h"
#include "tools/phone/common/wire.h"
#include "tools/phone/device/layout.h"

namespace darokleim::phone {

namespace {

constexpr std::chrono::milliseconds kGraceAfterHangUp(200);

// Where the command's three streams come from: descriptors, or the terminal of this name.
struct ChildStreams {
  std::string terminal;
  base::UniqueFd input;
  base::UniqueFd output;
  base::UniqueFd errors;
};

std::vector<std::string> Environment(const ShellRequest& request) {
  static constexpr char kPath[] =
      "PATH=/product/bin:/apex/com.android.runtime/bin:/apex/com.android.art/bin:/system_ext/bin:/system/bin:"
      "/system/xbin:/odm/bin:/vendor/bin:/vendor/xbin";
  std::vector<std::string> environment = {kPath,
                                          "ANDROID_ROOT=/system",
                                          "ANDROID_DATA=/data",
                                          "ANDROID_STORAGE=/storage",
                                          "EXTERNAL_STORAGE=/sdcard",
                                          "HOME=/",
                                          "HOSTNAME=localhost",
                                          "LOGNAME=shell",
                                          "SHELL=/bin/sh",
                                          "TMPDIR=/data/local/tmp",
                                          "USER=shell"};
  // The shell complains of a name that it cannot look up.
  if (access(kCharacters, R_OK) == 0) environment.emplace_back("LC_CTYPE=C.UTF-8");
  if (!request.terminal.empty()) environment.push_back("TERM=" + request.terminal);
  return environment;
}

std::vector<char*> Pointers(const std::vector<std::string>& words) {
  std::vector<char*> pointers;
  pointers.reserve(words.size() + 1);
  for (const std::string& word : words) pointers.push_back(const_cast<char*>(word.c_str()));
  pointers.push_back(nullptr);
  return pointers;
}

bool OpenTerminal(bool raw, ShellCommand* command, ChildStreams* child) {
  base::UniqueFd master(posix_openpt(O_RDWR | O_NOCTTY));
  if (!master.valid() || grantpt(master.get()) != 0 || unlockpt(master.get()) != 0) return false;
  SetCloseOnExec(master.get());
  child->terminal = ptsname(master.get());
  if (raw) {
    base::UniqueFd terminal(open(child->terminal.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
    termios settings;
    if (tcgetattr(terminal.get(), &settings) != 0) return false;
    cfmakeraw(&settings);
    tcsetattr(terminal.get(), TCSADRAIN, &settings);
  }
  command->input.Reset(fcntl(master.get(), F_DUPFD_CLOEXEC, 0));
  command->output = std::move(master);
  return true;
}

bool OpenPipes(bool errors_apart, ShellCommand* command, ChildStreams* child) {
  auto input = MakePipe();
  auto output = MakePipe();
  auto errors = MakePipe();
  if (!input || !output || !errors) return false;
  child->input = std::move(input->first);
  command->input = std::move(input->second);
  command->output = std::move(output->first);
  child->output = std::move(output->second);
  if (errors_apart) {
    command->errors = std::move(errors->first);
    child->errors = std::move(errors->second);
  } else {
    child->errors.Reset(fcntl(child->output.get(), F_DUPFD_CLOEXEC, 0));
  }
  return true;
}

pid_t Spawn(const ShellRequest& request, const ChildStreams& child) {
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  if (!child.terminal.empty()) {
    // Opened by the leader of a new session, it becomes the session's terminal.
    posix_spawn_file_actions_addopen(&files, STDIN_FILENO, child.terminal.c_str(), O_RDWR, 0);
    posix_spawn_file_actions_adddup2(&files, STDIN_FILENO, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&files, STDIN_FILENO, STDERR_FILENO);
  } else {
    posix_spawn_file_actions_adddup2(&files, child.input.get(), STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&files, child.output.get(), STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&files, child.errors.get(), STDERR_FILENO);
  }
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  sigset_t defaults;
  sigemptyset(&defaults);
  sigaddset(&defaults, SIGPIPE);
  posix_spawnattr_setsigdefault(&attributes, &defaults);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGDEF);

  const std::vector<std::string> environment = Environment(request);
  pid_t pid = -1;
  const int error = posix_spawn(&pid, request.command[0].c_str(), &files, &attributes,
                                Pointers(request.command).data(), Pointers(environment).data());
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&files);
  return error == 0 ? pid : -1;
}

// Negative for a process that has ended, buried or not.
pid_t SessionOf(const std::string& process) {
  const auto status = ReadFile("/proc/" + process + "/stat");
  if (!status) return -1;
  // The command's name, in parentheses, may hold anything; " STATE PARENT GROUP SESSION " follows it.
  const size_t name_end = status->rfind(')');
  if (name_end == std::string::npos) return -1;
  const std::vector<std::string> fields = Split(std::string_view(*status).substr(name_end + 1), ' ');
  if (fields.size() < 5 || fields[1] == "Z") return -1;
  return ParseNumber<pid_t>(fields[4]).value_or(-1);
}

// How many processes the signal reached.
int SignalSession(pid_t leader, int signal) {
  int reached = 0;
  DIR* processes = opendir("/proc");
  if (processes == nullptr) return 0;
  while (const dirent* entry = readdir(processes)) {
    const pid_t pid = ParseNumber<pid_t>(entry->d_name).value_or(-1);
    if (pid > 1 && SessionOf(entry->d_name) == leader && kill(pid, signal) == 0) ++reached;
  }
  closedir(processes);
  return reached;
}

}  // namespace

std::optional<ShellCommand> StartShellCommand(const ShellRequest& request) {
  ShellCommand command;
  ChildStreams child;
  const bool opened =
      request.streams == ShellRequest::Streams::kPipes
          ? OpenPipes(request.packets, &command, &child)
          : OpenTerminal(request.streams == ShellRequest::Streams::kRawTerminal, &command, &child);
  if (!opened) return std::nullopt;
  command.pid = Spawn(request, child);
  if (command.pid < 0) return std::nullopt;
  return command;
}

void EndSession(pid_t leader) {
  if (SignalSession(leader, SIGHUP) == 0) return;
  const auto deadline = std::chrono::steady_clock::now() + kGraceAfterHangUp;
  while (SignalSession(leader, 0) > 0) {
    if (std::chrono::steady_clock::now() >= deadline) {
      SignalSession(leader, SIGKILL);
      return;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
}

}  // namespace darokleim::phone
