#include <string>

#include "tests/unit/support/device_output.h"
#include "tests/unit/support/sdk_test.h"

namespace darokleim::test {
namespace {

using namespace std::string_literals;

class DirectorySizeTest : public SdkTest {
 protected:
  // busybox is on the device already.
  void ExpectBusybox() {
    channel.Expect(kAskForBusybox).Prints("/data/local/tmp/busybox\n");
    channel.Expect(kMakeBusyboxExecutable).Prints("");
  }

  // The code and the size.
  std::string Size() {
    long long size = 77;
    const int code = AdbGetDirSize("S1", "/sdcard", &size, &cancel);
    return std::to_string(code) + " " + std::to_string(size);
  }

  std::string SizeOf(const std::string& output) {
    ExpectBusybox();
    channel.Expect(kDu).Prints(output).Unterminated();
    return Size();
  }

  static constexpr char kAskForBusybox[] = " -s S1 shell ls \"\"/data/local/tmp/busybox\"\"";
  static constexpr char kMakeBusyboxExecutable[] = " -s S1 shell chmod a+x /data/local/tmp/busybox";
  static constexpr char kDu[] = " -s S1 shell du -s \"\"/sdcard\"\"";
};

TEST_F(DirectorySizeTest, ReadsTheNumberBeforeTheTab) {
  EXPECT_EQ(SizeOf("1234\t/sdcard\r\n"), "0 1234");
  const Journal events = journal();
  EXPECT_EQ(events.front(), Info("AdbGetDirSize Enter."));
  EXPECT_EQ(events.at(events.size() - 3), Ran(kDu));
  EXPECT_EQ(events.at(events.size() - 2), GaveBack());
  EXPECT_EQ(events.back(), Info("AdbGetDirSize Leave, return 0."));
}

TEST_F(DirectorySizeTest, WhatDevicesPrinted) {
  EXPECT_EQ(SizeOf(DeviceOutput("du/nothing2a-dcim.txt")), "0 28946919");
  EXPECT_EQ(SizeOf(DeviceOutput("du/sony-xqdq44-mixed.txt")), "1 0") << "several directories";
  EXPECT_EQ(SizeOf(DeviceOutput("du/generic-x86-du-sh.txt")), "1 0") << "several directories";
  EXPECT_EQ(SizeOf(DeviceOutput("du/pixel-du-hsx.txt")), "1 0") << "spaces instead of a tab";
  EXPECT_EQ(DeviceOutputsIn("du").size(), 4U);
}

TEST_F(DirectorySizeTest, TwoPiecesBetweenTabsAreASize) {
  EXPECT_EQ(SizeOf("12\t/a b/c"), "0 12");
  EXPECT_EQ(SizeOf("\t\t12\t\t\t/sdcard\t"), "0 12") << "empty pieces do not count";
  EXPECT_EQ(SizeOf(" 12 K\t/sdcard"), "0 12");
  EXPECT_EQ(SizeOf("9223372036854775807\t/sdcard"), "0 9223372036854775807");
  EXPECT_EQ(SizeOf("-5\t/sdcard"), "0 -5");
  EXPECT_EQ(SizeOf("du: x\t/sdcard"), "0 0") << "no number reads as 0";
  EXPECT_EQ(SizeOf("1\0002\t/sdcard"s), "0 1");
}

TEST_F(DirectorySizeTest, AnyOtherNumberOfPiecesIsNot) {
  for (const char* output : {"", "1234", "1234 /sdcard\n", "\t", "1234\t", "1\t/a\n2\t/b\n",
                             "du: /sdcard/x: Permission denied\n12\t/sdcard\t\n\n"}) {
    EXPECT_EQ(SizeOf(output), "1 0") << output;
    EXPECT_EQ(journal().back(), Info("AdbGetDirSize Leave, return 1.")) << output;
  }
}

TEST_F(DirectorySizeTest, NullArgumentsAreRefused) {
  long long size = 77;
  EXPECT_EQ(AdbGetDirSize(nullptr, "/sdcard", &size, &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_EQ(AdbGetDirSize("S1", nullptr, &size, &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_EQ(AdbGetDirSize("S1", "/sdcard", nullptr, &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_EQ(size, 77);
  EXPECT_THAT(journal(), ElementsAre(Info("AdbGetDirSize Enter."), Error("AdbGetDirSize, invalid param."),
                                     Info("AdbGetDirSize Enter."), Error("AdbGetDirSize, invalid param."),
                                     Info("AdbGetDirSize Enter."), Error("AdbGetDirSize, invalid param.")));
}

TEST_F(DirectorySizeTest, WithoutBusyboxThereIsNoSizeAndNoLeaveLine) {
  channel.Expect(kAskForBusybox).Prints("error: device 'S1' not found\n").Returns(1001);
  EXPECT_EQ(Size(), "24 0");
  EXPECT_NE(journal().back(), Info("AdbGetDirSize Leave, return 24."));
  channel.Expect(kAskForBusybox).Prints("/data/local/tmp/busybox\n");
  channel.Expect(kMakeBusyboxExecutable).Returns(1001);
  EXPECT_EQ(Size(), "1001 0");
  for (const Event& line : log_lines()) EXPECT_EQ(line.text.find("AdbGetDirSize Leave"), std::string::npos);
}

TEST_F(DirectorySizeTest, APhoneThatVanishesBetweenTwoCommandsHasNoSize) {
  const char* gone = "error: device 'S1' not found\n";
  ExpectBusybox();
  channel.Expect(kDu).Prints(gone).Returns(1001);
  EXPECT_EQ(Size(), "24 0");
  channel.Expect(kAskForBusybox).Prints("/data/local/tmp/busybox\n");
  channel.Expect(kMakeBusyboxExecutable).Prints(gone).Returns(1001);
  EXPECT_EQ(Size(), "24 0");
}

TEST_F(DirectorySizeTest, WithoutOutputTheChannelsValueIsTheCode) {
  for (const int value : {0, 3003}) {
    ExpectBusybox();
    channel.Expect(kDu).Returns(value);
    EXPECT_EQ(Size(), std::to_string(value) + " 0");
    EXPECT_EQ(journal().back(), Info("AdbGetDirSize Leave, return " + std::to_string(value) + "."));
  }
}

TEST_F(DirectorySizeTest, AKnownErrorIsTheCode) {
  EXPECT_EQ(SizeOf("du: /sdcard: No such file or directory\n"), "25 0");
  EXPECT_EQ(journal().back(), Info("AdbGetDirSize Leave, return 25."));
  ExpectBusybox();
  channel.Expect(kDu).Prints("12\t/sdcard").Returns(1001);
  EXPECT_EQ(Size(), "1001 0");
}

TEST_F(DirectorySizeTest, LongPathsAreNotCut) {
  const std::string dir = "/" + std::string(20'000, 'd');
  ExpectBusybox();
  channel.Expect(" -s S1 shell du -s \"\"" + dir + "\"\"").Prints("5\t" + dir + "\n");
  long long size = 0;
  EXPECT_EQ(AdbGetDirSize("S1", dir.c_str(), &size, &cancel), ADB_RESULT_OK);
  EXPECT_EQ(size, 5);
}

}  // namespace
}  // namespace darokleim::test
