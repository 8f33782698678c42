#include "base/spawn.h"

#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <unistd.h>

#if defined(__APPLE__)
#include <crt_externs.h>
#endif

#include "base/standard_streams.h"

namespace darokleim::base {
namespace {

#if defined(__APPLE__)
char** Environment() {
  return *_NSGetEnviron();
}
#else
char** Environment() {
  return environ;
}
#endif

bool OpenPipeAnywhere(UniqueFd* read_end, UniqueFd* write_end) {
  int ends[2];
#if defined(__linux__)
  if (pipe2(ends, O_CLOEXEC) != 0) return false;
#else
  if (pipe(ends) != 0) return false;
  for (const int end : ends) fcntl(end, F_SETFD, FD_CLOEXEC);
#endif
  read_end->Reset(ends[0]);
  write_end->Reset(ends[1]);
  return true;
}

bool OpenPipe(UniqueFd* read_end, UniqueFd* write_end) {
  const StandardStreamsHeld held;
  return OpenPipeAnywhere(read_end, write_end) && fcntl(read_end->get(), F_SETFL, O_NONBLOCK) == 0;
}

class Attributes {
 public:
  Attributes() {
    posix_spawnattr_init(&attributes_);
    short flags = POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF;
#if defined(__APPLE__)
    flags |= POSIX_SPAWN_CLOEXEC_DEFAULT;
#endif
    posix_spawnattr_setflags(&attributes_, flags);
    posix_spawnattr_setpgroup(&attributes_, 0);

    sigset_t signals;
    sigemptyset(&signals);
    posix_spawnattr_setsigmask(&attributes_, &signals);
    sigfillset(&signals);
    sigdelset(&signals, SIGKILL);
    sigdelset(&signals, SIGSTOP);
    posix_spawnattr_setsigdefault(&attributes_, &signals);
  }
  ~Attributes() {
    posix_spawnattr_destroy(&attributes_);
  }
  Attributes(const Attributes&) = delete;
  Attributes& operator=(const Attributes&) = delete;

  const posix_spawnattr_t* get() const {
    return &attributes_;
  }

 private:
  posix_spawnattr_t attributes_;
};

class FileActions {
 public:
  explicit FileActions(int output) {
    error_ = posix_spawn_file_actions_init(&actions_);
    if (error_ == 0) error_ = posix_spawn_file_actions_adddup2(&actions_, output, STDOUT_FILENO);
    if (error_ == 0) error_ = posix_spawn_file_actions_adddup2(&actions_, output, STDERR_FILENO);
#if defined(__GLIBC__)
#if __GLIBC_PREREQ(2, 34)
    // Before the open, which then finds a free descriptor even where the host is out of descriptors.
    if (error_ == 0) error_ = posix_spawn_file_actions_addclosefrom_np(&actions_, STDERR_FILENO + 1);
#endif
#endif
    if (error_ == 0) {
      error_ = posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    }
  }
  ~FileActions() {
    posix_spawn_file_actions_destroy(&actions_);
  }
  FileActions(const FileActions&) = delete;
  FileActions& operator=(const FileActions&) = delete;

  const posix_spawn_file_actions_t* get() const {
    return &actions_;
  }
  int error() const {
    return error_;
  }

 private:
  posix_spawn_file_actions_t actions_;
  int error_;
};

std::vector<char*> ArgumentVector(const std::string& program, const std::vector<std::string>& words) {
  std::vector<char*> argv;
  argv.reserve(words.size() + 2);
  argv.push_back(const_cast<char*>(program.c_str()));  // posix_spawn does not write to it
  for (const std::string& word : words) argv.push_back(const_cast<char*>(word.c_str()));
  argv.push_back(nullptr);
  return argv;
}

}  // namespace

int Spawn(const std::string& program, const std::vector<std::string>& words, Spawned* spawned) {
  UniqueFd write_end;
  if (!OpenPipe(&spawned->output, &write_end)) return errno;
  const std::vector<char*> argv = ArgumentVector(program, words);
  const Attributes attributes;
  const FileActions actions(write_end.get());
  if (actions.error() != 0) return actions.error();
  return posix_spawn(&spawned->pid, program.c_str(), actions.get(), attributes.get(), argv.data(),
                     Environment());
}

}  // namespace darokleim::base
