#include "tests/phone/host_process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <stdexcept>

namespace darokleim::phone_test {

namespace {

struct Pipe {
  int read_end;
  int write_end;
};

Pipe MakePipe() {
  int ends[2];
  if (pipe(ends) != 0) throw std::runtime_error("no pipe left");
  fcntl(ends[0], F_SETFD, FD_CLOEXEC);
  fcntl(ends[1], F_SETFD, FD_CLOEXEC);
  return {ends[0], ends[1]};
}

void Close(int* fd) {
  if (*fd >= 0) close(*fd);
  *fd = -1;
}

}  // namespace

HostProcess::HostProcess(const Words& command, const Environment& variables) {
  signal(SIGPIPE, SIG_IGN);
  const Pipe input = MakePipe();
  const Pipe output = MakePipe();
  const Pipe errors = MakePipe();
  pid_ = fork();
  if (pid_ < 0) throw std::runtime_error("no process left");
  if (pid_ == 0) {
    dup2(input.read_end, STDIN_FILENO);
    dup2(output.write_end, STDOUT_FILENO);
    dup2(errors.write_end, STDERR_FILENO);
    signal(SIGPIPE, SIG_DFL);
    for (const auto& [name, value] : variables) {
      if (value.empty()) {
        unsetenv(name.c_str());
      } else {
        setenv(name.c_str(), value.c_str(), 1);
      }
    }
    std::vector<char*> words;
    for (const std::string& word : command) words.push_back(const_cast<char*>(word.c_str()));
    words.push_back(nullptr);
    execvp(words[0], words.data());
    _exit(127);
  }
  close(input.read_end);
  close(output.write_end);
  close(errors.write_end);
  input_ = input.write_end;
  output_ = output.read_end;
  errors_ = errors.read_end;
}

HostProcess::~HostProcess() {
  Close(&input_);
  Close(&output_);
  Close(&errors_);
  if (pid_ > 0) {
    kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
  }
}

// Without a process to go to, the signal would go to every process there is.
void HostProcess::Signal(int signal) const {
  if (pid_ > 0) kill(pid_, signal);
}

std::string HostProcess::ReadLine() {
  std::string line;
  char byte;
  while (read(output_, &byte, 1) == 1 && byte != '\n') line += byte;
  return line;
}

void HostProcess::Write(const std::string& input) {
  size_t done = 0;
  while (done < input.size()) {
    const ssize_t count = write(input_, input.data() + done, input.size() - done);
    if (count <= 0) return;
    done += static_cast<size_t>(count);
  }
}

void HostProcess::CloseInput() {
  Close(&input_);
}

Outcome HostProcess::Finish() {
  Close(&input_);
  Outcome outcome;
  if (pid_ <= 0) return outcome;
  std::array<pollfd, 2> ends = {{{output_, POLLIN, 0}, {errors_, POLLIN, 0}}};
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
  outcome.status = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
  return outcome;
}

Outcome RunProgram(const Words& command, const Environment& variables, const std::string& input) {
  HostProcess process(command, variables);
  process.Write(input);
  return process.Finish();
}

}  // namespace darokleim::phone_test
