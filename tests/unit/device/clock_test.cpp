#include <string>

#include "tests/unit/support/sdk_test.h"

namespace darokleim::test {
namespace {

constexpr char kDateCommand[] = " -s S1 'shell date +\"%Y-%m-%d %H:%M:%S\"'";

class ClockTest : public SdkTest {};

TEST_F(ClockTest, ReadsTheTime) {
  for (const char* text : {"2026-11-21 08:25:00\n", "2026-11-21 08:25:00\r\n"}) {
    char buffer[32] = "before";
    channel.Expect(kDateCommand).Prints(text);
    EXPECT_EQ(AdbGetDeviceCurrentTime("S1", buffer, sizeof buffer, &cancel), ADB_RESULT_OK);
    EXPECT_STREQ(buffer, "2026-11-21 08:25:00");
  }
  EXPECT_EQ(journal().size(), 8U);
  EXPECT_EQ(journal()[4], Info("AdbGetDeviceCurrentTime Enter."));
  EXPECT_EQ(journal()[5], Ran(kDateCommand));
  EXPECT_EQ(journal()[6], GaveBack());
  EXPECT_EQ(journal()[7], Info("AdbGetDeviceCurrentTime Leave, return 0."));
}

TEST_F(ClockTest, ANullTextIsRefused) {
  char buffer[] = "before";
  EXPECT_EQ(AdbGetDeviceCurrentTime(nullptr, buffer, sizeof buffer, &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_EQ(AdbGetDeviceCurrentTime("S1", nullptr, 7, &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_STREQ(buffer, "before");
  EXPECT_THAT(
      journal(),
      ElementsAre(Info("AdbGetDeviceCurrentTime Enter."), Error("AdbGetDeviceCurrentTime, invalid param."),
                  Info("AdbGetDeviceCurrentTime Enter."), Error("AdbGetDeviceCurrentTime, invalid param.")));
}

TEST_F(ClockTest, TheBufferIsEmptiedBeforeTheCommandRuns) {
  char buffer[] = "before";
  channel.Expect(kDateCommand).Returns(3003).Meanwhile([&] { EXPECT_STREQ(buffer, ""); });
  EXPECT_EQ(AdbGetDeviceCurrentTime("S1", buffer, sizeof buffer, &cancel), 3003);
  EXPECT_EQ(std::string(buffer, sizeof buffer), std::string("\0efore\0", 7)) << "its first byte alone";
}

TEST_F(ClockTest, AMessageDecidesAlsoWhenTheChannelIsContent) {
  char buffer[] = "before";
  channel.Expect(kDateCommand).Prints("device unauthorized\n");
  EXPECT_EQ(AdbGetDeviceCurrentTime("S1", buffer, sizeof buffer, &cancel), ADB_RESULT_DEVICE_UNAUTHORIZED);
  EXPECT_STREQ(buffer, "");
  channel.Expect(kDateCommand).Prints("2026-11-21 08:25:00\n").Returns(1001);
  EXPECT_EQ(AdbGetDeviceCurrentTime("S1", buffer, sizeof buffer, &cancel), 1001);
  EXPECT_STREQ(buffer, "");
}

TEST_F(ClockTest, AroundTheSizeOfTheBuffer) {
  const struct {
    int size;
    int code;
    const char* text;
  } cases[] = {{22, ADB_RESULT_OK, "2026-11-21 08:25:00"},
               {20, ADB_RESULT_OK, "2026-11-21 08:25:00"},
               {19, ADB_RESULT_BUFFER_TOO_SMALL, "2026-11-21 08:25:0"},
               {12, ADB_RESULT_BUFFER_TOO_SMALL, "2026-11-21"},
               {1, ADB_RESULT_BUFFER_TOO_SMALL, ""}};
  for (const auto& c : cases) {
    std::string buffer(30, '#');
    channel.Expect(kDateCommand).Prints("2026-11-21 08:25:00\n");
    EXPECT_EQ(AdbGetDeviceCurrentTime("S1", buffer.data(), c.size, &cancel), c.code) << c.size;
    EXPECT_STREQ(buffer.c_str(), c.text) << c.size;
    EXPECT_EQ(buffer.find_first_not_of('#', static_cast<std::size_t>(c.size)), std::string::npos);
  }
}

TEST_F(ClockTest, ABufferWithoutRoomIsLeftAlone) {
  for (const int size : {0, -5}) {
    char buffer[] = "before";
    channel.Expect(kDateCommand).Prints("2026-11-21 08:25:00\n");
    EXPECT_EQ(AdbGetDeviceCurrentTime("S1", buffer, size, &cancel), ADB_RESULT_BUFFER_TOO_SMALL);
    EXPECT_STREQ(buffer, "before");
  }
}

TEST_F(ClockTest, TheCommandIsCutAt255Characters) {
  const std::string rest = " 'shell date +\"%Y-%m-%d %H:%M:%S\"'";
  for (const std::size_t length : {254U, 255U, 256U, 1'000U}) {
    const std::string serial(length - 4 - rest.size(), 's');
    char buffer[8];
    channel.Expect((" -s " + serial + rest).substr(0, 255));
    EXPECT_EQ(AdbGetDeviceCurrentTime(serial.c_str(), buffer, sizeof buffer, &cancel), ADB_RESULT_OK);
  }
}

}  // namespace
}  // namespace darokleim::test
