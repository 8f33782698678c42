#include "src/core/text.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>
#include <string>

namespace darokleim::sdk {
namespace {

TEST(LeadingIntegerTest, IsAtoll) {
  std::mt19937 random(1);
  const std::string alphabet = " \t\n\v\f\r+-0123456789x.";
  for (int i = 0; i < 200'000; ++i) {
    std::string text(random() % 8, ' ');
    for (char& c : text) c = alphabet[random() % alphabet.size()];
    ASSERT_EQ(LeadingInteger(text), std::atoll(text.c_str())) << text;
  }
}

TEST(LeadingIntegerTest, IsAtollAtTheEndsOfItsRange) {
  for (const std::string text :
       {"9223372036854775806", "9223372036854775807", "9223372036854775808", "92233720368547758070",
        "-9223372036854775807", "-9223372036854775808", "-9223372036854775809", "18446744073709551616",
        "00000000000000000000000000000000000000000000000000000007"}) {
    EXPECT_EQ(LeadingInteger(text), std::atoll(text.c_str())) << text;
  }
  const std::string forty(40, '9');
  EXPECT_EQ(LeadingInteger(forty), std::atoll(forty.c_str()));
  EXPECT_EQ(LeadingInteger("-" + forty), std::atoll(("-" + forty).c_str()));
}

TEST(LeadingIntegerTest, NeedsNoTerminatingZero) {
  const char digits[] = {'1', '2', '3'};
  EXPECT_EQ(LeadingInteger({digits, 2}), 12);
  EXPECT_EQ(LeadingInteger({digits, 0}), 0);
  EXPECT_EQ(LeadingInteger({"1\0002", 3}), 1);
}

}  // namespace
}  // namespace darokleim::sdk
