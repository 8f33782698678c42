#include <string>

#include "tests/unit/support/device_output.h"
#include "tests/unit/support/sdk_test.h"

namespace darokleim::test {
namespace {

constexpr char kFirst[] = " -s S1 shell ls /system/bin/su";
constexpr char kSecond[] = " -s S1 shell ls /system/xbin/su";
constexpr char kAbsent[] = "ls: /system/bin/su: No such file or directory\n";

class RootTest : public SdkTest {
 protected:
  bool Rooted(int expected_code = ADB_RESULT_OK) {
    bool rooted = true;
    EXPECT_EQ(IsDeviceHadBeenRooted("S1", &rooted, &cancel), expected_code);
    return rooted;
  }
};

TEST_F(RootTest, TheFirstPlaceSuffices) {
  channel.Expect(kFirst).Prints("/system/bin/su\n");
  EXPECT_TRUE(Rooted());
  EXPECT_THAT(journal(), ElementsAre(Info("IsDeviceHadBeenRooted Enter."), Ran(kFirst), GaveBack(),
                                     Info("IsDeviceHadBeenRooted Leave, return 0.")));
}

TEST_F(RootTest, ElseTheSecondDecides) {
  channel.Expect(kFirst).Prints(kAbsent);
  channel.Expect(kSecond).Prints("/system/xbin/su\r\n");
  EXPECT_TRUE(Rooted());
  EXPECT_THAT(journal(), ElementsAre(Info("IsDeviceHadBeenRooted Enter."), Ran(kFirst), GaveBack(),
                                     Info("IsDeviceHadBeenRooted test:sux bigger."), Ran(kSecond), GaveBack(),
                                     Info("IsDeviceHadBeenRooted Leave, return 0.")));
  channel.Expect(kFirst).Prints(kAbsent).Returns(1001);
  channel.Expect(kSecond).Prints(kAbsent).Returns(1001);
  EXPECT_FALSE(Rooted()) << "25 is an answer";
}

TEST_F(RootTest, AFirstProbeThatFailsIsPassedOver) {
  for (const char* failure : {"error: device 'S1' not found\n", "Failure\n", "device unauthorized"}) {
    channel.Expect(kFirst).Prints(failure);
    channel.Expect(kSecond).Prints("/system/xbin/su\n");
    EXPECT_TRUE(Rooted()) << failure;
  }
  channel.Expect(kFirst).Prints("/system/bin/su\n").Returns(1001);
  channel.Expect(kSecond).Prints(kAbsent);
  EXPECT_FALSE(Rooted());
  for (const int value : {0, 3002}) {
    channel.Expect(kFirst).Returns(value);
    channel.Expect(kSecond).Prints(kAbsent);
    EXPECT_FALSE(Rooted());
  }
}

TEST_F(RootTest, ASecondProbeThatFailsIsTheCode) {
  channel.Expect(kFirst).Prints(kAbsent);
  channel.Expect(kSecond).Prints("error: device unauthorized.\n");
  EXPECT_FALSE(Rooted(ADB_RESULT_DEVICE_UNAUTHORIZED));
  channel.Expect(kFirst).Prints(kAbsent);
  channel.Expect(kSecond).Prints("/system/xbin/su\n").Returns(1001);
  EXPECT_FALSE(Rooted(1001));
  for (const int value : {0, 25, 3003}) {
    channel.Expect(kFirst).Prints(kAbsent);
    channel.Expect(kSecond).Returns(value);
    EXPECT_FALSE(Rooted(value));
    EXPECT_EQ(journal().back(), Info("IsDeviceHadBeenRooted Leave, return " + std::to_string(value) + "."));
  }
}

TEST_F(RootTest, APhoneThatVanishesBetweenTheProbes) {
  channel.Expect(kFirst).Prints(kAbsent);
  channel.Expect(kSecond).Prints("error: device 'S1' not found\n").Returns(1001);
  EXPECT_FALSE(Rooted(ADB_RESULT_NO_DEVICE));
  channel.Expect(kFirst).Prints("error: device 'S1' not found\n").Returns(1001);
  channel.Expect(kSecond).Prints("error: device 'S1' not found\n").Returns(1001);
  EXPECT_FALSE(Rooted(ADB_RESULT_NO_DEVICE)) << "from the start";
}

TEST_F(RootTest, EverythingButADenialMeansThereIsOne) {
  channel.Expect(kFirst).Prints("");
  EXPECT_TRUE(Rooted());
  channel.Expect(kFirst).Prints("ls: /system/bin/su: Permission denied\n");
  EXPECT_TRUE(Rooted());
  channel.Expect(kFirst).Prints("no such file\n");
  EXPECT_TRUE(Rooted());
}

TEST_F(RootTest, OnlyTheFirst255BytesCanDeny) {
  const std::string denial = "No such file";
  for (const char* text : {"No such file", "No such file or directory"}) {
    channel.Expect(kFirst).Prints(std::string(255 - denial.size(), 'x') + text);
    channel.Expect(kSecond).Prints(std::string(255 - denial.size(), 'x') + text);
    EXPECT_FALSE(Rooted()) << text;
    channel.Expect(kFirst).Prints(std::string(256 - denial.size(), 'x') + text);
    EXPECT_TRUE(Rooted()) << text;
    channel.Expect(kFirst).Prints(kAbsent);
    channel.Expect(kSecond).Prints(std::string(1'000'000, 'x') + text).Unterminated();
    EXPECT_TRUE(Rooted()) << text;
  }
}

TEST_F(RootTest, OnlyTheSerialIsChecked) {
  bool rooted = true;
  EXPECT_EQ(IsDeviceHadBeenRooted(nullptr, &rooted, &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_TRUE(rooted) << "untouched";
  EXPECT_THAT(journal(), ElementsAre(Info("IsDeviceHadBeenRooted Enter."),
                                     Error("IsDeviceHadBeenRooted, invalid param.")));
}

TEST_F(RootTest, TheAnswerIsFalseWhileTheDeviceIsAsked) {
  bool rooted = true;
  channel.Expect(kFirst).Prints("/system/bin/su\n").Meanwhile([&] { EXPECT_FALSE(rooted); });
  EXPECT_EQ(IsDeviceHadBeenRooted("S1", &rooted, &cancel), ADB_RESULT_OK);
  EXPECT_TRUE(rooted);
}

TEST_F(RootTest, TheCommandsAreCutAt255Characters) {
  const std::string serial(255 - 28, 's');  // the first fits whole, the second loses its last character
  channel.Expect(" -s " + serial + " shell ls /system/bin/su").Prints(kAbsent);
  channel.Expect(" -s " + serial + " shell ls /system/xbin/s").Prints(kAbsent);
  bool rooted = true;
  EXPECT_EQ(IsDeviceHadBeenRooted(serial.c_str(), &rooted, &cancel), ADB_RESULT_OK);
  EXPECT_EQ((" -s " + serial + " shell ls /system/bin/su").size(), 255U);
}

// Two devices whose shells name the file in their refusals.
TEST_F(RootTest, RealOutputs) {
  channel.Expect(kFirst).Prints(DeviceOutput("ls-l/setuid-su-toolbox.txt"));
  EXPECT_TRUE(Rooted());
  channel.Expect(kFirst).Prints(DeviceOutput("getprop/samsung-su-missing.txt"));
  channel.Expect(kSecond).Prints(DeviceOutput("misc-shell/as-nexus7-su-not-found.txt"));
  EXPECT_FALSE(Rooted(ADB_RESULT_SHELL_NOT_FOUND));
  channel.Expect(kFirst).Prints(DeviceOutput("ls-l/as-emulator-7.1-ls-ld-missing.txt"));
  channel.Expect(kSecond).Prints(DeviceOutput("ls-l/as-emulator-7.1-ls-ld-missing.txt"));
  EXPECT_FALSE(Rooted());
}

}  // namespace
}  // namespace darokleim::test
