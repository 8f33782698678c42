#include <string>

#include "tests/unit/support/device_output.h"
#include "tests/unit/support/sdk_test.h"

namespace darokleim::test {
namespace {

constexpr char kCommand[] = " -s S1 shell df /sdcard | grep /";

class FreeSpaceTest : public SdkTest {
 protected:
  unsigned long long FreeSpace(int expected_code) {
    unsigned long long bytes = 77;
    EXPECT_EQ(AdbGetStorageFreeSpace("S1", "/sdcard", &bytes, &cancel), expected_code);
    return bytes;
  }
};

TEST_F(FreeSpaceTest, OfTheFirstRow) {
  const std::string row = "/dev/fuse 5.0G 1.2G 3.8G 24% /storage/emulated\n";
  channel.Expect(kCommand).Prints(row);
  EXPECT_EQ(FreeSpace(ADB_RESULT_OK), 4080218931ULL);
  EXPECT_THAT(journal(),
              ElementsAre(Info("AdbGetStorageFreeSpace Enter."), Ran(kCommand), Info("out buf: " + row),
                          GaveBack(), Info("AdbGetStorageFreeSpace Leave, return 0.")));
}

TEST_F(FreeSpaceTest, ANullArgumentIsRefused) {
  unsigned long long bytes = 77;
  EXPECT_EQ(AdbGetStorageFreeSpace(nullptr, "/sdcard", &bytes, &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_EQ(AdbGetStorageFreeSpace("S1", nullptr, &bytes, &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_EQ(AdbGetStorageFreeSpace("S1", "/sdcard", nullptr, &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_EQ(bytes, 77U);
  EXPECT_EQ(journal().size(), 6U);
  EXPECT_EQ(journal().back(), Error("AdbGetStorageFreeSpace, invalid param."));
}

TEST_F(FreeSpaceTest, TheNumberIsZeroBeforeTheCommandRuns) {
  unsigned long long bytes = 77;
  channel.Expect(kCommand).Returns(3003).Meanwhile([&] { EXPECT_EQ(bytes, 0U); });
  EXPECT_EQ(AdbGetStorageFreeSpace("S1", "/sdcard", &bytes, &cancel), 3003);
}

TEST_F(FreeSpaceTest, WithoutOutputTheChannelsValueIsTheCode) {
  channel.Expect(kCommand).Returns(3003);
  EXPECT_EQ(FreeSpace(3003), 0U);
  EXPECT_THAT(journal(), ElementsAre(Info("AdbGetStorageFreeSpace Enter."), Ran(kCommand),
                                     Info("out buf empty, serial S1"),
                                     Info("AdbGetStorageFreeSpace Leave, return 3003.")));
  channel.Expect(kCommand);
  EXPECT_EQ(FreeSpace(0), 0U);
}

TEST_F(FreeSpaceTest, AnErrorIsLoggedWithItsText) {
  const std::string text = "df: /nope: No such file or directory\n";
  channel.Expect(kCommand).Prints(text).Returns(1001);
  EXPECT_EQ(FreeSpace(ADB_RESULT_NO_SUCH_FILE), 0U);
  EXPECT_THAT(journal(), ElementsAre(Info("AdbGetStorageFreeSpace Enter."), Ran(kCommand),
                                     Info("out buf: " + text), Error("ret is 1001,outbuf is:" + text),
                                     GaveBack(), Info("AdbGetStorageFreeSpace Leave, return 25.")));
  channel.Expect(kCommand).Prints("/dev/fuse 5.0G 1.2G 3.8G 24% /storage/emulated\n").Returns(5);
  EXPECT_EQ(FreeSpace(5), 0U);
}

TEST_F(FreeSpaceTest, ThreeWordsAreNoRow) {
  channel.Expect(kCommand).Prints("/dev/fuse 5.0G 1.2G\n");
  EXPECT_EQ(FreeSpace(ADB_RESULT_PROTOCOL_FAULT), 0U);
  EXPECT_THAT(journal(), ElementsAre(Info("AdbGetStorageFreeSpace Enter."), Ran(kCommand),
                                     Info("out buf: /dev/fuse 5.0G 1.2G\n"),
                                     Info("AdbGetStorageFreeSpace Execute Command Failed. Output is Invalid"),
                                     GaveBack(), Info("AdbGetStorageFreeSpace Leave, return 1.")));
  channel.Expect(kCommand).Prints("");
  EXPECT_EQ(FreeSpace(ADB_RESULT_PROTOCOL_FAULT), 0U);
}

TEST_F(FreeSpaceTest, ThePathIsNeitherQuotedNorCut) {
  const std::string path = "/a b$(x)'" + std::string(1'000'000, 'p');
  channel.Expect(" -s S1 shell df " + path + " | grep /").Prints("a b c 1M\r\n").Unterminated();
  unsigned long long bytes = 77;
  EXPECT_EQ(AdbGetStorageFreeSpace("S1", path.c_str(), &bytes, &cancel), ADB_RESULT_OK);
  EXPECT_EQ(bytes, 1048576U);
}

TEST_F(FreeSpaceTest, RealRefusals) {
  channel.Expect(kCommand).Prints(DeviceOutput("misc-shell/grep-not-found.txt"));
  EXPECT_EQ(FreeSpace(ADB_RESULT_SHELL_NOT_FOUND), 0U);
  channel.Expect(kCommand).Prints(DeviceOutput("df/huawei-mya-6.0-df-h-unsupported.txt"));
  EXPECT_EQ(FreeSpace(ADB_RESULT_NO_SUCH_FILE), 0U);
}

}  // namespace
}  // namespace darokleim::test
