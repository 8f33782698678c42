#include "src/apps/package_output.h"

#include <gtest/gtest.h>

#include <iterator>
#include <optional>
#include <random>
#include <regex>
#include <string>

#include "tests/support/sanitizers.h"
#include "tests/unit/support/device_output.h"

namespace darokleim::sdk {
namespace {

using namespace std::string_literals;

std::string OrNone(std::optional<std::string_view> found) {
  return found ? std::string(*found) : "none";
}

TEST(PackageLineTest, ThePartAfterTheFirstColon) {
  EXPECT_EQ(OrNone(MatchPackageLine("package:com.example.app")), "com.example.app");
  EXPECT_EQ(OrNone(MatchPackageLine("package:/data/app/x/base.apk")), "/data/app/x/base.apk");
  EXPECT_EQ(OrNone(MatchPackageLine("package:/a.apk=com.a:b")), "/a.apk=com.a:b");
  EXPECT_EQ(OrNone(MatchPackageLine(":x")), "x");
  EXPECT_EQ(OrNone(MatchPackageLine("::")), ":");
  EXPECT_EQ(OrNone(MatchPackageLine("any words here:x")), "x");
}

TEST(PackageLineTest, WhiteSpaceAtTheEndIsNotPartOfIt) {
  EXPECT_EQ(OrNone(MatchPackageLine("package:com.a\r")), "com.a");
  EXPECT_EQ(OrNone(MatchPackageLine("package:com.a \t\v\f\r")), "com.a");
}

TEST(PackageLineTest, EverythingElseDoesNotMatch) {
  for (const char* line : {"", "package", "package:", "package: ", "package:\r", "package: com.a",
                           "package:com.a uid:10", "package:/data/a b.apk", "package:com.a\r b"}) {
    EXPECT_EQ(OrNone(MatchPackageLine(line)), "none") << line;
  }
}

TEST(PackageLineTest, BytesAreKept) {
  EXPECT_EQ(OrNone(MatchPackageLine("p\0:a\0b\xff\xa0\x85\r"s)), "a\0b\xff\xa0\x85"s);
}

TEST(VersionTest, TheDigitsAndDotsOfTheFirstName) {
  EXPECT_EQ(OrNone(FindVersion("    versionName=1.2.3-beta")), "1.2.3");
  EXPECT_EQ(OrNone(FindVersion("versionName=12.0.1.beta")), "12.0.1.");
  EXPECT_EQ(OrNone(FindVersion("versionName=...")), "...");
  EXPECT_EQ(OrNone(FindVersion("versionName=7\r")), "7");
  EXPECT_EQ(OrNone(FindVersion("versionName=x versionName=2 versionName=3")), "2");
  EXPECT_EQ(OrNone(FindVersion("versionName=versionName=4")), "4");
  for (const char* line :
       {"", "versionName=", "versionName=null", "versionName= 1", "versionname=1", "versionCode=1"}) {
    EXPECT_EQ(OrNone(FindVersion(line)), "none") << line;
  }
}

TEST(CurrentUserTest, TheNumberAfterTheWords) {
  EXPECT_EQ(OrNone(FindCurrentUser("Current user: 10\n")), "10");
  EXPECT_EQ(OrNone(FindCurrentUser("Users:\r\n  Current user: 0\r\n  Current user: 11")), "0");
  EXPECT_EQ(OrNone(FindCurrentUser("Current user: none\nCurrent user: 007x")), "007");
  EXPECT_EQ(OrNone(FindCurrentUser("Current user: 99999999999999999999999")), "99999999999999999999999");
  for (const char* dump : {"", "Current user: ", "Current user:10", "current user: 10", "Current user: -1"}) {
    EXPECT_EQ(OrNone(FindCurrentUser(dump)), "none") << dump;
  }
}

TEST(CurrentUserTest, NoneOfTheRealDumpsNamesOne) {
  for (const std::string& sample : test::DeviceOutputsIn("users")) {
    EXPECT_EQ(OrNone(FindCurrentUser(test::DeviceOutput(sample))), "none") << sample;
  }
}

// Random texts from pieces that make matches likely.
template <std::size_t N>
std::string RandomText(std::mt19937& random, const std::string (&pieces)[N]) {
  std::string text;
  for (std::size_t n = random() % 7; n > 0; --n) text += pieces[random() % N];
  return text;
}

// In each of many random texts find finds what is expected: a text, or "none".
template <std::size_t N, typename Find, typename Expected>
void ExpectSameInRandomTexts(unsigned seed, const std::string (&pieces)[N], Find find, Expected expected) {
  constexpr int kTexts = test::InputsToCompare(300'000);
  std::mt19937 random(seed);
  int matches = 0;
  for (int i = 0; i < kTexts; ++i) {
    const std::string text = RandomText(random, pieces);
    const std::string wanted = expected(text);
    matches += wanted != "none";
    ASSERT_EQ(OrNone(find(text)), wanted) << text;
  }
  EXPECT_GT(matches, kTexts / 30);
}

TEST(PackageLineTest, IsTheExpressionForAnyBytes) {
  const std::regex expression("^[^:]*:(\\S+)\\s*$");
  const std::string pieces[] = {"package", ":",  "com.a", "/",         "=",    " ",    "\t",
                                "\n",      "\r", "\v",    "\f",        "\x1c", "\x85", "\xa0",
                                "\xff",    "\\", "\0"s,   "package:x", "\x1f", "\x7f", "\x80"};
  ExpectSameInRandomTexts(1, pieces, MatchPackageLine, [&expression](const std::string& line) {
    std::smatch groups;
    return std::regex_match(line, groups, expression) ? groups[1].str() : "none";
  });
}

TEST(VersionTest, IsTheExpressionForAnyBytes) {
  const std::regex expression("versionName=[0-9\\.]+");
  const std::string pieces[] = {
      "versionName=", "versionName", "version", "=",  "1",  "9.",   ".",
      "\\",           " ",           "\n",      "\r", ":",  "/",    "0",
      "\xff",         "\0"s,         "null",    "v",  "\t", "\x80", "versionName=2"};
  ExpectSameInRandomTexts(2, pieces, FindVersion, [&expression](const std::string& line) {
    std::smatch groups;
    return std::regex_search(line, groups, expression) ? groups[0].str().substr(12) : "none";
  });
}

TEST(CurrentUserTest, IsTheExpressionForAnyBytes) {
  const std::regex expression("Current user: (\\d+)");
  const std::string pieces[] = {"Current user: ",
                                "Current user:",
                                "Current ",
                                "user: ",
                                "C",
                                "1",
                                "90",
                                " ",
                                "\n",
                                "\r",
                                "\xb2",
                                "/",
                                ":",
                                "\xff",
                                "\0"s,
                                "-",
                                "\t",
                                "x",
                                "\v",
                                "0",
                                "Current user: 1"};
  ExpectSameInRandomTexts(3, pieces, FindCurrentUser, [&expression](const std::string& dump) {
    std::smatch groups;
    return std::regex_search(dump, groups, expression) ? groups[1].str() : "none";
  });
}

TEST(PackageOutputTest, LinesOfAMillionCharacters) {
  const std::string a_million(1'000'000, '1');
  EXPECT_EQ(OrNone(MatchPackageLine(a_million + ":" + a_million + std::string(1'000'000, ' '))), a_million);
  EXPECT_EQ(OrNone(FindVersion(a_million + "versionName=" + a_million)), a_million);
  EXPECT_EQ(OrNone(FindCurrentUser(a_million + "Current user: " + a_million)), a_million);
}

TEST(PackageOutputTest, ManyMarksWithoutAValueTakeNoLongerThanTheirLength) {
  std::string marks;
  for (int i = 0; i < 1'000'000; ++i) marks += "versionName=Current user: ";
  EXPECT_EQ(OrNone(FindVersion(marks)), "none");
  EXPECT_EQ(OrNone(FindCurrentUser(marks)), "none");
}

}  // namespace
}  // namespace darokleim::sdk
