// Cancelling in every phase of a command. The machine may be busy: of several attempts the fastest counts.
#include <algorithm>

#include "tests/channel/channel_run.h"

namespace darokleim::channel {
namespace {

constexpr milliseconds kPromptly{100};

class CancelTest : public ChannelTest {
 protected:
  // From the moment the flag is set until the call returns.
  milliseconds TimeToCancel(const std::string& args, milliseconds after) {
    bool cancel = false;
    Clock::time_point set;
    std::thread other([&] {
      std::this_thread::sleep_for(after);
      set = Clock::now();
      __atomic_store_n(&cancel, true, __ATOMIC_RELEASE);
    });
    const Result result = RunAdb(args, &cancel);
    const Clock::time_point returned = Clock::now();
    other.join();
    EXPECT_EQ(result.status, 3003);
    EXPECT_FALSE(result.handed_out);
    return std::chrono::duration_cast<milliseconds>(returned - set);
  }
  milliseconds BestTimeToCancel(const std::string& args, milliseconds after = milliseconds(60)) {
    milliseconds best = TimeToCancel(args, after);
    for (int attempt = 0; attempt < 8 && best > kPromptly; ++attempt)
      best = std::min(best, TimeToCancel(args, after));
    return best;
  }
};

TEST_F(CancelTest, BeforeTheStartStartsNothing) {
  const bool cancel = true;
  EXPECT_EQ(RunAdb(" pid:" + File("pid"), &cancel).status, 3003);
  EXPECT_NE(access(File("pid").c_str(), F_OK), 0);
  EXPECT_EQ(ExecuteAdbCommandAnsynchronization(" exit:0", &cancel, nullptr, nullptr), 3003);
}

TEST_F(CancelTest, WhileAdbIsSilent) {
  EXPECT_LE(BestTimeToCancel(" sleep:60000"), kPromptly);
}

TEST_F(CancelTest, WhileAdbPrintsWithoutEnd) {
  EXPECT_LE(BestTimeToCancel(" flood-for-ever"), kPromptly);
}

TEST_F(CancelTest, AfterAdbHasClosedItsOutput) {
  EXPECT_LE(BestTimeToCancel(" close sleep:60000"), kPromptly);
}

TEST_F(CancelTest, WhenAdbIgnoresTheTerminateSignal) {
  EXPECT_LE(BestTimeToCancel(" ignore:15 sleep:60000"), kPromptly);
}

TEST_F(CancelTest, LetsAdbTidyUpFirst) {
  // On a busy machine it may not come to it in its 40 ms.
  for (int attempt = 0; attempt < 8 && access(File("tidy").c_str(), F_OK) != 0; ++attempt) {
    TimeToCancel(" tidy-up:" + File("tidy") + " sleep:60000", milliseconds(60));
  }
  EXPECT_EQ(access(File("tidy").c_str(), F_OK), 0);
}

TEST_F(CancelTest, WhenAdbIsStopped) {
  EXPECT_LE(BestTimeToCancel(" signal:19"), kPromptly);
}

TEST_F(CancelTest, LeavesNoProcess) {
  BestTimeToCancel(" ignore:15 pid:" + File("pid") + " sleep:60000", milliseconds(200));
  EXPECT_EQ(kill(PidIn(File("pid")), 0), -1);  // not even a zombie
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
}

TEST_F(CancelTest, SparesTheServer) {
  const std::string file = File("server");
  bool cancel = false;
  pid_t server = -1;
  std::thread other([&] {
    server = PidIn(file);
    __atomic_store_n(&cancel, true, __ATOMIC_RELEASE);
  });
  EXPECT_EQ(RunAdb(" server:" + file + " sleep:60000", &cancel).status, 3003);
  other.join();
  ASSERT_GT(server, 0);
  EXPECT_TRUE(Runs(server));
  EndProcess(server);
}

TEST_F(CancelTest, AFlagThatStaysUnsetChangesNothing) {
  const bool cancel = false;
  EXPECT_EQ(RunAdb(" print:a sleep:40 print:b", &cancel).output, "ab");
}

}  // namespace
}  // namespace darokleim::channel
