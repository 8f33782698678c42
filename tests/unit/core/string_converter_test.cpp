#include "src/core/string_converter.h"

#include <gtest/gtest.h>

#include <clocale>
#include <random>
#include <string>

namespace {

TEST(Utf8ToWideTest, OneCharacterForEachSequence) {
  EXPECT_EQ(StringConverter::UTF8ToWide(""), L"");
  EXPECT_EQ(StringConverter::UTF8ToWide("a/b"), L"a/b");
  EXPECT_EQ(StringConverter::UTF8ToWide("\xc3\xa9"), std::wstring(1, 0xE9));
  EXPECT_EQ(StringConverter::UTF8ToWide("\xe6\xb7\xbb"), std::wstring(1, 0x6DFB));
  EXPECT_EQ(StringConverter::UTF8ToWide("\xf0\x9f\x98\x80"), std::wstring(1, 0x1F600));
  EXPECT_EQ(StringConverter::UTF8ToWide("\xf8\x88\x80\x80\x80"), std::wstring(1, 0x200000));
  EXPECT_EQ(StringConverter::UTF8ToWide("\xfd\xbf\xbf\xbf\xbf\xbf"), std::wstring(1, 0x7FFFFFFF));
}

TEST(Utf8ToWideTest, ZeroBytesAreCharacters) {
  using namespace std::string_literals;
  EXPECT_EQ(StringConverter::UTF8ToWide("a\0b"s), L"a\0b"s);
  EXPECT_EQ(StringConverter::WideToUTF8(L"a\0b"s), "a\0b"s);
}

TEST(WideToUtf8Test, TheLeastAndTheLargestOfEachLength) {
  const struct {
    wchar_t c;
    const char* text;
  } cases[] = {{0x7F, "\x7f"},
               {0x80, "\xc2\x80"},
               {0x7FF, "\xdf\xbf"},
               {0x800, "\xe0\xa0\x80"},
               {0xFFFF, "\xef\xbf\xbf"},
               {0x10000, "\xf0\x90\x80\x80"},
               {0x1FFFFF, "\xf7\xbf\xbf\xbf"},
               {0x200000, "\xf8\x88\x80\x80\x80"},
               {0x3FFFFFF, "\xfb\xbf\xbf\xbf\xbf"},
               {0x4000000, "\xfc\x84\x80\x80\x80\x80"},
               {0x7FFFFFFF, "\xfd\xbf\xbf\xbf\xbf\xbf"}};
  for (const auto& c : cases) {
    EXPECT_EQ(StringConverter::WideToUTF8(std::wstring(1, c.c)), c.text)
        << std::hex << static_cast<long>(c.c);
    EXPECT_EQ(StringConverter::UTF8ToWide(c.text), std::wstring(1, c.c)) << c.text;
  }
}

TEST(Utf8ToWideTest, ASequenceLongerThanItNeedBeIsOneCharacter) {
  const struct {
    std::string text;
    wchar_t c;
  } cases[] = {{"\xc0\x80", 0},
               {"\xc1\x81", L'A'},
               {"\xe0\x80\xaf", L'/'},
               {"\xf0\x82\x82\xac", 0x20AC},
               {"\xf8\x80\x80\x80\xaf", L'/'},
               {"\xfc\x80\x80\x80\x80\xaf", L'/'}};
  for (const auto& c : cases) {
    EXPECT_EQ(StringConverter::UTF8ToWide(c.text + "x"), std::wstring({c.c, L'x'})) << c.text;
  }
}

TEST(Utf8ToWideTest, OtherBytesComeBackAsTheyWent) {
  const auto there_and_back = [](const std::string& text) {
    return StringConverter::WideToUTF8(StringConverter::UTF8ToWide(text));
  };
  for (int first = 0; first < 256; ++first) {
    for (int second = 0; second < 256; ++second) {
      const bool longer_than_need_be = (first == 0xC0 || first == 0xC1) && (second & 0xC0) == 0x80;
      if (longer_than_need_be) continue;
      const std::string text{static_cast<char>(first), static_cast<char>(second), 'x'};
      ASSERT_EQ(there_and_back(text), text) << first << " " << second;
    }
  }
  // Bytes that begin, continue and cut sequences of every length, without overlong ones.
  const std::string alphabet = "a/\xbf\xc2\xdf\xe0\xe6\xed\xf0\xf7\xf8\xfb\xfc\xfd\xfe\xff";
  std::mt19937 random(1);
  for (int i = 0; i < 300'000; ++i) {
    std::string text(random() % 12, ' ');
    for (char& c : text) c = alphabet[random() % alphabet.size()];
    ASSERT_EQ(there_and_back(text), text);
  }
}

TEST(Utf8ToWideTest, AStrayByteIsOneCharacter) {
  EXPECT_EQ(StringConverter::UTF8ToWide("\x80").size(), 1U);
  EXPECT_EQ(StringConverter::UTF8ToWide("\xe6\xb7").size(), 2U) << "cut short";
  EXPECT_EQ(StringConverter::UTF8ToWide("\xe6\xb7/").size(), 3U) << "cut by another character";
  EXPECT_EQ(StringConverter::UTF8ToWide("\xff\xfe").size(), 2U);
}

class LocaleTest : public ::testing::Test {
 protected:
  // Linux has the first, macOS the second.
  void SetUp() override {
    ASSERT_TRUE(std::setlocale(LC_ALL, "C.UTF-8") || std::setlocale(LC_ALL, "en_US.UTF-8"));
  }
  void TearDown() override { std::setlocale(LC_ALL, "C"); }
};

TEST_F(LocaleTest, ConvertsByTheLocale) {
  EXPECT_EQ(StringConverter::AnsiToWide("\xe6\xb7\xbb\x61"),
            L"\x6DFB"
            L"a");
  EXPECT_EQ(StringConverter::WideToAnsi(L"\x6DFB"
                                        L"a"),
            "\xe6\xb7\xbb\x61");
  EXPECT_EQ(StringConverter::UTF8ToAnsi("\xe6\xb7\xbb"), "\xe6\xb7\xbb");
  EXPECT_EQ(StringConverter::AnsiToUTF8("\xe6\xb7\xbb"), "\xe6\xb7\xbb");
}

TEST_F(LocaleTest, WhatTheLocaleCannotSayIsEmpty) {
  EXPECT_EQ(StringConverter::AnsiToWide("\xff"), L"");
  EXPECT_EQ(StringConverter::UTF8ToAnsi("\xff"), "");
  std::setlocale(LC_ALL, "C");
  EXPECT_EQ(StringConverter::UTF8ToAnsi("\xe6\xb7\xbb"), "");
}

TEST_F(LocaleTest, EmptyStaysEmpty) {
  EXPECT_EQ(StringConverter::AnsiToWide(""), L"");
  EXPECT_EQ(StringConverter::WideToAnsi(L""), "");
  EXPECT_EQ(StringConverter::UTF8ToAnsi(""), "");
  EXPECT_EQ(StringConverter::AnsiToUTF8(""), "");
}

}  // namespace
