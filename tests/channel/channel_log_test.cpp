// The channel's own log.
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

}  // namespace
}  // namespace darokleim::channel
