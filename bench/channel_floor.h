// The least that running a program can cost: posix_spawn with a pipe, reading, waiting.
#ifndef DAROKLEIM_BENCH_CHANNEL_FLOOR_H
#define DAROKLEIM_BENCH_CHANNEL_FLOOR_H

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

extern char** environ;

namespace darokleim::bench {

// Reads into memory until the end; returns the bytes read.
inline size_t ReadToEnd(int fd, char* memory, size_t size) {
  size_t total = 0;
  ssize_t count = 0;
  while ((count = read(fd, memory + total, size - total)) > 0) total += static_cast<size_t>(count);
  return total;
}

// Reads what the child writes to the pipe and waits for its end. Closes the pipe; returns the bytes read.
inline size_t ReadAndWait(const int (&ends)[2], pid_t pid, char* memory, size_t size) {
  close(ends[1]);
  const size_t total = ReadToEnd(ends[0], memory, size);
  close(ends[0]);
  waitpid(pid, nullptr, 0);
  return total;
}

// Runs program with one word. Returns the bytes read. pipe_size of 0 keeps the system's.
inline size_t SpawnReadWait(const char* program, const char* word, char* memory, size_t size,
                            int pipe_size = 0) {
  int ends[2];
  if (pipe(ends) != 0) abort();
#if defined(__linux__)
  if (pipe_size > 0) fcntl(ends[0], F_SETPIPE_SZ, pipe_size);
#endif
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
  posix_spawn_file_actions_addclose(&actions, ends[0]);
  posix_spawn_file_actions_addclose(&actions, ends[1]);
  char* const argv[] = {const_cast<char*>(program), const_cast<char*>(word), nullptr};
  pid_t pid = -1;
  if (posix_spawn(&pid, program, &actions, nullptr, argv, environ) != 0) abort();
  posix_spawn_file_actions_destroy(&actions);
  return ReadAndWait(ends, pid, memory, size);
}

}  // namespace darokleim::bench

#endif  // DAROKLEIM_BENCH_CHANNEL_FLOOR_H
