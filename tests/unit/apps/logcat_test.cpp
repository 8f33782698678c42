#include <cstring>
#include <string>
#include <thread>

#include "tests/unit/support/sdk_test.h"

namespace darokleim::test {
namespace {

class LogcatTest : public SdkTest {};

TEST_F(LogcatTest, ClearIsOneCommand) {
  channel.Expect(" -s S1 logcat -c").Prints("");
  EXPECT_EQ(AdbClearLogcat("S1", &cancel), ADB_RESULT_OK);
  EXPECT_THAT(journal(), ElementsAre(Info("AdbClearLogcat Enter."), Ran(" -s S1 logcat -c"), GaveBack(),
                                     Info("AdbClearLogcat Leave, return 0.")));
  channel.Expect(" -s S1 logcat -c").Prints("error: device unauthorized.").Returns(1001);
  EXPECT_EQ(AdbClearLogcat("S1", &cancel), ADB_RESULT_DEVICE_UNAUTHORIZED);
  channel.Expect(" -s S1 logcat -c").Prints("failed to clear the 'main' log").Returns(1001);
  EXPECT_EQ(AdbClearLogcat("S1", &cancel), 1001);
  channel.Expect(" -s S1 logcat -c").Prints("Failure");
  EXPECT_EQ(AdbClearLogcat("S1", &cancel), ADB_RESULT_FAILURE);
  for (const int value : {0, 3003}) {
    channel.Expect(" -s S1 logcat -c").Returns(value);
    EXPECT_EQ(AdbClearLogcat("S1", &cancel), value);
  }
}

TEST_F(LogcatTest, ClearIsCutAt127Characters) {
  for (const std::size_t length : {126U, 127U, 128U, 129U, 300U}) {
    const std::string serial(length - std::strlen(" -s  logcat -c"), 'S');
    channel.Expect((" -s " + serial + " logcat -c").substr(0, 127)).Returns(7);
    EXPECT_EQ(AdbClearLogcat(serial.c_str(), &cancel), 7) << length;
  }
}

TEST_F(LogcatTest, AStreamIsStartedWithTheTwoValuesReversed) {
  int on_output = 0;
  int context = 0;
  EXPECT_EQ(AdbLogcatAnsync("S1", "ActivityManager:I *:S", &on_output, &context, &cancel), 0);
  ASSERT_EQ(channel.streams().size(), 1U);
  const StartedStream& stream = channel.streams()[0];
  EXPECT_STREQ(stream.args, " -s S1 logcat -s ActivityManager:I *:S");
  EXPECT_EQ(stream.cancel, &cancel);
  EXPECT_EQ(stream.context, &context);
  EXPECT_EQ(stream.on_output, &on_output);
  EXPECT_THAT(journal(),
              ElementsAre(Info("AdbLogcatAnsync Enter."), Started(" -s S1 logcat -s ActivityManager:I *:S"),
                          Info("AdbLogcatAnsync Leave, return 0.")));
}

TEST_F(LogcatTest, TheChannelsValueIsTheCode) {
  channel.SetStreamStatus(3002);
  EXPECT_EQ(AdbLogcatAnsync("S1", "T", nullptr, nullptr, nullptr), 3002);
  EXPECT_EQ(channel.streams()[0].cancel, nullptr);
  EXPECT_EQ(channel.streams()[0].context, nullptr);
  EXPECT_EQ(channel.streams()[0].on_output, nullptr);
  EXPECT_EQ(log_lines().back(), Info("AdbLogcatAnsync Leave, return 3002."));
}

TEST_F(LogcatTest, AllStreamsShareTheTextOfTheLatest) {
  AdbLogcatAnsync("S1", "the first, a long one", nullptr, nullptr, &cancel);
  const char* const args = channel.streams()[0].args;
  EXPECT_STREQ(args, " -s S1 logcat -s the first, a long one") << "readable after the call";
  // On another stack, so that only a text that outlives the calls can have the same address.
  std::thread([&] { AdbLogcatAnsync("S2", "second", nullptr, nullptr, &cancel); }).join();
  EXPECT_EQ(channel.streams()[1].args, args);
  EXPECT_STREQ(args, " -s S2 logcat -s second");
}

TEST_F(LogcatTest, StreamCommandsAreCutAt255Characters) {
  const std::string head = " -s S1 logcat -s ";
  for (const std::size_t length : {254U, 255U, 256U, 1000U}) {
    const std::string whole = head + std::string(length - head.size() - 1, 'f') + "$";
    AdbLogcatAnsync("S1", whole.c_str() + head.size(), nullptr, nullptr, &cancel);
    EXPECT_EQ(channel.streams().back().args, whole.substr(0, 255)) << length;
  }
}

}  // namespace
}  // namespace darokleim::test
