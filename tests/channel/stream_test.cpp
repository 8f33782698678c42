// Commands whose output is passed on while they run.
#include <condition_variable>
#include <mutex>
#include <optional>

#include "tests/channel/channel_run.h"
#include "tests/support/file_content.h"

// In a fork, what the threads of the parent own looks leaked.
static bool leaks_are_of_the_fork = false;
extern "C" __attribute__((visibility("default"))) int __lsan_is_turned_off();
extern "C" int __lsan_is_turned_off() {
  return leaks_are_of_the_fork;
}

namespace darokleim::channel {
namespace {

// Collects what a stream passes on.
class Collector {
 public:
  static void Receive(void* context, const char* data, int length) {
    auto* const self = static_cast<Collector*>(context);
    const std::lock_guard lock(self->mutex_);
    EXPECT_FALSE(self->status_.has_value()) << "a call after the last one";
    if (data == nullptr) {
      self->status_ = length;
    } else {
      EXPECT_GT(length, 0);
      self->output_.append(data, static_cast<size_t>(length));
    }
    self->change_.notify_all();
  }

  // -1 when it does not come in time.
  int Status() {
    std::unique_lock lock(mutex_);
    change_.wait_for(lock, std::chrono::seconds(30), [this] { return status_.has_value(); });
    return status_.value_or(-1);
  }
  bool WaitForOutput(const std::string& text) {
    std::unique_lock lock(mutex_);
    return change_.wait_for(lock, std::chrono::seconds(30),
                            [&] { return output_.find(text) != std::string::npos; });
  }
  std::string Output() {
    const std::lock_guard lock(mutex_);
    return output_;
  }

