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
  EXPECT_THAT(outcome.output, HasSubstr("--json"));
  EXPECT_THAT(outcome.output, HasSubstr("darokleim devices --json"));
}

TEST_F(CommandLineTest, NoCommandIsWrongUsage) {
  const auto outcome = Run({});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.output, "");
  EXPECT_EQ(outcome.errors, "darokleim: A command is required\nSee darokleim --help.\n");
}

TEST_F(CommandLineTest, AnUnknownCommandIsNamed) {
  const auto outcome = Run({"devicez"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.errors, StartsWith("darokleim: "));
  EXPECT_THAT(outcome.errors, HasSubstr("devicez"));
}

TEST_F(CommandLineTest, AnUnknownOptionIsNamed) {
  const auto outcome = Run({"devices", "--jsn"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.errors, HasSubstr("--jsn"));
}

TEST_F(CommandLineTest, AnOptionWithoutItsValueIsWrongUsage) {
  const auto outcome = Run({"devices", "--adb"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.errors, HasSubstr("--adb"));
}

TEST_F(CommandLineTest, GlobalOptionsMayPrecedeAndFollowTheCommand) {
  MakeExecutable(File("other"), std::string("#!/bin/sh\n") + kTwoDevices);
  EXPECT_EQ(Run({"--adb", File("other"), "devices"}).status, 0);
  EXPECT_EQ(Run({"devices", "--adb", File("other")}).status, 0);
}

}  // namespace
}  // namespace darokleim::cli
