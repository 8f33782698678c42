#include "src/filesystem/storage_output.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "tests/unit/support/device_output.h"

namespace darokleim::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using namespace sdk;
using namespace std::string_literals;

constexpr unsigned long long kGiB = 1073741824;
constexpr unsigned long long kMiB = 1048576;

TEST(FreeBytesTest, TheFourthWord) {
  EXPECT_EQ(FreeBytes("/dev/fuse 5.0G 1.2G 3.8G 24% /storage/emulated\n"), 4080218931ULL);
  EXPECT_EQ(FreeBytes("/dev/fuse  114786388 87698840  26956476  77% /storage/emulated\n"),
            26956476ULL * 1024);
  EXPECT_EQ(FreeBytes("/data 1G 1G 512M"), 512 * kMiB);
  EXPECT_EQ(FreeBytes("   a   b   c   1K   d"), 1024ULL);
  EXPECT_EQ(FreeBytes("a b c d e"), 0ULL);
}

TEST(FreeBytesTest, FewerWordsAreNotARow) {
  for (const char* text : {"", "\n", " ", "a", "a b c", "a  b  c  ", "a\nb\nc\nd", "a\tb\tc\td"}) {
    EXPECT_FALSE(FreeBytes(text)) << text;
  }
}

TEST(FreeBytesTest, ALineBreakIsPartOfItsWord) {
  EXPECT_EQ(FreeBytes("a b c 5\r\n"), 5ULL * 1024);
  EXPECT_EQ(FreeBytes("a b c 5\nGigantic 1"), 5 * kGiB) << "with the letters after it";
  EXPECT_EQ(FreeBytes("/a 1\n/b 2\n/c 3 4"), 3ULL * 1024) << "a row may be short";
}

TEST(FreeBytesTest, OddTexts) {
  EXPECT_EQ(FreeBytes("\xff \xfe \0 1M"s), kMiB);
  EXPECT_EQ(FreeBytes("a b c " + std::string(40, '9') + " x"), 0xFFFFFFFFFFFFFC00ULL);
  EXPECT_EQ(FreeBytes("a b c " + std::string(1'000'000, '1') + " x"), 0xFFFFFFFFFFFFFC00ULL);
  EXPECT_EQ(FreeBytes(std::string(1'000'000, ' ') + "a b c 1M x"), kMiB);
}

// The rows that `grep /` leaves of each real table.
std::string Rows(const std::string& sample) {
  std::string rows;
  const std::string table = DeviceOutput(sample);
  for (std::size_t begin = 0, end; begin < table.size(); begin = end) {
    end = std::min(table.find('\n', begin), table.size() - 1) + 1;
    const std::string line = table.substr(begin, end - begin);
    if (line.find('/') != std::string::npos) rows += line;
  }
  return rows;
}

TEST(FreeBytesTest, RealOutputs) {
  // The free space in the table, in KiB, or -1 where no row is left.
  const std::map<std::string, long long> free_of_first_row = {
      {"df/df-data-toolbox.txt", 5033164},        // 4.8G
      {"df/generic-x86-toolbox-df.txt", 775782},  // 757.6M of /dev
      {"df/huawei-mya-6.0-df-h-unsupported.txt", -1},
      {"df/mobileharness-data.txt", 2202009},  // 2.1G
      {"df/mobileharness-negative.txt", 0},    // -1.0K
      {"df/pixel9-a17-df-k-all-head.txt", 0},  // of /, which is full
      {"df/pixel9-a17-df-k-missing-stdout.txt", -1},
      {"df/pixel9-a17-df-k-root.txt", 0},
      {"df/pixel9-a17-df-k-sdcard.txt", 26956476},
      {"df/pixel9-a17-df-k-three-paths.txt", 26952112},
      {"df/tradefed-toybox-tab-in-header.txt", 10269188},
      {"df/tradefed-toybox-uuid.txt", 31054112},
      {"df/xiaomi-sagit-9-df-h.txt", 2726297},  // 2.6G
      {"df/xiaomi-sagit-9-df.txt", 2822012},
  };
  const auto samples = DeviceOutputsIn("df");
  EXPECT_EQ(samples.size(), free_of_first_row.size());
  for (const std::string& sample : samples) {
    const auto found = FreeBytes(Rows(sample));
    EXPECT_EQ(found ? static_cast<long long>(*found / 1024) : -1, free_of_first_row.at(sample)) << sample;
  }
}

TEST(VolumePathsTest, InternalAndCardInTheOrderOfTheLines) {
  const std::string listing =
      "total 0\n"
      "drwxrwx--x 4 root sdcard_rw 4096 2020-01-01 00:00 emulated\n"
      "drwxrwx--x 4 root sdcard_rw 4096 2020-01-01 00:00 1234-5678\n";
  EXPECT_THAT(VolumePaths(listing), ElementsAre("/storage/emulated/0", "/storage/1234-5678"));
  EXPECT_EQ(CardPath(listing), "/storage/1234-5678");
}

TEST(VolumePathsTest, ThreeGroupsOwnSharedStorage) {
  EXPECT_THAT(VolumePaths("d root sdcard_rw a\nd root everybody b\nd media_rw c\nd root root self\n"),
              ElementsAre("/storage/a", "/storage/b", "/storage/c"));
}

