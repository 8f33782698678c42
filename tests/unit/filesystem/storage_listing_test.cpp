#include "src/filesystem/storage_listing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "tests/unit/support/device_output.h"

namespace darokleim::sdk {
namespace {

using namespace std::string_literals;
using test::DeviceOutput;
using test::DeviceOutputsIn;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

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

TEST(VolumePathsTest, TheNameStandsBehindTheLastBlank) {
  EXPECT_THAT(VolumePaths("d sdcard_rw my card\n"), ElementsAre("/storage/card"));
  EXPECT_THAT(VolumePaths("d sdcard_rw card \n"), ElementsAre("/storage/")) << "an empty name is one";
  EXPECT_THAT(VolumePaths("sdcard_rw\n"), IsEmpty()) << "no blank, no name";
  EXPECT_THAT(VolumePaths("d\tsdcard_rw\tcard\n"), IsEmpty());
  EXPECT_THAT(VolumePaths("emulated_sdcard_rw\n"), ElementsAre("/storage/emulated/0")) << "needs no blank";
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
}  // namespace darokleim::sdk
