#include <string>

#include "tests/unit/support/device_output.h"
#include "tests/unit/support/sdk_test.h"

namespace darokleim::test {
namespace {

class InstallMultipleTest : public SdkTest {
 protected:
  const std::string command = "-s S1 install-multiple -r \"/tmp/base.apk\" \"/tmp/split_de.apk\"";

  int Install(const char* json = R"({"apks": ["/tmp/base.apk", "/tmp/split_de.apk"]})") {
    return AdbInstallMultipleAppFromPCPath("S1", json, &cancel);
  }
};

TEST_F(InstallMultipleTest, InstallsTheFilesWithOneCommand) {
  channel.Expect(command).Prints("Success\n");
  EXPECT_EQ(Install(), ADB_RESULT_OK);
  EXPECT_THAT(journal(), ElementsAre(Info("AdbInstallMultipleAppFromPCPath Enter."), Ran(command), GaveBack(),
                                     Info("AdbInstallMultipleAppFromPCPath Leave, return 0.")));
}

TEST_F(InstallMultipleTest, PathsStandInQuotesAsTheyAre) {
  channel.Expect("-s S1 install-multiple -r \"/a b\" \"/c\"d\" \"\" \"7\"").Prints("Success");
  EXPECT_EQ(Install(R"({"b": ["", 7], "a": ["/a b", "/c\"d"]})"), ADB_RESULT_OK);
}

TEST_F(InstallMultipleTest, WithoutFilesTheCommandIsRunAllTheSame) {
  for (const char* json : {"{}", "{\"a\": []}", "{\"a\": \"/a\"}", "null"}) {
    channel.Expect("-s S1 install-multiple -r").Returns(1001);
    EXPECT_EQ(Install(json), 1001) << json;
  }
}

TEST_F(InstallMultipleTest, AListThatCannotBeReadRunsNothingAndLogsNoLeaveLine) {
  for (const char* json : {"", "{", "/tmp/base.apk", "[\"/tmp/base.apk\"]", "{\"a\": [[\"/b\"]]}"}) {
    EXPECT_EQ(Install(json), ADB_RESULT_JSON_PARSE_FAILED) << json;
  }
  const std::string deep(100'000, '[');
  EXPECT_EQ(Install(("{\"a\":" + deep).c_str()), ADB_RESULT_JSON_PARSE_FAILED);
  Journal expected;
  for (int i = 0; i < 6; ++i) {
    expected.push_back(Info("AdbInstallMultipleAppFromPCPath Enter."));
    expected.push_back(Error("AdbInstallMultipleAppFromPCPath(2264): Json parse failed."));
  }
  EXPECT_EQ(journal(), expected);
}

TEST_F(InstallMultipleTest, MessagesAreClassified) {
  channel.Expect(command).Prints(DeviceOutput("pm-install/multiple-user-restricted-miui.txt")).Returns(1001);
  EXPECT_EQ(Install(), ADB_RESULT_INSTALL_CANCELED_BY_USER);
  channel.Expect(command).Prints(DeviceOutput("pm-install/install-multi-package-apex.txt")).Returns(1001);
  EXPECT_EQ(Install(), 1001) << "no known message";
  channel.Expect(command)
      .Prints("adb: failed to stat /tmp/base.apk: No such file or directory")
      .Returns(1001);
  EXPECT_EQ(Install(), ADB_RESULT_NO_SUCH_FILE);
}

TEST_F(InstallMultipleTest, AFailureIsNotAskedForTheFreeSpace) {
  channel.Expect(command).Prints("Failure [INSTALL_FAILED_INSUFFICIENT_STORAGE]\n");
  EXPECT_EQ(Install(), ADB_RESULT_FAILURE);
}

TEST_F(InstallMultipleTest, WithoutOutputTheChannelsValueIsTheCode) {
  for (const int value : {0, 31, 3003}) {
    channel.Expect(command).Returns(value);
    EXPECT_EQ(Install(), value);
  }
}

TEST_F(InstallMultipleTest, TheCommandHasNoLimit) {
  std::string json = "{\"a\": [\"/0\"";
  std::string long_command = "-s S1 install-multiple -r \"/0\"";
  for (int i = 1; i < 20'000; ++i) {
    const std::string path = "/tmp/" + std::to_string(i) + std::string(500, 'p');
    json += ",\"" + path + "\"";
    long_command += " \"" + path + "\"";
  }
  channel.Expect(long_command).Prints("Success");
  EXPECT_EQ(Install((json + "]}").c_str()), ADB_RESULT_OK);
}

TEST_F(InstallMultipleTest, TheListEndsAtItsZeroByte) {
  channel.Expect("-s S1 install-multiple -r \"/a\"").Prints("Success");
  EXPECT_EQ(Install("{\"a\": [\"/a\"]}\0{\"a\": [\"/b\"]}"), ADB_RESULT_OK);
  EXPECT_EQ(Install("{\"a\": [\"/a\0\"]}"), ADB_RESULT_JSON_PARSE_FAILED);
}

// No path holds a zero byte; a command is a text that ends at one.
TEST_F(InstallMultipleTest, AZeroByteInAPathEndsTheCommand) {
  channel.Expect("-s S1 install-multiple -r \"/a\" \"/b").Returns(1001);
  EXPECT_EQ(Install(R"({"a": ["/a", "/b\u0000c", "/d"]})"), 1001);
}

}  // namespace
}  // namespace darokleim::test
