#include <gmock/gmock.h>
#include <stdlib.h>

#include "tests/log/opened_log.h"

namespace darokleim::log {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;

// The level is read when a module is opened.
class LogLevels : public testing::Test {
 protected:
  void SetUp() override { unsetenv("DAROKLEIM_LOG_LEVEL"); }
  void TearDown() override { unsetenv("DAROKLEIM_LOG_LEVEL"); }

  static std::vector<std::string> LinesWith(const char* lowest_level) {
    if (lowest_level != nullptr) setenv("DAROKLEIM_LOG_LEVEL", lowest_level, 1);
    const OpenedLog log;
    EXPECT_TRUE(log.opened());
    for (int level = -1; level <= 5; ++level) LogEx(log.module(), level, "at %d", level);
    return log.Lines();
  }
};

TEST_F(LogLevels, TraceIsLeftOutByDefault) {
  EXPECT_THAT(LinesWith(nullptr), ElementsAre(EndsWith("at 1"), EndsWith("at 2"), EndsWith("at 3"),
                                              EndsWith("at 4"), EndsWith("at 5")));
}

TEST_F(LogLevels, ZeroWritesAll) {
  EXPECT_EQ(LinesWith("0").size(), 7u);
}

TEST_F(LogLevels, ThreeWritesErrorsOnly) {
  EXPECT_THAT(LinesWith("3"), ElementsAre(EndsWith("at 3"), EndsWith("at 4"), EndsWith("at 5")));
}

TEST_F(LogLevels, FourWritesNothing) {
  EXPECT_THAT(LinesWith("4"), IsEmpty());
}

TEST_F(LogLevels, EmptyIsTheDefault) {
  EXPECT_EQ(LinesWith("").size(), 5u);
}
TEST_F(LogLevels, AWordIsTheDefault) {
  EXPECT_EQ(LinesWith("debug").size(), 5u);
}
TEST_F(LogLevels, ANumberWithATailIsTheDefault) {
  EXPECT_EQ(LinesWith("3x").size(), 5u);
}
TEST_F(LogLevels, ANumberOutOfRangeIsTheDefault) {
  EXPECT_EQ(LinesWith("99999999999").size(), 5u);
}

TEST_F(LogLevels, AreNamedInTheLine) {
  const auto lines = LinesWith("0");
  ASSERT_EQ(lines.size(), 7u);
  EXPECT_THAT(lines[0], HasSubstr(" [trace] "));
  EXPECT_THAT(lines[1], HasSubstr(" [trace] "));
  EXPECT_THAT(lines[2], HasSubstr(" [info] "));
  EXPECT_THAT(lines[3], HasSubstr(" [command] "));
  EXPECT_THAT(lines[4], HasSubstr(" [error] "));
  EXPECT_THAT(lines[6], HasSubstr(" [error] "));
}

}  // namespace
}  // namespace darokleim::log
