// A server that a command leaves behind: it holds the pipe, lives on, and knows nothing of the host.
#include <fcntl.h>

#include "tests/channel/channel_run.h"

namespace darokleim::channel {
namespace {

class ServerTest : public ChannelTest {
 protected:
  ~ServerTest() override { EndProcess(server_); }
  Result RunWithServer(const std::string& kind, const std::string& rest, const bool* cancel = nullptr) {
    const Result result = RunAdb(" " + kind + ":" + File("server") + rest, cancel);
    server_ = PidIn(File("server"));
    return result;
  }

  pid_t server_ = -1;
};

TEST_F(ServerTest, KeepsNoCallWaiting) {
  const Clock::time_point start = Clock::now();
  const Result result = RunWithServer("server", " print:answer exit:3");
  EXPECT_LT(Since(start), milliseconds(20000));
  EXPECT_EQ(result.status, 1003);
  EXPECT_EQ(result.output, "answer");
  EXPECT_TRUE(Runs(server_));
}

TEST_F(ServerTest, KeepsNoCallWaitingThatCanBeCancelled) {
  const bool cancel = false;
  EXPECT_EQ(RunWithServer("server", " print:answer", &cancel).output, "answer");
}

TEST_F(ServerTest, MayPrintWithoutEnd) {
  const Clock::time_point start = Clock::now();
  const Result result = RunWithServer("chatty-server", " sleep:50 exit:3");
  EXPECT_LT(Since(start), milliseconds(20000));
  EXPECT_EQ(result.status, 1003);
}

TEST_F(ServerTest, DoesNotCutALongOutput) {
  EXPECT_EQ(RunWithServer("server", " flood:5000000").output.size(), 5000000u);
}

#if defined(__linux__)
TEST_F(ServerTest, IsWaitedForWithoutWakeUps) {
  const auto switches = [] {
    std::ifstream status("/proc/thread-self/status");
    for (std::string word; status >> word;) {
      long count = 0;
      if (word == "voluntary_ctxt_switches:" && status >> count) return count;
    }
    return -1L;
  };
  const long before = switches();
  EXPECT_EQ(RunAdb(" sleep:1000 exit:2").status, 1002);
  EXPECT_LT(switches() - before, 15);
}
#endif

TEST_F(ServerTest, CostsNothingWhileAdbRunsOnWithoutOutput) {
  const auto processor_time = [] {
    timespec time;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
  };
  for (const char* orders : {" close sleep:1000", " flood:3000000 close sleep:1000"}) {
    const auto before = processor_time();
    EXPECT_EQ(RunAdb(orders).status, 0);
    EXPECT_LT(processor_time() - before, milliseconds(200)) << orders;
  }
}

TEST_F(ServerTest, InheritsNothingOfTheHosts) {
  const int left_open = open("/dev/null", O_RDONLY);  // not close-on-exec, as a host may have it
  ASSERT_GT(left_open, 2);
  EXPECT_EQ(RunAdb(" descriptors").output, "0\n1\n2\n");
  close(left_open);
}

TEST_F(ServerTest, IsOutOfReachOfATerminal) {
  EXPECT_EQ(RunAdb(" group").output, "own");
}

}  // namespace
}  // namespace darokleim::channel
