#include "channel/process/pipe_reader.h"

#include <errno.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <limits>

namespace darokleim::channel {
namespace {

constexpr size_t kUnlimited = std::numeric_limits<size_t>::max();

bool CanBeRepeated(int error) {
  return error == EAGAIN || error == EINTR;
}

}  // namespace

ReadResult PipeReader::ReadFrom(int fd, size_t limit) {
  const std::span<char> room = sink_->Room();
  if (room.empty()) return ReadResult::kSinkFull;
  const ssize_t count = read(fd, room.data(), std::min(room.size(), limit));
  if (count < 0) return CanBeRepeated(errno) ? ReadResult::kNothingYet : ReadResult::kEnd;
  if (count == 0) return ReadResult::kEnd;
  last_count_ = static_cast<size_t>(count);
  sink_->Commit(last_count_);
  return ReadResult::kSome;
}

ReadResult PipeReader::Read() {
  if (relay_.IsOpen()) return ReadThroughRelay();
  const ReadResult result = ReadFrom(output_, kUnlimited);
  if (!relay_tried_ && PipeRelay::IsWorthwhileAfter(last_count_)) {
    relay_tried_ = true;
    relay_.Open(output_);
  }
  return result;
}

ReadResult PipeReader::ReadThroughRelay() {
  const ssize_t moved = relay_.MoveFrom(output_);
  if (moved == 0) return ReadResult::kEnd;
  if (moved < 0) {
    if (CanBeRepeated(errno)) return ReadResult::kNothingYet;
    // A sandbox may forbid the call. The relay is empty: each time, all that was moved has been read.
    relay_.Close();
    return ReadFrom(output_, kUnlimited);
  }
  for (size_t left = static_cast<size_t>(moved); left > 0; left -= last_count_) {
    ReadResult result = ReadResult::kNothingYet;
    while (result == ReadResult::kNothingYet) result = ReadFrom(relay_.output(), left);
    if (result != ReadResult::kSome) return result;
  }
  return ReadResult::kSome;
}

ReadResult PipeReader::Drain() {
  int waiting = 0;
  if (ioctl(output_, FIONREAD, &waiting) != 0) return ReadResult::kEnd;
  for (size_t left = static_cast<size_t>(waiting); left > 0; left -= last_count_) {
    const ReadResult result = ReadFrom(output_, left);
    if (result != ReadResult::kSome) return result;
  }
  return ReadResult::kEnd;
}

}  // namespace darokleim::channel
