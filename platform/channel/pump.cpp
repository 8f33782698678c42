#include "platform/channel/pump.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <limits>

namespace darokleim::channel {
namespace {

enum class ReadResult { kSome, kNothingYet, kEnd, kSinkFull };

class Reader {
 public:
  Reader(int output, OutputSink* sink) : output_(output), sink_(sink) {}

  // At most limit bytes.
  ReadResult Read(size_t limit) {
    const std::span<char> room = sink_->Room();
    if (room.empty()) return ReadResult::kSinkFull;
    const ssize_t count = read(output_, room.data(), std::min(room.size(), limit));
    if (count < 0) return errno == EAGAIN || errno == EINTR ? ReadResult::kNothingYet : ReadResult::kEnd;
    if (count == 0) return ReadResult::kEnd;
    last_count_ = static_cast<size_t>(count);
    sink_->Took(last_count_);
    EnlargePipeWhenFull();
    return ReadResult::kSome;
  }

  // What stands in the pipe now. Not up to its end: a server that holds the pipe may go on writing.
  ReadResult Drain() {
    int waiting = 0;
    if (ioctl(output_, FIONREAD, &waiting) != 0) return ReadResult::kEnd;
    for (size_t left = static_cast<size_t>(waiting); left > 0; left -= last_count_) {
      const ReadResult result = Read(left);
      if (result != ReadResult::kSome) return result;
    }
    return ReadResult::kEnd;
  }

 private:
  // A pipe of the default size costs a third more on large output. A short command never gets here, and a
  // user's processes share a limit on what their pipes may hold: only who has filled one pays for more.
  void EnlargePipeWhenFull() {
#if defined(__linux__)
    constexpr size_t kDefaultPipe = 64 * 1024;
    constexpr int kLargePipe = 1024 * 1024;
    if (enlarged_ || last_count_ < kDefaultPipe) return;
    fcntl(output_, F_SETPIPE_SZ, kLargePipe);
    enlarged_ = true;
#endif
  }

  const int output_;
  OutputSink* const sink_;
  size_t last_count_ = 0;
  [[maybe_unused]] bool enlarged_ = false;  // on Linux only
};

}  // namespace

PumpResult Pump(Child* child, int output, const CancelFlag& cancel, OutputSink* sink) {
  Reader reader(output, sink);
  bool open = true;
  while (open || cancel.CanBeSet()) {
    if (cancel.IsSet()) return PumpResult::kCancelled;
    const Child::Event event = child->Wait(open ? output : -1, cancel.LongestWait());
    ReadResult result = ReadResult::kNothingYet;
    if (event.ended) {
      result = open ? reader.Drain() : ReadResult::kEnd;
    } else if (event.readable) {
      result = reader.Read(std::numeric_limits<size_t>::max());
    }
    if (result == ReadResult::kSinkFull) return PumpResult::kSinkFull;
    if (event.ended) return PumpResult::kEnded;
    if (result == ReadResult::kEnd) open = false;
  }
  return PumpResult::kEnded;
}

}  // namespace darokleim::channel
