#include "src/core/string_helper.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include "tests/support/temporary_directory.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using Text = const std::string&;
static_assert(
    std::is_same_v<decltype(StringHelper::StringSplit), long(std::vector<std::string>&, Text, Text)>);
static_assert(
    std::is_same_v<decltype(StringHelper::StringReplace), long(std::string&, std::string, std::string)>);
static_assert(std::is_same_v<decltype(StringHelper::StringTrimLeft), long(std::string&, char)>);
static_assert(std::is_same_v<decltype(StringHelper::StringTrimRight), long(std::string&, char)>);
static_assert(std::is_same_v<decltype(StringHelper::StorageToNumber), unsigned long long(Text)>);
static_assert(std::is_same_v<decltype(replace), void(std::string&, Text, Text)>);

std::vector<std::string> Split(const std::string& text, const std::string& separator) {
  std::vector<std::string> pieces;
  const long count = StringHelper::StringSplit(pieces, text, separator);
  EXPECT_EQ(count, static_cast<long>(pieces.size()));
  return pieces;
}

TEST(StringSplitTest, DropsEmptyPieces) {
  EXPECT_THAT(Split("a\n\nb\n", "\n"), ElementsAre("a", "b"));
  EXPECT_THAT(Split("  a   b ", " "), ElementsAre("a", "b"));
  EXPECT_THAT(Split("\n\n", "\n"), IsEmpty());
}

TEST(StringSplitTest, TheSeparatorIsAWholeText) {
  EXPECT_THAT(Split("a,b, c,d", ", "), ElementsAre("a,b", "c,d"));
  EXPECT_THAT(Split("a\nb\r\nc\rd", "\r\n"), ElementsAre("a\nb", "c\rd"));
  EXPECT_THAT(Split("aaa", "aa"), ElementsAre("a"));
}

TEST(StringSplitTest, NothingComesOfAnEmptyTextOrSeparator) {
  EXPECT_THAT(Split("", "\n"), IsEmpty());
  EXPECT_THAT(Split("abc", ""), IsEmpty());
}

TEST(StringSplitTest, WithoutASeparatorInItTheTextIsOnePiece) {
  EXPECT_THAT(Split("abc", "-"), ElementsAre("abc"));
}

TEST(StringSplitTest, AppendsAndCountsItsOwn) {
  std::vector<std::string> pieces = {"before"};
  EXPECT_EQ(StringHelper::StringSplit(pieces, "a b", " "), 2);
  EXPECT_THAT(pieces, ElementsAre("before", "a", "b"));
}

TEST(StringSplitTest, KeepsZeroBytes) {
  using namespace std::string_literals;
  EXPECT_THAT(Split("a\0b\nc"s, "\n"), ElementsAre("a\0b"s, "c"));
}

std::string Replaced(std::string text, const std::string& from, const std::string& to) {
  const long length = StringHelper::StringReplace(text, from, to);
  EXPECT_EQ(length, static_cast<long>(text.size()));
  return text;
}

TEST(StringReplaceTest, ReplacesEachOccurrence) {
  EXPECT_EQ(Replaced("a\r\nb\r\n", "\r\n", "\n"), "a\nb\n");
  EXPECT_EQ(Replaced("aXbXXc", "X", "--"), "a--b----c");
  EXPECT_EQ(Replaced("XX", "X", ""), "");
}

TEST(StringReplaceTest, NothingToDo) {
  EXPECT_EQ(Replaced("", "a", "b"), "");
  EXPECT_EQ(Replaced("abc", "", "b"), "abc");
  EXPECT_EQ(Replaced("abc", "d", "b"), "abc");
}

TEST(StringReplaceTest, ContinuesAtTheReplacementNotAfterIt) {
  EXPECT_EQ(Replaced("abb", "ab", "a"), "a") << "the replacement and the b after it match again";
  EXPECT_EQ(Replaced("aabb", "ab", ""), "ab") << "but nothing before it is looked at again";
  EXPECT_EQ(Replaced("xabccx", "abc", "xab"), "xxxabx");
  std::string usual = "abb";
  replace(usual, "ab", "a");
  EXPECT_EQ(usual, "ab");
}

// The reference for StringReplace, in quadratic time.
std::string PlainlyReplaced(std::string text, const std::string& from, const std::string& to) {
  std::size_t at = 0;
  while (!text.empty() && !from.empty() && (at = text.find(from, at)) != std::string::npos) {
    text.replace(at, from.size(), to);
  }
  return text;
}

