#include <string>

#include "tests/unit/support/device_output.h"
#include "tests/unit/support/sdk_test.h"

namespace darokleim::test {
namespace {

// A line of adb's own listing.
std::string Entry(const std::string& name) {
  return "000081b0 0000000a 5e0b7a10 " + name + "\n";
}

class FileExistenceTest : public SdkTest {
 protected:
  int Check(const std::string& path) {
    exists = !exists;  // whatever it was, it must be written
    return AdbCheckFileExisted("S1", path.c_str(), &exists, &cancel);
  }
  Answer& ExpectShellLs(const std::string& path) {
    return channel.Expect(" -s S1 shell ls \"\"" + path + "\"\"");
  }
  Answer& ExpectAdbLs(const std::string& directory) {
    return channel.Expect(" -s S1 ls \"" + directory + "\"");
  }

  bool exists = false;
};

TEST_F(FileExistenceTest, AListingThatNamesThePathAnswers) {
  ExpectShellLs("/sdcard/a.txt").Prints("/sdcard/a.txt\r\n");
  EXPECT_EQ(Check("/sdcard/a.txt"), ADB_RESULT_OK);
  EXPECT_TRUE(exists);
  EXPECT_THAT(journal(), ElementsAre(Ran(" -s S1 shell ls \"\"/sdcard/a.txt\"\""), GaveBack()))
      << "no log lines";
}

TEST_F(FileExistenceTest, AnOldPhoneEscapesSpaces) {
  ExpectShellLs("/sdcard/a b  c").Prints("/sdcard/a\\ b\\ \\ c\r\n");
  EXPECT_EQ(Check("/sdcard/a b  c"), ADB_RESULT_OK);
  EXPECT_TRUE(exists);
}

TEST_F(FileExistenceTest, ADollarSignIsNotAReplacementPattern) {
  ExpectShellLs("/sdcard/$& $1").Prints("/sdcard/$&\\ $1\r\n");
  EXPECT_EQ(Check("/sdcard/$& $1"), ADB_RESULT_OK);
  EXPECT_TRUE(exists);
}

TEST_F(FileExistenceTest, AnEmptyDirectoryListsNothing) {
  ExpectShellLs("/sdcard/empty").Prints("");
  EXPECT_EQ(Check("/sdcard/empty"), ADB_RESULT_OK);
  EXPECT_TRUE(exists);
}

TEST_F(FileExistenceTest, NoOutputAtAllCountsAsExisting) {
  ExpectShellLs("/sdcard/a").Returns(3003);
  EXPECT_EQ(Check("/sdcard/a"), 3003);
  EXPECT_TRUE(exists);
}

TEST_F(FileExistenceTest, WhatTheShellDoesNotFindAdbsListingMay) {
  for (const char* refusal : {"ls: /sdcard/a.txt: No such file or directory", "sh: no closing quote"}) {
    ExpectShellLs("/sdcard/a.txt").Prints(refusal);
    ExpectAdbLs("/sdcard").Prints(Entry(".") + Entry("..") + Entry("a.txt"));
    EXPECT_EQ(Check("/sdcard/a.txt"), ADB_RESULT_OK);
    EXPECT_TRUE(exists);
    ExpectShellLs("/sdcard/a.txt").Prints(refusal).Returns(1001);
    ExpectAdbLs("/sdcard").Prints(Entry("a.txt2") + Entry("b/a.txt"));
    EXPECT_EQ(Check("/sdcard/a.txt"), ADB_RESULT_OK);
    EXPECT_FALSE(exists);
  }
}

TEST_F(FileExistenceTest, TheFallbackRunsBeforeTheFirstBufferGoesBack) {
  ExpectShellLs("/d/a").Prints("No such file or directory");
  ExpectAdbLs("/d").Prints(Entry("a"));
  Check("/d/a");
  EXPECT_THAT(journal(),
              ElementsAre(Ran(" -s S1 shell ls \"\"/d/a\"\""),
                          Info("AdbCheckFileExistedUsingFolderContent Enter ..."), Ran(" -s S1 ls \"/d\""),
                          GaveBack(), Info("AdbCheckFileExistedUsingFolderContent Leave."), GaveBack()));
}

TEST_F(FileExistenceTest, AListingThatDoesNotNameThePathFallsBackToo) {
  ExpectShellLs("/sdcard").Prints("DCIM\nMusic\n");
  ExpectAdbLs("").Prints(Entry("sdcard"));
  EXPECT_EQ(Check("/sdcard"), ADB_RESULT_OK);
  EXPECT_TRUE(exists);
  ExpectShellLs("/sdcard").Prints("DCIM\nMusic\n");
  ExpectAdbLs("").Returns(1001);
  EXPECT_EQ(Check("/sdcard"), ADB_RESULT_OK) << "the fallback's own code is ignored";
  EXPECT_FALSE(exists);
}

TEST_F(FileExistenceTest, WithoutASlashTheFallbackHasNothingToList) {
  ExpectShellLs("name").Prints("ls: name: No such file or directory");
  EXPECT_EQ(Check("name"), ADB_RESULT_OK);
  EXPECT_FALSE(exists);
  EXPECT_EQ(journal()[1], Info("AdbCheckFileExistedUsingFolderContent Enter ..."));
  EXPECT_EQ(journal()[2], GaveBack()) << "no leave line";
}

TEST_F(FileExistenceTest, OtherErrorsAreTheCode) {
  ExpectShellLs("/a").Prints("error: device unauthorized.").Returns(1001);
  EXPECT_EQ(Check("/a"), ADB_RESULT_DEVICE_UNAUTHORIZED);
  EXPECT_FALSE(exists);
  exists = true;
  ExpectShellLs("/a").Prints("/a").Returns(9);
  EXPECT_EQ(Check("/a"), 9);
  EXPECT_FALSE(exists);
}

TEST_F(FileExistenceTest, NullArgumentsAreRefused) {
  EXPECT_EQ(AdbCheckFileExisted(nullptr, "/a", &exists, &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_EQ(AdbCheckFileExisted("S1", nullptr, &exists, &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_EQ(AdbCheckFileExisted("S1", "/a", nullptr, &cancel), ADB_RESULT_INVALID_PARAM);
  const Event line = Error("AdbCheckFileExisted, invalid param.");
  EXPECT_THAT(journal(), ElementsAre(line, line, line));
}

TEST_F(FileExistenceTest, TheFallbackAloneNeverAnswersNo) {
  exists = true;
  ExpectAdbLs("/sdcard").Prints(Entry("other"));
  EXPECT_EQ(AdbCheckFileExistedUsingFolderContent("S1", "/sdcard/a", &exists, &cancel), 0);
  EXPECT_TRUE(exists);
  ExpectAdbLs("/sdcard").Prints("No such file or directory").Returns(1001);
  EXPECT_EQ(AdbCheckFileExistedUsingFolderContent("S1", "/sdcard/a", &exists, &cancel), 1001)
      << "the channel's value, whatever the text";
  ExpectAdbLs("/sdcard").Returns(7);
  EXPECT_EQ(AdbCheckFileExistedUsingFolderContent("S1", "/sdcard/a", &exists, &cancel), 7);
}

TEST_F(FileExistenceTest, NamesAreComparedByteByByte) {
  ExpectAdbLs("/s").Prints(Entry("\xe6\xb7") + Entry("\xe6\xb7\xbb x"));
  EXPECT_EQ(AdbCheckFileExistedUsingFolderContent("S1", "/s/\xe6\xb7\xbb x", &exists, &cancel), 0);
  EXPECT_TRUE(exists);
}

class FileSizeTest : public SdkTest {
 protected:
  int Size(const std::string& output, int status = 0) {
    channel.Expect(" -s S1 shell stat \"\"/a b\"\"").Prints(output).Returns(status);
    size = 99;
    return AdbGetFileSize("S1", "/a b", &size, &cancel);
  }
  unsigned long long size = 99;
};

TEST_F(FileSizeTest, ReadsTheSizeLine) {
  EXPECT_EQ(Size("  File: `/a b'\r\n  Size: 1234\t Blocks: 8\r\n"), ADB_RESULT_OK);
  EXPECT_EQ(size, 1234U);
  EXPECT_THAT(journal(), ElementsAre(Info("AdbGetFileSize Enter."), Ran(" -s S1 shell stat \"\"/a b\"\""),
                                     GaveBack(), Info("AdbGetFileSize Leave, return 0.")));
}

TEST_F(FileSizeTest, WithoutASizeLineItIsOne) {
  for (const char* output : {"", "\r\n", "Size: 12\r\n", "  File: /a\n  Size: 12\n"}) {
    EXPECT_EQ(Size(output), 1) << output;
    EXPECT_EQ(size, 0U);
  }
}

TEST_F(FileSizeTest, WhatDevicesPrinted) {
  // One is that of a file system, the other the answer to another question: neither has a size.
  for (const std::string& sample : DeviceOutputsIn("stat")) {
    EXPECT_EQ(Size(DeviceOutput(sample)), 1) << sample;
    EXPECT_EQ(size, 0U) << sample;
  }
  EXPECT_EQ(DeviceOutputsIn("stat").size(), 2U);
}

TEST_F(FileSizeTest, LinesThatAreCutOrTooLong) {
  EXPECT_EQ(Size("  Size:\r\n  Size: \r\n"), 1);
  EXPECT_EQ(Size("  Size: 12"), ADB_RESULT_OK);
  EXPECT_EQ(size, 12U);
  EXPECT_EQ(Size("  Size: " + std::string(40, '9') + "\r\n"), ADB_RESULT_OK);
  EXPECT_EQ(size, 9223372036854775807U);
  EXPECT_EQ(Size(std::string("  Size: 1\0 2\r\n", 15)), ADB_RESULT_OK);
  EXPECT_EQ(size, 1U);
  EXPECT_EQ(Size("  File: `" + std::string(1'000'000, 'n') + "'\r\n  Size: 3\r\n"), ADB_RESULT_OK);
  EXPECT_EQ(size, 3U);
}

TEST_F(FileSizeTest, ErrorsAreTheCode) {
  EXPECT_EQ(Size("stat: No such file or directory\r\n  Size: 5\r\n"), ADB_RESULT_NO_SUCH_FILE);
  EXPECT_EQ(size, 0U);
  EXPECT_EQ(Size("  Size: 5\r\n", 1001), 1001);
  EXPECT_EQ(size, 0U);
  channel.Expect(" -s S1 shell stat \"\"/a b\"\"").Returns(0);
  EXPECT_EQ(AdbGetFileSize("S1", "/a b", &size, &cancel), 0) << "no output: the channel's value";
  EXPECT_EQ(journal().back(), Info("AdbGetFileSize Leave, return 0."));
}

TEST_F(FileSizeTest, NullArgumentsAreRefused) {
  EXPECT_EQ(AdbGetFileSize(nullptr, "/a", &size, &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_EQ(AdbGetFileSize("S1", nullptr, &size, &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_EQ(size, 99U);
  EXPECT_EQ(journal().back(), Error("AdbGetFileSize, invalid param."));
}

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
  EXPECT_EQ(from_ls("/sdcard/a b", "1 2 3 a b\n"), 7U) << "a name with a space makes five columns";
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
