#include <cstring>
#include <string>

#include "tests/unit/support/device_output.h"
#include "tests/unit/support/sdk_test.h"

namespace darokleim::test {
namespace {

using namespace std::string_literals;

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

constexpr char kDf[] = " -s S1 shell df /sdcard | grep /";

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
  channel.Expect(kDf).Prints(row);
  EXPECT_EQ(FreeSpace(ADB_RESULT_OK), 4080218931ULL);
  EXPECT_THAT(journal(), ElementsAre(Info("AdbGetStorageFreeSpace Enter."), Ran(kDf), Info("out buf: " + row),
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
  channel.Expect(kDf).Returns(3003).Meanwhile([&] { EXPECT_EQ(bytes, 0U); });
  EXPECT_EQ(AdbGetStorageFreeSpace("S1", "/sdcard", &bytes, &cancel), 3003);
}

TEST_F(FreeSpaceTest, WithoutOutputTheChannelsValueIsTheCode) {
  channel.Expect(kDf).Returns(3003);
  EXPECT_EQ(FreeSpace(3003), 0U);
  EXPECT_THAT(journal(),
              ElementsAre(Info("AdbGetStorageFreeSpace Enter."), Ran(kDf), Info("out buf empty, serial S1"),
                          Info("AdbGetStorageFreeSpace Leave, return 3003.")));
  channel.Expect(kDf);
  EXPECT_EQ(FreeSpace(0), 0U);
}

TEST_F(FreeSpaceTest, AnErrorIsLoggedWithItsText) {
  const std::string text = "df: /nope: No such file or directory\n";
  channel.Expect(kDf).Prints(text).Returns(1001);
  EXPECT_EQ(FreeSpace(ADB_RESULT_NO_SUCH_FILE), 0U);
  EXPECT_THAT(journal(), ElementsAre(Info("AdbGetStorageFreeSpace Enter."), Ran(kDf),
                                     Info("out buf: " + text), Error("ret is 1001,outbuf is:" + text),
                                     GaveBack(), Info("AdbGetStorageFreeSpace Leave, return 25.")));
  channel.Expect(kDf).Prints("/dev/fuse 5.0G 1.2G 3.8G 24% /storage/emulated\n").Returns(5);
  EXPECT_EQ(FreeSpace(5), 0U);
}

TEST_F(FreeSpaceTest, ThreeWordsAreNotARow) {
  channel.Expect(kDf).Prints("/dev/fuse 5.0G 1.2G\n");
  EXPECT_EQ(FreeSpace(ADB_RESULT_PROTOCOL_FAULT), 0U);
  EXPECT_THAT(journal(), ElementsAre(Info("AdbGetStorageFreeSpace Enter."), Ran(kDf),
                                     Info("out buf: /dev/fuse 5.0G 1.2G\n"),
                                     Info("AdbGetStorageFreeSpace Execute Command Failed. Output is Invalid"),
                                     GaveBack(), Info("AdbGetStorageFreeSpace Leave, return 1.")));
  channel.Expect(kDf).Prints("");
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
  channel.Expect(kDf).Prints(DeviceOutput("misc-shell/grep-not-found.txt"));
  EXPECT_EQ(FreeSpace(ADB_RESULT_SHELL_NOT_FOUND), 0U);
  channel.Expect(kDf).Prints(DeviceOutput("df/huawei-mya-6.0-df-h-unsupported.txt"));
  EXPECT_EQ(FreeSpace(ADB_RESULT_NO_SUCH_FILE), 0U);
}

constexpr char kListStorage[] = "-s S1 shell ls -l /storage";
constexpr char kListing[] =
    "drwxrwx--x 4 root sdcard_rw 4096 2020-01-01 00:00 emulated\n"
    "drwxrwx--x 4 root sdcard_rw 4096 2020-01-01 00:00 1234-5678\n";

class VolumeSearchTest : public SdkTest {
 protected:
  using Search = int (*)(const char* serial, char** text, int* length, const bool* cancel);

  // What is handed out, "untouched" for nothing.
  std::string Found(Search search, int expected_code = ADB_RESULT_OK) {
    char untouched[] = "untouched";
    char* text = untouched;
    int length = 9;
    EXPECT_EQ(search("S1", &text, &length, &cancel), expected_code);
    EXPECT_EQ(length, static_cast<int>(std::strlen(text)));
    const std::string copy = text;
    if (text != untouched) AdbFreeResource(&text);
    return copy;
  }
};

TEST_F(VolumeSearchTest, AllVolumesAsJson) {
  const std::string json = "[ \"/storage/emulated/0\", \"/storage/1234-5678\" ]";
  channel.Expect(kListStorage).Prints(kListing);
  EXPECT_EQ(Found(AdbSearchSDCardPath), json);
  EXPECT_THAT(journal(), ElementsAre(Info("AdbSearchSDCardPath Enter."), Ran(kListStorage), GaveBack(),
                                     Info("AdbSearchSDCardPath Out Path: " + json),
                                     Info("AdbSearchSDCardPath Leave 0")));
}

TEST_F(VolumeSearchTest, TheCardAlone) {
  channel.Expect(kListStorage).Prints(kListing);
  EXPECT_EQ(Found(AdbSearchExternalSDCardPath), "/storage/1234-5678");
  EXPECT_THAT(journal(), ElementsAre(Info("AdbSearchExternalSDCardPath Enter."), Ran(kListStorage),
                                     GaveBack(), Info("AdbSearchExternalSDCardPath Leave 0")));
}

TEST_F(VolumeSearchTest, NothingFoundIsNullOrEmpty) {
  for (const char* listing : {"", "\n", "total 0\n", "d sdcard_all 1234-5678\n"}) {
    channel.Expect(kListStorage).Prints(listing);
    EXPECT_EQ(Found(AdbSearchSDCardPath), "null");
    channel.Expect(kListStorage).Prints(listing);
    EXPECT_EQ(Found(AdbSearchExternalSDCardPath), "");
  }
  EXPECT_THAT(log_lines()[1], Info("AdbSearchSDCardPath Out Path: null"));
}

TEST_F(VolumeSearchTest, NoBufferIsAnEmptyListing) {
  channel.Expect(kListStorage);
  EXPECT_EQ(Found(AdbSearchSDCardPath), "null");
  channel.Expect(kListStorage);
  EXPECT_EQ(Found(AdbSearchExternalSDCardPath), "");
}

TEST_F(VolumeSearchTest, ANullSerialHasALeaveLine) {
  EXPECT_EQ(AdbSearchSDCardPath(nullptr, nullptr, nullptr, &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_EQ(AdbSearchExternalSDCardPath(nullptr, nullptr, nullptr, &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_THAT(journal(),
              ElementsAre(Info("AdbSearchSDCardPath Enter."), Info("AdbSearchSDCardPath Param is Invalid"),
                          Info("AdbSearchSDCardPath Leave 4"), Info("AdbSearchExternalSDCardPath Enter."),
                          Info("AdbSearchExternalSDCardPath Param is Invalid"),
                          Info("AdbSearchExternalSDCardPath Leave 4")));
}

TEST_F(VolumeSearchTest, TheChannelsValueIsTheCodeWhateverTheTextSays) {
  channel.Expect(kListStorage).Prints("error: device 'S1' not found\n").Returns(1001);
  EXPECT_EQ(Found(AdbSearchSDCardPath, 1001), "untouched");
  channel.Expect(kListStorage).Returns(3003);
  EXPECT_EQ(Found(AdbSearchExternalSDCardPath, 3003), "untouched");
  EXPECT_THAT(journal(),
              ElementsAre(Info("AdbSearchSDCardPath Enter."), Ran(kListStorage),
                          Info("AdbSearchSDCardPath Execute Command Failed. Error = 1001."), GaveBack(),
                          Info("AdbSearchSDCardPath Leave 1001"), Info("AdbSearchExternalSDCardPath Enter."),
                          Ran(kListStorage),
                          Info("AdbSearchExternalSDCardPath Execute Command Failed. Error = 3003."),
                          Info("AdbSearchExternalSDCardPath Leave 3003")));
}

TEST_F(VolumeSearchTest, MessagesInTheTextAreNotLookedFor) {
  channel.Expect(kListStorage).Prints("error: device unauthorized\nd sdcard_rw Failure\n");
  EXPECT_EQ(Found(AdbSearchSDCardPath), "[ \"/storage/Failure\" ]");
  channel.Expect(kListStorage).Prints("error: device unauthorized\nd sdcard_rw Failure\n");
  EXPECT_EQ(Found(AdbSearchExternalSDCardPath), "/storage/Failure");
}

TEST_F(VolumeSearchTest, OnCarriageReturnsTheNamesKeepThem) {
  channel.Expect(kListStorage).Prints("d sdcard_rw emulated\r\nd sdcard_rw card\r\n");
  EXPECT_EQ(Found(AdbSearchSDCardPath), "[ \"/storage/emulated/0\", \"/storage/card\\r\" ]");
}

TEST_F(VolumeSearchTest, NamesInNoEncoding) {
  channel.Expect(kListStorage).Prints("d sdcard_rw \xff\xfe\n").Unterminated();
  EXPECT_EQ(Found(AdbSearchSDCardPath), "[ \"/storage/\\ufffd\\ufffd\" ]");
  channel.Expect(kListStorage).Prints("d sdcard_rw \xff\xfe\n").Unterminated();
  EXPECT_EQ(Found(AdbSearchExternalSDCardPath), "/storage/\xff\xfe");
}

TEST_F(VolumeSearchTest, TheCommandIsCutAt255Characters) {
  const std::string rest = " shell ls -l /storage";
  for (const std::size_t length : {254U, 255U, 256U, 1'000U}) {
    const std::string serial(length - 3 - rest.size(), 's');
    channel.Expect(("-s " + serial + rest).substr(0, 255)).Prints("");
    channel.Expect(("-s " + serial + rest).substr(0, 255)).Prints("");
    char* text = nullptr;
    int size = 0;
    EXPECT_EQ(AdbSearchSDCardPath(serial.c_str(), &text, &size, &cancel), ADB_RESULT_OK);
    AdbFreeResource(&text);
    EXPECT_EQ(AdbSearchExternalSDCardPath(serial.c_str(), &text, &size, &cancel), ADB_RESULT_OK);
    AdbFreeResource(&text);
  }
}

}  // namespace
}  // namespace darokleim::test
