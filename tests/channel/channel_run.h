// Commands through the channel, as its tests run them.
#ifndef DAROKLEIM_TESTS_CHANNEL_CHANNEL_RUN_H
#define DAROKLEIM_TESTS_CHANNEL_CHANNEL_RUN_H

#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <stdexcept>
#include <string>
#include <thread>

#include "src/platform/command_channel.h"
#include "tests/support/own_process.h"
#include "tests/support/temporary_directory.h"

namespace darokleim::channel {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

inline milliseconds Since(Clock::time_point start) {
  return std::chrono::duration_cast<milliseconds>(Clock::now() - start);
}

struct Result {
  int status = -1;
  bool handed_out = false;  // a buffer, even an empty one
  std::string output;
};

inline Result RunAdb(const std::string& args, const bool* cancel = nullptr) {
  char* out = nullptr;
  int length = 0;
  Result result;
  result.status = ExecuteAdbCommandSynchronization(args.c_str(), cancel, &out, &length);
  result.handed_out = out != nullptr;
  if (out == nullptr) {
    EXPECT_EQ(length, 0);
    return result;
  }
  result.output.assign(out, static_cast<size_t>(length));
  EXPECT_EQ(out[length], '\0');
  ReleaseAdbOutBuffer(out);
  return result;
}

// One log for all tests of a process: the first file that is opened stays.
inline const test::TemporaryDirectory& LogDirectory() {
  static const test::TemporaryDirectory directory;
  return directory;
}

// What misbehaving_adb does when the words of the command are others.
class Misbehaviour {
 public:
  explicit Misbehaviour(const std::string& orders) { setenv("MISBEHAVE", orders.c_str(), 1); }
  ~Misbehaviour() { unsetenv("MISBEHAVE"); }
  Misbehaviour(const Misbehaviour&) = delete;
  Misbehaviour& operator=(const Misbehaviour&) = delete;
};

inline Result RunAdbWhere(const std::string& orders, const std::string& args) {
  const Misbehaviour misbehaviour(orders);
  return RunAdb(args);
}

// Waits for at most ten seconds for a process id in a file. Returns only the id of a single process: other numbers make
// kill reach many.
inline pid_t PidIn(const std::string& file) {
  for (const Clock::time_point start = Clock::now(); Since(start) < milliseconds(10000);) {
    pid_t pid = -1;
    if (std::ifstream(file) >> pid && pid > 1) return pid;
    std::this_thread::sleep_for(milliseconds(2));
  }
  throw std::runtime_error("no process id in " + file);
}

// Never passes kill a number that is not the id of one process: kill would then reach many.
inline void EndProcess(pid_t pid) {
  if (pid > 1) kill(pid, SIGKILL);
}

// A zombie, a child that has ended but is not reaped yet, does not run.
inline bool Runs(pid_t pid) {
  if (kill(pid, 0) != 0) return false;
#if defined(__linux__)
  std::string stat;
  std::getline(std::ifstream("/proc/" + std::to_string(pid) + "/stat"), stat);
  return stat.find(") Z ") == std::string::npos;
#else
  return true;
#endif
}

inline bool EndsWithin(pid_t pid, milliseconds time) {
  const Clock::time_point start = Clock::now();
  while (Runs(pid)) {
    if (Since(start) > time) return false;
    std::this_thread::sleep_for(milliseconds(2));
  }
  return true;
}

class ChannelTest : public testing::Test {
 protected:
  ChannelTest() { UseAdb(DAROKLEIM_MISBEHAVING_ADB); }

  void UseAdb(const std::string& path) {
    EXPECT_EQ(InitAdbCommuncation2Server(path.c_str(), LogDirectory().path().c_str(), this), 0);
  }
  std::string File(const std::string& name) const { return directory_.File(name); }

  test::TemporaryDirectory directory_;
};

}  // namespace darokleim::channel

#endif  // DAROKLEIM_TESTS_CHANNEL_CHANNEL_RUN_H
