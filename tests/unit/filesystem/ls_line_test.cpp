#include "src/filesystem/ls_line.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "tests/support/plain_listing.h"
#include "tests/support/sanitizers.h"

namespace darokleim::test {
namespace {

using namespace std::string_literals;

// size|time|name
std::string Matched(std::string_view line, sdk::LsLineMatcher matcher = {}) {
  const auto match = matcher.Match(line);
  if (!match) return "none";
  return std::string(match->size).append("|").append(match->time).append("|").append(match->name);
}

TEST(LsLineTest, WithAndWithoutLinkCount) {
  EXPECT_EQ(Matched("-rw-rw---- 1 root sdcard_rw 1234 2020-01-02 03:04 a.txt"),
            "1234|2020-01-02 03:04|a.txt");
  EXPECT_EQ(Matched("-rw-rw---- root     sdcard_rw     1234 2020-01-02 03:04 a.txt"),
            "1234|2020-01-02 03:04|a.txt");
  EXPECT_EQ(Matched("-rw-rw---- 12 0 1015 1234 2020-01-02 03:04 a.txt"), "1234|2020-01-02 03:04|a.txt");
  EXPECT_EQ(Matched("-rw-rw---- 0 1015 1234 2020-01-02 03:04 a.txt"), "1234|2020-01-02 03:04|a.txt")
      << "the owner is a number and not a link count";
}

TEST(LsLineTest, TheNameAndItsSpaces) {
  const std::string line = "-rw-rw---- 1 root root 0 2020-01-02 03:04";
  EXPECT_EQ(Matched(line + " a b  c "), "0|2020-01-02 03:04|a b  c ")
      << "spaces after the name are part of it";
  EXPECT_EQ(Matched(line + " \t a"), "0|2020-01-02 03:04|a") << "white space before it is not";
  EXPECT_EQ(Matched(line + " a\\ b"), "0|2020-01-02 03:04|a\\ b");
  EXPECT_EQ(Matched(line + " "), "0|2020-01-02 03:04|") << "an empty one matches";
  EXPECT_EQ(Matched(line), "none");
  EXPECT_EQ(Matched(line + " a\0b\xff"s), "0|2020-01-02 03:04|a\0b\xff"s);
  EXPECT_EQ(Matched(line + "a"), "none");
}

TEST(LsLineTest, ALineBreakInsideEndsTheName) {
  const std::string line = "-rw-rw---- 1 root root 0 2020-01-02 03:04 ";
  EXPECT_EQ(Matched(line + "a \r"), "0|2020-01-02 03:04|a ");
  EXPECT_EQ(Matched(line + "a\n \t\r"), "0|2020-01-02 03:04|a");
  EXPECT_EQ(Matched(line + "a\rb"), "none");
  EXPECT_EQ(Matched(line + "a\n b"), "none");
  EXPECT_EQ(Matched(line + "\r\n a"), "0|2020-01-02 03:04|a")
      << "a line break before the name is white space";
  EXPECT_EQ(Matched(line + "\r\n "), "0|2020-01-02 03:04|");
}

TEST(LsLineTest, ExactlyOneSpaceBetweenSizeDateAndTime) {
  EXPECT_EQ(Matched("-rwxrwxrwx 1 r r 5\t2020-01-02\v03:04\fa"), "5|2020-01-02\v03:04|a");
  EXPECT_EQ(Matched("-rwxrwxrwx 1 r r 5  2020-01-02 03:04 a"), "none");
  EXPECT_EQ(Matched("-rwxrwxrwx 1 r r 5 2020-01-02  03:04 a"), "none");
}

TEST(LsLineTest, HoursAndMinutesOfOneOrTwoDigits) {
  EXPECT_EQ(Matched("-rwxrwxrwx 1 r r 5 2020-01-02 3:4 a"), "5|2020-01-02 3:4|a");
  EXPECT_EQ(Matched("-rwxrwxrwx 1 r r 5 2020-01-02 03:04:05 a"), "none");
  EXPECT_EQ(Matched("-rwxrwxrwx 1 r r 5 2020-01-02 003:04 a"), "none");
  EXPECT_EQ(Matched("-rwxrwxrwx 1 r r 5 2020-01-02 03:004 a"), "none");
  EXPECT_EQ(Matched("-rwxrwxrwx 1 r r 5 2020-01-02 03: a"), "none");
  EXPECT_EQ(Matched("-rwxrwxrwx 1 r r 5 99-01-02 03:04 a"), "none");
}

TEST(LsLineTest, EverythingElseIsNotARegularFile) {
  for (const char* line :
       {"", "-", "total 12", "drwxrwx--x 2 root root 4096 2020-01-02 03:04 a",
        "lrwxrwxrwx 1 root root 4 2020-01-02 03:04 a -> b", " -rw-rw---- 1 root root 1 2020-01-02 03:04 a",
        "-rwsr-sr-x 1 root root 1 2020-01-02 03:04 a", "-rw-rw---T 1 root root 1 2020-01-02 03:04 a",
        "-rw-rw----+ 1 root root 1 2020-01-02 03:04 a", "-rw-rw--- 1 root root 1 2020-01-02 03:04 a",
        "-rw-rw----", "-rw-rw---- ", "-rw-rw---- 1 root root 2020-01-02 03:04 a",
        "-rw-rw---- 1 root 1 root 1 2020-01-02 03:04 a", "-rw-rw---- root 1 2020-01-02 03:04 a",
        "-rw-rw---- 1 root root -1 2020-01-02 03:04 a", "-rw-rw---- 1 root root 1K 2020-01-02 03:04 a",
        "-rw-rw---- 1 root root 1 Jan  2 03:04 a", "-rw-rw---- 1 root root 1 2020-01-02 a"}) {
    EXPECT_EQ(Matched(line), "none") << line;
  }
}

TEST(LsLineTest, EveryCutOfALine) {
  const std::string line = "-rw-rw---- 1 root root 1 2020-01-02 03:04 a";
  for (std::size_t length = 0; length < line.size() - 1; ++length) {
    EXPECT_EQ(Matched(line.substr(0, length)), "none") << length;
  }
  EXPECT_EQ(Matched(line.substr(0, line.size() - 1)), "1|2020-01-02 03:04|");
}

TEST(LsLineTest, NeedsNoStackForLongLines) {
  constexpr std::size_t kMillion = 1'000'000;
  const std::string digits(kMillion, '7'), name(kMillion, 'n'), spaces(kMillion, ' ');
  EXPECT_EQ(Matched("-rw-rw---- 1 r r " + digits + " 2020-01-02 03:04 " + name),
            digits + "|2020-01-02 03:04|" + name);
  EXPECT_EQ(Matched("-rw-rw----" + spaces + digits + spaces + name + spaces + name + " 1 2020-01-02 03:04 a"),
            "1|2020-01-02 03:04|a");
  EXPECT_EQ(Matched("-rw-rw---- 1 r r 1 2020-01-02 03:04" + spaces + "\n" + spaces), "1|2020-01-02 03:04|");
  EXPECT_EQ(Matched("-rw-rw---- 1 r r 1 2020-01-02 03:04" + spaces + name + "\n" + spaces + "x"), "none");
}

class AgainstRegex : public ::testing::Test {
 protected:
  void Compare(const std::string& line) {
    std::smatch plain;
    const bool matches = PlainMatchLsLine(line, plain);
    matched_ += matches;
    const std::string expected =
        matches ? plain[1].str() + "|" + plain[2].str() + "|" + plain[3].str() : "none";
    ASSERT_EQ(Matched(line), expected) << ::testing::PrintToString(line);
    // After each of a few other lines.
    for (const sdk::LsLineMatcher& matcher : used_) {
      ASSERT_EQ(Matched(line, matcher), expected) << ::testing::PrintToString(line);
    }
  }

