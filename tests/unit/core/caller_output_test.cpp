#include "src/core/caller_output.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <limits>
#include <random>
#include <stdexcept>
#include <string>

#include "darokleim.h"

namespace darokleim::test {
namespace {

using namespace sdk;
using namespace std::string_literals;

// A buffer that shows every byte that was written to it.
struct Filled {
  Filled(std::string_view text, int capacity, std::size_t most = std::string_view::npos) {
    code = FillCallerBuffer(text, bytes.data() + 1, capacity, most);
  }
  // Up to the terminating zero.
  std::string text() const { return bytes.c_str() + 1; }
  bool untouched() const { return bytes == std::string(40, '#'); }
  // Nothing before the buffer, nothing at capacity or after it.
  bool stays_within(std::size_t capacity) const {
    return bytes[0] == '#' && bytes.find_first_not_of('#', capacity + 1) == std::string::npos;
  }

  std::string bytes = std::string(40, '#');
  int code;
};

TEST(FillCallerBufferTest, AroundTheCapacity) {
  const struct {
    std::string text;
    int capacity;
    int code;
    std::string expected;
  } cases[] = {
      {"value\n", 8, ADB_RESULT_OK, "value"},
      {"value\n", 7, ADB_RESULT_OK, "value"},
      {"value\n", 6, ADB_RESULT_OK, "value"},  // as long as the buffer: the line break is lost
      {"value", 5, ADB_RESULT_OK, "valu"},     // without a line break the last character is
      {"value\n", 5, ADB_RESULT_BUFFER_TOO_SMALL, "valu"},
      {"value\n", 2, ADB_RESULT_BUFFER_TOO_SMALL, "v"},
      {"value\n", 1, ADB_RESULT_BUFFER_TOO_SMALL, ""},
      {"ab", 1, ADB_RESULT_BUFFER_TOO_SMALL, ""},
      {"a", 1, ADB_RESULT_OK, ""},
      {"", 1, ADB_RESULT_OK, ""},
      {"value\r\n", 7, ADB_RESULT_OK, "value"},
      {"value\r\n", 6, ADB_RESULT_BUFFER_TOO_SMALL, "value"},
      {"a b c", 5, ADB_RESULT_OK, "a b"},  // the cut leaves a space at the end
      {"\n", 10, ADB_RESULT_OK, ""},
      {" \t\r\n", 10, ADB_RESULT_OK, ""},
  };
  for (const auto& c : cases) {
    const Filled filled(c.text, c.capacity);
    EXPECT_EQ(filled.code, c.code) << c.text << c.capacity;
    EXPECT_EQ(filled.text(), c.expected) << c.text << c.capacity;
    EXPECT_TRUE(filled.stays_within(static_cast<std::size_t>(c.capacity))) << c.text << c.capacity;
  }
}

TEST(FillCallerBufferTest, ABufferWithoutRoomIsLeftAlone) {
  for (const int capacity : {0, -1, -1000, INT_MIN}) {
    EXPECT_TRUE(Filled("value", capacity).untouched());
    EXPECT_EQ(Filled("value", capacity).code, ADB_RESULT_BUFFER_TOO_SMALL);
    EXPECT_EQ(Filled("", capacity).code, capacity == 0 ? ADB_RESULT_OK : ADB_RESULT_BUFFER_TOO_SMALL);
  }
}

TEST(FillCallerBufferTest, OnlyTheEndIsTrimmed) {
  EXPECT_EQ(Filled(" \t a \n b \t\r\n", 40 - 1).text(), " \t a \n b");
  EXPECT_EQ(Filled("a\v\n", 10).text(), "a\v") << "the vertical tab is no ending space";
  EXPECT_EQ(Filled("a\f", 10).text(), "a\f") << "nor is the form feed";
}

TEST(FillCallerBufferTest, ZeroBytesAreCopiedAndTrimmed) {
  EXPECT_EQ(Filled("a\0b\0\0\n"s, 10).bytes.substr(1, 7), "a\0b\0\0\0\0"s);
}

TEST(FillCallerBufferTest, BytesPassUnchanged) {
  EXPECT_EQ(Filled("\xff\x80\xe6\xb7\xbb\n", 10).text(), "\xff\x80\xe6\xb7\xbb");
}

TEST(FillCallerBufferTest, NoMoreThanWanted) {
  EXPECT_EQ(Filled("12.0.5.10", 20, 8).text(), "12.0.5.1");
  EXPECT_EQ(Filled("12.0.5.10", 5, 8).text(), "12.0");
  EXPECT_EQ(Filled("12.0.5.10", 5, 8).code, ADB_RESULT_BUFFER_TOO_SMALL);
  EXPECT_EQ(Filled("12.0.5.10", 8, 3).code, ADB_RESULT_BUFFER_TOO_SMALL) << "compared by the whole text";
  EXPECT_EQ(Filled("12", 20, 8).text(), "12");
}

TEST(FillCallerBufferTest, AMillionCharacters) {
  const std::string text(1'000'000, 'x');
  std::string buffer(1'000'001, '#');
  EXPECT_EQ(FillCallerBuffer(text, buffer.data(), 1'000'001), ADB_RESULT_OK);
  EXPECT_EQ(buffer.c_str(), text);
  EXPECT_EQ(FillCallerBuffer(std::string(1'000'000, ' '), buffer.data(), 1'000'001), ADB_RESULT_OK);
  EXPECT_EQ(buffer, std::string(1'000'001, '\0'));
}

TEST(RemoveEndingSpaceTest, ReturnsTheLastByteKept) {
  std::string text = "ab \t\n\r ";
  EXPECT_EQ(RemoveEndingSpace(text.data(), 7), &text[1]);
  EXPECT_EQ(text, "ab\0\0\0\0\0"s);
}

TEST(RemoveEndingSpaceTest, NothingToRemove) {
  std::string text = "a b";
  EXPECT_EQ(RemoveEndingSpace(text.data(), 3), &text[2]);
  EXPECT_EQ(text, "a b");
}

TEST(RemoveEndingSpaceTest, LooksAtTheGivenLengthOnly) {
  std::string text = "ab  cd  ";
  EXPECT_EQ(RemoveEndingSpace(text.data(), 4), &text[1]);
  EXPECT_EQ(text, "ab\0\0cd  "s);
}

TEST(RemoveEndingSpaceTest, ATextOfSpacesIsClearedCompletely) {
  std::string text = "#    ";
  EXPECT_EQ(RemoveEndingSpace(&text[1], 4), &text[0]) << "one before its start";
  EXPECT_EQ(text, "#\0\0\0\0"s);
  EXPECT_EQ(RemoveEndingSpace(&text[1], 0), &text[0]);
}

TEST(RemoveEndingSpaceTest, TouchesNothingBeforeTheText) {
  char text[] = "  ";
  EXPECT_EQ(RemoveEndingSpace(text + 1, 1), text);
  EXPECT_EQ(text[0], ' ');
  EXPECT_EQ(text[1], '\0');
}

TEST(RemoveEndingSpaceTest, StopsAtEveryOtherByte) {
  const std::string removed = "\0\t\n\r "s;
  for (int c = 0; c < 256; ++c) {
    std::string text = {'a', static_cast<char>(c)};
    const bool goes = removed.find(static_cast<char>(c)) != std::string::npos;
    EXPECT_EQ(RemoveEndingSpace(text.data(), 2), &text[goes ? 0 : 1]) << c;
  }
}

// Compared with the rule applied byte by byte.
TEST(FillCallerBufferTest, AgreesWithTheRuleOnRandomTexts) {
  std::mt19937 random(7);
  const std::string alphabet = "ab \t\n\r\0\v"s;
  for (int i = 0; i < 20'000; ++i) {
    std::string text(random() % 12, ' ');
    for (char& c : text) c = alphabet[random() % alphabet.size()];
    const int capacity = 1 + static_cast<int>(random() % 14);
    const int length = static_cast<int>(text.size());
    std::string expected(40, '#');
    int n = length < capacity ? length : capacity - 1;
    std::copy_n(text.begin(), n, expected.begin() + 1);
    expected[static_cast<std::size_t>(n) + 1] = '\0';
    while (n > 0 && "\0\t\n\r "s.find(expected[static_cast<std::size_t>(n)]) != std::string::npos) {
      expected[static_cast<std::size_t>(n--)] = '\0';
    }
    const Filled filled(text, capacity);
    ASSERT_EQ(filled.bytes, expected);
    ASSERT_EQ(filled.code, length > capacity ? ADB_RESULT_BUFFER_TOO_SMALL : ADB_RESULT_OK);
  }
}

TEST(HandedOutTest, ABlockEndsInAZeroByte) {
  char* block = NewTerminatedBlock("text");
  EXPECT_STREQ(block, "text");
  AdbFreeResource(&block);
}

TEST(HandedOutTest, ABlockKeepsZeroBytes) {
  char* block = NewTerminatedBlock(std::string_view("a\0b", 3));
  EXPECT_EQ(std::memcmp(block, "a\0b\0", 4), 0);
  AdbFreeResource(&block);
}

TEST(HandedOutTest, ABlockOfBytesAlone) {
  char* block = NewBlock(std::string_view("a\0b", 3));
  EXPECT_EQ(std::memcmp(block, "a\0b", 3), 0);
  AdbFreeResource(&block);
  block = NewBlock("");
  EXPECT_NE(block, nullptr);
  AdbFreeResource(&block);
}

TEST(HandedOutTest, TheLengthIsThatOfTheText) {
  char* block = nullptr;
  int length = -1;
  HandOut(std::string_view("a\0b", 3), &block, &length);
  EXPECT_EQ(length, 3);
  EXPECT_EQ(std::memcmp(block, "a\0b\0", 4), 0);
  AdbFreeResource(&block);
}

TEST(HandedOutTest, MoreThanAnIntCountsIsALengthError) {
  char* block = nullptr;
  int length = -1;
  const char text[] = "never read";
  const std::string_view too_long(text, std::size_t{std::numeric_limits<int>::max()} + 1);
  EXPECT_THROW(HandOut(too_long, &block, &length), std::length_error);
  EXPECT_EQ(block, nullptr);
  EXPECT_EQ(length, -1);
}

TEST(HandedOutTest, FreeingSetsTheCallersPointerToNull) {
  char* block = NewTerminatedBlock("");
  AdbFreeResource(&block);
  EXPECT_EQ(block, nullptr);
  AdbFreeResource(&block);
  EXPECT_EQ(block, nullptr);
}

}  // namespace
}  // namespace darokleim::test
