// Memory runs out at every moment at which the channel and the log allocate some.
#include <future>
#include <optional>
#include <string_view>

#include "src/platform/log_library.h"
#include "tests/channel/channel_run.h"
#include "tests/support/failing_allocation.h"

namespace darokleim::channel {
namespace {

using darokleim::test::FailingAllocation;
using darokleim::test::WithEachAllocationFailing;

constexpr int kNoMemory = 3006;

class MemoryTest : public ChannelTest {
 protected:
  MemoryTest() {
    // What is kept for the process is allocated once.
    EXPECT_EQ(RunAdb(" print:first").status, 0);
  }
};

void ExpectNoChildIsLeft() {
  siginfo_t info = {};
  EXPECT_EQ(waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT), -1);
  EXPECT_EQ(errno, ECHILD);
}

// Whatever a command of the test prints. Kept outside of the call, whose allocations are counted.
struct Outcome {
  int status = -1;
  char* out = nullptr;
  int length = 0;
};

void ExpectOutcome(const Outcome& outcome, std::string_view output) {
  if (outcome.status == 0) {
    EXPECT_EQ(std::string_view(outcome.out, static_cast<size_t>(outcome.length)), output);
  } else {
    EXPECT_EQ(outcome.status, kNoMemory);
    EXPECT_EQ(outcome.out, nullptr);
    EXPECT_EQ(outcome.length, 0);
  }
  ReleaseAdbOutBuffer(outcome.out);
}

void ExpectCommand(const std::string& args, std::string_view output) {
  const long allocations = WithEachAllocationFailing([&](long number) {
    Outcome outcome;
    bool failed;
    {
      const FailingAllocation failing(number);
      outcome.status = ExecuteAdbCommandSynchronization(args.c_str(), nullptr, &outcome.out, &outcome.length);
      failed = failing.HasFailed();
    }
    SCOPED_TRACE(number);
    ExpectOutcome(outcome, output);
    EXPECT_TRUE(failed || outcome.status == 0);
    ExpectNoChildIsLeft();
    return failed;
  });
  EXPECT_GT(allocations, 5);
}

TEST_F(MemoryTest, RunsOutInACommand) {
  const std::string long_word(200, 'w');
  ExpectCommand(" print:" + long_word + " exit:0", long_word);
}

constexpr char kNotices[] =
    "error:*\\sdaemon\\snot\\srunning;\\sstarting\\snow\\sat\\stcp:5037\\n*"
    "\\sdaemon\\sstarted\\ssuccessfully\\n";

TEST_F(MemoryTest, RunsOutWhileNoticesOfTheServerAreLeftOut) {
  const Misbehaviour notices(std::string(kNotices) + " print:text");
  ExpectCommand(" -s X get-state", "text");
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
std::optional<int> StatusOfStream(const std::string& args, StreamEnd* end) {
  const int started = ExecuteAdbCommandAnsynchronization(args.c_str(), nullptr, end,
                                                         reinterpret_cast<void*>(&StreamEnd::Receive));
  if (started == 0) return end->status.get_future().get();
  EXPECT_EQ(started, kNoMemory);
  return std::nullopt;
}

void ExpectStream(const std::string& args, long long bytes) {
  const long allocations = WithEachAllocationFailing([&](long number) {
    SCOPED_TRACE(number);
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
      EXPECT_TRUE(failed && status.value_or(kNoMemory) == kNoMemory);
    }
    return failed;
  });
  EXPECT_GT(allocations, 5);
  // The last one is reaped before its end is reported.
  ExpectNoChildIsLeft();
}

TEST_F(MemoryTest, RunsOutInAStream) {
  ExpectStream(" flood:300000", 300000);
}

TEST_F(MemoryTest, RunsOutInAStreamThatBeginsWithNoticesOfTheServer) {
  const Misbehaviour notices(std::string(kNotices) + " print:text");
  ExpectStream(" -s X logcat", 4);
}

TEST_F(MemoryTest, RunsOutInAStreamThatMayStillBeginWithOne) {
  const Misbehaviour beginning("print:*\\sdae");
  ExpectStream(" -s X logcat", 5);
}

TEST_F(MemoryTest, RunsOutInTheLog) {
  const std::string long_path = File(std::string(100, 'l'));
  const std::string long_text(2000, 't');
  bool opened = false;
  WithEachAllocationFailing([&](long number) {
    const FailingAllocation failing(number);
    opened = InitLogEx(nullptr, "TheModuleWhoseNameIsLong", long_path.c_str());
    EXPECT_TRUE(opened || failing.HasFailed());
    return failing.HasFailed();
  });
  EXPECT_TRUE(opened);
  const long allocations = WithEachAllocationFailing([&](long number) {
    const FailingAllocation failing(number);
    LogEx("TheModuleWhoseNameIsLong", 3, "%s", long_text.c_str());
    return failing.HasFailed();
  });
  EXPECT_GT(allocations, 0);
  std::ifstream log(long_path);
  EXPECT_NE(std::string(std::istreambuf_iterator<char>(log), {}).find(long_text), std::string::npos);
}

}  // namespace
}  // namespace darokleim::channel
