// Standard output that is closed, full or gone.
#include <gmock/gmock.h>

#include "tests/cli/tool_run.h"

namespace darokleim::cli {
namespace {

using testing::StartsWith;

class OutputTest : public ToolTest {
 protected:
  OutputTest() { MakeAdb(kTwoDevices); }
};

TEST_F(OutputTest, AReaderThatHasGoneIsNoNews) {
  // The reader ends before adb prints.
  MakeAdb("/bin/sleep 0.3\n" + std::string(kTwoDevices));
  const auto outcome = RunShell("{ \"$TOOL\" devices; echo $? >&2; } | :");
  EXPECT_EQ(outcome.errors, "1\n");
}

TEST_F(OutputTest, ThatIsClosedIsAnError) {
  const auto outcome = RunShell("\"$TOOL\" devices >&-");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.errors, StartsWith("darokleim: cannot write to standard output: "));
}

#if defined(__linux__)
TEST_F(OutputTest, ThatIsFullIsAnError) {
  const auto outcome = RunShell("\"$TOOL\" devices >/dev/full");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.errors, "darokleim: cannot write to standard output: No space left on device\n");
}
#endif

TEST_F(OutputTest, StillComesWhenTheOtherStreamsAreClosed) {
  const auto outcome = RunShell("\"$TOOL\" devices --json <&- 2>&-");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.output, StartsWith("[\n"));
}

// The library prints lines of a listing that it cannot read.
TEST_F(OutputTest, IsTheToolsOwn) {
  MakeAdb(
      "case \"$*\" in\n  *stat*) printf '  Size: 4096\\t Blocks: 8\\r\\n' ;;\n"
      "  *'ls -l'*) printf 'total 1\\r\\n-rw-rw---- 1 root \\033[31mevil\\r\\n-rw-rw---- 1 root sdcard_rw 2 "
      "2020-01-02 03:04 readable\\r\\n' ;;\nesac\n");
  const auto outcome = Run({"-s", "A", "ls", "--files", "/sdcard"});
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_EQ(outcome.output, "readable\n");
  EXPECT_EQ(outcome.errors, "");
}

}  // namespace
}  // namespace darokleim::cli
