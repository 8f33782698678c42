#include "src/filesystem/adb_ls_listing.h"

#include <gtest/gtest.h>

#include <random>
#include <stdexcept>

#include "src/filesystem/file_info.h"
#include "tests/support/plain_listing.h"
#include "tests/unit/filesystem/local_zone.h"

namespace darokleim::test {
namespace {

using namespace std::string_literals;

using Records = std::vector<FileInfo>;

class AdbLsListingTest : public ::testing::Test {
 protected:
  static Records Decode(const std::string& text) {
    return DecodeADBLSOut("/sdcard", text.data(), static_cast<int>(text.size()));
  }

  static void ExpectSameAsPlain(const std::string& text) {
    ASSERT_EQ(Decode(text), PlainDecodeADBLSOut("/sdcard", text)) << ::testing::PrintToString(text);
  }

  const LocalZone zone_{"UTC0"};
};

TEST_F(AdbLsListingTest, FilesAndDirectories) {
  EXPECT_EQ(Decode("000041f9 00001000 5e0b7a11 DCIM\n000081b0 0000000a 5e0b7a10 a.txt\n"),
            (Records{{0x1000, 0x41F9, "/sdcard/DCIM", "2019-12-31 16:40:49", 0x5E0B7A11},
                     {10, 0x81B0, "/sdcard/a.txt", "2019-12-31 16:40:48", 0x5E0B7A10}}));
}

TEST_F(AdbLsListingTest, TimesAreThoseOfTheHost) {
  const LocalZone tokyo("JST-9");
  EXPECT_EQ(Decode("000081b0 0000000a 5e0b7a10 a.txt").at(0).time, "2020-01-01 01:40:48");
}

TEST_F(AdbLsListingTest, DotAndDotDotGiveNoRecord) {
  const std::string columns = "000041f9 00001000 5e0b7a10 ";
  EXPECT_EQ(Decode(columns + ".\n" + columns + "..\n"), Records());
  EXPECT_EQ(Decode(columns + "ab\n").size(), 1U);
  EXPECT_EQ(Decode(columns + ".a\n" + columns + "a.\n").size(), 0U) << "taken for ..";
  EXPECT_EQ(Decode(columns + "a\n").size(), 1U);
  EXPECT_EQ(Decode(columns + ".ab\n").size(), 1U);
  EXPECT_EQ(Decode("000041f9 0000.000 5e0b7a10 ab\n").size(), 0U) << "a dot anywhere in 29 characters";
  EXPECT_EQ(Decode("000041f9 0000.000 5e0b7a10 a\n").size(), 1U) << "in 28, at the end alone";
}

TEST_F(AdbLsListingTest, CarriageReturnsStay) {
  const std::string columns = "000041f9 00001000 5e0b7a10 ";
  EXPECT_EQ(Decode(columns + ".\r\n"), Records()) << "29 characters with a dot";
  EXPECT_EQ(Decode(columns + "..\r\n").at(0).file, "/sdcard/..\r");
  EXPECT_EQ(Decode(columns + "a\r\n").at(0).file, "/sdcard/a\r");
}

TEST_F(AdbLsListingTest, ShortLinesGiveNoRecord) {
  const std::string line = "000041f9 00001000 5e0b7a10 a";
  for (std::size_t length = 0; length < line.size(); ++length) {
    EXPECT_EQ(Decode(line.substr(0, length) + "\n"), Records()) << length;
  }
  EXPECT_EQ(Decode(""), Records());
  EXPECT_EQ(Decode("\n\n"), Records());
  EXPECT_EQ(Decode("adb: error: no such file"), Records());
}

TEST_F(AdbLsListingTest, TheDirectoryIsTakenAsItIs) {
  const std::string line = "000081b0 0000000a 5e0b7a10 a b ";
  const auto path = [&](const std::string& dir) {
    return DecodeADBLSOut(dir, line.data(), static_cast<int>(line.size())).at(0).file;
  };
  EXPECT_EQ(path("/sdcard/"), "/sdcard//a b ");
  EXPECT_EQ(path(""), "/a b ");
  EXPECT_EQ(path("\xff\0x"s), "\xff\0x/a b "s);
}

TEST_F(AdbLsListingTest, NumbersAsStrtoulReadsThem) {
  // 40 digits are the largest number: cut to 32 bits for the mode. The time is out of range, but as a signed
  // number it is the second before 1970.
  const std::string digits(40, 'f');
  EXPECT_EQ(Decode(digits + " " + digits + " " + digits + " a"),
            (Records{{~0ULL, ~0U, "/sdcard/a", "1969-12-31 23:59:59", ~0ULL}}));
  EXPECT_EQ(Decode("  0x1F  -1 \t+0X10                a"),
            (Records{{~0ULL, 0x1F, "/sdcard/" + std::string(15, ' ') + "a", "1970-01-01 00:00:16", 0x10}}));
  EXPECT_EQ(Decode("123456781 000000002 000000003 a"),
            (Records{{2, 0x23456781, "/sdcard/a", "1970-01-01 00:00:03", 3}}));
  EXPECT_EQ(Decode("0000000100000002 00000003 00000004 a"),
            (Records{{3, 2, "/sdcard/a", "1970-01-01 00:00:04", 4}}));
  EXPECT_EQ(Decode("nothing here is a hexadecimal number"),
            (Records{{0, 0, "/sdcard/othing here is a hexadecimal number", "1970-01-01 00:00:00", 0}}))
      << "without a digit each starts where the line does";
}

TEST_F(AdbLsListingTest, AnyCharacterSeparatesTheThirdNumberFromTheName) {
  EXPECT_EQ(Decode("000081b0 0000000a 00000001xab").at(0).file, "/sdcard/ab");
  EXPECT_EQ(Decode("000081b0 0000000a 00000001  ab").at(0).file, "/sdcard/ ab");
  EXPECT_EQ(Decode("000081b0 0000000a 0000000001 ").at(0).file, "/sdcard/");
  EXPECT_EQ(Decode("000081b0 0000000a 0000000001").at(0).file, "/sdcard/") << "no name";
  EXPECT_EQ(Decode("000081b0 0000000a 0000000001\n000081b0 0000000a 00000001 b").at(0).file, "/sdcard/")
      << "and the next line is not looked at";
}

TEST_F(AdbLsListingTest, WhiteSpaceDoesNotContinueIntoTheNextLine) {
  const std::string spaces(30, ' ');
  EXPECT_EQ(Decode(spaces + "\n000081b0 0000000a 00000001 b").at(0),
            (FileInfo{0, 0, "/sdcard/" + std::string(29, ' '), "1970-01-01 00:00:00", 0}));
}

TEST_F(AdbLsListingTest, ZeroBytesEndANumberAndStayInNames) {
  EXPECT_EQ(Decode("000081b0 0000000a 00000001 a\0b"s).at(0).file, "/sdcard/a\0b"s);
  EXPECT_EQ(Decode("000081b0 0000000a 00000001\0ab"s).at(0).file, "/sdcard/ab"s);
  EXPECT_EQ(Decode("00\0"s + std::string(27, '1')),
            (Records{{0, 0, "/sdcard/" + std::string(27, '1'), "1970-01-01 00:00:00", 0}}));
}

TEST_F(AdbLsListingTest, TimesPastEveryCalendarHaveNoText) {
  EXPECT_EQ(Decode("000081b0 0000000a 7fffffffffffffff a").at(0),
            (FileInfo{10, 0x81B0, "/sdcard/a", "", 0x7FFFFFFFFFFFFFFF}));
  EXPECT_EQ(Decode("000081b0 0000000a 3afff44180 a").at(0).time, "10000-01-01 00:00:00");
}

TEST_F(AdbLsListingTest, ReadsNoFurtherThanItsLength) {
  const char text[] = "000081b0 0000000a 00000001 abc";
  EXPECT_EQ(DecodeADBLSOut("/d", text, 28).at(0).file, "/d/a");
  EXPECT_EQ(DecodeADBLSOut("/d", text, 0), Records());
  EXPECT_THROW(DecodeADBLSOut("/d", text, -1), std::length_error);
}

TEST_F(AdbLsListingTest, ANameOfAMillionCharacters) {
  const std::string name(1'000'000, 'n');
  EXPECT_EQ(Decode("000081b0 0000000a 00000001 " + name).at(0).file, "/sdcard/" + name);
}

TEST_F(AdbLsListingTest, SameAsThePlainForm) {
  const LocalZone zone("CET-1CEST,M3.5.0,M10.5.0/3");
  const std::string pieces[] = {"000081b0",
                                "0000000A",
                                "5e0b7a10",
                                "00000000",
                                "ffffffff",
                                "0x1f",
                                "0x",
                                "-1",
                                "+",
                                "1234567890123456789012345678901234567890",
                                " ",
                                " ",
                                " ",
                                " ",
                                " ",
                                "\n",
                                "\n",
                                "\t",
                                "\r",
                                "\0"s,
                                ".",
                                "..",
                                "a",
                                "g",
                                "name",
                                "\xff",
                                "000081b0 0000000a 5e0b7a10 ",
                                "000041f9 ffffffff 62439f90 "};
  std::mt19937 random(1);
  std::size_t records = 0;
  for (int i = 0; i < 300'000; ++i) {
    std::string text;
    for (auto left = random() % 16; left > 0; --left) text += pieces[random() % std::size(pieces)];
    ASSERT_NO_FATAL_FAILURE(ExpectSameAsPlain(text));
    records += Decode(text).size();
  }
  EXPECT_GT(records, 100'000U);
}

TEST_F(AdbLsListingTest, LinesWithAByteChangedSameAsThePlainForm) {
  const std::string line = "000081b0 0000000a 5e0b7a10 ab";
  for (std::size_t at = 0; at < line.size(); ++at) {
    for (int byte = 0; byte < 256; ++byte) {
      std::string changed = line;
      changed[at] = static_cast<char>(byte);
      ASSERT_NO_FATAL_FAILURE(ExpectSameAsPlain(changed));
      changed.insert(at, 1, line[at]);
      ASSERT_NO_FATAL_FAILURE(ExpectSameAsPlain(changed));
    }
  }
}

TEST(FileInfoTest, BeginsEmpty) {
  const FileInfo info;
  EXPECT_EQ(info.size, 0U);
  EXPECT_EQ(info.mode, 0U);
  EXPECT_EQ(info.file, "");
  EXPECT_EQ(info.time, "");
  EXPECT_EQ(info.utc_timestamp, 0U);
}

TEST(CheckIsDirTest, LooksAtOneBit) {
  EXPECT_TRUE(CheckIsDir(0x41F9));
  EXPECT_FALSE(CheckIsDir(0x81B0));
  EXPECT_TRUE(CheckIsDir(0x4000)) << "no permissions";
  EXPECT_TRUE(CheckIsDir(0x61B0)) << "a block device";
  EXPECT_TRUE(CheckIsDir(0xC1ED)) << "a socket";
  EXPECT_FALSE(CheckIsDir(0xA1FF)) << "a link";
  EXPECT_FALSE(CheckIsDir(0));
  EXPECT_FALSE(CheckIsDir(~0x4000U));
  EXPECT_TRUE(CheckIsDir(~0U));
}

}  // namespace
}  // namespace darokleim::test
