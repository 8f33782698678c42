// The log and the life of the process around it: crash, exit, fork, exec.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

#include "tests/log/opened_log.h"

namespace darokleim::log {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::ExitedWithCode;
using testing::KilledBySignal;

TEST(LogProcessTest, ACrashLosesNoLine) {
  const OpenedLog log;
  EXPECT_EXIT(
      {
        LogEx(log.module(), 1, "last words");
        raise(SIGKILL);
      },
      KilledBySignal(SIGKILL), "");
  EXPECT_THAT(log.Lines(), ElementsAre(EndsWith("last words")));
}

struct LogsWhenDestroyed {
  const char* module;
  ~LogsWhenDestroyed() { LogEx(module, 1, "from a destructor"); }
};

TEST(LogProcessTest, DestructorsOfStaticsMayLog) {
  const OpenedLog log;
  EXPECT_EXIT(
      {
        static LogsWhenDestroyed late{log.module()};
        exit(0);
      },
      ExitedWithCode(0), "^$");
  EXPECT_THAT(log.Lines(), ElementsAre(EndsWith("from a destructor")));
}

TEST(LogProcessTest, TheFileIsNotInheritedByPrograms) {
  const OpenedLog log;
  struct stat wanted;
  ASSERT_EQ(stat(log.path().c_str(), &wanted), 0);
  int found = 0;
  for (int descriptor = 0; descriptor < 256; ++descriptor) {
    struct stat status;
    if (fstat(descriptor, &status) != 0) continue;
    if (status.st_dev != wanted.st_dev || status.st_ino != wanted.st_ino) continue;
    ++found;
    EXPECT_NE(fcntl(descriptor, F_GETFD) & FD_CLOEXEC, 0);
  }
  EXPECT_EQ(found, 1);
}

TEST(LogProcessTest, AChildForkedWhileOthersWriteCanLog) {
  constexpr int kChildren = 50;
  const OpenedLog log;
  std::atomic<bool> stop{false};
  std::vector<std::thread> writers;
  for (int i = 0; i < 4; ++i) {
    writers.emplace_back([&] {
      while (!stop) {
        LogEx(log.module(), 1, "from the parent");
        std::this_thread::sleep_for(std::chrono::microseconds(50));  // one file holds all lines
      }
    });
  }
  for (int i = 0; i < kChildren; ++i) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      alarm(20);  // ends a child that hangs
      LogEx(log.module(), 1, "from a child");
      _exit(0);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
  }
  stop = true;
  for (auto& writer : writers) writer.join();

  int from_children = 0;
  for (const auto& line : log.Lines()) {
    if (line.ends_with("] from a child")) {
      ++from_children;
    } else {
      EXPECT_TRUE(line.ends_with("] from the parent")) << line;
    }
  }
  EXPECT_EQ(from_children, kChildren);
}

}  // namespace
}  // namespace darokleim::log
