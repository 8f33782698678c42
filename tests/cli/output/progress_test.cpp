#include "tools/cli/output/progress.h"

#include <gtest/gtest.h>

namespace darokleim::cli {
namespace {

TEST(TransferText, TellsShareAndRate) {
  EXPECT_EQ(TransferText("a.mp4", 10 << 20, 40 << 20, 2), "a.mp4  10 MiB of 40 MiB  25%  5.0 MiB/s");
  EXPECT_EQ(TransferText("a", 0, 100, 1), "a  0 B of 100 B  0%  0 B/s");
}

TEST(TransferText, KnowsNoShareOfAnUnknownTotal) {
  EXPECT_EQ(TransferText("a", 2048, 0, 1), "a  2.0 KiB  2.0 KiB/s");
}

TEST(TransferText, NeverPassesAHundred) {
  EXPECT_EQ(TransferText("a", 200, 100, 0), "a  200 B of 100 B  100%");
}

TEST(CutToPlaces, KeepsCharactersWhole) {
  EXPECT_EQ(CutToPlaces("abc", 2), "ab");
  EXPECT_EQ(CutToPlaces("\xe7\x85\xa7\xe7\x89\x87", 1), "\xe7\x85\xa7");
  EXPECT_EQ(CutToPlaces("ab", 5), "ab");
}

}  // namespace
}  // namespace darokleim::cli
