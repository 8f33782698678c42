#include "src/filesystem/df_output.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "tests/unit/support/device_output.h"

namespace darokleim::sdk {
namespace {

using namespace std::string_literals;
using test::DeviceOutput;
using test::DeviceOutputsIn;

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

TEST(FreeBytesTest, FewerWordsAreNoRow) {
  for (const char* text : {"", "\n", " ", "a", "a b c", "a  b  c  ", "a\nb\nc\nd", "a\tb\tc\td"}) {
    EXPECT_FALSE(FreeBytes(text)) << text;
  }
}

TEST(FreeBytesTest, ALineEndBelongsToItsWord) {
  EXPECT_EQ(FreeBytes("a b c 5\r\n"), 5ULL * 1024);
  EXPECT_EQ(FreeBytes("a b c 5\nGigantic 1"), 5 * kGiB) << "with the letters behind it";
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
  // What the table says is free, in KiB, or -1 where no row is left.
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

}  // namespace
}  // namespace darokleim::sdk