 private:
  std::mutex mutex_;
  std::condition_variable change_;
  std::string output_;
  std::optional<int> status_;
};

class StreamTest : public ChannelTest {
 protected:
  static int Start(const std::string& args, Collector* collector, const bool* cancel = nullptr) {
    // The text need not outlive the call.
    return ExecuteAdbCommandAnsynchronization(std::string(args).c_str(), cancel, collector,
                                              reinterpret_cast<void*>(&Collector::Receive));
  }
};

TEST_F(StreamTest, PassesOnEverythingAndThenTheStatus) {
  Collector collector;
  ASSERT_EQ(Start(" print:a\\n sleep:30 error:b\\n flood:1000000 exit:3", &collector), 0);
  EXPECT_EQ(collector.Status(), 1003);
  EXPECT_EQ(collector.Output(), "a\nb\n" + std::string(1000000, 'x'));
}

TEST_F(StreamTest, HasALineInTheLog) {
  Collector collector;
  ASSERT_EQ(Start(" print:streamed exit:4", &collector), 0);
  EXPECT_EQ(collector.Status(), 1004);
  const std::vector<std::string> lines = test::ReadLines(LogDirectory().File("adb_channel.log"));
  ASSERT_FALSE(lines.empty());
  EXPECT_NE(lines.back().find("adb print:streamed exit:4: status 1004, 8 bytes, "), std::string::npos)
      << lines.back();
}

TEST_F(StreamTest, PassesOnAtOnce) {
  Collector collector;
  bool cancel = false;
  ASSERT_EQ(Start(" print:line\\n sleep:60000", &collector, &cancel), 0);
  EXPECT_TRUE(collector.WaitForOutput("line\n"));
  __atomic_store_n(&cancel, true, __ATOMIC_RELEASE);
  EXPECT_EQ(collector.Status(), 3003);
}

TEST_F(StreamTest, EndsWhenItIsCancelled) {
  for (const char* orders :
       {" sleep:60000", " flood-for-ever", " ignore:15 sleep:60000", " close sleep:60000"}) {
    Collector collector;
    bool cancel = false;
    ASSERT_EQ(Start(" pid:" + File("pid") + orders, &collector, &cancel), 0);
    const pid_t pid = PidIn(File("pid"));
    __atomic_store_n(&cancel, true, __ATOMIC_RELEASE);
    EXPECT_EQ(collector.Status(), 3003) << orders;
    EXPECT_EQ(kill(pid, 0), -1) << orders;
    unlink(File("pid").c_str());
  }
}

TEST_F(StreamTest, PassesOnNothingOnceItIsCancelled) {
  // The beginning of a notice, which is held back until it is known to be none.
  const Misbehaviour beginning("print:*\\sdae pid:" + File("pid") + " sleep:60000");
  Collector collector;
  bool cancel = false;
  ASSERT_EQ(Start(" -s X logcat", &collector, &cancel), 0);
  PidIn(File("pid"));
  __atomic_store_n(&cancel, true, __ATOMIC_RELEASE);
  EXPECT_EQ(collector.Status(), 3003);
  EXPECT_EQ(collector.Output(), "");
}

TEST_F(StreamTest, DiscardsTheOutputWithoutAReceiver) {
  ASSERT_EQ(ExecuteAdbCommandAnsynchronization((" flood:1000000 pid:" + File("pid")).c_str(), nullptr,
                                               nullptr, nullptr),
            0);
  EXPECT_GT(PidIn(File("pid")), 0);  // it has got past a million bytes
}

TEST_F(StreamTest, DoesNotStartAFileThatIsNotAProgram) {
  UseAdb(File("missing"));
  Collector collector;
  EXPECT_EQ(Start(" devices", &collector), 3002);
  EXPECT_EQ(collector.Output(), "");
}

TEST_F(StreamTest, LeavesOutNotices) {
  Collector collector;
  const Misbehaviour misbehaviour("error:*\\sdaemon\\sstarted\\ssuccessfully\\n print:line\\n");
  ASSERT_EQ(Start(" logcat", &collector), 0);
  EXPECT_EQ(collector.Status(), 0);
  EXPECT_EQ(collector.Output(), "line\n");
}

TEST_F(StreamTest, HasTheStatusOfTheTextWhereItDecides) {
  Collector listing, failure;
  {
    const Misbehaviour misbehaviour("print:a\\n exit:1");
    ASSERT_EQ(Start(" shell ls /x", &listing), 0);
  }
  EXPECT_EQ(listing.Status(), 0);
  {
    const Misbehaviour misbehaviour("print:a\\n error:error:\\sclosed\\n exit:1");
    ASSERT_EQ(Start(" shell ls /x", &failure), 0);
  }
  EXPECT_EQ(failure.Status(), 1001);
}

TEST_F(StreamTest, RunsBesideOthers) {
  std::vector<Collector> collectors(32);
  for (size_t i = 0; i < collectors.size(); ++i) {
    ASSERT_EQ(Start(" flood:" + std::to_string(1000 * i) + " exit:" + std::to_string(i), &collectors[i]), 0);
  }
  for (size_t i = 0; i < collectors.size(); ++i) {
    EXPECT_EQ(collectors[i].Status(), i == 0 ? 0 : 1000 + static_cast<int>(i));
    EXPECT_EQ(collectors[i].Output().size(), 1000 * i);
  }
}

TEST_F(StreamTest, MayStartAnotherFromItsLastCall) {
  struct Chain {
    Collector next;
    std::atomic<int> started = -1;
  } chain;
  ASSERT_EQ(
      ExecuteAdbCommandAnsynchronization(" exit:0", nullptr, &chain,
                                         reinterpret_cast<void*>(+[](void* context, const char* data, int) {
                                           auto* const self = static_cast<Chain*>(context);
                                           if (data == nullptr)
                                             self->started = Start(" print:next", &self->next);
                                         })),
      0);
  EXPECT_EQ(chain.next.Status(), 0);
  while (chain.started == -1) std::this_thread::sleep_for(milliseconds(1));
  EXPECT_EQ(chain.started, 0);
  EXPECT_EQ(chain.next.Output(), "next");
}

TEST_F(StreamTest, TakesNoneOfTheHostsSignals) {
  struct Seen {
    std::atomic<int> blocked = -1;
    Collector collector;
  } seen;
  ASSERT_EQ(ExecuteAdbCommandAnsynchronization(
                " exit:0", nullptr, &seen,
                reinterpret_cast<void*>(+[](void* context, const char* data, int length) {
                  auto* const self = static_cast<Seen*>(context);
                  sigset_t mask;
                  pthread_sigmask(SIG_SETMASK, nullptr, &mask);
                  self->blocked = sigismember(&mask, SIGUSR1) && sigismember(&mask, SIGCHLD) &&
                                  !sigismember(&mask, SIGSEGV);
                  Collector::Receive(&self->collector, data, length);
                })),
            0);
  EXPECT_EQ(seen.collector.Status(), 0);
  EXPECT_EQ(seen.blocked, 1);
}

TEST_F(StreamTest, OutlivesAForkOfTheHostThatExits) {
  Collector collector;
  bool cancel = false;
  ASSERT_EQ(Start(" print:line\\n pid:" + File("pid") + " sleep:60000", &collector, &cancel), 0);
  ASSERT_TRUE(collector.WaitForOutput("line\n"));
  const pid_t fork_of_host = fork();
  if (fork_of_host == 0) {
    leaks_are_of_the_fork = true;
    exit(0);
  }
  int status = 0;
  ASSERT_EQ(waitpid(fork_of_host, &status, 0), fork_of_host);
  EXPECT_EQ(status, 0);
  EXPECT_TRUE(Runs(PidIn(File("pid"))));
  __atomic_store_n(&cancel, true, __ATOMIC_RELEASE);
  EXPECT_EQ(collector.Status(), 3003);
}

}  // namespace
}  // namespace darokleim::channel
