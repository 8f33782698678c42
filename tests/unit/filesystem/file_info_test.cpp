#include "src/filesystem/file_info.h"

#include <gtest/gtest.h>

namespace {

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
