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

  pid_t WaitForAdb() const {
    const auto end = steady_clock::now() + seconds(20);
    while (steady_clock::now() < end) {
      const std::string text = test::ReadFile(File("pid"));
      if (text.ends_with("\n")) return std::stoi(text);
      std::this_thread::sleep_for(milliseconds(5));
    }
    ADD_FAILURE() << "adb was not started";
    return 0;
  }

  void ExpectCancelledBy(int signal) const {
    MakeHangingAdb();
    const auto tool = Start({"devices"});
    const pid_t adb = WaitForAdb();
    ASSERT_GT(adb, 0);
    const auto start = steady_clock::now();
    tool->Signal(signal);
    const auto outcome = tool->Finish();
    EXPECT_LT(steady_clock::now() - start, seconds(5));
    EXPECT_EQ(outcome.status, 130);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.errors, "darokleim: cancelled\n");
    EXPECT_EQ(kill(adb, 0), -1);
    EXPECT_EQ(errno, ESRCH);
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
  MakeAdb("kill -INT $PPID; kill -HUP $PPID\n" + std::string(kTwoDevices));
  const auto outcome = RunShell("trap '' INT HUP; exec \"$TOOL\" devices");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.errors, "");
}

}  // namespace
}  // namespace darokleim::cli
