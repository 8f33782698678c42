#include "src/device/ip_output.h"

#include <gtest/gtest.h>

#include <random>
#include <regex>
#include <string>

namespace darokleim::sdk {
namespace {

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
  EXPECT_EQ(Found("inet    10.0.0.7/8 brd"), "10.0.0.7/8") << "runs of blanks are one";
  EXPECT_EQ(Found("1.1.1.1/1 2.2.2.2/2 3.3.3.3/3"), "2.2.2.2/2");
}

TEST(FindAddressTest, NoOtherWordCounts) {
  EXPECT_EQ(Found(""), "none");
  EXPECT_EQ(Found("inet"), "none");
  EXPECT_EQ(Found("          "), "none");
  EXPECT_EQ(Found("10.0.0.7/8"), "none");
  EXPECT_EQ(Found("inet 10.0.0.7 brd"), "none") << "no prefix length";
  EXPECT_EQ(Found("inet 10.0.0.7/8\n inet 10.0.0.8/8 x"), "none") << "a line end is no blank";
  EXPECT_EQ(Found("inet 10.0.0.7/8\r\n"), "none");
  EXPECT_EQ(Found("inet\t10.0.0.7/8 brd"), "none");
  EXPECT_EQ(Found("inet6 fe80::1/64 scope link\n    inet 10.0.0.7/8 brd x"), "none");
}

TEST(FindAddressTest, BothLineEnds) {
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

}  // namespace
}  // namespace darokleim::sdk