  std::string OneOf(std::initializer_list<std::string> choices) {
    return choices.begin()[random_() % choices.size()];
  }

  // One of good most times, else one of all.
  std::string Mostly(std::initializer_list<std::string> good, std::initializer_list<std::string> all) {
    return random_() % 24 > 0 ? OneOf(good) : OneOf(all);
  }

  std::string Blanks() { return Mostly({" ", "  ", "\t", " \v\f", "\r", "\n"}, {"", "\0"s, "\xa0", "\x85"}); }

  static sdk::LsLineMatcher After(std::string_view line) {
    sdk::LsLineMatcher matcher;
    EXPECT_TRUE(matcher.Match(line)) << line;
    return matcher;
  }

  const std::vector<sdk::LsLineMatcher> used_ = {
      After("-rw-rw---- 1 root sdcard_rw 1 2020-01-02 03:04 a"),
      After("-rw-rw---- root sdcard_rw 1 2020-01-02 03:04 a"),
      After("-rw-rw---- 1 0 9  5 2020-01-02 03:04 a"), After("-rw-rw---- 1 0 9 2020-01-02 03:04 a"),
      After("-rwxrwxrwx  123 7777\t2020-01-02 0\t0000-99-99 3:4 a")};
  std::mt19937 random_{1};
  int matched_ = 0;
};

TEST_F(AgainstRegex, LinesOfRelevantPieces) {
  constexpr int kLines = InputsToCompare(300'000);
  for (int i = 0; i < kLines; ++i) {
    std::string line =
        Mostly({"-rw-rw----", "-rwxrwxrwx", "----------"}, {"-rwsr-xr-x", "-rw-", "drwxr-xr-x", ""});
    line += Blanks();
    if (random_() % 2 > 0) line += Mostly({"1", "123"}, {"", "a1", "1a"}) + Blanks();
    line += Mostly({"root", "0", "7777", "\xff\0"s}, {"", "a b"}) + Blanks();
    line += Mostly({"sdcard_rw", "9", "2020-01-02"}, {"", "1 2"}) + Blanks();
    line += Mostly({"0", "1234567890123456789012345678901234567890"}, {"", "-1", "1,2"});
    line += Mostly({" ", "\t", "\r"}, {"", "  ", "x"});
    line += Mostly({"2020-01-02", "0000-99-99"}, {"20-01-02", "02020-01-02", "2020-1-02", "2020-01-02T"});
    line += Mostly({" ", "\n"}, {"", "  "});
    line += Mostly({"03:04", "3:4", "99:9"}, {":", "003:04", "03:004", "3:", "03:04:05"}) + Blanks();
    for (auto left = random_() % 5; left > 0; --left) {
      line += OneOf({"a", "\\ ", " ", "  ", "\xe6\xb7\xbb", "\xff", "\0"s, "\t", "\v", "b.txt"});
    }
    if (random_() % 4 == 0) line += OneOf({"\r", "\n", "\r \t\n", "\r\r", "\nx", "\r x", "\f", "\x85"});
    ASSERT_NO_FATAL_FAILURE(Compare(line));
  }
  EXPECT_GT(matched_, kLines / 3);
  EXPECT_LT(matched_, kLines / 6 * 5);
}

TEST_F(AgainstRegex, LinesWithAByteChanged) {
  const std::string lines[] = {"-rw-rw---- 1 root sdcard_rw 1234 2020-01-02 03:04 my\\ file.txt",
                               "-rw-r--r-- root     root          564 1969-12-31 16:00 default.prop "};
  for (const std::string& line : lines) {
    for (std::size_t at = 0; at < line.size(); ++at) {
      for (int byte = 0; byte < 256; ++byte) {
        std::string changed = line;
        changed[at] = static_cast<char>(byte);
        ASSERT_NO_FATAL_FAILURE(Compare(changed));
        changed.insert(at, 1, line[at]);
        ASSERT_NO_FATAL_FAILURE(Compare(changed));
      }
    }
  }
  EXPECT_GT(matched_, 20'000);
}

}  // namespace
}  // namespace darokleim::test
