#include "channel/process/pipe_reader.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <limits>

namespace darokleim::channel {
namespace {

constexpr size_t kUnlimited = std::numeric_limits<size_t>::max();

ReadResult ResultOfFailure() {
  return errno == EAGAIN || errno == EINTR ? ReadResult::kNothingYet : ReadResult::kEnd;
}

}  // namespace

ReadResult PipeReader::ReadFrom(int fd, size_t limit) {
  const std::span<char> room = sink_->Room();
  if (room.empty()) return ReadResult::kSinkFull;
  const ssize_t count = read(fd, room.data(), std::min(room.size(), limit));
  if (count < 0) return ResultOfFailure();
  if (count == 0) return ReadResult::kEnd;
  last_count_ = static_cast<size_t>(count);
  sink_->Took(last_count_);
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

#if defined(__linux__)

namespace {

constexpr size_t kDefaultPipeSize = 64 * 1024;
constexpr int kLargePipeSize = 1024 * 1024;  // the most that a user without privileges may ask for

}  // namespace

ReadResult PipeReader::Read() {
  if (relay_in_.valid()) return ReadThroughRelay();
  const ReadResult result = ReadFrom(output_, kUnlimited);
  if (!much_ && last_count_ >= kDefaultPipeSize) PrepareForMuch();
  return result;
}

// A short command never gets here: large pipes cost time, and all pipes of a user share a limit.
void PipeReader::PrepareForMuch() {
  much_ = true;
  if (fcntl(output_, F_SETPIPE_SZ, kLargePipeSize) < 0) return;
  int ends[2];
  if (pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0) return;
  relay_out_.Reset(ends[0]);
  if (base::UniqueFd in(ends[1]); fcntl(in.get(), F_SETPIPE_SZ, kLargePipeSize) >= 0)
    relay_in_ = std::move(in);
}

ReadResult PipeReader::ReadThroughRelay() {
  const ssize_t moved = splice(output_, nullptr, relay_in_.get(), nullptr, kLargePipeSize, SPLICE_F_MOVE);
  if (moved == 0) return ReadResult::kEnd;
  if (moved < 0) return ResultOfFailure();
  for (size_t left = static_cast<size_t>(moved); left > 0; left -= last_count_) {
    ReadResult result = ReadResult::kNothingYet;
    while (result == ReadResult::kNothingYet) result = ReadFrom(relay_out_.get(), left);
    if (result != ReadResult::kSome) return result;
  }
  return ReadResult::kSome;
}

#else

ReadResult PipeReader::Read() {
  return ReadFrom(output_, kUnlimited);
}

#endif

}  // namespace darokleim::channel
