#include <gmock/gmock.h>

#include <cstring>
#include <filesystem>
#include <list>
#include <string>

#include "src/filesystem/adb_ls_listing.h"
#include "src/filesystem/ls_listing.h"
#include "tests/support/plain_file_list_json.h"
#include "tests/unit/filesystem/local_zone.h"
#include "tests/unit/filesystem/own_directory.h"
#include "tests/unit/support/device_output.h"
#include "tests/unit/support/sdk_test.h"

namespace darokleim::test {
namespace {

using ::testing::HasSubstr;
using Lister = int (*)(const char*, const char*, char**, int*, int, int, const bool*);

class DirectoryListingTest : public SdkTest {
 protected:
  // The document that the function hands out, or "none".
  std::string List(Lister lister, const char* dir, int expected_code = ADB_RESULT_OK, int recursive = 0,
                   int all = 0) {
    char unset = 'x';
    char* json = &unset;
    int length = -1;
    EXPECT_EQ(lister("S1", dir, &json, &length, recursive, all, &cancel), expected_code);
    if (json == &unset) {
      EXPECT_EQ(length, -1);
      return "none";
    }
    EXPECT_EQ(length, static_cast<int>(std::strlen(json)));
    std::string text(json, static_cast<std::size_t>(length));
    AdbFreeResource(&json);
    return text;
  }

  static std::string FlatOfLs(const std::string& output) {
    std::list<FileInfo> files;
    DecodeLSOut(output.data(), static_cast<int>(output.size()), &files);
    return PlainFlatList(files, true);
  }

  // A line of adb ls.
  static std::string Dir(const std::string& name) { return "000041f9 00001000 5e0b7a11 " + name + "\n"; }
  static std::string File(const std::string& name) { return "000081b0 0000000a 5e0b7a10 " + name + "\n"; }
  Answer& ExpectLs(const std::string& directory) { return channel.Expect(" -s S1 ls \"" + directory + "\""); }

  static FileInfo Listed(const std::string& path) {
    return {10, 0x81B0, path, "2019-12-31 16:40:48", 0x5E0B7A10};
  }

  static std::size_t Count(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size()))
      ++count;
    return count;
  }

  const OwnDirectory directory_;
  const LocalZone zone_{"UTC0"};
};

TEST_F(DirectoryListingTest, FilesOfLs) {
  const std::string args = " -s S1 shell ls -l   \"\"/sdcard\"\"";
  channel.Expect(args)
      .Prints("total 8\r\n-rw-rw---- 1 root sdcard_rw 1234 2020-01-02 03:04 my\\ file.txt\r\n")
      .Unterminated();
  const std::string json = List(AdbGetDirFiles, "/sdcard");
  EXPECT_EQ(json, PlainFlatList({{1234, 0, "/my file.txt", "2020-01-02 03:04", 0}}, true));
  EXPECT_EQ(directory_.SideFileContent(), json);
  EXPECT_THAT(journal(), ElementsAre(Info("AdbGetDirFiles Enter ..."), Ran(args), GaveBack(),
                                     Info("AdbGetDirFiles Leave.")));
}

TEST_F(DirectoryListingTest, FlagsOfLs) {
  channel.Expect(" -s S1 shell ls -l -R  \"\"/sdcard\"\"").Prints("");
  List(AdbGetDirFiles, "/sdcard", ADB_RESULT_OK, 1, 0);
  channel.Expect(" -s S1 shell ls -l  -a \"\"/sdcard\"\"").Prints("");
  List(AdbGetDirFiles, "/sdcard", ADB_RESULT_OK, 0, 1);
  channel.Expect(" -s S1 shell ls -l -R -a \"\"/sdcard\"\"").Prints("");
  List(AdbGetDirFiles, "/sdcard", ADB_RESULT_OK, -1, 2);
}