TEST(StringReplaceTest, IsThePlainFormOnRandomTexts) {
  std::mt19937 random(1);
  const auto word = [&](std::size_t longest) {
    std::string text(random() % (longest + 1), 'a');
    for (char& c : text) c = static_cast<char>('a' + random() % 3);
    return text;
  };
  int compared = 0;
  for (int i = 0; i < 200'000; ++i) {
    const std::string text = word(12);
    const std::string from = word(3);
    const std::string to = word(3);
    if (to.find(from) != std::string::npos) continue;  // does not end
    ++compared;
    ASSERT_EQ(Replaced(text, from, to), PlainlyReplaced(text, from, to)) << text << " " << from << " " << to;
  }
  EXPECT_GT(compared, 100'000);
}

TEST(StringReplaceTest, AMillionReplacementsAreQuick) {
  std::string text;
  for (int i = 0; i < 1'000'000; ++i) text += "line\r\n";
  EXPECT_EQ(StringHelper::StringReplace(text, "\r\n", "\n"), 5'000'000);
}

TEST(ReplaceTest, ContinuesAfterTheReplacement) {
  std::string text = "aa\\ b\\ ";
  replace(text, "\\ ", " ");
  EXPECT_EQ(text, "aa b ");
  text = "aaa";
  replace(text, "a", "aa");
  EXPECT_EQ(text, "aaaaaa");
  text = "abc";
  replace(text, "", "x");
  EXPECT_EQ(text, "abc");
  replace(text, "a", "x");
  EXPECT_EQ(text, "xbc");
  text = "abc";
  replace(text, "abc", "");
  EXPECT_EQ(text, "");
  replace(text, "a", "b");
  EXPECT_EQ(text, "");
}

TEST(StringTrimTest, RemovesTheRunAtOneEnd) {
  std::string text = "\n\na\nb\n";
  EXPECT_EQ(StringHelper::StringTrimLeft(text, '\n'), 4);
  EXPECT_EQ(text, "a\nb\n");
  EXPECT_EQ(StringHelper::StringTrimRight(text, '\n'), 3);
  EXPECT_EQ(text, "a\nb");
  EXPECT_EQ(StringHelper::StringTrimRight(text, 'x'), 3);
  EXPECT_EQ(StringHelper::StringTrimLeft(text, 'x'), 3);
}

TEST(StringTrimTest, ATextOfNothingElseBecomesEmpty) {
  std::string text = "xxx";
  EXPECT_EQ(StringHelper::StringTrimLeft(text, 'x'), 0);
  EXPECT_EQ(text, "");
  EXPECT_EQ(StringHelper::StringTrimLeft(text, 'x'), 0);
  EXPECT_EQ(StringHelper::StringTrimRight(text, 'x'), 0);
  text = "xxx";
  EXPECT_EQ(StringHelper::StringTrimRight(text, 'x'), 0);
  EXPECT_EQ(text, "");
}

TEST(StorageToNumberTest, ReadsUnits) {
  EXPECT_EQ(StringHelper::StorageToNumber("1.5G"), 1610612736ULL);
  EXPECT_EQ(StringHelper::StorageToNumber("512M"), 536870912ULL);
  EXPECT_EQ(StringHelper::StorageToNumber("100"), 102400ULL);
  EXPECT_EQ(StringHelper::StorageToNumber("2.5K"), 2560ULL);
  EXPECT_EQ(StringHelper::StorageToNumber("2K"), 2048ULL);
  EXPECT_EQ(StringHelper::StorageToNumber("3G"), 3221225472ULL);
}

TEST(StorageToNumberTest, AUnitCountsAtAnyPosition) {
  EXPECT_EQ(StringHelper::StorageToNumber("1MG"), 1073741824ULL) << "G before M";
  EXPECT_EQ(StringHelper::StorageToNumber("7 of GB"), 7516192768ULL);
  EXPECT_EQ(StringHelper::StorageToNumber("7T"), 7168ULL) << "no terabytes";
  EXPECT_EQ(StringHelper::StorageToNumber("7g"), 7168ULL) << "case matters";
}

TEST(StorageToNumberTest, TruncatesTowardZero) {
  EXPECT_EQ(StringHelper::StorageToNumber("0.0019"), 1ULL);
}

TEST(StorageToNumberTest, WithoutALeadingNumberIsZero) {
  for (const char* text : {"", "G", "none", ".", "x1.5G", "inf.", "nan.", "-", "Size."}) {
    EXPECT_EQ(StringHelper::StorageToNumber(text), 0ULL) << text;
  }
  EXPECT_EQ(StringHelper::StorageToNumber("0x1.8G"), 0ULL) << "decimal only";
}

TEST(StorageToNumberTest, ABrokenMountWithANegativeFractionHasNoBytes) {
  EXPECT_EQ(StringHelper::StorageToNumber("-1.0K"), 0ULL);
}

TEST(StorageToNumberTest, StaysInRange) {
  EXPECT_EQ(StringHelper::StorageToNumber(std::string(400, '9') + ".5G"),
            std::numeric_limits<unsigned long long>::max());
  EXPECT_EQ(StringHelper::StorageToNumber("9007199254740993"), 9007199254740993ULL * 1024);
  StringHelper::StorageToNumber(std::string(400, '9'));  // saturates, then wraps: any value, no fault
}

// A host whose locale writes fractions with a comma. Where the system has no such locale, one is made.
class DecimalCommaTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!HasComma()) MakeLocale();
    if (IsSkipped() || HasFatalFailure()) return;
    ASSERT_TRUE(HasComma()) << "no locale with a decimal comma";
    ASSERT_EQ(std::strtod("1.5", nullptr), 1.0) << "the locale does not work";
  }
  void TearDown() override {
    std::setlocale(LC_ALL, "C");
    unsetenv("LOCPATH");
  }

 private:
  static constexpr char kName[] = "de_DE.UTF-8";

  static bool HasComma() {
    return std::setlocale(LC_ALL, kName) && std::string(std::localeconv()->decimal_point) == ",";
  }
  void MakeLocale() {
    if (std::system("command -v localedef >/dev/null") != 0) GTEST_SKIP() << "there is no localedef";
    const std::string command = "localedef -i de_DE -f UTF-8 '" + locales_.File(kName) + "' 2>&1";
    ASSERT_EQ(std::system(command.c_str()), 0) << "scripts/setup installs what localedef reads";
    setenv("LOCPATH", locales_.path().c_str(), 1);
  }

  darokleim::test::TemporaryDirectory locales_;
};

TEST_F(DecimalCommaTest, SizesHaveAPointAllTheSame) {
  EXPECT_EQ(StringHelper::StorageToNumber("1.5G"), 1610612736ULL);
  EXPECT_EQ(StringHelper::StorageToNumber("2.5K"), 2560ULL);
  EXPECT_EQ(StringHelper::StorageToNumber("1,5G"), 1073741824ULL) << "a comma ends the number";
}

}  // namespace
