#ifndef DAROKLEIM_TESTS_SUPPORT_PIPE_H
#define DAROKLEIM_TESTS_SUPPORT_PIPE_H

#include <fcntl.h>
#include <unistd.h>

#include <stdexcept>

#include "base/unique_fd.h"

namespace darokleim::test {

// A pipe that programs started later do not inherit. Throws when there are no descriptors left.
struct Pipe {
  Pipe() {
    int ends[2];
#if defined(__linux__)
    if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe left");
#else
    if (pipe(ends) != 0) throw std::runtime_error("no pipe left");
    for (const int end : ends) fcntl(end, F_SETFD, FD_CLOEXEC);
#endif
    read_end.Reset(ends[0]);
    write_end.Reset(ends[1]);
  }

  base::UniqueFd read_end;
  base::UniqueFd write_end;
};

}  // namespace darokleim::test

#endif  // DAROKLEIM_TESTS_SUPPORT_PIPE_H
