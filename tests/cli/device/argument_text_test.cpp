#include "tools/cli/device/argument_text.h"

#include <gtest/gtest.h>

#include "tools/cli/errors.h"

namespace darokleim::cli {
namespace {

TEST(ForBarePlace, QuotesOnlyWhatNeedsIt) {
  EXPECT_EQ(ForBarePlace("/sdcard/a-b_c.txt"), "/sdcard/a-b_c.txt");
  EXPECT_EQ(ForBarePlace("/sdcard/a b"), "'/sdcard/a b'");
  EXPECT_EQ(ForBarePlace("it's"), "'it'\\''s'");
  EXPECT_EQ(ForBarePlace("$x"), "'$x'");
  EXPECT_EQ(ForBarePlace("~"), "'~'");
}

TEST(CheckCanBeCarried, RefusesWhatStandsBetweenTwoPaths) {
  EXPECT_NO_THROW(CheckCanBeCarried("/sdcard/say \"hi\" \"there\""));
  EXPECT_NO_THROW(CheckCanBeCarried("/sdcard/back\\slash\\"));
  EXPECT_THROW(CheckCanBeCarried("/sdcard/a\" \"/b"), ToolError);
  EXPECT_THROW(CheckCanBeCarried("/sdcard/a'\" \"'/b"), ToolError);
}

}  // namespace
}  // namespace darokleim::cli
