#include <cstring>
#include <map>
#include <string>

#include "tests/unit/support/device_output.h"
#include "tests/unit/support/sdk_test.h"

namespace darokleim::test {
namespace {

constexpr char kCommand[] = " -s S1 shell ip address | grep wlan | grep inet";

class IpAddressTest : public SdkTest {
 protected:
  // What is handed out, "untouched" for nothing.
  std::string Address(int expected_code) {
    char untouched[] = "untouched";
    char* ip = untouched;
    int length = 9;
    EXPECT_EQ(AdbGetIPAddress("S1", &ip, &length, &cancel), expected_code);
    EXPECT_EQ(length, static_cast<int>(std::strlen(ip)));
    const std::string text = ip;
    if (ip != untouched) AdbFreeResource(&ip);
    return text;
  }
};

TEST_F(IpAddressTest, HandsOutAddressAndPrefixLength) {
  channel.Expect(kCommand).Prints("    inet 10.0.0.7/8 brd 10.255.255.255 scope global wlan0\n");
  EXPECT_EQ(Address(ADB_RESULT_OK), "10.0.0.7/8");
  EXPECT_THAT(journal(), ElementsAre(Info("AdbGetIPAddress Enter."), Ran(kCommand), GaveBack(),
                                     Info("AdbGetIPAddress Leave, return 0.")));
}

TEST_F(IpAddressTest, NoAddress) {
  for (const char* text : {"", "\n", "wlan0", "inet 10.0.0.7 brd 10.255.255.255\n", "inet 10.0.0.7/8\n"}) {
    channel.Expect(kCommand).Prints(text);
    EXPECT_EQ(Address(ADB_RESULT_NO_IP_ADDRESS), "untouched") << text;
  }
  EXPECT_EQ(journal().back(), Info("AdbGetIPAddress Leave, return 30."));
}

TEST_F(IpAddressTest, OnlyTheSerialIsChecked) {
  EXPECT_EQ(AdbGetIPAddress(nullptr, nullptr, nullptr, &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_THAT(journal(),
              ElementsAre(Info("AdbGetIPAddress Enter."), Error("AdbGetIPAddress, invalid param.")));
}

TEST_F(IpAddressTest, WithoutOutputTheChannelsValueIsTheCode) {
  for (const int value : {0, 30, 3003}) {
    channel.Expect(kCommand).Returns(value);
    EXPECT_EQ(Address(value), "untouched");
  }
}

TEST_F(IpAddressTest, AnErrorIsTheCodeAlsoBesideAnAddress) {
  channel.Expect(kCommand).Prints("inet 10.0.0.7/8 brd x device unauthorized").Returns(0);
  EXPECT_EQ(Address(ADB_RESULT_DEVICE_UNAUTHORIZED), "untouched");
  channel.Expect(kCommand).Prints("inet 10.0.0.7/8 brd x").Returns(1001);
  EXPECT_EQ(Address(1001), "untouched");
}

TEST_F(IpAddressTest, ALineThatIsCutInTheMiddle) {
  const std::string line = "    inet 10.0.0.7/24 brd 10.0.0.255 scope global wlan0\n";
  const std::size_t slash = line.find('/');
  for (std::size_t length = 0; length < line.size(); ++length) {
    channel.Expect(kCommand).Prints(line.substr(0, length));
    if (length <= slash + 1) {
      EXPECT_EQ(Address(ADB_RESULT_NO_IP_ADDRESS), "untouched") << length;
    } else {
      EXPECT_EQ(Address(ADB_RESULT_OK), length == slash + 2 ? "10.0.0.7/2" : "10.0.0.7/24") << length;
    }
  }
}

TEST_F(IpAddressTest, NumbersOfFortyDigits) {
  const std::string address = std::string(40, '9') + ".0.0.7/" + std::string(40, '8');
  channel.Expect(kCommand).Prints("inet " + address + " brd\n");
  EXPECT_EQ(Address(ADB_RESULT_OK), address);
}

TEST_F(IpAddressTest, TheCommandIsCutAt255Characters) {
  const std::string rest = " shell ip address | grep wlan | grep inet";
  for (const std::size_t length : {254U, 255U, 256U, 1'000U}) {
    const std::string serial(length - 4 - rest.size(), 's');
    channel.Expect((" -s " + serial + rest).substr(0, 255)).Prints("");
    EXPECT_EQ(AdbGetIPAddress(serial.c_str(), nullptr, nullptr, &cancel), ADB_RESULT_NO_IP_ADDRESS);
  }
}

TEST_F(IpAddressTest, AnAddressOfAMillionDigits) {
  const std::string address = std::string(1'000'000, '1') + ".2.3.4/5";
  channel.Expect(kCommand).Prints("inet " + address + " brd").Unterminated();
  EXPECT_EQ(Address(ADB_RESULT_OK), address);
}

// What real devices print, through the two greps of the command and as it is.
TEST_F(IpAddressTest, RealOutputs) {
  const std::map<std::string, std::pair<std::string, int>> cases = {
      {"ip-addr/androidtv-no-wlan0.txt", {"untouched", ADB_RESULT_NO_IP_ADDRESS}},
      {"ip-addr/awesome-ifconfig-old.txt", {"untouched", ADB_RESULT_NO_IP_ADDRESS}},
      {"ip-addr/xiaomi-inet-show.txt", {"untouched", ADB_RESULT_NO_IP_ADDRESS}},
  };
  EXPECT_EQ(DeviceOutputsIn("ip-addr").size(), cases.size());
  for (const auto& [sample, expected] : cases) {
    channel.Expect(kCommand).Prints(DeviceOutput(sample));
    EXPECT_EQ(Address(expected.second), expected.first) << sample;
  }
  std::string line = DeviceOutput("ip-addr/xiaomi-inet-show.txt");
  line.erase(0, line.find('\n') + 1);
  line.erase(line.find('\n') + 1);
  ASSERT_EQ(line, "    inet 192.168.2.21/24 brd 192.168.2.255 scope global wlan0\n");
  channel.Expect(kCommand).Prints(line);
  EXPECT_EQ(Address(ADB_RESULT_OK), "192.168.2.21/24");
  channel.Expect(kCommand).Prints(DeviceOutput("misc-shell/grep-not-found.txt"));
  EXPECT_EQ(Address(ADB_RESULT_SHELL_NOT_FOUND), "untouched");
}

}  // namespace
}  // namespace darokleim::test
