// What the tool does only on a terminal: progress, colours, names without control characters.
#include <stdlib.h>

#include <filesystem>

#include "tests/cli/phone_tool_test.h"
#include "tests/cli/terminal_run.h"
#include "tests/support/file_content.h"

namespace darokleim::cli {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

constexpr char kEscape[] = "\x1b";

class TerminalTest : public PhoneToolTest {
 protected:
  TerminalTest() { Set("TERM", "xterm"); }
};

TEST_P(TerminalTest, NamesCannotControlIt) {
  PutOnPhone("/sdcard/test/\x1b[2Jx", "x");
  EXPECT_THAT(OnTerminal({"stat", "/sdcard/test/\x1b[2Jx"}).output,
              HasSubstr("  /sdcard/test/\\x1b[2Jx\r\n"));
  EXPECT_THAT(OnTerminal({"stat", "/sdcard/\x1b[2Jnone"}).output,
              AllOf(HasSubstr("look at /sdcard/\\x1b[2Jnone: No such file"), Not(HasSubstr(kEscape))));
  EXPECT_THAT(Succeed({"stat", "/sdcard/test/\x1b[2Jx"}), HasSubstr("  /sdcard/test/\x1b[2Jx\n"));
}

TEST_P(TerminalTest, FoldersAreColoured) {
  PutOnPhone("/sdcard/test/folder/a", "x");
  EXPECT_THAT(OnTerminal({"ls", "/sdcard/test"}).output, EndsWith("\x1b[1;34mfolder\x1b[0m/\r\n"));
  Set("NO_COLOR", "1");
  EXPECT_THAT(OnTerminal({"ls", "/sdcard/test"}).output, EndsWith("folder/\r\n"));
  EXPECT_THAT(OnTerminal({"ls", "/sdcard/test"}).output, Not(HasSubstr("\x1b[1;34m")));
  Set("NO_COLOR", "");
  EXPECT_EQ(Succeed({"ls", "/sdcard/test"}), "folder\n");
}

TEST_P(TerminalTest, ALongPushShowsHowFarItIs) {
  test::WriteFile(File("big file"), "");
  std::filesystem::resize_file(File("big file"), 1ull << 30);
  const auto push = OnTerminal({"push", File("big file"), "/sdcard"});
  EXPECT_EQ(push.status, 0);
  EXPECT_THAT(push.output, AllOf(HasSubstr("\r\x1b[Kbig file  "), HasSubstr(" of 1.0 GiB  "),
                                 HasSubstr("B/s"), HasSubstr(" left")));
  Shell("rm '/sdcard/big file'");
}

TEST_P(TerminalTest, ALongPullShowsHowFarItIs) {
  Shell("truncate -s 600M /sdcard/file");
  EXPECT_THAT(OnTerminal({"pull", "/sdcard/file", File("work")}).output, HasSubstr("\r\x1b[Kfile  "));
  EXPECT_EQ(OnTerminal({"-q", "pull", "/sdcard/file", File("work")}).output, "");
  EXPECT_EQ(Run({"pull", "/sdcard/file", File("work")}).errors, "");
  Shell("rm /sdcard/file");
}

TEST_P(TerminalTest, ALongListingShowsThatItGoesOn) {
  SwitchOn("slow=1");
  EXPECT_THAT(OnTerminal({"ls", "/sdcard/DCIM"}).output, HasSubstr("\r\x1b[Klisting /sdcard/DCIM  0 s"));
}

INSTANTIATE_FOR_BOTH_PHONES(TerminalTest);

}  // namespace
}  // namespace darokleim::cli
