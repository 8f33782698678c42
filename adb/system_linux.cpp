#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>

#include "adb/system.h"
#include "base/standard_streams.h"

namespace darokleim::adb {

const int kSendFlags = MSG_NOSIGNAL;
const bool kHasAbstractSockets = true;

base::UniqueFd OpenStreamSocket(int family) {
  return base::OpenClearOfStandardStreams(
      [family] { return socket(family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0); });
}

bool OpenPipe(base::UniqueFd* read_end, base::UniqueFd* write_end) {
  const base::StandardStreamsHeld held;
  std::array<int, 2> ends;
  if (pipe2(ends.data(), O_CLOEXEC) != 0) return false;
  *read_end = base::ClearOfStandardStreams(base::UniqueFd(ends[0]));
  *write_end = base::ClearOfStandardStreams(base::UniqueFd(ends[1]));
  return read_end->valid() && write_end->valid();
}

void AcknowledgeNow(int tcp_socket) {
  const int on = 1;
  setsockopt(tcp_socket, IPPROTO_TCP, TCP_QUICKACK, &on, sizeof(on));
}

}  // namespace darokleim::adb
