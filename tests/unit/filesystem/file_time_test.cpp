#include <string>

#include "tests/unit/support/sdk_test.h"

namespace darokleim::test {
namespace {

class FileTimeTest : public SdkTest {
 protected:
  Answer& ExpectStat() { return channel.Expect(" -s S1 shell stat -c %Y \"\"/sdcard/a.txt\"\""); }
  Answer& ExpectAdbLs() { return channel.Expect(" -s S1 ls \"/sdcard\""); }
  int Time() {
    time = 99;
    return AdbGetFileCreateTime("S1", "/sdcard/a.txt", &time, &cancel);
  }
  unsigned long long time = 99;
};

TEST_F(FileTimeTest, ReadsTheSecondsThatStatPrints) {
  ExpectStat().Prints("1577934240\n");
  EXPECT_EQ(Time(), ADB_RESULT_OK);
  EXPECT_EQ(time, 1577934240U);
  ExpectStat().Prints("1577934240\r\n");
  EXPECT_EQ(Time(), ADB_RESULT_OK);
  EXPECT_EQ(time, 1577934240U);
  ExpectStat().Prints("no number").Unterminated();
  EXPECT_EQ(Time(), ADB_RESULT_OK);
  EXPECT_EQ(time, 0U);
}

TEST_F(FileTimeTest, ErrorsAreTheCode) {
  ExpectStat().Prints("stat: '/sdcard/a.txt': No such file or directory").Returns(0);
  EXPECT_EQ(Time(), ADB_RESULT_NO_SUCH_FILE);
  EXPECT_EQ(time, 0U);
  ExpectStat().Returns(3003);
  EXPECT_EQ(Time(), 3003);
  EXPECT_EQ(time, 0U);
}

TEST_F(FileTimeTest, WithoutStatAdbsListingDecides) {
  ExpectStat().Prints("/system/bin/sh: stat: not found");
  ExpectAdbLs().Prints("000041f9 00001000 5e0b7a00 .\n000081b0 0000000a 5e0b7a10 a.txt\n");
  EXPECT_EQ(Time(), ADB_RESULT_OK);
  EXPECT_EQ(time, 0x5e0b7a10U);
  EXPECT_THAT(
      journal(),
      ElementsAre(Info("AdbGetFileCreateTime Enter."), Ran(" -s S1 shell stat -c %Y \"\"/sdcard/a.txt\"\""),
                  GaveBack(), Info("AdbGetFileCreateTimeFromLs Enter ..."), Ran(" -s S1 ls \"/sdcard\""),
                  GaveBack(), Info("AdbGetFileCreateTimeFromLs Leave."),
                  Info("AdbGetFileCreateTime Leave, return 0.")));
}

TEST_F(FileTimeTest, TheListingsCodeIsTheChannelsValue) {
  ExpectStat().Returns(ADB_RESULT_SHELL_NOT_FOUND);
  ExpectAdbLs().Returns(1001);
  EXPECT_EQ(Time(), 1001);
  EXPECT_EQ(time, 0U);
}

TEST_F(FileTimeTest, TheFirstLineOfFourColumnsThatMentionsTheNameIsTaken) {
  const auto from_ls = [&](const char* path, const std::string& listing) {
    channel.Expect(" -s S1 ls \"/sdcard\"").Prints(listing);
    time = 7;
    EXPECT_EQ(AdbGetFileCreateTimeFromLs("S1", path, &time, &cancel), 0);
    return time;
  };
  EXPECT_EQ(from_ls("/sdcard/a", "1 2 3 ba\n1 2 4 a\n"), 3U) << "a name that merely contains it";
  EXPECT_EQ(from_ls("/sdcard/1", "1 2 5 z\n"), 5U) << "a column that merely contains it";
  EXPECT_EQ(from_ls("/sdcard/a b", "1 2 3 a b\n"), 7U) << "a name with a blank makes five columns";
  EXPECT_EQ(from_ls("/sdcard/a", "1 2 a\n1   2   ff   a\n"), 0xFFU) << "empty columns do not count";
  EXPECT_EQ(from_ls("/sdcard/a", "1 2 x a\n1 2 3 a\n"), 0U) << "the first one, number or not";
  EXPECT_EQ(from_ls("/sdcard/a", "1 2 " + std::string(40, 'f') + " a\n"), ~0ULL);
  EXPECT_EQ(from_ls("/sdcard/a", ""), 7U);
  EXPECT_EQ(from_ls("/sdcard/", "1 2 6 z\n"), 6U) << "an empty name is in every line";
}

TEST_F(FileTimeTest, WithoutASlashThereIsNothingToList) {
  EXPECT_EQ(AdbGetFileCreateTimeFromLs("S1", "name", &time, &cancel), 0);
  EXPECT_EQ(time, 99U);
  EXPECT_THAT(journal(), ElementsAre(Info("AdbGetFileCreateTimeFromLs Enter ...")));
}

TEST_F(FileTimeTest, NullArgumentsAreRefused) {
  EXPECT_EQ(AdbGetFileCreateTime(nullptr, "/a", &time, &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_EQ(AdbGetFileCreateTime("S1", nullptr, &time, &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_EQ(AdbGetFileCreateTime("S1", "/a", nullptr, &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_EQ(time, 99U);
  EXPECT_EQ(journal().back(), Error("AdbGetFileCreateTime, invalid param."));
}

}  // namespace
}  // namespace darokleim::test
