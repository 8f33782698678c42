#include "src/filesystem/find_listing.h"

#include <gtest/gtest.h>

#include <random>
#include <stdexcept>

#include "tests/support/plain_listing.h"
#include "tests/unit/support/device_output.h"

namespace darokleim::test {
namespace {

using namespace std::string_literals;

bool DecodeFind(const std::string& text, std::list<FileInfo>* files) {
  return DecodeFindOut(text.data(), static_cast<int>(text.size()), files);
}

// The paths found, each followed by "|"; "none" when the text has no line.
std::string Found(const std::string& text) {
  std::list<FileInfo> files;
  if (!DecodeFind(text, &files)) return files.empty() ? "none" : "none, but with records";
  std::string paths;
  for (const FileInfo& file : files) {
    EXPECT_EQ(file, (FileInfo{0, 0, file.file, "", 0}));
    paths += file.file + "|";
  }
  return paths;
}

TEST(FindListingTest, PathsAmongOtherLines) {
  EXPECT_EQ(Found("\r\r\n/sdcard/a.jpg\r\r\nfind: /sdcard/b: Permission denied\r\r\n"), "/sdcard/a.jpg|");
  EXPECT_EQ(Found("/sdcard/a b\n\n/sdcard/c\n"), "/sdcard/a b|/sdcard/c|");
  EXPECT_EQ(Found("/"), "/|");
}

TEST(FindListingTest, LineBreaksOfEveryPhone) {
  EXPECT_EQ(Found("/a\n/b\n"), "/a|/b|");
  EXPECT_EQ(Found("/a\r\n/b\r\n"), "/a|/b|");
  EXPECT_EQ(Found("/a\r\r\n/b\r\r\n"), "/a|/b|");
  EXPECT_EQ(Found("/a\r\r\r\n/b"), "/a|/b|");
  EXPECT_EQ(Found("/a\r\r\r\r\r\n/b"), "/a\r\r|/b|") << "three are taken";
}

TEST(FindListingTest, CarriageReturnsInsideOrAtTheEndStay) {
  EXPECT_EQ(Found("/a\rb\n/c\r"), "/a\rb|/c\r|");
  EXPECT_EQ(Found("/a\r\n\r"), "/a|");
}

TEST(FindListingTest, NoLineAtAll) {
  for (const auto* text : {"", "\n", "\n\n", "\r\n", "\r\r\n\n", "\r\r\r\n"}) EXPECT_EQ(Found(text), "none");
}

TEST(FindListingTest, LinesWithoutAPath) {
  EXPECT_EQ(Found("find: bad arg '-x'"), "");
  EXPECT_EQ(Found("\r"), "");
  EXPECT_EQ(Found(" /a"), "");
  EXPECT_EQ(Found("\r\r\r\r\n"), "");
}

TEST(FindListingTest, AnyBytes) {
  EXPECT_EQ(Found("/a\0b\n/\xe6\xb7\xff\n\0/c\n"s), "/a\0b|/\xe6\xb7\xff|"s);
}

TEST(FindListingTest, ReadsNoFurtherThanItsLength) {
  std::list<FileInfo> files;
  EXPECT_TRUE(DecodeFindOut("/abc\n/d", 3, &files));
  EXPECT_EQ(files, (std::list<FileInfo>{{0, 0, "/ab", "", 0}}));
  EXPECT_FALSE(DecodeFindOut("/abc", 0, &files));
}

TEST(FindListingTest, AppendsToWhatIsThere) {
  std::list<FileInfo> files{{1, 2, "there", "t", 3}};
  EXPECT_TRUE(DecodeFind("/a", &files));
  EXPECT_EQ(files, (std::list<FileInfo>{{1, 2, "there", "t", 3}, {0, 0, "/a", "", 0}}));
}

TEST(FindListingTest, NegativeLengthIsALengthError) {
  std::list<FileInfo> files;
  EXPECT_THROW(DecodeFindOut("/a", -1, &files), std::length_error);
  EXPECT_TRUE(files.empty());
}

TEST(FindListingTest, WhatDevicesPrinted) {
  EXPECT_EQ(DeviceOutputsIn("find"),
            (std::set<std::string>{"find/permission-denied-quoted.txt", "find/permission-denied-unquoted.txt",
                                   "find/reprise-empty-ls-ld.txt"}));
  EXPECT_EQ(Found(DeviceOutput("find/permission-denied-quoted.txt")), "/sdcard/DCIM/photo.jpg|");
  EXPECT_EQ(Found(DeviceOutput("find/permission-denied-unquoted.txt")), "");
  EXPECT_EQ(Found(DeviceOutput("find/reprise-empty-ls-ld.txt")), "");
}

TEST(FindListingTest, SameAsThePlainForm) {
  const std::string pieces[] = {"\r", "\n", "\r\n", "\r\r\n", "/", "a", "find: x", "\0"s, " ", "\xff"};
  std::mt19937 random(1);
  int records = 0;
  for (int i = 0; i < 300'000; ++i) {
    std::string text;
    for (auto left = random() % 14; left > 0; --left) text += pieces[random() % std::size(pieces)];
    std::list<FileInfo> files, plain;
    ASSERT_EQ(DecodeFind(text, &files), PlainDecodeFindOut(text, &plain)) << ::testing::PrintToString(text);
    ASSERT_EQ(files, plain) << ::testing::PrintToString(text);
    records += static_cast<int>(files.size());
  }
  EXPECT_GT(records, 50'000);
}

}  // namespace
}  // namespace darokleim::test
