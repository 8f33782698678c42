#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>

#include "adb/system.h"
#include "base/standard_streams.h"

namespace darokleim::adb {

// A socket's own option, SO_NOSIGPIPE, takes the place of a flag.
const int kSendFlags = 0;
const bool kHasAbstractSockets = false;

base::UniqueFd OpenStreamSocket(int family) {
  base::UniqueFd fd = base::OpenClearOfStandardStreams([family] { return socket(family, SOCK_STREAM, 0); });
  if (!fd.valid()) return fd;
  const int on = 1;
  const bool ready = fcntl(fd.get(), F_SETFD, FD_CLOEXEC) == 0 && fcntl(fd.get(), F_SETFL, O_NONBLOCK) == 0 &&
                     setsockopt(fd.get(), SOL_SOCKET, SO_NOSIGPIPE, &on, sizeof(on)) == 0;
  return ready ? std::move(fd) : base::UniqueFd();
}

bool OpenPipe(base::UniqueFd* read_end, base::UniqueFd* write_end) {
  const base::StandardStreamsHeld held;
  std::array<int, 2> ends;
  if (pipe(ends.data()) != 0) return false;
  *read_end = base::ClearOfStandardStreams(base::UniqueFd(ends[0]));
  *write_end = base::ClearOfStandardStreams(base::UniqueFd(ends[1]));
  return fcntl(read_end->get(), F_SETFD, FD_CLOEXEC) == 0 &&
         fcntl(write_end->get(), F_SETFD, FD_CLOEXEC) == 0;
}

// The system decides by itself.
void AcknowledgeNow(int) {}

}  // namespace darokleim::adb
