// What arrives of what adb prints, and the words that it is started with.
#include <cstring>

#include "tests/channel/channel_run.h"
#include "tests/support/file_content.h"

namespace darokleim::channel {
namespace {

constexpr char kStarted[] =
    "error:*\\sdaemon\\snot\\srunning;\\sstarting\\snow\\sat\\stcp:5037\\n"
    "*\\sdaemon\\sstarted\\ssuccessfully\\n ";

class OutputTest : public ChannelTest {};

TEST_F(OutputTest, HasBothStreamsInOrder) {
  EXPECT_EQ(RunAdb(" print:1 error:2 print:3 error:4").output, "1234");
}

TEST_F(OutputTest, KeepsEveryByte) {
  EXPECT_EQ(RunAdb(" print:a\\0b\\r\\n\xff\xc3\x28\\0").output, std::string("a\0b\r\n\xff\xc3\x28\0", 9));
}

TEST_F(OutputTest, ComesFromTheWordsOfTheArgumentText) {
  EXPECT_EQ(RunAdbWhere("words", R"( -s X push --sync "/a b" 'c"d' \( it's "")").output,
            R"(<-s><X><push><--sync></a b><c"d><\(><it's><>)");
  EXPECT_EQ(RunAdbWhere("words", R"( -s X 'shell date +"%H:%M %S"')").output,
            R"(<-s><X><shell><date +"%H:%M %S">)");
  EXPECT_EQ(RunAdbWhere("words", "").output, "");
  EXPECT_EQ(RunAdbWhere("words", R"( -s X shell ls ""/sdcard/it's.txt"")").output,
            "<-s><X><shell><ls></sdcard/it's.txt>");
}

TEST_F(OutputTest, IsNotReadFromTheHostsInput) {
  EXPECT_EQ(RunAdb(" input").output, "end\n");
}

TEST_F(OutputTest, OfOneGibibyte) {
  constexpr int kLength = 1 << 30;
  char* out = nullptr;
  int length = 0;
  ASSERT_EQ(ExecuteAdbCommandSynchronization(" print:> flood:1073741822 print:<", nullptr, &out, &length), 0);
  ASSERT_EQ(length, kLength);
  EXPECT_EQ(out[0], '>');
  EXPECT_EQ(out[kLength - 1], '<');
  EXPECT_EQ(out[kLength], '\0');
  EXPECT_EQ(out[1], 'x');
  EXPECT_EQ(memcmp(out + 1, out + 2, kLength - 3), 0);
  ReleaseAdbOutBuffer(out);
}

TEST_F(OutputTest, OfAnySizeIsComplete) {
  for (const size_t size : {1u, 4096u, 65535u, 65536u, 65537u, 1'000'000u, 4'194'304u, 10'000'000u}) {
    const Result result = RunAdb(" flood:" + std::to_string(size) + " print:<");
    EXPECT_EQ(result.output.size(), size + 1);
    EXPECT_EQ(result.output.back(), '<');
  }
}

TEST_F(OutputTest, MayEndBeforeAdbDoes) {
  const bool cancel = false;
  EXPECT_EQ(RunAdb(" print:a close sleep:50 exit:7").status, 1007);
  EXPECT_EQ(RunAdb(" print:a close sleep:50 exit:7", &cancel).status, 1007);
}

TEST_F(OutputTest, IsWaitedForWhenItComesSlowly) {
  EXPECT_EQ(RunAdb(" print:a sleep:30 print:b sleep:30 print:c").output, "abc");
}

TEST_F(OutputTest, LosesTheNoticesOfAStartingServer) {
  const std::string orders = kStarted + std::string("print:8.0.0\\n");
  EXPECT_EQ(RunAdbWhere(orders, " -s X shell getprop x").output, "8.0.0\n");
  EXPECT_EQ(RunAdbWhere(orders, " devices").output, "8.0.0\n");
  EXPECT_EQ(RunAdbWhere(kStarted, " devices").output, "");
  EXPECT_TRUE(RunAdbWhere(kStarted, " devices").handed_out);
  EXPECT_NE(test::ReadFile(LogDirectory().File("adb_channel.log")).find("daemon started successfully"),
            std::string::npos);
}

TEST_F(OutputTest, KeepsTheNoticesThatWereAskedFor) {
  EXPECT_EQ(RunAdbWhere(kStarted, " start-server").output,
            "* daemon not running; starting now at tcp:5037\n* daemon started successfully\n");
  EXPECT_NE(RunAdbWhere(kStarted, " kill-server").output, "");
}

TEST_F(OutputTest, KeepsFailuresAmongNotices) {
  const Result result = RunAdbWhere(
      "error:*\\sdaemon\\snot\\srunning\\n*\\sfailed\\sto\\sstart\\sdaemon\\nerror:\\scannot\\sconnect\\n "
      "exit:1",
      " -s X shell getprop x");
  EXPECT_EQ(result.status, 1001);
  EXPECT_EQ(result.output, "* failed to start daemon\nerror: cannot connect\n");
}

class AssistTest : public ChannelTest {
 protected:
  void SetUp() override {
    setenv("DAROKLEIM_CHANNEL_ASSIST", "1", 1);
    UseAdb(DAROKLEIM_MISBEHAVING_ADB);
  }
  void TearDown() override { unsetenv("DAROKLEIM_CHANNEL_ASSIST"); }
};

TEST_F(AssistTest, QuotesPathsForTheDevice) {
  EXPECT_EQ(RunAdbWhere("words", R"( -s X shell cp "/a b" "/it's")").output,
            R"(<-s><X><shell><cp><'/a b'><'/it'\''s'>)");
}

TEST_F(AssistTest, GivesTheLineEndsThatAreRead) {
  EXPECT_EQ(RunAdbWhere("print:a\\nb\\r\\n", R"( -s X shell stat "/x")").output, "a\r\nb\r\n");
  EXPECT_EQ(RunAdbWhere("print:a\\nb\\r\\n", " -s X shell ls -l /storage").output, "a\nb\n");
  EXPECT_EQ(RunAdbWhere("print:a\\nb\\r\\n", " devices").output, "a\nb\r\n");
}

TEST_F(AssistTest, IsReadWhenTheChannelIsInitialised) {
  unsetenv("DAROKLEIM_CHANNEL_ASSIST");
  EXPECT_EQ(RunAdbWhere("words", R"(shell rm "/a b")").output, "<shell><rm><'/a b'>");
  UseAdb(DAROKLEIM_MISBEHAVING_ADB);
  EXPECT_EQ(RunAdbWhere("words", R"(shell rm "/a b")").output, "<shell><rm></a b>");
  setenv("DAROKLEIM_CHANNEL_ASSIST", "0", 1);
  UseAdb(DAROKLEIM_MISBEHAVING_ADB);
  EXPECT_EQ(RunAdbWhere("words", R"(shell rm "/a b")").output, "<shell><rm></a b>");
}

class LogTest : public ChannelTest {};

TEST_F(LogTest, HasALineForEachCommand) {
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
