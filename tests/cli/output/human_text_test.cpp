#include "tools/cli/output/human_text.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <time.h>

namespace darokleim::cli {
namespace {

TEST(SizeText, HasTwoDigitsAtLeast) {
  EXPECT_EQ(SizeText(0), "0 B");
  EXPECT_EQ(SizeText(1), "1 B");
  EXPECT_EQ(SizeText(1023), "1023 B");
  EXPECT_EQ(SizeText(1024), "1.0 KiB");
  EXPECT_EQ(SizeText(1536), "1.5 KiB");
  EXPECT_EQ(SizeText(12 * 1024), "12 KiB");
  EXPECT_EQ(SizeText(5ull << 30), "5.0 GiB");
}

TEST(SizeText, RoundsAcrossTheUnit) {
  EXPECT_EQ(SizeText(1024 * 1024 - 1), "1.0 MiB");
  EXPECT_EQ(SizeText(1023 * 1024), "1023 KiB");
  EXPECT_EQ(SizeText(10 * 1024 - 1), "10 KiB");
  EXPECT_EQ(SizeText(UINT64_MAX), "16 EiB");
}

TEST(CountText, KnowsOneAndMany) {
  EXPECT_EQ(CountText(0, "file"), "0 files");
  EXPECT_EQ(CountText(1, "file"), "1 file");
  EXPECT_EQ(CountText(1234567, "file"), "1234567 files");
}

TEST(TimeTexts, AreInTheComputersZoneAndInUtc) {
  setenv("TZ", "UTC-2", 1);
  tzset();
  EXPECT_EQ(LocalTimeText(1577810448), "2019-12-31 18:40:48");
  EXPECT_EQ(UtcTimeText(1577810448), "2019-12-31T16:40:48Z");
  EXPECT_EQ(TimeText(-1, true), "1969-12-31T23:59:59Z");
  EXPECT_EQ(TimeText(1577810448, false), "2019-12-31 18:40:48");
}

TEST(TimeTexts, OfNoTimeAreTheNumber) {
  EXPECT_EQ(UtcTimeText(INT64_MAX), "9223372036854775807");
}

}  // namespace
}  // namespace darokleim::cli
