#include "base/read_some.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/time.h>

#include <atomic>
#include <cerrno>
#include <string>
#include <thread>

#include "base/signals_blocked.h"
#include "tests/support/pipe.h"

namespace darokleim::base {
namespace {

std::atomic<int> interruptions;

TEST(ReadSome, IsRepeatedAfterASignal) {
  struct sigaction interrupt = {}, before = {};
  interrupt.sa_handler = [](int) { ++interruptions; };  // without SA_RESTART
  ASSERT_EQ(sigaction(SIGALRM, &interrupt, &before), 0);
  const test::Pipe pipe;
  std::thread writer;
  {
    const SignalsBlocked blocked;  // signals are for the thread that reads
    writer = std::thread([&] {
      while (interruptions < 3) std::this_thread::yield();
      EXPECT_EQ(write(pipe.write_end.get(), "abc", 3), 3);
    });
  }
  const itimerval often = {{0, 2000}, {0, 2000}}, never = {};
  setitimer(ITIMER_REAL, &often, nullptr);
  std::string bytes(10, '\0');
  const ssize_t count = ReadSome(pipe.read_end.get(), bytes.data(), bytes.size());
  setitimer(ITIMER_REAL, &never, nullptr);
  writer.join();
  sigaction(SIGALRM, &before, nullptr);
  ASSERT_EQ(count, 3);
  EXPECT_EQ(bytes.substr(0, 3), "abc");
  EXPECT_GE(interruptions, 3);
}

TEST(ReadSome, SaysTheEndAndWhatIsWrong) {
  test::Pipe pipe;
  char byte = 'x';
  pipe.write_end.Reset();
  EXPECT_EQ(ReadSome(pipe.read_end.get(), &byte, 1), 0);
  EXPECT_EQ(ReadSome(-1, &byte, 1), -1);
  EXPECT_EQ(errno, EBADF);
}

}  // namespace
}  // namespace darokleim::base
