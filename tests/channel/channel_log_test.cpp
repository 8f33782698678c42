// The channel's own log.
#include <sys/stat.h>

#include "tests/channel/channel_run.h"
#include "tests/support/file_content.h"

namespace darokleim::channel {
namespace {

class ChannelLogTest : public ChannelTest {};

TEST_F(ChannelLogTest, HasALineForEachCommand) {
  RunAdb(" print:logged exit:4");
  UseAdb(File("missing"));
  RunAdb("devices");
  std::vector<std::string> lines = test::ReadLines(LogDirectory().File("adb_channel.log"));
  ASSERT_GE(lines.size(), 3u);
  lines.erase(lines.begin(), lines.end() - 3);
  EXPECT_NE(lines[0].find("[info] [AdbChannel]"), std::string::npos);
  EXPECT_NE(lines[0].find("adb print:logged exit:4: status 1004, 6 bytes, "), std::string::npos) << lines[0];
  EXPECT_NE(lines[0].find(" ms"), std::string::npos);
  EXPECT_NE(lines[1].find("missing cannot be started: No such file or directory"), std::string::npos)
      << lines[1];
  EXPECT_NE(lines[2].find("adb devices: status 3002, 0 bytes, "), std::string::npos) << lines[2];
}

TEST_F(ChannelLogTest, DoesNotHoldWhatTheDeviceTypes) {
  const Misbehaviour quiet("exit:0");
  RunAdb(R"( -s X shell input text "my secret word")");
  ASSERT_EQ(
      ExecuteAdbCommandAnsynchronization(R"( -s X shell input text "secret")", nullptr, nullptr, nullptr), 0);
  UseAdb(File("missing"));
  RunAdb(R"( -s X shell input text "secret")");
  const std::string log = LogDirectory().File("adb_channel.log");
  const auto lines_of_streams_too = [&] {
    const std::vector<std::string> lines = test::ReadLines(log);
    return std::count_if(lines.begin(), lines.end(), [](const std::string& line) {
      return line.find("shell input text ***: status ") != std::string::npos;
    });
  };
  for (const Clock::time_point start = Clock::now(); lines_of_streams_too() < 3;) {
    ASSERT_LT(Since(start), milliseconds(20000)) << test::ReadFile(log);
    std::this_thread::sleep_for(milliseconds(2));
  }
  EXPECT_NE(test::ReadFile(log).find("adb -s X shell input text ***: status 0, 0 bytes, "),
            std::string::npos);
  EXPECT_EQ(test::ReadFile(log).find("secret"), std::string::npos);
}

TEST_F(ChannelLogTest, MayBeReadByItsOwnerOnly) {
  RunAdb(" exit:0");
  struct stat status;
  ASSERT_EQ(stat(LogDirectory().File("adb_channel.log").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600u);
}

TEST_F(ChannelLogTest, HoldsTheBeginningOfALongArgumentText) {
  RunAdb(" exit:0 " + std::string(100'000, 'a'));
  const std::vector<std::string> lines = test::ReadLines(LogDirectory().File("adb_channel.log"));
  ASSERT_FALSE(lines.empty());
  EXPECT_NE(lines.back().find("adb exit:0 aaaa"), std::string::npos);
  EXPECT_LT(lines.back().size(), 66'000u);
}

}  // namespace
}  // namespace darokleim::channel
