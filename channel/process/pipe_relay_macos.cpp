// macOS has no splice: the relay is never opened.
#include <errno.h>

#include "channel/process/pipe_relay.h"

namespace darokleim::channel {

bool PipeRelay::IsWorthwhileAfter(size_t) {
  return false;
}

void PipeRelay::Open(int) {}

ssize_t PipeRelay::MoveFrom(int) {
  errno = ENOSYS;
  return -1;
}

}  // namespace darokleim::channel
