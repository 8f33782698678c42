// PID namespaces, for what would kill processes of the machine otherwise.
#ifndef DAROKLEIM_TESTS_SUPPORT_PROCESS_NAMESPACE_H
#define DAROKLEIM_TESTS_SUPPORT_PROCESS_NAMESPACE_H

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <string>

namespace darokleim::test {

struct CommandOutcome {
  int exit_status;
  std::string output;  // of both streams
};

inline CommandOutcome RunCommand(const std::string& command) {
  CommandOutcome outcome{-1, ""};
  FILE* pipe = popen((command + " 2>&1").c_str(), "r");
  if (!pipe) return outcome;
  std::array<char, 4096> buffer;
  while (const std::size_t read = fread(buffer.data(), 1, buffer.size(), pipe)) {
    outcome.output.append(buffer.data(), read);
  }
  const int status = pclose(pipe);
  if (WIFEXITED(status)) outcome.exit_status = WEXITSTATUS(status);
  return outcome;
}

// Runs a shell command as the first process of a namespace. An ordinary user needs a user namespace around it,
// which some systems refuse; so do containers to root.
inline CommandOutcome RunInProcessNamespace(const std::string& command) {
  const CommandOutcome as_root = RunCommand("unshare --pid --fork --mount-proc " + command);
  if (as_root.exit_status == 0) return as_root;
  return RunCommand("unshare --user --map-root-user --pid --fork --mount-proc " + command);
}

// Whether this is the first process of such a namespace; also /proc, where `ps` looks, must be the namespace's.
inline bool IsFirstProcessOfNamespace() {
  std::array<char, 16> self{};
  return getpid() == 1 && readlink("/proc/self", self.data(), self.size() - 1) == 1 && self[0] == '1';
}

}  // namespace darokleim::test

#endif  // DAROKLEIM_TESTS_SUPPORT_PROCESS_NAMESPACE_H
