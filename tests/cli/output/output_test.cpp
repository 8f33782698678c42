// Standard output that is closed, full or gone.
#include <gmock/gmock.h>

#include "tests/cli/tool_run.h"

namespace darokleim::cli {
namespace {

using testing::StartsWith;

class OutputTest : public ToolTest {
 protected:
  OutputTest() { MakeAdb(kModel); }
};

TEST_F(OutputTest, AReaderThatHasGoneIsNoNews) {
  // The reader ends before adb prints.
  MakeAdb("/bin/sleep 0.3\n" + std::string(kModel));
  const auto outcome = RunShell("{ \"$TOOL\" -s A sdk AdbGetPhoneProductModel; echo $? >&2; } | :");
  EXPECT_EQ(outcome.errors, "1\n");
}

TEST_F(OutputTest, ThatIsClosedIsAnError) {
  const auto outcome = RunShell("\"$TOOL\" sdk AppendMiuiVersionByTimeCode 1583366400 >&-");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.errors, StartsWith("darokleim: cannot write to standard output: "));
}

#if defined(__linux__)
TEST_F(OutputTest, ThatIsFullIsAnError) {
  const auto outcome = RunShell("\"$TOOL\" sdk AppendMiuiVersionByTimeCode 1583366400 >/dev/full");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.errors, "darokleim: cannot write to standard output: No space left on device\n");
}
#endif

TEST_F(OutputTest, StillComesWhenTheOtherStreamsAreClosed) {
  const auto outcome = RunShell("\"$TOOL\" sdk AppendMiuiVersionByTimeCode 1583366400 --json <&- 2>&-");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.output, StartsWith("{\"function\": "));
}

}  // namespace
}  // namespace darokleim::cli
