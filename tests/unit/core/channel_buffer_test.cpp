#include "core/channel_buffer.h"

#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>
#include <string>

#include "core/adb_run.h"
#include "support/sdk_test.h"

namespace darokleim::testing {
namespace {

using namespace std::string_literals;

class ChannelBufferTest : public SdkTest {};

TEST_F(ChannelBufferTest, NothingHandedOutNothingGivenBack) {
  {
    const ChannelBuffer buffer;
    EXPECT_FALSE(buffer.has_text());
    EXPECT_EQ(buffer.text(), "");
    EXPECT_EQ(buffer.c_text(), "");
  }
  EXPECT_THAT(journal(), IsEmpty());
}

TEST_F(ChannelBufferTest, AnEmptyTextIsATextAndGoesBack) {
  channel.Expect(" version").Prints("");
  {
    const AdbRun run(" version", &cancel);
    EXPECT_TRUE(run.has_output());
    EXPECT_EQ(run.output(), "");
  }
  EXPECT_EQ(journal().back(), GaveBack());
}

TEST(ChannelTextTest, IsAsLongAsTheChannelSays) {
  const char text[] = "one\0two";
  EXPECT_EQ(ChannelText(text, 7), "one\0two"s);
  EXPECT_EQ(ChannelText(text, 2), "on");
  EXPECT_EQ(ChannelText(nullptr, 7), "");
  EXPECT_EQ(ChannelText(nullptr, -1), "");
}

TEST(ChannelTextTest, ALengthBelowZeroIsRefused) {
  const char text[] = "one";
  EXPECT_THROW(ChannelText(text, -1), std::length_error);
}

}  // namespace
}  // namespace darokleim::testing
