#include "src/device/device_line.h"

#include <gtest/gtest.h>

#include <random>
#include <regex>
#include <string>

namespace darokleim::sdk {
namespace {

std::string Matched(std::string_view line) {
  const auto device = MatchDeviceLine(line);
  return device ? std::string(device->serial) + "|" + std::string(device->state) : "none";
}

TEST(DeviceLineTest, SerialAndState) {
  EXPECT_EQ(Matched("0123456789ABCDEF\tdevice"), "0123456789ABCDEF|device");
  EXPECT_EQ(Matched("a  offline"), "a|offline");
  EXPECT_EQ(Matched("AZaz09\tdevice"), "AZaz09|device");
  EXPECT_EQ(Matched("abc \t\v\f\r unauthorized"), "abc|unauthorized");
}

TEST(DeviceLineTest, EverythingElseIsNoDevice) {
  for (const char* line : {"",
                           " ",
                           "device",
                           "List of devices attached",
                           "List of devices attached ",
                           "abc\tdevice ",
                           "abc\tdevice\r",
                           " abc\tdevice",
                           "abcdevice",
                           "192.168.1.5:5555\tdevice",
                           "emulator-5554\tdevice",
                           "abc\trecovery",
                           "abc\tauthorizing",
                           "abc\tno permissions",
                           "abc\tDevice",
                           "abc\tdevices",
                           "abc\tdevice product:x",
                           "????????????\tno permissions",
                           "(no serial number)\tdevice",
                           "adb-X-y._adb-tls-connect._tcp\tdevice",
                           "\xe6\xb7\xbb\tdevice",
                           "* daemon started successfully"}) {
    EXPECT_EQ(Matched(line), "none") << line;
  }
}

TEST(DeviceLineTest, IsTheExpressionForAnyBytes) {
  const std::regex expression("^([a-zA-Z0-9]+)\\s+(\\b(device|offline|unauthorized)\\b)$");
  const std::string pieces[] = {"A",       "z9",
                                "0",       "-",
                                ".",       ":",
                                "_",       " ",
                                "\t",      "\n",
                                "\r",      "\v",
                                "\f",      "\x1c",
                                "\x85",    "\xa0",
                                "\xff",    "device",
                                "offline", "unauthorized",
                                "dev",     std::string(1, '\0')};
  std::mt19937 random(1);
  int matches = 0;
  for (int i = 0; i < 300'000; ++i) {
    std::string line;
    for (std::size_t n = random() % 6; n > 0; --n) line += pieces[random() % std::size(pieces)];
    std::smatch groups;
    const std::string expected =
        std::regex_match(line, groups, expression) ? groups[1].str() + "|" + groups[2].str() : "none";
    matches += expected != "none";
    ASSERT_EQ(Matched(line), expected) << line;
  }
  EXPECT_GT(matches, 1000);
}

TEST(DeviceLineTest, ALineOfAMillionCharacters) {
  const std::string serial(1'000'000, 'S');
  EXPECT_EQ(Matched(serial + "\tdevice"), serial + "|device");
}

}  // namespace
}  // namespace darokleim::sdk
