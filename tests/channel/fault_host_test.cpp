// What may happen to a host and around it while it runs adb.
#include <atomic>
#include <filesystem>
#include <random>
#include <vector>

#include "tests/channel/channel_run.h"
#include "tests/support/open_descriptors.h"

#if defined(__linux__)
#include <sys/syscall.h>
#include <time.h>

// How far the wall clock of this program is off, in seconds; the monotonic clock is as ever. Libraries that ask
// for the time call this function.
static std::atomic<long> clock_jump;
extern "C" __attribute__((visibility("default"))) int clock_gettime(clockid_t clock,
                                                                    timespec* time) noexcept {
  const long result = syscall(SYS_clock_gettime, clock, time);
  if (clock == CLOCK_REALTIME) time->tv_sec += clock_jump;
  return static_cast<int>(result);
}
#endif

namespace darokleim::channel {
namespace {

class FaultOfHost : public ChannelTest {};

#if defined(__linux__)
TEST_F(FaultOfHost, ItsClockJumps) {
  for (const long day : {86400, -86400}) {
    const auto before = std::chrono::system_clock::now();
    std::thread other([&] {
      std::this_thread::sleep_for(milliseconds(100));
      clock_jump = day;
    });
    const Clock::time_point start = Clock::now();
    EXPECT_EQ(RunAdb(" print:a sleep:200 print:b").output, "ab");
    other.join();
    const auto passed = std::chrono::system_clock::now() - before;
    EXPECT_GT(passed < passed.zero() ? -passed : passed, std::chrono::hours(23))
        << "the clock has not jumped";

    bool cancel = false;
    std::thread canceller([&] {
      std::this_thread::sleep_for(milliseconds(50));
      clock_jump = 0;
      __atomic_store_n(&cancel, true, __ATOMIC_RELEASE);
    });
    EXPECT_EQ(RunAdb(" ignore:15 sleep:60000", &cancel).status, 3003);
    canceller.join();
    EXPECT_LT(Since(start), milliseconds(20000));
  }
}
#endif

// One command that is cancelled at a moment that nobody knows. Returns whether it ended as it may.
bool RunAndCancel(unsigned random) {
  bool cancel = false;
  std::thread canceller([&] {
    std::this_thread::sleep_for(std::chrono::microseconds(random % 30000));
    __atomic_store_n(&cancel, true, __ATOMIC_RELEASE);
  });
  const char* const commands[] = {" print:a flood:200000 exit:3", " ignore:15 sleep:60000", " flood-for-ever",
                                  " close sleep:60000"};
  const unsigned chosen = random / 30000 % 4;
  const int status = RunAdb(commands[chosen], &cancel).status;
  canceller.join();
  return status == 3003 || (chosen == 0 && status == 1003);
}

TEST_F(FaultOfHost, ItsSixtyFourThreadsCancelAtRandomMoments) {
  RunAdb(" exit:0");
  const size_t before = test::OpenDescriptors();
  std::vector<std::thread> threads;
  std::atomic<int> wrong = 0;
  for (unsigned t = 0; t < 64; ++t) {
    threads.emplace_back([&wrong, t] {
      std::minstd_rand random(t + 1);
      for (int i = 0; i < 6; ++i) wrong += !RunAndCancel(static_cast<unsigned>(random()));
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(test::OpenDescriptors(), before);
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "a process is left";
}

TEST_F(FaultOfHost, ItsWorkingDirectoryIsGone) {
  test::InProcessOfItsOwn([&] {
    std::filesystem::create_directory(File("gone"));
    std::filesystem::current_path(File("gone"));
    std::filesystem::remove(File("gone"));
    EXPECT_EQ(RunAdb(" print:a exit:3").output, "a");
    EXPECT_EQ(RunAdb(" exit:3").status, 1003);
  });
}

TEST_F(FaultOfHost, ItsLogIsRemoved) {
  EXPECT_EQ(RunAdb(" exit:3").status, 1003);
  for (const auto& entry : std::filesystem::directory_iterator(LogDirectory().path()))
    std::filesystem::remove_all(entry);
  for (int i = 0; i < 20; ++i) EXPECT_EQ(RunAdb(" exit:3").status, 1003);
}

// Receives nothing until it may.
struct Gate {
  static void Receive(void* context, const char* data, int length) {
    auto* const self = static_cast<Gate*>(context);
    self->reached = true;
    while (!self->open) std::this_thread::sleep_for(milliseconds(1));
    if (data != nullptr) self->bytes += length;
    if (data == nullptr) self->last = length;
  }

  std::atomic<bool> reached = false;
  std::atomic<bool> open = false;
  std::atomic<int> bytes = 0;
  std::atomic<int> last = -1;
};

int StartInto(Gate* gate, const std::string& args) {
  return ExecuteAdbCommandAnsynchronization(args.c_str(), nullptr, gate,
                                            reinterpret_cast<void*>(&Gate::Receive));
}

bool Ended(const Gate& gate) {
  for (const Clock::time_point start = Clock::now(); gate.last == -1;) {
    if (Since(start) > milliseconds(20000)) return false;
    std::this_thread::sleep_for(milliseconds(2));
  }
  return true;
}

TEST_F(FaultOfHost, ItsReceiverBlocks) {
  Gate blocked, other;
  ASSERT_EQ(StartInto(&blocked, " flood:3000000 exit:3"), 0);
  while (!blocked.reached) std::this_thread::sleep_for(milliseconds(1));
  other.open = true;
  EXPECT_EQ(RunAdb(" print:a").output, "a");
  ASSERT_EQ(StartInto(&other, " flood:3000000 exit:4"), 0);
  EXPECT_TRUE(Ended(other));
  EXPECT_EQ(blocked.last, -1);

  blocked.open = true;
  EXPECT_TRUE(Ended(blocked));
  EXPECT_EQ(blocked.bytes, 3000000);
  EXPECT_EQ(blocked.last, 1003);
  EXPECT_EQ(other.bytes, 3000000);
}

}  // namespace
}  // namespace darokleim::channel
