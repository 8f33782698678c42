// Programs that tests start, what they print, and how they end.
#ifndef DAROKLEIM_TESTS_SUPPORT_PROCESS_H
#define DAROKLEIM_TESTS_SUPPORT_PROCESS_H

#include <sys/types.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "base/unique_fd.h"

namespace darokleim::test {

using Words = std::vector<std::string>;
// Variables that are added to this process's environment; one with an empty value is taken out of it.
using Environment = std::vector<std::pair<std::string, std::string>>;

// What a finished program did.
struct Outcome {
  int status = -1;     // the exit status; 128 + N when signal N ended it; 127 when it cannot be started
  std::string output;  // what it printed on its standard output
  std::string errors;  // and on its standard error
};

// A program with its streams in pipes, killed at the latest with this object.
class HostProcess {
 public:
  // A program without a slash is searched for in the PATH of this process.
  explicit HostProcess(const Words& command, const Environment& variables = {});
  ~HostProcess();
  HostProcess(const HostProcess&) = delete;
  HostProcess& operator=(const HostProcess&) = delete;

  pid_t pid() const { return pid_; }
  void Signal(int signal) const;
  // The next line of its standard output without its line break; an empty text at the end of the output.
  std::string ReadLine();
  void Write(const std::string& input);
  void CloseInput();
  // Reads everything and waits for the end.
  Outcome Finish();

 private:
  pid_t pid_ = -1;
  std::string start_error_;
  base::UniqueFd input_;
  base::UniqueFd output_;
  base::UniqueFd errors_;
};

Outcome RunProgram(const Words& command, const Environment& variables = {}, const std::string& input = "");

// Where a program is in PATH. Throws when it is not there.
std::string PathOfProgram(const std::string& name);

// Runs a program as the first process of a PID namespace of its own, for what would kill processes of the machine
// otherwise. An ordinary user needs a user namespace around it, which some systems refuse; so do containers to root.
Outcome RunInProcessNamespace(Words command);
// Whether this is the first process of such a namespace; also /proc, where `ps` looks, must be the namespace's.
bool IsFirstProcessOfNamespace();

// Runs body in a fork of this process, which then exits with 0 without any clean-up. Returns the wait status.
int WaitStatusOfFork(const std::function<void()>& body);

}  // namespace darokleim::test

#endif  // DAROKLEIM_TESTS_SUPPORT_PROCESS_H
