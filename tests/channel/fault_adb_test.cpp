// What may happen to the adb program while a host runs it.
#include <sys/stat.h>

#include <atomic>
#include <filesystem>
#include <random>

#include "tests/channel/channel_run.h"
#include "tests/support/file_content.h"

namespace darokleim::channel {
namespace {

class FaultOfAdb : public ChannelTest {
 protected:
  // Kills the command that writes its process id there, after so long.
  std::thread KillerOf(const std::string& pid_file, std::chrono::microseconds after) {
    return std::thread([=] {
      const pid_t pid = PidIn(pid_file);
      std::this_thread::sleep_for(after);
      EndProcess(pid);
    });
  }
  void PutAdb(const std::string& path, const std::string& script) {
    test::WriteFile(path + ".new", "#!/bin/sh\n" + script);
    chmod((path + ".new").c_str(), 0755);
    std::filesystem::rename(path + ".new", path);
  }
};

TEST_F(FaultOfAdb, KilledAtAnyMoment) {
  std::minstd_rand random(1);
  const std::string begin = "a line\n";
  for (int i = 0; i < 40; ++i) {
    const std::string file = File("pid" + std::to_string(i));
    std::thread killer = KillerOf(file, std::chrono::microseconds(random() % 10000));
    const Result result = RunAdb(" pid:" + file + " print:a\\sline\\n flood-for-ever");
    killer.join();
    ASSERT_EQ(result.status, 2009);
    ASSERT_TRUE(result.handed_out);
    // All that came before, cut wherever it was.
    const std::string expected = begin + std::string(result.output.size(), 'x');
    ASSERT_EQ(expected.compare(0, result.output.size(), result.output), 0);
  }
}

TEST_F(FaultOfAdb, KilledUnderAStream) {
  static std::atomic<int> last;
  last = -1;
  std::thread killer = KillerOf(File("pid"), milliseconds(5));
  const auto receiver = +[](void*, const char* data, int length) {
    if (data == nullptr) last = length;
  };
  ASSERT_EQ(ExecuteAdbCommandAnsynchronization((" pid:" + File("pid") + " flood-for-ever").c_str(), nullptr,
                                               nullptr, reinterpret_cast<void*>(receiver)),
            0);
  killer.join();
  for (const Clock::time_point start = Clock::now(); last == -1 && Since(start) < milliseconds(20000);)
    std::this_thread::sleep_for(milliseconds(2));
  EXPECT_EQ(last, 2009);
}

TEST_F(FaultOfAdb, ReplacedWhileTheHostRuns) {
  const std::string adb = File("adb");
  PutAdb(adb, "sleep 0.3; echo old\n");
  UseAdb(adb);
  std::thread update([&] {
    std::this_thread::sleep_for(milliseconds(100));
    PutAdb(adb, "echo new\n");
  });
  EXPECT_EQ(RunAdb(" devices").output, "old\n");
  update.join();
  EXPECT_EQ(RunAdb(" devices").output, "new\n");
}

TEST_F(FaultOfAdb, RemovedWhileTheHostRunsAndPutBack) {
  const std::string folder = File("resources");
  std::filesystem::create_directory(folder);
  PutAdb(folder + "/adb", "echo here\n");
  UseAdb(folder + "/adb");
  EXPECT_EQ(RunAdb(" devices").output, "here\n");
  std::filesystem::rename(folder, folder + ".gone");
  EXPECT_EQ(RunAdb(" devices").status, 3002);
  EXPECT_EQ(ExecuteAdbCommandAnsynchronization(" logcat", nullptr, nullptr, nullptr), 3002);
  std::filesystem::rename(folder + ".gone", folder);
  EXPECT_EQ(RunAdb(" devices").output, "here\n");
}

TEST_F(FaultOfAdb, OfAnotherProcessor) {
  // The head of a 64-bit program, without a body, of a machine that nobody has: 0xfefe.
  std::string program(
      "\x7f"
      "ELF\2\1\1",
      7);
  program.resize(16);
  program.append("\2\0\xfe\xfe\1\0\0\0", 8);
  program.resize(64);
  test::WriteFile(File("adb"), program);
  chmod(File("adb").c_str(), 0755);
  UseAdb(File("adb"));
  EXPECT_EQ(RunAdb(" devices").status, 3002);
}

}  // namespace
}  // namespace darokleim::channel
