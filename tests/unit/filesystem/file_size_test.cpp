#include <string>

#include "tests/unit/support/device_output.h"
#include "tests/unit/support/sdk_test.h"

namespace darokleim::test {
namespace {

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

}  // namespace
}  // namespace darokleim::test
