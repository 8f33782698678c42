#include "src/core/adb_run.h"

#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>
#include <string>

#include "tests/unit/support/sdk_test.h"

namespace darokleim::test {
namespace {

using namespace std::string_literals;

class ChannelBufferTest : public SdkTest {};

TEST_F(ChannelBufferTest, NothingHandedOutNothingGivenBack) {
  {
    const sdk::ChannelBuffer buffer;
    EXPECT_FALSE(buffer.has_text());
    EXPECT_EQ(buffer.text(), "");
    EXPECT_EQ(buffer.c_text(), "");
  }
  EXPECT_THAT(journal(), IsEmpty());
}

TEST_F(ChannelBufferTest, AnEmptyTextIsATextAndGoesBack) {
  channel.Expect(" version").Prints("");
  {
    const sdk::AdbRun run(" version", &cancel);
    EXPECT_TRUE(run.has_output());
    EXPECT_EQ(run.output(), "");
  }
  EXPECT_EQ(journal().back(), GaveBack());
}

TEST(ChannelTextTest, IsAsLongAsTheChannelSays) {
  const char text[] = "one\0two";
  EXPECT_EQ(sdk::TextOf(text, 7), "one\0two"s);
  EXPECT_EQ(sdk::TextOf(text, 2), "on");
  EXPECT_EQ(sdk::TextOf(nullptr, 7), "");
  EXPECT_EQ(sdk::TextOf(nullptr, -1), "");
}

TEST(ChannelTextTest, ALengthBelowZeroIsRefused) {
  const char text[] = "one";
  EXPECT_THROW(sdk::TextOf(text, -1), std::length_error);
}

}  // namespace
}  // namespace darokleim::test
