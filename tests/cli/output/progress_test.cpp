#include "tools/cli/output/progress.h"

#include <gmock/gmock.h>

namespace darokleim::cli {
namespace {

TEST(TransferMeter, ShowsShareRateAndTimeLeft) {
  TransferMeter meter;
  meter.Set({"a.mp4", 10 << 20, 40 << 20});
  EXPECT_EQ(meter.Line(2), "a.mp4  25%  10 MiB of 40 MiB  5.0 MiB/s  6 s left");
  meter.Set({"b.jpg", 40 << 20, 40 << 20, 12, 12});
  EXPECT_EQ(meter.Line(8), "b.jpg  12/12 files  100%  40 MiB of 40 MiB  5.0 MiB/s");
}

TEST(TransferMeter, NeverPassesAHundred) {
  TransferMeter meter;
  meter.Set({"a", 200, 100});
  EXPECT_EQ(meter.Line(1), "a  100%  200 B of 100 B  200 B/s");
}

TEST(TransferMeter, ForgetsAnOlderRate) {
  TransferMeter meter;
  meter.Set({"a", 100 << 20, 1 << 30});
  meter.Line(1);
  for (int second = 2; second < 30; ++second) meter.Line(second);  // nothing more comes
  EXPECT_THAT(meter.Line(30), testing::ContainsRegex("a  9%  100 MiB of 1.0 GiB  [0-9.]+ KiB/s  "));
}

TEST(TransferMeter, KnowsNoShareOfAnUnknownTotal) {
  TransferMeter meter;
  meter.Set({"-", 2048, 0});
  EXPECT_EQ(meter.Line(1), "-  2.0 KiB  2.0 KiB/s");
}

TEST(DurationText, HasTwoUnitsAtMost) {
  EXPECT_EQ(DurationText(0.2), "1 s");
  EXPECT_EQ(DurationText(59), "59 s");
  EXPECT_EQ(DurationText(200), "3 min 20 s");
  EXPECT_EQ(DurationText(7500), "2 h 5 min");
}

TEST(CutToPlaces, KeepsCharactersWhole) {
  EXPECT_EQ(CutToPlaces("abc", 2), "ab");
  EXPECT_EQ(CutToPlaces("\xe7\x85\xa7\xe7\x89\x87", 1), "\xe7\x85\xa7");
  EXPECT_EQ(CutToPlaces("ab", 5), "ab");
}

}  // namespace
}  // namespace darokleim::cli
