// Commands whose memory runs out at a chosen moment.
#ifndef DAROKLEIM_TESTS_CHANNEL_MEMORY_TRIALS_H
#define DAROKLEIM_TESTS_CHANNEL_MEMORY_TRIALS_H

#include <future>
#include <optional>
#include <string_view>

#include "tests/channel/channel_run.h"
#include "tests/support/failing_allocation.h"

namespace darokleim::channel {

using test::FailingAllocation;
using test::WithEachAllocationFailing;

inline constexpr int kNoMemory = 3006;

// What a command came to. Kept outside of the call, whose allocations are counted.
struct Outcome {
  int status = -1;
  char* out = nullptr;
  int length = 0;

  // Returns whether the allocation with this number failed; there may be fewer.
  bool Run(const std::string& args, long number) {
    const FailingAllocation failing(number);
    status = ExecuteAdbCommandSynchronization(args.c_str(), nullptr, &out, &length);
    return failing.HasFailed();
  }
  std::string_view output() const { return {out, static_cast<size_t>(length)}; }
};

inline void ExpectNoMemory(const Outcome& outcome) {
  EXPECT_EQ(outcome.status, kNoMemory);
  EXPECT_EQ(outcome.out, nullptr);
  EXPECT_EQ(outcome.length, 0);
}

// Collects nothing that would need memory.
struct StreamEnd {
  std::promise<int> status;
  std::atomic<long long> bytes = 0;

  static void Receive(void* context, const char* data, int length) {
    auto* const self = static_cast<StreamEnd*>(context);
    if (data == nullptr) {
      self->status.set_value(length);
    } else {
      self->bytes += length;
    }
  }
};

// Nothing when the stream was not started.
inline std::optional<int> StatusOfStream(const std::string& args, StreamEnd* end) {
  const int started = ExecuteAdbCommandAnsynchronization(args.c_str(), nullptr, end,
                                                         reinterpret_cast<void*>(&StreamEnd::Receive));
  if (started == 0) return end->status.get_future().get();
  EXPECT_EQ(started, kNoMemory);
  return std::nullopt;
}

// Runs a stream to its end while the allocation with this number fails; it may arrive completely all the same. Returns
// whether it failed.
inline bool RunOutOnceInAStream(const std::string& args, long long bytes, long number) {
  StreamEnd end;
  std::optional<int> status;
  bool failed;
  {
    const FailingAllocation failing(number);
    status = StatusOfStream(args, &end);
    failed = failing.HasFailed();
  }
  if (status == 0) {
    EXPECT_EQ(end.bytes, bytes);
  } else {
    EXPECT_TRUE(failed);
    EXPECT_EQ(status.value_or(kNoMemory), kNoMemory);
  }
  return failed;
}

}  // namespace darokleim::channel

#endif  // DAROKLEIM_TESTS_CHANNEL_MEMORY_TRIALS_H
