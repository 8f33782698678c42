#include <gmock/gmock.h>

#include "tests/cli/tool_run.h"

namespace darokleim::cli {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

class CommandLineTest : public ToolTest {};

TEST_F(CommandLineTest, VersionIsPrinted) {
  const auto outcome = Run({"--version"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output, "darokleim " DAROKLEIM_TOOL_VERSION "\n");
  EXPECT_EQ(outcome.errors, "");
}

TEST_F(CommandLineTest, HelpShowsCommandsAndExamples) {
  const auto outcome = Run({"--help"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.output, HasSubstr("\n  devices "));
  EXPECT_THAT(outcome.output, HasSubstr("Examples:\n  darokleim devices\n"));
  EXPECT_EQ(outcome.errors, "");
}

TEST_F(CommandLineTest, HelpOfACommandShowsItsOptionsAndExamples) {
  const auto outcome = Run({"devices", "--help"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.output, HasSubstr("--watch"));
  EXPECT_THAT(outcome.output, HasSubstr("darokleim devices --watch "));
}

TEST_F(CommandLineTest, AloneItPrintsHelp) {
  const auto alone = Run({});
  EXPECT_EQ(alone.status, 0);
  EXPECT_EQ(alone.errors, "");
  EXPECT_EQ(alone.output, Run({"--help"}).output);
  EXPECT_EQ(Run({"help"}).output, alone.output);
}

TEST_F(CommandLineTest, HelpAndVersionAreCommands) {
  EXPECT_EQ(Run({"help", "ls"}).output, Run({"ls", "--help"}).output);
  EXPECT_EQ(Run({"help", "app", "install"}).output, Run({"app", "install", "-h"}).output);
  EXPECT_EQ(Run({"version"}).output, Run({"--version"}).output);
}

// The status, and what standard error has without the hint at its end.
void ExpectMisuse(const Outcome& outcome, const std::string& message, const std::string& hint) {
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.output, "");
  EXPECT_EQ(outcome.errors, "darokleim: " + message + "\nSee `" + hint + " --help`.\n");
}

TEST_F(CommandLineTest, AWrongWordIsNamedWithTheNearestRightOne) {
  ExpectMisuse(Run({"devicez"}), "\"devicez\" is not a command. Did you mean devices?", "darokleim");
  ExpectMisuse(Run({"app", "instal"}), "\"instal\" is not a command. Did you mean install?", "darokleim app");
  ExpectMisuse(Run({"frobnicate"}), "\"frobnicate\" is not a command.", "darokleim");
  ExpectMisuse(Run({"help", "lss"}), "\"lss\" is not a command. Did you mean ls?", "darokleim help");
  ExpectMisuse(Run({"devices", "--jsn"}), "--jsn is not an option. Did you mean --json?",
               "darokleim devices");
  ExpectMisuse(Run({"ls", "-x"}), "-x is not an option.", "darokleim ls");
  ExpectMisuse(Run({"ls", "-long"}), "-o is not an option. Did you mean --long?", "darokleim ls");
  const auto value = Run({"info", "modl"});
  EXPECT_EQ(value.status, 2);
  EXPECT_THAT(value.errors, testing::EndsWith(". Did you mean model?\nSee `darokleim info --help`.\n"));
}

TEST_F(CommandLineTest, AWrongNumberOfWordsIsNamed) {
  ExpectMisuse(Run({"devices", "--adb"}), "--adb needs a value, PATH.", "darokleim devices");
  ExpectMisuse(Run({"devices", "now"}), "\"now\" is one argument too many.", "darokleim devices");
  ExpectMisuse(Run({"devices", "--long=yes"}), "--long takes no value.", "darokleim devices");
  ExpectMisuse(Run({"rm"}), "PATH is missing.", "darokleim rm");
  ExpectMisuse(Run({"ls", "-tS"}), "-S and -t exclude each other.", "darokleim ls");
  const auto group = Run({"forward"});
  ExpectMisuse(group, "darokleim forward needs a command: list, add, remove.", "darokleim forward");
}

TEST_F(CommandLineTest, AWrongValueIsNamed) {
  ExpectMisuse(Run({"--timeout", "soon", "devices"}),
               "--timeout: \"soon\" is not a number of seconds, 0.001 to 86400.", "darokleim devices");
  ExpectMisuse(
      Run({"ls", "sdcard"}),
      "PATH: \"sdcard\" is not a path on the device: it must begin with /, for example /sdcard/Download.",
      "darokleim ls");
}

TEST_F(CommandLineTest, GlobalOptionsMayPrecedeAndFollowTheCommand) {
  Set("ANDROID_ADB_SERVER_PORT", "1");
  MakeAdb("exit 1");
  for (const Words& words : {Words{"--json", "devices"}, Words{"devices", "--json"}}) {
    EXPECT_THAT(Run(words).output, StartsWith("{\"errors\": ["));
  }
}

// A word that begins with a hyphen is one of the command's words after "--".
TEST_F(CommandLineTest, TwoHyphensEndTheOptions) {
  ExpectMisuse(
      Run({"ls", "--", "-l"}),
      "PATH: \"-l\" is not a path on the device: it must begin with /, for example /sdcard/Download.",
      "darokleim ls");
}

}  // namespace
}  // namespace darokleim::cli
