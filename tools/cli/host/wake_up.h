// Ends a wait of poll from another thread or from a signal handler.
#ifndef DAROKLEIM_TOOLS_CLI_HOST_WAKE_UP_H
#define DAROKLEIM_TOOLS_CLI_HOST_WAKE_UP_H

#include <errno.h>
#include <fcntl.h>
#include <unistd.h>

#include "base/unique_fd.h"
#include "tools/cli/errors.h"

namespace darokleim::cli {

class WakeUp {
 public:
  WakeUp() {
    int ends[2];
    if (pipe(ends) != 0) throw ToolError("cannot wait: " + SystemErrorText(errno) + ".");
    reading_ = base::UniqueFd(ends[0]);
    writing_ = base::UniqueFd(ends[1]);
    for (const int end : ends) {
      fcntl(end, F_SETFD, FD_CLOEXEC);
      fcntl(end, F_SETFL, O_NONBLOCK);
    }
  }

  // A full pipe wakes as well.
  void Wake() const {
    const int before = errno;
    [[maybe_unused]] const ssize_t ignored = write(writing_.get(), "", 1);
    errno = before;
  }
  // Readable after Wake() until Clear().
  int descriptor() const { return reading_.get(); }
  void Clear() const {
    char bytes[64];
    while (read(reading_.get(), bytes, sizeof bytes) > 0) {
    }
  }

 private:
  base::UniqueFd reading_, writing_;
};

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_HOST_WAKE_UP_H
