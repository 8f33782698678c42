#include <fcntl.h>
#include <unistd.h>

#include "channel/process/pipe_relay.h"

namespace darokleim::channel {
namespace {

constexpr size_t kDefaultPipeSize = 64 * 1024;
constexpr int kLargePipeSize = 1024 * 1024;  // the most that a user without privileges may ask for

}  // namespace

// A short command opens no relay: large pipes cost time, and all pipes of a user share a limit.
bool PipeRelay::IsWorthwhileAfter(size_t bytes_read) {
  return bytes_read >= kDefaultPipeSize;
}

void PipeRelay::Open(int adb_output) {
  if (fcntl(adb_output, F_SETPIPE_SZ, kLargePipeSize) < 0) return;
  int ends[2];
  if (pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0) return;
  out_.Reset(ends[0]);
  if (base::UniqueFd in(ends[1]); fcntl(in.get(), F_SETPIPE_SZ, kLargePipeSize) >= 0) in_ = std::move(in);
}

ssize_t PipeRelay::MoveFrom(int adb_output) {
  return splice(adb_output, nullptr, in_.get(), nullptr, kLargePipeSize, SPLICE_F_MOVE);
}

}  // namespace darokleim::channel
