// Starts a program with its output in a pipe of ours.
#ifndef DAROKLEIM_BASE_SPAWN_H
#define DAROKLEIM_BASE_SPAWN_H

#include <sys/types.h>

#include <string>
#include <vector>

#include "base/unique_fd.h"

namespace darokleim::base {

struct Spawned {
  pid_t pid = -1;
  UniqueFd output;  // what the child prints on both streams; reading never blocks
};

// The child has the null device as standard input, one pipe for both outputs and no other descriptor of the host's. It
// has a process group of its own, so that a terminal's Ctrl-C does not reach an adb server that it may start, and no
// signal blocked or ignored. Returns 0 or an errno.
int Spawn(const std::string& program, const std::vector<std::string>& words, Spawned* spawned);

}  // namespace darokleim::base

#endif  // DAROKLEIM_BASE_SPAWN_H
