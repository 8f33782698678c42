#include <string>

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

TEST_F(FileExistenceTest, AnOldPhoneEscapesBlanks) {
  ExpectShellLs("/sdcard/a b  c").Prints("/sdcard/a\\ b\\ \\ c\r\n");
  EXPECT_EQ(Check("/sdcard/a b  c"), ADB_RESULT_OK);
  EXPECT_TRUE(exists);
}

TEST_F(FileExistenceTest, ADollarSignIsNoReplacementPattern) {
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

}  // namespace
}  // namespace darokleim::test
