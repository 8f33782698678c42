// Reading from a descriptor, whatever signals arrive.
#ifndef DAROKLEIM_BASE_READ_SOME_H
#define DAROKLEIM_BASE_READ_SOME_H

#include <sys/types.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>

namespace darokleim::base {

// One read, repeated when a signal interrupts it: the number of bytes, 0 at the end, or -1 and errno.
inline ssize_t ReadSome(int descriptor, void* bytes, std::size_t size) {
  ssize_t count;
  do {
    count = read(descriptor, bytes, size);
  } while (count < 0 && errno == EINTR);
  return count;
}

}  // namespace darokleim::base

#endif  // DAROKLEIM_BASE_READ_SOME_H
