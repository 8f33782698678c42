#include "tests/support/process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "tests/support/eventually.h"
#include "tests/support/pipe.h"
#include "tests/support/sanitizers.h"

extern char** environ;

namespace darokleim::test {

namespace {

std::vector<std::string> MergedEnvironment(const Environment& variables) {
  std::vector<std::string> merged;
  for (char** variable = environ; *variable != nullptr; ++variable) {
    const std::string text = *variable;
    const bool replaced = std::any_of(variables.begin(), variables.end(), [&](const auto& other) {
      return text.compare(0, other.first.size() + 1, other.first + "=") == 0;
    });
    if (!replaced) merged.push_back(text);
  }
  for (const auto& [name, value] : variables) {
    if (!value.empty()) merged.push_back(name + "=" + value);
  }
  return merged;
}

std::vector<char*> Pointers(const std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (const std::string& text : texts) pointers.push_back(const_cast<char*>(text.c_str()));
  pointers.push_back(nullptr);
  return pointers;
}

int StatusFrom(int wait_status) {
  return WIFSIGNALED(wait_status) ? 128 + WTERMSIG(wait_status) : WEXITSTATUS(wait_status);
}

}  // namespace

HostProcess::HostProcess(const Words& command, const Environment& variables) {
  Pipe input;
  Pipe output;
  Pipe errors;

  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_adddup2(&files, input.read_end.get(), STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&files, output.write_end.get(), STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&files, errors.write_end.get(), STDERR_FILENO);
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  sigset_t defaults;
  sigemptyset(&defaults);
  sigaddset(&defaults, SIGPIPE);
  posix_spawnattr_setsigdefault(&attributes, &defaults);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);

  const std::vector<std::string> environment = MergedEnvironment(variables);
  const int error = posix_spawnp(&pid_, command.at(0).c_str(), &files, &attributes, Pointers(command).data(),
                                 Pointers(environment).data());
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&files);
  if (error != 0) {
    pid_ = -1;
    start_error_ = command[0] + " cannot be started: " + std::strerror(error);
  }
  input_ = std::move(input.write_end);
  output_ = std::move(output.read_end);
  errors_ = std::move(errors.read_end);
}

HostProcess::~HostProcess() {
  if (pid_ <= 0) return;
  kill(pid_, SIGKILL);
  waitpid(pid_, nullptr, 0);
}

// Without a process to go to, the signal would go to every process there is.
void HostProcess::Signal(int signal) const {
  if (pid_ > 0) kill(pid_, signal);
}

std::string HostProcess::ReadLine() {
  std::string line;
  char byte;
  while (read(output_.get(), &byte, 1) == 1 && byte != '\n') line += byte;
  return line;
}

void HostProcess::Write(const std::string& input) {
  if (input.empty()) return;
  signal(SIGPIPE, SIG_IGN);  // the program need not read all of it
  size_t done = 0;
  while (done < input.size()) {
    const ssize_t count = write(input_.get(), input.data() + done, input.size() - done);
    if (count <= 0) return;
    done += static_cast<size_t>(count);
  }
}

void HostProcess::CloseInput() {
  input_.Reset();
}

Outcome HostProcess::Finish() {
  input_.Reset();
  Outcome outcome;
  if (pid_ <= 0) return start_error_.empty() ? outcome : Outcome{127, "", start_error_};
  std::array<pollfd, 2> ends = {{{output_.get(), POLLIN, 0}, {errors_.get(), POLLIN, 0}}};
  std::array<std::string*, 2> texts = {&outcome.output, &outcome.errors};
  std::array<char, 65536> buffer;
  while (ends[0].fd >= 0 || ends[1].fd >= 0) {
    if (poll(ends.data(), ends.size(), -1) < 0 && errno != EINTR) break;
    for (size_t i = 0; i < ends.size(); ++i) {
      if (ends[i].revents == 0) continue;
      const ssize_t count = read(ends[i].fd, buffer.data(), buffer.size());
      if (count > 0) {
        texts[i]->append(buffer.data(), static_cast<size_t>(count));
      } else {
        ends[i].fd = -1;
      }
    }
  }
  int status = 0;
  waitpid(pid_, &status, 0);
  pid_ = -1;
  outcome.status = StatusFrom(status);
  return outcome;
}

Outcome RunProgram(const Words& command, const Environment& variables, const std::string& input) {
  HostProcess process(command, variables);
  process.Write(input);
  return process.Finish();
}

std::string PathOfProgram(const std::string& name) {
  const char* const path = std::getenv("PATH");
  std::istringstream folders(path != nullptr ? path : "/usr/bin:/bin");
  for (std::string folder; std::getline(folders, folder, ':');) {
    const std::string program = folder + "/" + name;
    if (access(program.c_str(), X_OK) == 0) return program;
  }
  throw std::runtime_error(name + " is not in PATH");
}

Outcome RunInProcessNamespace(Words command) {
  command.insert(command.begin(), {"unshare", "--pid", "--fork", "--mount-proc"});
  const Outcome as_root = RunProgram(command);
  if (as_root.status == 0) return as_root;
  command.insert(command.begin() + 1, {"--user", "--map-root-user"});
  return RunProgram(command);
}

bool IsFirstProcessOfNamespace() {
  std::array<char, 16> self{};
  return getpid() == 1 && readlink("/proc/self", self.data(), self.size() - 1) == 1 && self[0] == '1';
}

#if defined(__linux__) && defined(DAROKLEIM_SANITIZED)
namespace {
// Whether the threads of this process but the caller's wait for something.
bool OtherThreadsWait() {
  for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
    if (task.path().filename() == std::to_string(syscall(SYS_gettid))) continue;
    std::string line;
    std::getline(std::ifstream(task.path() / "stat"), line);
    const size_t name_end = line.rfind(") ");  // the state follows; a thread that has ended has no line
    if (name_end != std::string::npos && line.compare(name_end + 2, 1, "S") != 0) return false;
  }
  return true;
}
}  // namespace
#endif

int WaitStatusOfFork(const std::function<void()>& body) {
#if defined(__linux__) && defined(DAROKLEIM_SANITIZED)
  // A sanitizer's allocator keeps its locks in a fork, and a thread that runs may hold one.
  Eventually([] { return OtherThreadsWait(); });
#endif
  fflush(nullptr);
  const pid_t pid = fork();
  if (pid < 0) throw std::runtime_error("no process left");
  if (pid == 0) {
    body();
    fflush(nullptr);
    _exit(0);
  }
  int status = -1;
  while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
  }
  return status;
}

}  // namespace darokleim::test
