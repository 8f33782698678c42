// Memory runs out at every moment at which the channel and the log allocate some.
#include "src/platform/log_library.h"
#include "tests/channel/memory_trials.h"

namespace darokleim::channel {
namespace {

using darokleim::test::FailingAllocation;
using darokleim::test::WithEachAllocationFailing;

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

void ExpectOutcome(const Outcome& outcome, std::string_view output) {
  if (outcome.status == 0) {
    EXPECT_EQ(outcome.output(), output);
  } else {
    ExpectNoMemory(outcome);
  }
  ReleaseAdbOutBuffer(outcome.out);
}

void ExpectCommand(const std::string& args, std::string_view output) {
  const long allocations = WithEachAllocationFailing([&](long number) {
    Outcome outcome;
    const bool failed = outcome.Run(args, number);
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

void ExpectStream(const std::string& args, long long bytes) {
  const long allocations = WithEachAllocationFailing([&](long number) {
    SCOPED_TRACE(number);
    return RunOutOnceInAStream(args, bytes, number);
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
