// The steps of nearly every exported function, shown with AdbReboot: log, check, run, classify, release the buffer,
// log.
#include <climits>
#include <string>

#include "src/core/adb_run.h"
#include "tests/unit/support/sdk_test.h"

namespace darokleim::test {
namespace {

class CallPatternTest : public SdkTest {};

TEST_F(CallPatternTest, EntersRunsGivesBackAndLeaves) {
  channel.Expect(" -s S1 reboot").Prints("");
  EXPECT_EQ(AdbReboot("S1", &cancel), ADB_RESULT_OK);
  EXPECT_THAT(journal(), ElementsAre(Info("AdbReboot Enter."), Ran(" -s S1 reboot"), GaveBack(),
                                     Info("AdbReboot Leave, return 0.")));
}

TEST_F(CallPatternTest, ANullArgumentRunsNothingAndLogsNoLeaveLine) {
  EXPECT_EQ(AdbReboot(nullptr, &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_THAT(journal(), ElementsAre(Info("AdbReboot Enter."), Error("AdbReboot, invalid param.")));
}

TEST_F(CallPatternTest, NoBufferPassesTheChannelsValueOnUnclassified) {
  for (const int value : {0, 1, 7, 24, 1001, 3003, -1, INT_MIN, INT_MAX}) {
    channel.Expect(" -s S1 reboot").Returns(value);
    EXPECT_EQ(AdbReboot("S1", &cancel), value);
  }
}

TEST_F(CallPatternTest, AnEmptyBufferIsOutputAndGoesBack) {
  channel.Expect(" -s S1 reboot").Prints("").Returns(7);
  EXPECT_EQ(AdbReboot("S1", &cancel), 7);
  EXPECT_THAT(journal(),
              ElementsAre(Info("AdbReboot Enter."), Ran(" -s S1 reboot"), Error("ret is 7,outbuf is:"),
                          GaveBack(), Info("AdbReboot Leave, return 7.")));
}

TEST_F(CallPatternTest, AKnownMessageDecidesWhateverTheChannelReturned) {
  channel.Expect(" -s S1 reboot").Prints("error: device 'S1' not found\n");
  EXPECT_EQ(AdbReboot("S1", &cancel), ADB_RESULT_NO_DEVICE);
  channel.Expect(" -s S1 reboot").Prints("error: device 'S1' not found\n").Returns(1001);
  EXPECT_EQ(AdbReboot("S1", &cancel), ADB_RESULT_NO_DEVICE);
}

TEST_F(CallPatternTest, OutputNeedsNoTerminatingZero) {
  channel.Expect(" -s S1 reboot").Prints("device unauthorized").Unterminated();
  EXPECT_EQ(AdbReboot("S1", &cancel), ADB_RESULT_DEVICE_UNAUTHORIZED);
}

TEST_F(CallPatternTest, OutputIsReadAfterZeroBytesToo) {
  using namespace std::string_literals;
  channel.Expect(" -s S1 reboot").Prints("a\0device unauthorized"s);
  EXPECT_EQ(AdbReboot("S1", &cancel), ADB_RESULT_DEVICE_UNAUTHORIZED);
}

TEST_F(CallPatternTest, ANullCancelFlagIsHandedOn) {
  channel.Expect(" -s S1 reboot").WithoutCancelFlag();
  EXPECT_EQ(AdbReboot("S1", nullptr), ADB_RESULT_OK);
}

TEST_F(CallPatternTest, TheTextOfTheRunIsReadableUntilItEnds) {
  using namespace std::string_literals;
  channel.Expect(" version").Prints("one\0two"s);
  const sdk::AdbRun run(" version", &cancel);
  EXPECT_TRUE(run.has_output());
  EXPECT_EQ(run.output(), "one\0two"s);
  EXPECT_EQ(run.output_as_c_text(), "one");
  channel.Expect(" version");
  const sdk::AdbRun silent(" version", &cancel);
  EXPECT_FALSE(silent.has_output());
  EXPECT_EQ(silent.output(), "");
}

}  // namespace
}  // namespace darokleim::test
