#include "tools/cli/commands/sdk/call_log.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/support/file_content.h"
#include "tests/support/temporary_directory.h"

namespace darokleim::cli {
namespace {

constexpr char kPrefix[] = "2026-11-21 08:17:28.481 +00:00 [info] [AdbChannel] [10575] ";

TEST(ParseChannelLine, KnowsItsParts) {
  const auto command = ParseChannelLine("adb -s X shell ls: status 1004, 6 bytes, 11 ms");
  ASSERT_TRUE(command);
  EXPECT_EQ(command->route, "adb");
  EXPECT_EQ(command->arguments, "-s X shell ls");
  EXPECT_EQ(command->status, 1004);
  EXPECT_EQ(command->bytes, 6);
  EXPECT_EQ(command->milliseconds, 11);
}

TEST(ParseChannelLine, KnowsArgumentsThatLookLikeTheEnd) {
  const auto command =
      ParseChannelLine("direct shell echo : status 1, 2 bytes, 3 ms: status 0, 9 bytes, 4 ms");
  ASSERT_TRUE(command);
  EXPECT_EQ(command->route, "direct");
  EXPECT_EQ(command->arguments, "shell echo : status 1, 2 bytes, 3 ms");
  EXPECT_EQ(command->bytes, 9);
}

TEST(ParseChannelLine, KnowsACommandWithoutArguments) {
  const auto command = ParseChannelLine("adb: status 0, 0 bytes, 1 ms");
  ASSERT_TRUE(command);
  EXPECT_EQ(command->arguments, "");
}

TEST(ParseChannelLine, RefusesEverythingElse) {
  for (const char* text : {"", "adb", "left out: * daemon started", "/x/adb cannot be started: status 3, no",
                           "adb x: status , 0 bytes, 1 ms", "adb x: status 0, 0 bytes, 1 ms later",
                           "other x: status 0, 0 bytes, 1 ms", "adb x: status 99999999999, 0 bytes, 1 ms"}) {
    EXPECT_FALSE(ParseChannelLine(text)) << text;
  }
}

TEST(CallLog, HasTheCommandsOfAllParts) {
  const CallLog log;
  EXPECT_FALSE(log.Commands());
  test::WriteFile(log.folder() / "adb_channel.1.log",
                  kPrefix + std::string("adb one: status 0, 0 bytes, 1 ms\n"));
  test::WriteFile(log.folder() / "adb_channel.log",
                  kPrefix + std::string("left out: x\n") + kPrefix + "adb [a] b: status 0, 0 bytes, 1 ms\n");
  const auto commands = log.Commands();
  ASSERT_TRUE(commands);
  ASSERT_EQ(commands->size(), 2u);
  EXPECT_EQ(commands->front().arguments, "one");
  EXPECT_EQ(commands->back().arguments, "[a] b");
}

TEST(CallLog, IsCopiedBehindOlderLinesAndRemoved) {
  const test::TemporaryDirectory directory;
  const std::filesystem::path kept = directory.File("kept/logs");
  std::filesystem::path folder;
  for (const char* line : {"first\n", "second\n"}) {
    const CallLog log;
    folder = log.folder();
    test::WriteFile(log.folder() / "adb_sdk.log", line);
    log.CopyTo(kept);
  }
  EXPECT_EQ(test::ReadFile(kept / "adb_sdk.log"), "first\nsecond\n");
  struct stat status {};
  ASSERT_EQ(stat((kept / "adb_sdk.log").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600u);
  EXPECT_FALSE(std::filesystem::exists(folder));
}

}  // namespace
}  // namespace darokleim::cli
