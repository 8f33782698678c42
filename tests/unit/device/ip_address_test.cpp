#include "src/device/ip_address.h"

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <random>
#include <regex>
#include <string>

#include "tests/unit/support/device_output.h"
#include "tests/unit/support/sdk_test.h"

namespace darokleim::test {
namespace {

using namespace sdk;
using namespace std::string_literals;

std::string Found(std::string_view output) {
  const auto address = FindAddress(output);
  return address ? std::string(*address) : "none";
}

TEST(IsAddressWithPrefixTest, FiveNumbers) {
  for (const char* text : {"192.168.1.5/24", "0.0.0.0/0", "999.999.999.999/999", "00.1.2.3/004"}) {
    EXPECT_TRUE(IsAddressWithPrefix(text)) << text;
  }
  for (const std::string& text : {""s,
                                  "192.168.1.5"s,
                                  "192.168.1.5/"s,
                                  "192.168.1/24"s,
                                  "1.2.3.4.5/24"s,
                                  ".1.2.3/4"s,
                                  "1..2.3/4"s,
                                  "1.2.3.4/5 "s,
                                  " 1.2.3.4/5"s,
                                  "1.2.3.4/5\n"s,
                                  "1.2.3.4/5\r"s,
                                  "1.2.3.4/-5"s,
                                  "1.2.3.4/5/6"s,
                                  "1.2.3.4/5.6"s,
                                  "a.2.3.4/5"s,
                                  "1.2.3.4\0/5"s,
                                  "1.2.3.4/5\0"s,
                                  "fe80::1/64"s,
                                  "1/2.3.4.5"s,
                                  "\xd9\xa1.2.3.4/5"s}) {
    EXPECT_FALSE(IsAddressWithPrefix(text)) << text;
  }
}

TEST(IsAddressWithPrefixTest, IsTheRegularExpression) {
  const std::regex pattern("^\\d+\\.\\d+\\.\\d+\\.\\d+/\\d+$");
  std::mt19937 random(3);
  const std::string alphabet = "0123456789../\n\r x";
  int matches = 0;
  for (int i = 0; i < 60'000; ++i) {
    // Near an address: one with up to two bytes put in, taken out or replaced.
    std::string text = std::to_string(random() % 300) + "." + std::to_string(random() % 300) + "." +
                       std::to_string(random() % 300) + "." + std::to_string(random() % 300) + "/" +
                       std::to_string(random() % 40);
    for (unsigned edits = static_cast<unsigned>(random() % 3); edits > 0; --edits) {
      const std::size_t at = random() % text.size();
      const char byte = alphabet[random() % alphabet.size()];
      switch (random() % 3) {
        case 0:
          text[at] = byte;
          break;
        case 1:
          text.insert(at, 1, byte);
          break;
        default:
          text.erase(at, 1);
      }
    }
    const bool expected = std::regex_match(text, pattern);
    matches += expected;
    ASSERT_EQ(IsAddressWithPrefix(text), expected) << text;
  }
  EXPECT_GT(matches, 20'000);
  EXPECT_LT(matches, 50'000);
}

TEST(IsAddressWithPrefixTest, AMillionDigits) {
  const std::string digits(1'000'000, '9');
  EXPECT_TRUE(IsAddressWithPrefix(digits + ".1.2.3/" + digits));
  EXPECT_FALSE(IsAddressWithPrefix(digits));
  EXPECT_FALSE(IsAddressWithPrefix(digits + ".1.2.3/" + digits + "x"));
}

TEST(FindAddressTest, TheSecondWord) {
  EXPECT_EQ(Found("    inet 10.0.0.7/8 brd 10.255.255.255 scope global wlan0\n"), "10.0.0.7/8");
  EXPECT_EQ(Found("inet 10.0.0.7/8 "), "10.0.0.7/8");
  EXPECT_EQ(Found("inet 10.0.0.7/8"), "10.0.0.7/8");
  EXPECT_EQ(Found("inet    10.0.0.7/8 brd"), "10.0.0.7/8") << "several spaces are one separator";
  EXPECT_EQ(Found("1.1.1.1/1 2.2.2.2/2 3.3.3.3/3"), "2.2.2.2/2");
}

TEST(FindAddressTest, NoOtherWordCounts) {
  EXPECT_EQ(Found(""), "none");
  EXPECT_EQ(Found("inet"), "none");
  EXPECT_EQ(Found("          "), "none");
  EXPECT_EQ(Found("10.0.0.7/8"), "none");
  EXPECT_EQ(Found("inet 10.0.0.7 brd"), "none") << "no prefix length";
  EXPECT_EQ(Found("inet 10.0.0.7/8\n inet 10.0.0.8/8 x"), "none") << "a line break is not a space";
  EXPECT_EQ(Found("inet 10.0.0.7/8\r\n"), "none");
  EXPECT_EQ(Found("inet\t10.0.0.7/8 brd"), "none");
  EXPECT_EQ(Found("inet6 fe80::1/64 scope link\n    inet 10.0.0.7/8 brd x"), "none");
}

TEST(FindAddressTest, BothLineBreaks) {
  EXPECT_EQ(Found("    inet 10.0.0.7/8 brd 10.255.255.255 scope global wlan0\r\n"), "10.0.0.7/8");
  EXPECT_EQ(Found("inet 10.0.0.7/8 scope global wlan0\r\ninet 10.0.0.8/8 scope global wlan1\r\n"),
            "10.0.0.7/8");
}

TEST(FindAddressTest, OddTexts) {
  EXPECT_EQ(Found("\0 1.2.3.4/5 "s), "1.2.3.4/5");
  EXPECT_EQ(Found("\xff\xfe 1.2.3.4/5 "), "1.2.3.4/5");
  EXPECT_EQ(Found(std::string(1'000'000, ' ') + "a " + std::string(1'000'000, ' ') + "1.2.3.4/5 "),
            "1.2.3.4/5");
}

constexpr char kAddressCommand[] = " -s S1 shell ip address | grep wlan | grep inet";

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
  channel.Expect(kAddressCommand).Prints("    inet 10.0.0.7/8 brd 10.255.255.255 scope global wlan0\n");
  EXPECT_EQ(Address(ADB_RESULT_OK), "10.0.0.7/8");
  EXPECT_THAT(journal(), ElementsAre(Info("AdbGetIPAddress Enter."), Ran(kAddressCommand), GaveBack(),
                                     Info("AdbGetIPAddress Leave, return 0.")));
}

TEST_F(IpAddressTest, NoAddress) {
  for (const char* text : {"", "\n", "wlan0", "inet 10.0.0.7 brd 10.255.255.255\n", "inet 10.0.0.7/8\n"}) {
    channel.Expect(kAddressCommand).Prints(text);
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
    channel.Expect(kAddressCommand).Returns(value);
    EXPECT_EQ(Address(value), "untouched");
  }
}

TEST_F(IpAddressTest, AnErrorIsTheCodeAlsoBesideAnAddress) {
  channel.Expect(kAddressCommand).Prints("inet 10.0.0.7/8 brd x device unauthorized").Returns(0);
  EXPECT_EQ(Address(ADB_RESULT_DEVICE_UNAUTHORIZED), "untouched");
  channel.Expect(kAddressCommand).Prints("inet 10.0.0.7/8 brd x").Returns(1001);
  EXPECT_EQ(Address(1001), "untouched");
}

TEST_F(IpAddressTest, ALineThatIsCutInTheMiddle) {
  const std::string line = "    inet 10.0.0.7/24 brd 10.0.0.255 scope global wlan0\n";
  const std::size_t slash = line.find('/');
  for (std::size_t length = 0; length < line.size(); ++length) {
    channel.Expect(kAddressCommand).Prints(line.substr(0, length));
    if (length <= slash + 1) {
      EXPECT_EQ(Address(ADB_RESULT_NO_IP_ADDRESS), "untouched") << length;
    } else {
      EXPECT_EQ(Address(ADB_RESULT_OK), length == slash + 2 ? "10.0.0.7/2" : "10.0.0.7/24") << length;
    }
  }
}

TEST_F(IpAddressTest, NumbersOfFortyDigits) {
  const std::string address = std::string(40, '9') + ".0.0.7/" + std::string(40, '8');
  channel.Expect(kAddressCommand).Prints("inet " + address + " brd\n");
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
  channel.Expect(kAddressCommand).Prints("inet " + address + " brd").Unterminated();
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
    channel.Expect(kAddressCommand).Prints(DeviceOutput(sample));
    EXPECT_EQ(Address(expected.second), expected.first) << sample;
  }
  std::string line = DeviceOutput("ip-addr/xiaomi-inet-show.txt");
  line.erase(0, line.find('\n') + 1);
  line.erase(line.find('\n') + 1);
  ASSERT_EQ(line, "    inet 192.168.2.21/24 brd 192.168.2.255 scope global wlan0\n");
  channel.Expect(kAddressCommand).Prints(line);
  EXPECT_EQ(Address(ADB_RESULT_OK), "192.168.2.21/24");
  channel.Expect(kAddressCommand).Prints(DeviceOutput("misc-shell/grep-not-found.txt"));
  EXPECT_EQ(Address(ADB_RESULT_SHELL_NOT_FOUND), "untouched");
}

}  // namespace
}  // namespace darokleim::test
