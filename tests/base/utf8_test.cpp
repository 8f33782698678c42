#include "base/utf8.h"

#include <gtest/gtest.h>

#include <string>

namespace darokleim::base {
namespace {

TEST(Utf8Character, HasItsLength) {
  EXPECT_EQ(LengthOfUtf8Character("ab"), 1u);
  EXPECT_EQ(LengthOfUtf8Character(std::string_view("\0", 1)), 1u);
  EXPECT_EQ(LengthOfUtf8Character("\xc2\x80"), 2u);
  EXPECT_EQ(LengthOfUtf8Character("\xdf\xbf!"), 2u);
  EXPECT_EQ(LengthOfUtf8Character("\xe0\xa0\x80"), 3u);
  EXPECT_EQ(LengthOfUtf8Character("\xed\x9f\xbf"), 3u);
  EXPECT_EQ(LengthOfUtf8Character("\xf0\x90\x80\x80"), 4u);
  EXPECT_EQ(LengthOfUtf8Character("\xf4\x8f\xbf\xbf"), 4u);
}

TEST(Utf8Character, IsNotIncompleteNorOutOfRange) {
  for (const char* text :
       {"", "\x80", "\xbf", "\xc0\x80", "\xc1\xbf", "\xc2", "\xc2 ", "\xe0\x9f\xbf", "\xe4\xbd", "\xe4\xbd ",
        "\xed\xa0\x80", "\xf0\x8f\xbf\xbf", "\xf4\x90\x80\x80", "\xf5\x80\x80\x80", "\xff"})
    EXPECT_EQ(LengthOfUtf8Character(text), 0u) << testing::PrintToString(std::string(text));
}

TEST(CutPositionInUtf8, IsAtMostTheLimitAndBetweenCharacters) {
  const std::string text = "a\xc3\x9f\xe4\xbd\xa0\xf0\x9f\x98\x80";
  const std::size_t positions[] = {0, 1, 1, 3, 3, 3, 6, 6, 6, 6, 10, 10};
  for (std::size_t limit = 0; limit < std::size(positions); ++limit)
    EXPECT_EQ(CutPositionInUtf8(text, limit), positions[limit]) << limit;
}

TEST(CutPositionInUtf8, IsTheLimitAmongBytesThatAreNotUtf8) {
  for (std::size_t limit = 0; limit <= 4; ++limit)
    EXPECT_EQ(CutPositionInUtf8("\xff\x80\x80\x80", limit), limit);
}

}  // namespace
}  // namespace darokleim::base
