// All unit tests rely on the scripted channel: it must notice a buffer that is never released or released twice, and a
// command that is not in the script.
#include "tests/unit/support/scripted_channel.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

namespace darokleim::test {
namespace {

class ScriptedChannelTest : public ::testing::Test {
 protected:
  char* Run(const char* args) {
    char* out = nullptr;
    int out_len = 0;
    channel_.Run(args, &cancel_, &cancel_, &out, &out_len);
    return out;
  }

  ScriptedChannel channel_;
  const bool cancel_ = false;
};

TEST_F(ScriptedChannelTest, ABufferThatNeverGoesBackFailsTheTest) {
  channel_.Expect(" version").Prints("");
  EXPECT_NE(Run(" version"), nullptr);
  EXPECT_NONFATAL_FAILURE(channel_.CheckNothingIsLeft(), "never went back");
}

TEST_F(ScriptedChannelTest, ABufferThatIsReleasedTwiceFailsTheTest) {
  channel_.Expect(" version").Prints("text");
  char* buffer = Run(" version");
  channel_.TakeBack(buffer);
  EXPECT_NONFATAL_FAILURE(channel_.TakeBack(buffer), "not out");
  channel_.CheckNothingIsLeft();
}

TEST_F(ScriptedChannelTest, ABufferOfSomebodyElseFailsTheTest) {
  char others[] = "text";
  EXPECT_NONFATAL_FAILURE(channel_.TakeBack(others), "not out");
  EXPECT_NONFATAL_FAILURE(channel_.TakeBack(nullptr), "not out");
}

TEST_F(ScriptedChannelTest, AnotherCommandThanTheScriptsFailsTheTest) {
  EXPECT_NONFATAL_FAILURE(Run(" version"), "no further command");
  channel_.Expect(" devices");
  EXPECT_NONFATAL_FAILURE(Run(" version"), "the script wants  devices");
  EXPECT_NONFATAL_FAILURE(channel_.CheckNothingIsLeft(), "never run: devices");
}

TEST_F(ScriptedChannelTest, AnotherCancelFlagFailsTheTest) {
  const bool another = false;
  channel_.Expect(" version");
  char* out = nullptr;
  int out_len = 0;
  EXPECT_NONFATAL_FAILURE(channel_.Run(" version", &another, &cancel_, &out, &out_len),
                          "another cancel flag");
}

}  // namespace
}  // namespace darokleim::test
