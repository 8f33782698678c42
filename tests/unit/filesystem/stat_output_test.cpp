#include "src/filesystem/stat_output.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <random>
#include <regex>
#include <string>
#include <vector>

#include "src/core/string_helper.h"

namespace darokleim::sdk {
namespace {

TEST(StatOutputTest, TheSizeOfALegacyPhone) {
  EXPECT_EQ(
      SizeInStatOutput("  File: `/sdcard/a.txt'\r\n  Size: 1234\t Blocks: 8\t IO Blocks: 512 regular file\r\n"
                       "Device: 1fh/31d\t Inode: 12\t Links: 1\r\n"),
      1234U);
}

TEST(StatOutputTest, BareLineFeedsMakeOneLineThatDoesNotMatch) {
  EXPECT_EQ(SizeInStatOutput("  File: /sdcard/a.txt\n  Size: 1234\t Blocks: 8\n"), std::nullopt);
  EXPECT_EQ(SizeInStatOutput("  Size: 1234\t Blocks: 8"), 1234U) << "a single line without an end";
}

TEST(StatOutputTest, TheFirstMatchingLineCounts) {
  EXPECT_EQ(SizeInStatOutput("Size: 1\r\n Size:2\r\n Size: 3\r\n Size: 4\r\n"), 3U);
}

TEST(StatOutputTest, NumbersStayInRange) {
  EXPECT_EQ(SizeInStatOutput(" Size: 9223372036854775807"), 9223372036854775807U);
  EXPECT_EQ(SizeInStatOutput(" Size: " + std::string(40, '9')), 9223372036854775807U);
  EXPECT_EQ(SizeInStatOutput(" Size: " + std::string(1'000'000, '9')), 9223372036854775807U);
}

std::optional<unsigned long long> Plainly(const std::string& output) {
  static const std::regex expression("^\\s+Size:\\s+(\\d+)(.*)$");
  std::vector<std::string> lines;
  StringHelper::StringSplit(lines, output, "\r\n");
  for (const std::string& line : lines) {
    std::smatch groups;
    if (std::regex_match(line, groups, expression)) {
      return static_cast<unsigned long long>(std::atoll(groups[1].str().c_str()));
    }
  }
  return std::nullopt;
}

TEST(StatOutputTest, IsTheExpressionForAnyBytes) {
  const std::string pieces[] = {
      " ", "\t", "\n", "\r", "\r\n", "\v",   "\f",   "Size:", "Size",   ":",
      "0", "42", "9",  "x",  "-",    "\xff", "\xa0", "\x85",  "File: ", std::string(1, '\0')};
  std::mt19937 random(1);
  int matches = 0;
  for (int i = 0; i < 60'000; ++i) {
    std::string output;
    for (std::size_t n = random() % 8; n > 0; --n) output += pieces[random() % std::size(pieces)];
    if (random() % 2 == 0) output = " Size: " + output;
    const auto expected = Plainly(output);
    matches += expected.has_value();
    ASSERT_EQ(SizeInStatOutput(output), expected) << output;
  }
  EXPECT_GT(matches, 1000);
}

}  // namespace
}  // namespace darokleim::sdk
