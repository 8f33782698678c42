#include <errno.h>
#include <gmock/gmock.h>
#include <signal.h>

#include <chrono>
#include <thread>

#include "tests/cli/tool_run.h"
#include "tests/support/file_content.h"

namespace darokleim::cli {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using std::chrono::steady_clock;

class CancelTest : public ToolTest {
 protected:
  // An adb that writes its process id and then hangs.
  void MakeHangingAdb() const { MakeAdb("echo $$ >" + File("pid") + "\nexec /bin/sleep 100\n"); }

  static bool IsGone(pid_t process) { return kill(process, 0) == -1 && errno == ESRCH; }

  pid_t WaitForAdb(const std::string& file = "pid") const {
    const auto end = steady_clock::now() + seconds(20);
    while (steady_clock::now() < end) {
      const std::string text = test::ReadFile(File(file));
      if (text.ends_with("\n")) return std::stoi(text);
      std::this_thread::sleep_for(milliseconds(5));
    }
    ADD_FAILURE() << "adb was not started";
    return 0;
  }

  void ExpectCancelledBy(int signal) const {
    MakeHangingAdb();
    const auto tool = Start({"-s", "A", "sdk", "AdbGetPhoneProductModel"});
    const pid_t adb = WaitForAdb();
    ASSERT_GT(adb, 0);
    const auto start = steady_clock::now();
    tool->Signal(signal);
    const auto outcome = tool->Finish();
    EXPECT_LT(steady_clock::now() - start, seconds(5));
    EXPECT_EQ(outcome.status, 130);
    EXPECT_EQ(outcome.errors, "darokleim: cancelled\n");
    EXPECT_TRUE(IsGone(adb));
  }
};

TEST_F(CancelTest, CtrlCEndsAdbAndTheTool) {
  ExpectCancelledBy(SIGINT);
}
TEST_F(CancelTest, ATerminateSignalDoesTheSame) {
  ExpectCancelledBy(SIGTERM);
}
TEST_F(CancelTest, TheEndOfTheTerminalDoesTheSame) {
  ExpectCancelledBy(SIGHUP);
}

TEST_F(CancelTest, ASignalThatIsIgnoredStaysIgnored) {
  MakeAdb("kill -INT $PPID; kill -HUP $PPID\n" + std::string(kModel));
  const auto outcome = RunShell("trap '' INT HUP; exec \"$TOOL\" -s A sdk AdbGetPhoneProductModel");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.errors, "");
}

struct Line {
  const char* name;
  Words words;
};

void PrintTo(const Line& line, std::ostream* stream) {
  *stream << line.name;
}

// Functions that take no cancel flag.
class CancelWithoutFlagTest : public CancelTest, public testing::WithParamInterface<Line> {
 protected:
  void SetUp() override { MakeHangingAdb(); }
};

TEST_P(CancelWithoutFlagTest, CtrlCEndsAdb) {
  const auto tool = Start(GetParam().words);
  const pid_t adb = WaitForAdb();
  const auto start = steady_clock::now();
  tool->Signal(SIGINT);
  tool->Finish();
  EXPECT_LT(steady_clock::now() - start, seconds(5));
  EXPECT_TRUE(IsGone(adb));
}

TEST_P(CancelWithoutFlagTest, ATimeLimitEndsAdb) {
  auto words = GetParam().words;
  words.insert(words.begin(), {"--timeout", "1"});
  const auto start = steady_clock::now();
  const auto tool = Start(words);
  const pid_t adb = WaitForAdb();
  const auto outcome = tool->Finish();
  EXPECT_LT(steady_clock::now() - start, seconds(10));
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.output, testing::HasSubstr(" returned 2015, adb signal 15: "));
  EXPECT_TRUE(IsGone(adb));
}

INSTANTIATE_TEST_SUITE_P(, CancelWithoutFlagTest,
                         testing::Values(Line{"start", {"-s", "A", "sdk", "AdbStartApp", "a/.B"}},
                                         Line{"forward", {"-s", "A", "sdk", "AdbFowardBind", "8080", "80"}},
                                         Line{"reverse", {"-s", "A", "sdk", "AdbReverseRemove", "80"}},
                                         Line{"reconnect", {"sdk", "AdbReconnectDevice"}}),
                         [](const auto& line) { return line.param.name; });

TEST_F(CancelTest, ATimeLimitEndsAdbAndTheTool) {
  MakeHangingAdb();
  const auto tool = Start({"--timeout", "1", "-s", "A", "sdk", "AdbGetPhoneProductModel"});
  const pid_t adb = WaitForAdb();
  const auto outcome = tool->Finish();
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.output, testing::HasSubstr(" returned 3003, cancelled: "));
  EXPECT_TRUE(IsGone(adb));
}

}  // namespace
}  // namespace darokleim::cli
