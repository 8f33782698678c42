#include <string>

#include "tests/unit/support/device_output.h"
#include "tests/unit/support/sdk_test.h"

namespace darokleim::test {
namespace {

class ConnectionTest : public SdkTest {};

TEST_F(ConnectionTest, AnAnsweredReconnectIsOneToTheCaller) {
  channel.Expect(" -s S1 reconnect").Prints("reconnecting S1 [device]\n");
  EXPECT_EQ(AdbAuthenticateShow("S1", &cancel), 1);
  EXPECT_THAT(journal(), ElementsAre(Info("AdbAuthenticateShow Enter, serial S1."), Ran(" -s S1 reconnect"),
                                     Error("ret is 1,outbuf is:reconnecting S1 [device]\n"), GaveBack(),
                                     Info("AdbAuthenticateShow Leave, return 1.")));
}

TEST_F(ConnectionTest, AReconnectIgnoresTheChannelsValue) {
  channel.Expect(" -s S1 reconnect").Prints("").Returns(1001);
  EXPECT_EQ(AdbAuthenticateShow("S1", &cancel), 1);
  channel.Expect(" -s S1 reconnect").Returns(3002);
  EXPECT_EQ(AdbAuthenticateShow("S1", &cancel), 1) << "without output too";
}

TEST_F(ConnectionTest, AReconnectReportsKnownErrors) {
  channel.Expect(" -s S1 reconnect").Prints("error: device 'S1' not found\n");
  EXPECT_EQ(AdbAuthenticateShow("S1", &cancel), ADB_RESULT_NO_DEVICE);
  channel.Expect(" -s S1 reconnect").Prints("error: device unauthorized.\n");
  EXPECT_EQ(AdbAuthenticateShow("S1", &cancel), ADB_RESULT_DEVICE_UNAUTHORIZED);
}

TEST_F(ConnectionTest, RealAnswersToAReconnect) {
  for (const std::string& sample : DeviceOutputsIn("adb-reconnect")) {
    channel.Expect(" -s S1 reconnect").Prints(DeviceOutput(sample));
    EXPECT_EQ(AdbAuthenticateShow("S1", &cancel), 1) << sample;
    channel.Expect(" reconnect").Prints(DeviceOutput(sample)).Uncancellable();
    EXPECT_EQ(AdbReconnectDevice(), 0) << sample;
  }
}

TEST_F(ConnectionTest, TheSerialOfAReconnectIsNotChecked) {
  channel.Expect(" -s (null) reconnect").Prints("error: device '(null)' not found\n");
  EXPECT_EQ(AdbAuthenticateShow(nullptr, &cancel), ADB_RESULT_NO_DEVICE);
  EXPECT_EQ(journal().front(), Info("AdbAuthenticateShow Enter, serial (null)."));
}

TEST_F(ConnectionTest, TheReconnectCommandIsCutAt255Characters) {
  const std::string serial(300, 's');
  channel.Expect((" -s " + serial).substr(0, 255));
  EXPECT_EQ(AdbAuthenticateShow(serial.c_str(), &cancel), 1);
}

TEST_F(ConnectionTest, ReconnectOfAllIsNeitherCancellableNorClassified) {
  channel.Expect(" reconnect").Prints("error: no devices/emulators found\n").Uncancellable();
  EXPECT_EQ(AdbReconnectDevice(), 0);
  EXPECT_THAT(journal(), ElementsAre(Info("AdbReconnectDevice Enter ..."), Ran(" reconnect"), GaveBack(),
                                     Info("AdbReconnectDevice Leave, return 0.")));
}

TEST_F(ConnectionTest, ReconnectOfAllReturnsTheChannelsValue) {
  channel.Expect(" reconnect").Returns(3002).Uncancellable();
  EXPECT_EQ(AdbReconnectDevice(), 3002);
  EXPECT_THAT(journal(), ElementsAre(Info("AdbReconnectDevice Enter ..."), Ran(" reconnect"),
                                     Info("AdbReconnectDevice Leave, return 3002.")));
}

TEST_F(ConnectionTest, TheRebootCommandIsCutAt127Characters) {
  const std::string serial(127 - 11, 's');
  channel.Expect(" -s " + serial + " reboot");
  EXPECT_EQ(AdbReboot(serial.c_str(), &cancel), 0);
  channel.Expect(" -s x" + serial + " reboo");
  EXPECT_EQ(AdbReboot(("x" + serial).c_str(), &cancel), 0);
}

TEST_F(ConnectionTest, TheSerialIsInsertedAsItIs) {
  channel.Expect(" -s a b;$(x) reboot");
  EXPECT_EQ(AdbReboot("a b;$(x)", &cancel), 0);
}

}  // namespace
}  // namespace darokleim::test
