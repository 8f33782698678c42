#include "adb/limits.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <thread>

#include "adb/cancel_token.h"
#include "base/unique_fd.h"

namespace darokleim::adb_test {
namespace {

using namespace adb;
using std::chrono::milliseconds;

// As the channel has it: a plain flag that is looked at every few milliseconds.
class Flag : public Interrupt {
 public:
  bool IsSet() const override { return ++looks, set.load(); }
  milliseconds longest_wait() const override { return milliseconds(8); }

  std::atomic<bool> set{false};
  mutable std::atomic<int> looks{0};
};

class LimitsTest : public testing::Test {
 protected:
  LimitsTest() {
    std::array<int, 2> ends;
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0)
      throw std::runtime_error("no sockets");
    near_.Reset(ends[0]);
    far_.Reset(ends[1]);
  }

  ErrorCode WaitError(const Limits& limits) {
    const Result<short> waited = WaitFor(near_.get(), POLLIN, limits);
    EXPECT_FALSE(waited.ok());
    return waited.ok() ? ErrorCode::kMisuse : waited.error().code;
  }

  base::UniqueFd near_;
  base::UniqueFd far_;
};

TEST_F(LimitsTest, AnEventEndsTheWait) {
  std::thread writer([&] {
    std::this_thread::sleep_for(milliseconds(10));
    EXPECT_EQ(write(far_.get(), "x", 1), 1);
  });
  const Result<short> waited = WaitFor(near_.get(), POLLIN, {});
  writer.join();
  ASSERT_TRUE(waited.ok());
  EXPECT_TRUE(*waited & POLLIN);
}

TEST_F(LimitsTest, ADeadlineIsKept) {
  const auto began = Clock::now();
  EXPECT_EQ(WaitError({began + milliseconds(25), nullptr}), ErrorCode::kTimedOut);
  EXPECT_GE(Clock::now(), began + milliseconds(25));
  EXPECT_EQ(WaitError({began, nullptr}), ErrorCode::kTimedOut);
  EXPECT_EQ(WaitError({Clock::time_point::min(), nullptr}), ErrorCode::kTimedOut);
}

// A deadline that has passed ends also what would not wait.
TEST_F(LimitsTest, ALimitComesBeforeAnEvent) {
  ASSERT_EQ(write(far_.get(), "x", 1), 1);
  EXPECT_EQ(WaitError({Clock::now() - milliseconds(1), nullptr}), ErrorCode::kTimedOut);
  const auto token = CancelToken::Create();
  ASSERT_TRUE(token.ok());
  (*token)->Set();
  EXPECT_EQ(WaitError({Clock::time_point::max(), token->get()}), ErrorCode::kCancelled);
}

TEST_F(LimitsTest, ATokenWakesEveryWaiterAtOnce) {
  const auto token = CancelToken::Create();
  ASSERT_TRUE(token.ok());
  EXPECT_FALSE((*token)->IsSet());
  std::vector<std::thread> waiters;
  for (int i = 0; i < 4; ++i) {
    waiters.emplace_back([&] {
      EXPECT_EQ(WaitError({Clock::time_point::max(), token->get()}), ErrorCode::kCancelled);
    });
  }
  std::this_thread::sleep_for(milliseconds(10));
  std::vector<std::thread> setters;
  for (int i = 0; i < 4; ++i) setters.emplace_back([&] { (*token)->Set(); });
  for (std::thread& thread : waiters) thread.join();
  for (std::thread& thread : setters) thread.join();
  EXPECT_TRUE((*token)->IsSet());
}

TEST_F(LimitsTest, AFlagIsLookedAtNowAndThen) {
  Flag flag;
  std::thread setter([&] {
    std::this_thread::sleep_for(milliseconds(40));
    flag.set = true;
  });
  const auto began = Clock::now();
  EXPECT_EQ(WaitError({Clock::time_point::max(), &flag}), ErrorCode::kCancelled);
  const auto took = Clock::now() - began;
  setter.join();
  EXPECT_GE(flag.looks, 2);
  EXPECT_LE(flag.looks, took / flag.longest_wait() + 2);
}

// One that neither wakes a wait nor says how often it wants to be looked at.
class Silent final : public Interrupt {
 public:
  bool IsSet() const override { return false; }
};

TEST_F(LimitsTest, ASilentInterruptLeavesTheDeadline) {
  const Silent silent;
  const auto began = Clock::now();
  EXPECT_EQ(WaitError({began + milliseconds(25), &silent}), ErrorCode::kTimedOut);
  EXPECT_GE(Clock::now(), began + milliseconds(25));
}

// Nothing wakes a wait for a token in between.
TEST_F(LimitsTest, SignalsDoNotEndAWait) {
  struct sigaction action = {};
  action.sa_handler = [](int) {};
  struct sigaction before;
  ASSERT_EQ(sigaction(SIGUSR1, &action, &before), 0);
  const pthread_t waiter = pthread_self();
  std::thread signaller([&] {
    for (int i = 0; i < 5; ++i) {
      std::this_thread::sleep_for(milliseconds(4));
      pthread_kill(waiter, SIGUSR1);
    }
  });
  const auto began = Clock::now();
  EXPECT_EQ(WaitError({began + milliseconds(40), nullptr}), ErrorCode::kTimedOut);
  EXPECT_GE(Clock::now(), began + milliseconds(40));
  signaller.join();
  sigaction(SIGUSR1, &before, nullptr);
}

}  // namespace
}  // namespace darokleim::adb_test
