#include <string>

#include "src/core/sdk.h"
#include "tests/unit/support/sdk_test.h"

namespace darokleim::test {
namespace {

constexpr char kLook[] = " -s S1 shell ls \"\"/data/local/tmp/busybox\"\"";
constexpr char kLookAgain[] = " -s S1 ls \"/data/local/tmp\"";
constexpr char kPush[] = " -s S1 push --sync \"/host/busybox\" \"/data/local/tmp/busybox\"";
constexpr char kChmod[] = " -s S1 shell chmod a+x /data/local/tmp/busybox";

class DeviceBusyboxTest : public SdkTest {
 protected:
  DeviceBusyboxTest() { s_busybox_fullpath = "/host/busybox"; }

  void ExpectAbsent() {
    channel.Expect(kLook).Prints("ls: /data/local/tmp/busybox: No such file or directory\n");
    channel.Expect(kLookAgain).Prints("000041ed 00001000 5e7d0000 .\n");
  }
};

TEST_F(DeviceBusyboxTest, OneThatIsThereIsMadeExecutable) {
  channel.Expect(kLook).Prints("/data/local/tmp/busybox\n");
  channel.Expect(kChmod).Prints("");
  EXPECT_EQ(AdbConfigDeviceBusybox("S1", &cancel), ADB_RESULT_OK);
}

TEST_F(DeviceBusyboxTest, OneThatIsNotIsPushedFirst) {
  ExpectAbsent();
  channel.Expect(kPush).Prints("/host/busybox: 1 file pushed, 0 skipped.\n");
  channel.Expect(kChmod).Prints("");
  EXPECT_EQ(AdbConfigDeviceBusybox("S1", &cancel), ADB_RESULT_OK);
}

TEST_F(DeviceBusyboxTest, TheFirstStepThatFailsEndsIt) {
  channel.Expect(kLook).Prints("error: device unauthorized.\n");
  EXPECT_EQ(AdbConfigDeviceBusybox("S1", &cancel), ADB_RESULT_DEVICE_UNAUTHORIZED);

  ExpectAbsent();
  channel.Expect(kPush).Prints("adb: error: No space left on device\n").Returns(1001);
  EXPECT_EQ(AdbConfigDeviceBusybox("S1", &cancel), ADB_RESULT_NO_SPACE_LEFT);

  channel.Expect(kLook).Prints("/data/local/tmp/busybox\n");
  channel.Expect(kChmod).Returns(1001);
  EXPECT_EQ(AdbConfigDeviceBusybox("S1", &cancel), 1001);
}

TEST_F(DeviceBusyboxTest, APhoneThatVanishesOnTheWay) {
  const std::string vanished = "error: device 'S1' not found\n";
  channel.Expect(kLook).Returns(3003);
  EXPECT_EQ(AdbConfigDeviceBusybox("S1", &cancel), 3003);

  channel.Expect(kLook).Prints("ls: /data/local/tmp/busybox: No such file or directory\n");
  channel.Expect(kLookAgain).Returns(3003);
  channel.Expect(kPush).Prints("adb: " + vanished).Returns(1001);
  EXPECT_EQ(AdbConfigDeviceBusybox("S1", &cancel), ADB_RESULT_NO_DEVICE) << "the second look is not heeded";

  ExpectAbsent();
  channel.Expect(kPush).Returns(3002);
  EXPECT_EQ(AdbConfigDeviceBusybox("S1", &cancel), 3002);

  ExpectAbsent();
  channel.Expect(kPush).Prints("1 file pushed\n");
  channel.Expect(kChmod).Prints(vanished).Returns(1001);
  EXPECT_EQ(AdbConfigDeviceBusybox("S1", &cancel), ADB_RESULT_NO_DEVICE);
}

TEST_F(DeviceBusyboxTest, ANullSerialIsTheFirstStepsAffair) {
  EXPECT_EQ(AdbConfigDeviceBusybox(nullptr, &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_THAT(journal(), ElementsAre(Error("AdbCheckFileExisted, invalid param."))) << "no line of its own";
}

}  // namespace
}  // namespace darokleim::test
