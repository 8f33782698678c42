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

}  // namespace
}  // namespace darokleim::channel
