// Descriptors of ours stay clear of the standard streams. A host may have closed one: what it then prints would land in a socket
// or a file of ours that has taken its number, and what it reads would be taken from it.
#ifndef DAROKLEIM_BASE_STANDARD_STREAMS_H
#define DAROKLEIM_BASE_STANDARD_STREAMS_H

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cstddef>
#include <utility>

#include "base/unique_fd.h"

namespace darokleim::base {

// While one lives, the null device has the numbers of those that the host has closed.
class StandardStreamsHeld {
 public:
  StandardStreamsHeld() {
    for (int stream = 0; stream <= STDERR_FILENO; ++stream) {
      if (fcntl(stream, F_GETFD) < 0)
        held_[static_cast<std::size_t>(stream)].Reset(open("/dev/null", O_RDWR | O_CLOEXEC));
    }
  }
  ~StandardStreamsHeld() = default;
  StandardStreamsHeld(const StandardStreamsHeld&) = delete;
  StandardStreamsHeld& operator=(const StandardStreamsHeld&) = delete;

 private:
  std::array<UniqueFd, STDERR_FILENO + 1> held_;
};

// The same under another number where it has one of theirs, which another thread may have let go of meanwhile. Not valid, with errno
// set, where it was not, or where no number is left.
inline UniqueFd ClearOfStandardStreams(UniqueFd opened) {
  if (!opened.valid() || opened.get() > STDERR_FILENO) return opened;
  return UniqueFd(fcntl(opened.get(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
}

// What `open_it` opens, clear of the standard streams.
template <typename Open>
UniqueFd OpenClearOfStandardStreams(Open open_it) {
  const StandardStreamsHeld held;
  return ClearOfStandardStreams(UniqueFd(open_it()));
}

}  // namespace darokleim::base

#endif  // DAROKLEIM_BASE_STANDARD_STREAMS_H