TEST_F(DirectoryListingTest, LongPathsAreNotCut) {
  const std::string dir = "/" + std::string(20'000, 'd');
  channel.Expect(" -s S1 shell ls -l   \"\"" + dir + "\"\"").Prints("");
  List(AdbGetDirFiles, dir.c_str());
  ExpectLs(dir).Prints("");
  List(AdbGetDirFilesEx, dir.c_str());
}

TEST_F(DirectoryListingTest, WhatDevicesPrinted) {
  for (const std::string& sample : DeviceOutputsIn("ls-l")) {
    SCOPED_TRACE(sample);
    const std::string text = DeviceOutput(sample);
    channel.Otherwise().Prints(text);
    char* json = nullptr;
    int length = 0;
    const int code = AdbGetDirFiles("S1", "/sdcard", &json, &length, 1, 1, &cancel);
    EXPECT_EQ(code == ADB_RESULT_OK, json != nullptr);
    if (!json) continue;
    EXPECT_EQ(json, FlatOfLs(text));
    AdbFreeResource(&json);
  }
}

TEST_F(DirectoryListingTest, EmptyOutputOfLsIsAnEmptyList) {
  channel.Expect(" -s S1 shell ls -l   \"\"/sdcard\"\"").Prints("");
  EXPECT_EQ(List(AdbGetDirFiles, "/sdcard"), PlainFlatList({}, true));
}

TEST_F(DirectoryListingTest, WithoutOutputOfLsTheChannelsValueIsTheCode) {
  for (const int value : {0, 1001, 3003}) {
    channel.Expect(" -s S1 shell ls -l   \"\"/sdcard\"\"").Returns(value);
    EXPECT_EQ(List(AdbGetDirFiles, "/sdcard", value), "none");
    EXPECT_EQ(journal().back(), Info("AdbGetDirFiles Leave."));
  }
  EXPECT_FALSE(std::filesystem::exists(directory_.side_file()));
}

TEST_F(DirectoryListingTest, AFailureOfLsKeepsTheListFromTheCaller) {
  const std::string args = " -s S1 shell ls -l   \"\"/none\"\"";
  channel.Expect(args).Prints("ls: /none: No such file or directory\r\n");
  EXPECT_EQ(List(AdbGetDirFiles, "/none", ADB_RESULT_NO_SUCH_FILE), "none");
  channel.Expect(args).Prints("-rw-rw---- 1 root root 1 2020-01-02 03:04 a\r\n\r\nx\r\n").Returns(1001);
  EXPECT_EQ(List(AdbGetDirFiles, "/none", 1001), "none");
  EXPECT_EQ(journal().back(), Info("AdbGetDirFiles Leave."));
  EXPECT_FALSE(std::filesystem::exists(directory_.side_file()));
}

TEST_F(DirectoryListingTest, TheFolderFoundLastIsListedNext) {
  ExpectLs("/r").Prints(Dir("a") + File("1.txt") + Dir("b") + File("2.txt")).Unterminated();
  ExpectLs("/r/b").Prints(File("3.txt") + Dir("c"));
  ExpectLs("/r/b/c").Prints(File("4.txt"));
  ExpectLs("/r/a").Prints(File("5.txt"));
  const std::string json = List(AdbGetDirFilesEx, "/r");
  EXPECT_EQ(json, PlainFlatList({Listed("/r/1.txt"), Listed("/r/2.txt"), Listed("/r/b/3.txt"),
                                 Listed("/r/b/c/4.txt"), Listed("/r/a/5.txt")},
                                true));
  EXPECT_EQ(directory_.SideFileContent(), json);
  EXPECT_THAT(journal(),
              ElementsAre(Info("AdbGetDirFilesEx Enter ..."), Ran(" -s S1 ls \"/r\""), GaveBack(),
                          Ran(" -s S1 ls \"/r/b\""), GaveBack(), Ran(" -s S1 ls \"/r/b/c\""), GaveBack(),
                          Ran(" -s S1 ls \"/r/a\""), GaveBack(), Info("AdbGetDirFilesEx Leave.")));
}

TEST_F(DirectoryListingTest, TheTreeIsThatOfTheFilesFound) {
  ExpectLs("/r").Prints(Dir("a") + Dir("b") + Dir("empty") + File("1.txt"));
  ExpectLs("/r/empty").Prints("");
  ExpectLs("/r/b").Prints(File("2.txt"));
  ExpectLs("/r/a").Prints(Dir("deep"));
  ExpectLs("/r/a/deep").Prints(File("3.txt"));
  const std::string json = List(AdbGetDirFilesAndDirs, "/r");
  EXPECT_EQ(json,
            PlainTree({Listed("/r/1.txt"), Listed("/r/b/2.txt"), Listed("/r/a/deep/3.txt")}, "/r", true));
  EXPECT_THAT(json, ::testing::Not(HasSubstr("empty")));
  EXPECT_EQ(directory_.SideFileContent(), json);
  const Journal lines = log_lines();
  EXPECT_THAT(lines,
              ElementsAre(Info("AdbGetDirFilesAndDirs Enter ..."), Info("AdbGetDirFilesAndDirs Leave.")));
}

TEST_F(DirectoryListingTest, FlagsDoNotReachAdbLs) {
  for (const Lister lister : {AdbGetDirFilesEx, AdbGetDirFilesAndDirs}) {
    for (const int flag : {0, 1}) {
      ExpectLs("/r").Prints(Dir("a"));
      ExpectLs("/r/a").Prints("");
      List(lister, "/r", ADB_RESULT_OK, flag, flag);
    }
  }
}

TEST_F(DirectoryListingTest, ASlashAtTheEndStaysInThePaths) {
  ExpectLs("/sdcard/").Prints(Dir("a") + File("1.txt"));
  ExpectLs("/sdcard//a").Prints(File("2.txt"));
  EXPECT_EQ(List(AdbGetDirFilesAndDirs, "/sdcard/"),
            PlainTree({Listed("/sdcard//1.txt"), Listed("/sdcard//a/2.txt")}, "/sdcard/", true));
}

TEST_F(DirectoryListingTest, TypesThatShareTheBitOfDirectoriesAreListedAsSuch) {
  ExpectLs("/r").Prints("0000c1b0 00000000 5e0b7a10 socket\n0000a1ff 00000000 5e0b7a10 link\n");
  ExpectLs("/r/socket").Prints("");
  EXPECT_THAT(List(AdbGetDirFilesEx, "/r"), HasSubstr("\"/r/link\""));
}

TEST_F(DirectoryListingTest, OutputThatIsNotAListingIsNotAnError) {
  for (const char* output : {"", "adb: Permission denied\n", "Failure\n", "\n\n"}) {
    ExpectLs("/r").Prints(output);
    EXPECT_EQ(List(AdbGetDirFilesAndDirs, "/r"), PlainTree({}, "/r", true)) << "the text is not classified";
  }
  ExpectLs("/r").Returns(0);
  EXPECT_EQ(List(AdbGetDirFilesEx, "/r"), PlainFlatList({}, true)) << "no buffer at all";
}

TEST_F(DirectoryListingTest, AFolderThatFailsEndsTheSearch) {
  for (const Lister lister : {AdbGetDirFilesEx, AdbGetDirFilesAndDirs}) {
    ExpectLs("/r").Prints(Dir("a") + Dir("b") + File("1.txt"));
    ExpectLs("/r/b").Prints(File("2.txt") + Dir("never")).Returns(1001);
    EXPECT_EQ(List(lister, "/r", 1001), "none");
    ExpectLs("/r").Returns(3003);
    EXPECT_EQ(List(lister, "/r", 3003), "none");
  }
  EXPECT_EQ(journal().back(), Info("AdbGetDirFilesAndDirs Leave."));
  EXPECT_FALSE(std::filesystem::exists(directory_.side_file()));
}

TEST_F(DirectoryListingTest, AMillionFiles) {
  std::string output;
  constexpr int kFiles = 1'000'000;
  for (int i = 0; i < kFiles; ++i) {
    if (i % 100 == 0) output += "/sdcard/" + std::to_string(i) + ":\r\ntotal 100\r\n";
    output += "-rw-rw---- 1 root sdcard_rw " + std::to_string(i) + " 2020-01-02 03:04 " + std::to_string(i) +
              "\r\n";
  }
  channel.Expect(" -s S1 shell ls -l -R  \"\"/sdcard\"\"").Prints(output);
  const std::string json = List(AdbGetDirFiles, "/sdcard", ADB_RESULT_OK, 1);
  EXPECT_EQ(Count(json, "\"file\""), kFiles);
  EXPECT_THAT(json.substr(0, 100), HasSubstr("\"file_count\" : 1000000,"));
  EXPECT_THAT(json.substr(json.size() - 200), HasSubstr("\"/sdcard/999900/999999\""));
}

TEST_F(DirectoryListingTest, AHundredThousandFolders) {
  constexpr int kFolders = 100'000;
  std::string folders;
  for (int i = 0; i < kFolders; ++i) folders += Dir("folder" + std::to_string(i));
  for (const Lister lister : {AdbGetDirFilesEx, AdbGetDirFilesAndDirs}) {
    ExpectLs("/r").Prints(folders);
    channel.Otherwise().Prints(File("file"));
    const std::string json = List(lister, "/r");
    EXPECT_EQ(Count(json, "/file\""), kFolders);
    EXPECT_LT(json.find("/r/folder99999/file\""), json.find("/r/folder0/file\"")) << "the last comes first";
  }
  EXPECT_EQ(journal().size(), 2 * (2U + 2 * (1 + kFolders)));
}

TEST_F(DirectoryListingTest, FiveThousandFoldersInEachOther) {
  // Half a gigabyte of indentation: without a side file.
  std::filesystem::create_directory(directory_.side_file());
  constexpr int kDepth = 5000;
  for (const Lister lister : {AdbGetDirFilesEx, AdbGetDirFilesAndDirs}) {
    std::string path = "/r";
    for (int depth = 0; depth < kDepth; ++depth) {
      ExpectLs(path).Prints(Dir("d"));
      path += "/d";
    }
    ExpectLs(path).Prints(File("file"));
    EXPECT_EQ(Count(List(lister, "/r"), "/d/file\""), 1U);
  }
}

}  // namespace
}  // namespace darokleim::test
