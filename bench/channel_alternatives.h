// How a program runs another one where it has no channel.
#ifndef DAROKLEIM_BENCH_CHANNEL_ALTERNATIVES_H
#define DAROKLEIM_BENCH_CHANNEL_ALTERNATIVES_H

#include <stdio.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

#include "bench/channel_floor.h"

namespace darokleim::bench {

inline size_t PopenRead(const char* command, char* memory, size_t size) {
  FILE* const output = popen(command, "r");
  if (output == nullptr) abort();
  const size_t total = fread(memory, 1, size, output);
  pclose(output);
  return total;
}

inline size_t ForkExecRead(const char* program, const char* word, char* memory, size_t size) {
  int ends[2];
  if (pipe(ends) != 0) abort();
  const pid_t pid = fork();
  if (pid < 0) abort();
  if (pid == 0) {
    dup2(ends[1], STDOUT_FILENO);
    close(ends[0]);
    close(ends[1]);
    execl(program, program, word, nullptr);
    _exit(127);
  }
  return ReadAndWait(ends, pid, memory, size);
}

}  // namespace darokleim::bench

#endif  // DAROKLEIM_BENCH_CHANNEL_ALTERNATIVES_H