TEST(VolumePathsTest, NothingIsSortedOut) {
  EXPECT_THAT(
      VolumePaths(
          "d sdcard_rw b\nd sdcard_rw emulated\nd everybody emulated\nd sdcard_rw a\nd sdcard_rw b\n"),
      ElementsAre("/storage/b", "/storage/emulated/0", "/storage/emulated/0", "/storage/a", "/storage/b"));
}

TEST(VolumePathsTest, TheNameFollowsTheLastSpace) {
  EXPECT_THAT(VolumePaths("d sdcard_rw my card\n"), ElementsAre("/storage/card"));
  EXPECT_THAT(VolumePaths("d sdcard_rw card \n"), ElementsAre("/storage/")) << "an empty name is one";
  EXPECT_THAT(VolumePaths("sdcard_rw\n"), IsEmpty()) << "no space, no name";
  EXPECT_THAT(VolumePaths("d\tsdcard_rw\tcard\n"), IsEmpty());
  EXPECT_THAT(VolumePaths("emulated_sdcard_rw\n"), ElementsAre("/storage/emulated/0"))
      << "does not need a space";
  EXPECT_THAT(VolumePaths("d sdcard_rw sdcard1 -> /mnt/sdcard1"), ElementsAre("/storage//mnt/sdcard1"));
}

TEST(VolumePathsTest, OlderNamesCountWhenNoGroupIsKnown) {
  EXPECT_THAT(VolumePaths("d root root self\nl root root sdcard0 -> /sdcard\n"),
              ElementsAre("/storage/sdcard0"));
  EXPECT_THAT(VolumePaths("d root sdcard_r card\nsdcard0\n"),
              ElementsAre("/storage/card", "/storage/sdcard0"));
  EXPECT_THAT(VolumePaths("d root sdcard_r sdcard0\n"), ElementsAre("/storage/sdcard0")) << "once";
  EXPECT_THAT(VolumePaths("sdcard_r\n"), IsEmpty());
  EXPECT_THAT(VolumePaths("sdcard_rw\nx sdcard0\n"), ElementsAre("/storage/sdcard0"))
      << "a group in a line without a name adds nothing";
  EXPECT_THAT(VolumePaths("d sdcard_rw a\nx sdcard0\nd sdcard_r b\n"), ElementsAre("/storage/a"))
      << "not beside a known group";
}

TEST(VolumePathsTest, NothingKnown) {
  for (const std::string& listing :
       {""s, "\n\n"s, "ls: /storage: No such file or directory\n"s, "x"s, "\0"s}) {
    EXPECT_THAT(VolumePaths(listing), IsEmpty()) << listing;
    EXPECT_EQ(CardPath(listing), "");
  }
}

TEST(VolumePathsTest, ACarriageReturnStaysInTheName) {
  EXPECT_THAT(VolumePaths("d sdcard_rw emulated\r\nd sdcard_rw card\r\n"),
              ElementsAre("/storage/emulated/0", "/storage/card\r"));
  EXPECT_EQ(CardPath("d sdcard_rw emulated\r\nd sdcard_rw card\r\n"), "/storage/card\r");
}

TEST(VolumePathsTest, OddTexts) {
  EXPECT_THAT(VolumePaths("d sdcard_rw \xff\0x\n"s), ElementsAre("/storage/\xff\0x"s));
  const std::string name(1'000'000, 'n');
  EXPECT_THAT(VolumePaths("d sdcard_rw " + name), ElementsAre("/storage/" + name));
  EXPECT_EQ(CardPath("d sdcard_rw " + name), "/storage/" + name);
}

TEST(VolumePathsTest, AHundredThousandLines) {
  std::string listing;
  for (int i = 0; i < 100'000; ++i) listing += "d sdcard_rw v" + std::to_string(i) + "\n";
  const auto paths = VolumePaths(listing);
  ASSERT_EQ(paths.size(), 100'000U);
  EXPECT_EQ(paths.back(), "/storage/v99999");
}

TEST(CardPathTest, TheFirstLineThatQualifies) {
  EXPECT_EQ(CardPath("d sdcard_r a\nd sdcard_rw b\n"), "/storage/a");
  EXPECT_EQ(CardPath("d sdcard_r emulated\nsdcard_r\nd sdcard_r b\n"), "/storage/b");
  EXPECT_EQ(CardPath("d sdcard_r \nd sdcard_r b\n"), "/storage/") << "an empty name is one";
  EXPECT_EQ(CardPath("d everybody a\nd media_rw b\nx sdcard0\n"), "") << "not by the newer groups";
}

TEST(StorageListingTest, RealOutputs) {
  const struct {
    const char* sample;
    std::vector<std::string> volumes;
    const char* card;
  } cases[] = {
      // The link has another group, and beside the known one its name does not count.
      {"ls-storage/hikvision-like-sdcard0-link.txt", {"/storage/emulated/0"}, ""},
      {"ls-storage/pixel-sdcard-link.txt", {}, ""},
      {"ls-storage/termux5320-storage.txt", {"/storage/1A2B-3C4D", "/storage/emulated/0"}, ""},
  };
  EXPECT_EQ(DeviceOutputsIn("ls-storage").size(), std::size(cases));
  for (const auto& c : cases) {
    EXPECT_EQ(VolumePaths(DeviceOutput(c.sample)), c.volumes) << c.sample;
    EXPECT_EQ(CardPath(DeviceOutput(c.sample)), c.card) << c.sample;
  }
}

}  // namespace
}  // namespace darokleim::test
