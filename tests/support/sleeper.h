// A real process that does nothing, for those who kill processes.
#ifndef DAROKLEIM_TESTS_SUPPORT_SLEEPER_H
#define DAROKLEIM_TESTS_SUPPORT_SLEEPER_H

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>
#include <string>

namespace darokleim::test {

// Lives as long as this object, or two minutes when the test dies before. Its process id stays its own until
// then, also when it was killed. Holds none of the test's streams open.
class Sleeper {
 public:
  // command_line: what `ps` shows of it.
  explicit Sleeper(std::string command_line) : command_line_(std::move(command_line)) {
    char seconds[] = "120";
    char* argv[] = {command_line_.data(), seconds, nullptr};
    char* environment[] = {nullptr};
    posix_spawnattr_t own_group;
    posix_spawnattr_init(&own_group);
    posix_spawnattr_setflags(&own_group, POSIX_SPAWN_SETPGROUP);
    posix_spawn_file_actions_t silent;
    posix_spawn_file_actions_init(&silent);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
      posix_spawn_file_actions_addopen(&silent, stream, "/dev/null", O_RDWR, 0);
    }
    const int failure = posix_spawn(&id_, "/bin/sleep", &silent, &own_group, argv, environment);
    posix_spawn_file_actions_destroy(&silent);
    posix_spawnattr_destroy(&own_group);
    if (failure != 0) throw std::runtime_error("cannot start /bin/sleep");
  }
  ~Sleeper() {
    if (state_ == State::kEnded) return;
    kill(id_, SIGKILL);
    waitpid(id_, nullptr, 0);
  }
  Sleeper(const Sleeper&) = delete;
  Sleeper& operator=(const Sleeper&) = delete;

  const std::string& command_line() const { return command_line_; }
  std::string id() const { return std::to_string(id_); }

  // Whether signal 9 ended it. Waits a moment for it.
  bool WasKilled() {
    for (int tries = 0; tries < 20 && state_ == State::kSleeps; ++tries) {
      if (waitpid(id_, &status_, WNOHANG) == id_) state_ = State::kEnded;
      if (state_ == State::kSleeps) usleep(5'000);
    }
    return state_ == State::kEnded && WIFSIGNALED(status_) && WTERMSIG(status_) == SIGKILL;
  }

 private:
  enum class State { kSleeps, kEnded };
  std::string command_line_;
  pid_t id_ = -1;
  int status_ = 0;
  State state_ = State::kSleeps;
};

}  // namespace darokleim::test

#endif  // DAROKLEIM_TESTS_SUPPORT_SLEEPER_H
