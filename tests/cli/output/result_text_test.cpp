#include "tools/cli/output/result_text.h"

#include <darokleim.h>
#include <gmock/gmock.h>

#include <set>
#include <string>

namespace darokleim::cli {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

// The codes that the library returns.
const std::set<int> kCodes = {0,  1,  3,  4,  6,  8,  24, 25, 26, 27, 28, 29, 30, 31, 32,
                              33, 34, 35, 36, 37, 38, 39, 40, 41, 42, 43, 44, 45, 46, 47};

TEST(DescribeResult, KnowsEveryCodeOfTheLibraryAndNoOther) {
  for (int code = -1; code < 1000; ++code) {
    const std::string text = DescribeResult(code);
    if (kCodes.count(code) != 0) {
      EXPECT_THAT(text, AllOf(StartsWith("ADB_RESULT_"), HasSubstr(" (" + std::to_string(code) + "): ")));
    } else {
      EXPECT_THAT(text, StartsWith("unknown result (" + std::to_string(code) + "): "));
    }
  }
}

TEST(DescribeResult, NamesTheCodesAsTheHeaderDoes) {
  EXPECT_THAT(DescribeResult(ADB_RESULT_OK), StartsWith("ADB_RESULT_OK (0)"));
  EXPECT_THAT(
      DescribeResult(ADB_RESULT_CANNOT_CONNECT_DAEMON),
      StartsWith("ADB_RESULT_CANNOT_CONNECT_DAEMON (27): adb could not reach its server. Start it with "));
  EXPECT_THAT(DescribeResult(ADB_RESULT_INSTALL_CANCELED_BY_USER),
              StartsWith("ADB_RESULT_INSTALL_CANCELED_BY_USER (38)"));
  EXPECT_THAT(DescribeResult(ADB_RESULT_NO_SPACE_LEFT), StartsWith("ADB_RESULT_NO_SPACE_LEFT (47)"));
}

TEST(DescribeResult, IsAlwaysWholeSentences) {
  for (int code = 0; code < 4000; ++code) {
    const std::string text = DescribeResult(code);
    EXPECT_EQ(text.back(), '.') << text;
    EXPECT_EQ(text.find("  "), std::string::npos) << text;
  }
}

TEST(DescribeResult, KnowsTheStatusesOfTheChannel) {
  EXPECT_THAT(DescribeResult(1001), StartsWith("adb exit status 1 (1001): "));
  EXPECT_THAT(DescribeResult(1255), StartsWith("adb exit status 255 (1255): "));
  EXPECT_THAT(DescribeResult(2011),
              AllOf(StartsWith("adb signal 11 (2011): "), HasSubstr("Segmentation fault")));
  EXPECT_THAT(DescribeResult(3001), StartsWith("channel not started (3001): "));
  EXPECT_THAT(DescribeResult(3002), StartsWith("adb cannot be started (3002): "));
  EXPECT_THAT(DescribeResult(3003), StartsWith("cancelled (3003): "));
  EXPECT_THAT(DescribeResult(3005), StartsWith("too much output (3005): "));
  EXPECT_THAT(DescribeResult(3006), StartsWith("out of resources (3006): "));
  EXPECT_THAT(DescribeResult(3999), StartsWith("unknown result (3999): "));
}

// A meaning and what to do about it: two sentences, after the name.
TEST(DescribeResult, AlwaysHasAdvice) {
  std::set<int> codes = kCodes;
  codes.erase(ADB_RESULT_OK);
  codes.insert({1001, 1255, 2011, 3001, 3002, 3003, 3004, 3005, 3006, 5000});
  for (const int code : codes) {
    const std::string text = DescribeResult(code);
    const std::string sentences = text.substr(text.find("): "));
    EXPECT_NE(sentences.find(". "), std::string::npos) << text;
  }
}

}  // namespace
}  // namespace darokleim::cli
