#include <cstring>
#include <string>

#include "tests/unit/support/device_output.h"
#include "tests/unit/support/sdk_test.h"

namespace darokleim::test {
namespace {

constexpr char kAbsent[] = "stat: No such file or directory\n";
constexpr char kPresent[] = "  File: `/sdcard'\n  Size: 11\n";

std::string Stat(const std::string& path) {
  return " -s S1 shell stat \"" + path + "\"";
}

class FirstStorageTest : public SdkTest {
 protected:
  std::string First(int expected_code) {
    char buffer[16] = "before";
    EXPECT_EQ(AdbGetFirstSDCardPath("S1", buffer, sizeof buffer, &cancel), expected_code);
    return buffer;
  }
};

TEST_F(FirstStorageTest, TheFirstCandidateTakesOneCommand) {
  channel.Expect(Stat("/sdcard")).Prints(kPresent);
  EXPECT_EQ(First(ADB_RESULT_OK), "/sdcard");
  EXPECT_THAT(journal(), ElementsAre(Info("AdbGetFirstSDCardPath Enter."), Ran(Stat("/sdcard")), GaveBack(),
                                     Info("AdbGetFirstSDCardPath Leave, return 0.")));
}

TEST_F(FirstStorageTest, TheThirdTakesThree) {
  channel.Expect(Stat("/sdcard")).Prints(kAbsent);
  channel.Expect(Stat("/sdcard0")).Prints(kAbsent).Returns(1001);
  channel.Expect(Stat("/sdcard1")).Prints(kPresent);
  EXPECT_EQ(First(ADB_RESULT_OK), "/sdcard1");
  EXPECT_THAT(
      journal(),
      ElementsAre(Info("AdbGetFirstSDCardPath Enter."), Ran(Stat("/sdcard")), GaveBack(),
                  Ran(Stat("/sdcard0")), Error(std::string("ret is 1001,outbuf is:") + kAbsent), GaveBack(),
                  Ran(Stat("/sdcard1")), GaveBack(), Info("AdbGetFirstSDCardPath Leave, return 0.")))
      << "each buffer goes back before the next command";
}

TEST_F(FirstStorageTest, AllElevenAreTried) {
  channel.Expect(Stat("/sdcard")).Prints(kAbsent);
  for (char digit = '0'; digit <= '8'; ++digit) {
    channel.Expect(Stat(std::string("/sdcard") + digit)).Prints(kAbsent);
  }
  channel.Expect(Stat("/sdcard9")).Prints("");
  EXPECT_EQ(First(ADB_RESULT_OK), "/sdcard9") << "an empty text is no error";
}

TEST_F(FirstStorageTest, TheLastAttemptIsTheCode) {
  channel.Expect(Stat("/sdcard")).Prints("device unauthorized");
  for (char digit = '0'; digit <= '8'; ++digit) {
    channel.Expect(Stat(std::string("/sdcard") + digit)).Prints(kAbsent);
  }
  channel.Expect(Stat("/sdcard9")).Prints("odd").Returns(1001);
  EXPECT_EQ(First(1001), "before");
  EXPECT_EQ(journal().back(), Info("AdbGetFirstSDCardPath Leave, return 1001."));
}

TEST_F(FirstStorageTest, WithoutOutputTheNextIsTried) {
  channel.Expect(Stat("/sdcard")).Returns(0);
  channel.Expect(Stat("/sdcard0")).Returns(ADB_RESULT_NO_DEVICE);
  channel.Expect(Stat("/sdcard1")).Prints(kPresent);
  EXPECT_EQ(First(ADB_RESULT_OK), "/sdcard1");
  channel.Otherwise().Returns(3003);
  EXPECT_EQ(First(3003), "before");
  EXPECT_EQ(journal().size(), 2U + 3 + 1 + 2 + 11);
}

TEST_F(FirstStorageTest, WithoutOutputButContentAtTheEndNothingIsFound) {
  channel.Otherwise().Returns(0);
  EXPECT_EQ(First(0), "before");
}

TEST_F(FirstStorageTest, AnAbsentDeviceEndsTheSearch) {
  channel.Expect(Stat("/sdcard")).Prints(kAbsent);
  channel.Expect(Stat("/sdcard0")).Prints("error: device 'S1' not found\n").Returns(1001);
  EXPECT_EQ(First(ADB_RESULT_NO_DEVICE), "before");
  EXPECT_EQ(journal().back(), Info("AdbGetFirstSDCardPath Leave, return 24."));
}

TEST_F(FirstStorageTest, ANullTextIsRefused) {
  char buffer[] = "before";
  EXPECT_EQ(AdbGetFirstSDCardPath(nullptr, buffer, 16, &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_EQ(AdbGetFirstSDCardPath("S1", nullptr, 16, &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_EQ(AdbGetFirstSDCardPath("S1", nullptr, 0, &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_STREQ(buffer, "before");
  EXPECT_EQ(journal().back(), Error("AdbGetFirstSDCardPath, invalid param."));
}

TEST_F(FirstStorageTest, NineBytesAreEnough) {
  for (const int size : {8, 7, 1, 0, -1}) {
    char buffer[] = "before";
    EXPECT_EQ(AdbGetFirstSDCardPath("S1", buffer, size, &cancel), ADB_RESULT_BUFFER_TOO_SMALL);
    EXPECT_STREQ(buffer, "before");
    EXPECT_EQ(journal().back(), Error("AdbGetFirstSDCardPath, buffer is too little."));
  }
  std::string buffer(20, '#');
  channel.Expect(Stat("/sdcard")).Prints(kAbsent);
  channel.Expect(Stat("/sdcard0")).Prints(kPresent);
  EXPECT_EQ(AdbGetFirstSDCardPath("S1", buffer.data(), 9, &cancel), ADB_RESULT_OK);
  EXPECT_EQ(buffer, std::string("/sdcard0\0", 9) + std::string(11, '#'));
}

TEST_F(FirstStorageTest, TheCommandsAreCutAt255Characters) {
  // The first command is 255 characters long, the second loses its closing quote.
  const std::string serial(255 - 25, 's');
  channel.Expect(" -s " + serial + " shell stat \"/sdcard\"").Prints(kAbsent);
  channel.Expect(" -s " + serial + " shell stat \"/sdcard0").Prints(kPresent);
  char buffer[9];
  EXPECT_EQ((" -s " + serial + " shell stat \"/sdcard\"").size(), 255U);
  EXPECT_EQ(AdbGetFirstSDCardPath(serial.c_str(), buffer, 9, &cancel), ADB_RESULT_OK);
}

TEST_F(FirstStorageTest, ARealAnswer) {
  channel.Expect(Stat("/sdcard")).Prints(DeviceOutput("stat/stat-f-sdcard.txt"));
  EXPECT_EQ(First(ADB_RESULT_OK), "/sdcard");
}

}  // namespace
}  // namespace darokleim::test
