// darokleim shell, on simulated phones.
#include <signal.h>

#include <chrono>
#include <filesystem>

#include "tests/cli/documented_json.h"
#include "tests/cli/phone_tool_test.h"
#include "tests/support/eventually.h"
#include "tests/support/file_content.h"
#include "tests/support/sanitizers.h"

namespace darokleim::cli {
namespace {

using testing::HasSubstr;

class PhoneShellTest : public PhoneToolTest {
 protected:
  PhoneShellTest() { Set("TERM", "xterm"); }
};

TEST_P(PhoneShellTest, RunsACommand) {
  EXPECT_EQ(Succeed({"shell", "echo", "-n", "a  b", "|", "wc", "-c"}), "3\n");
  const auto failed = Run({"shell", "echo out; echo err >&2; exit 7"});
  EXPECT_EQ(failed.status, 7);
  EXPECT_EQ(failed.output, is_legacy() ? "out\nerr\n" : "out\n");
  EXPECT_EQ(failed.errors, is_legacy() ? "" : "err\n");
  const auto document = ParseJson(Run({"shell", "--json", "exit 3"}).output);
  EXPECT_EQ(document["exit_status"], 3);
  ExpectDocumented("shell", document);
  EXPECT_EQ(Run({"shell", "--json"}).status, 2);
}

TEST_P(PhoneShellTest, GivesACommandItsInputAsItComes) {
  if (is_legacy()) {
    const auto refused = RunShell("echo a | \"$TOOL\" shell cat");
    EXPECT_EQ(refused.status, 1);
    EXPECT_THAT(refused.errors, HasSubstr("phones before Android 7 take input through a terminal alone"));
    return;
  }
  // Nothing that is read to its end first would end here.
  EXPECT_EQ(RunShell("yes | \"$TOOL\" --timeout 20 shell head -1").output, "y\n");
  EXPECT_EQ(RunShell("(sleep 0.2; printf 'a\\nb\\n') | \"$TOOL\" shell wc -l").output, "2\n");
  const auto json = RunShell("echo a | \"$TOOL\" --json shell 'cat; cat >&2'");
  EXPECT_EQ(ParseJson(json.output)["stdout"], "a\n");
}

TEST_P(PhoneShellTest, LeavesTheListOfALoopAlone) {
  EXPECT_EQ(RunShell("printf 'a\\nb\\n' | while read -r x; do \"$TOOL\" shell -n echo \"$x\"; done").output,
            "a\nb\n");
}

#if !defined(DAROKLEIM_SANITIZED)  // which need more address space themselves
TEST_P(PhoneShellTest, HoldsLittleOfALargeInput) {
  if (is_legacy()) return;
  test::WriteFile(File("large"), "");
  std::filesystem::resize_file(File("large"), 100 << 20);
  const auto outcome =
      RunShell("ulimit -v 200000; \"$TOOL\" shell 'cat | wc -c' <" + File("large"));  // KiB of address space
  EXPECT_EQ(outcome.output, "104857600\n") << outcome.errors;
}
#endif

TEST_P(PhoneShellTest, ReadsAScript) {
  const auto outcome = RunShell("printf 'echo one\\necho two\\nexit 6' | \"$TOOL\" shell");
  EXPECT_EQ(outcome.status, 6) << outcome.errors;
  EXPECT_EQ(outcome.output, "one\ntwo\n");
}

TEST_P(PhoneShellTest, IsWorkedInOnATerminal) {
  auto shell = StartOnTerminal({"shell"});
  ASSERT_TRUE(shell.Shows("$"));
  EXPECT_TRUE(shell.is_raw());
  // What the terminal shows of the keys differs from the output.
  shell.Type("test -t 0 && echo is-a-\"\"terminal\r");
  EXPECT_TRUE(shell.Shows("is-a-terminal\r\n"));
  if (!is_legacy()) {
    shell.Resize(40, 120);
    shell.Type("echo size-$LINES-$COLUMNS-$TERM\r");
    EXPECT_TRUE(shell.Shows("size-40-120-xterm"));
  }
  shell.Type("sh -c 'echo it-\"\"sleeps; exec sleep 60'\r");
  EXPECT_TRUE(shell.Shows("it-sleeps\r\n"));
  shell.Type("\x03");
  shell.Type("exit 5\r");
  EXPECT_EQ(shell.Finish(), is_legacy() ? 0 : 5);
  EXPECT_FALSE(shell.is_raw());
}

TEST_P(PhoneShellTest, RestoresTheTerminalHoweverItEnds) {
  for (const int signal : {SIGTERM, SIGHUP}) {
    auto shell = StartOnTerminal({"shell", "-t", "sleep 60"});
    ASSERT_TRUE(test::Eventually([&] { return shell.is_raw(); }));
    const auto start = std::chrono::steady_clock::now();
    shell.Signal(signal);
    EXPECT_EQ(shell.Finish(), 130);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
    EXPECT_FALSE(shell.is_raw());
  }
  auto timed_out = StartOnTerminal({"shell", "--timeout", "0.5"});
  EXPECT_TRUE(test::Eventually([&] { return timed_out.is_raw(); }));
  EXPECT_EQ(timed_out.Finish(), 1);
  EXPECT_FALSE(timed_out.is_raw());
  auto shell = StartOnTerminal({"shell"});
  ASSERT_TRUE(shell.Shows("$"));
  phones().Control({"TEST0001", "unplug"});
  EXPECT_EQ(shell.Finish(), is_legacy() ? 0 : 1);
  EXPECT_FALSE(shell.is_raw());
}

INSTANTIATE_FOR_BOTH_PHONES(PhoneShellTest);

}  // namespace
}  // namespace darokleim::cli
