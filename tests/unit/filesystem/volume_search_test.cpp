#include <cstring>
#include <string>

#include "tests/unit/support/sdk_test.h"

namespace darokleim::test {
namespace {

using namespace std::string_literals;

constexpr char kCommand[] = "-s S1 shell ls -l /storage";
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
  channel.Expect(kCommand).Prints(kListing);
  EXPECT_EQ(Found(AdbSearchSDCardPath), json);
  EXPECT_THAT(journal(), ElementsAre(Info("AdbSearchSDCardPath Enter."), Ran(kCommand), GaveBack(),
                                     Info("AdbSearchSDCardPath Out Path: " + json),
                                     Info("AdbSearchSDCardPath Leave 0")));
}

TEST_F(VolumeSearchTest, TheCardAlone) {
  channel.Expect(kCommand).Prints(kListing);
  EXPECT_EQ(Found(AdbSearchExternalSDCardPath), "/storage/1234-5678");
  EXPECT_THAT(journal(), ElementsAre(Info("AdbSearchExternalSDCardPath Enter."), Ran(kCommand), GaveBack(),
                                     Info("AdbSearchExternalSDCardPath Leave 0")));
}

TEST_F(VolumeSearchTest, NothingFoundIsNullOrEmpty) {
  for (const char* listing : {"", "\n", "total 0\n"}) {
    channel.Expect(kCommand).Prints(listing);
    EXPECT_EQ(Found(AdbSearchSDCardPath), "null");
    channel.Expect(kCommand).Prints(listing);
    EXPECT_EQ(Found(AdbSearchExternalSDCardPath), "");
  }
  EXPECT_THAT(log_lines()[1], Info("AdbSearchSDCardPath Out Path: null"));
}

TEST_F(VolumeSearchTest, NoBufferIsAnEmptyListing) {
  channel.Expect(kCommand);
  EXPECT_EQ(Found(AdbSearchSDCardPath), "null");
  channel.Expect(kCommand);
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
  channel.Expect(kCommand).Prints("error: device 'S1' not found\n").Returns(1001);
  EXPECT_EQ(Found(AdbSearchSDCardPath, 1001), "untouched");
  channel.Expect(kCommand).Returns(3003);
  EXPECT_EQ(Found(AdbSearchExternalSDCardPath, 3003), "untouched");
  EXPECT_THAT(
      journal(),
      ElementsAre(Info("AdbSearchSDCardPath Enter."), Ran(kCommand),
                  Info("AdbSearchSDCardPath Execute Command Failed. Error = 1001."), GaveBack(),
                  Info("AdbSearchSDCardPath Leave 1001"), Info("AdbSearchExternalSDCardPath Enter."),
                  Ran(kCommand), Info("AdbSearchExternalSDCardPath Execute Command Failed. Error = 3003."),
                  Info("AdbSearchExternalSDCardPath Leave 3003")));
}

TEST_F(VolumeSearchTest, MessagesInTheTextAreNotLookedFor) {
  channel.Expect(kCommand).Prints("error: device unauthorized\nd sdcard_rw Failure\n");
  EXPECT_EQ(Found(AdbSearchSDCardPath), "[ \"/storage/Failure\" ]");
  channel.Expect(kCommand).Prints("error: device unauthorized\nd sdcard_rw Failure\n");
  EXPECT_EQ(Found(AdbSearchExternalSDCardPath), "/storage/Failure");
}

TEST_F(VolumeSearchTest, OnCarriageReturnsTheNamesKeepThem) {
  channel.Expect(kCommand).Prints("d sdcard_rw emulated\r\nd sdcard_rw card\r\n");
  EXPECT_EQ(Found(AdbSearchSDCardPath), "[ \"/storage/emulated/0\", \"/storage/card\\r\" ]");
}

TEST_F(VolumeSearchTest, NamesInNoEncoding) {
  channel.Expect(kCommand).Prints("d sdcard_rw \xff\xfe\n").Unterminated();
  EXPECT_EQ(Found(AdbSearchSDCardPath), "[ \"/storage/\\ufffd\\ufffd\" ]");
  channel.Expect(kCommand).Prints("d sdcard_rw \xff\xfe\n").Unterminated();
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
