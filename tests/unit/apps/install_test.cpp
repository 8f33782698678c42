#include <iterator>
#include <string>

#include "tests/unit/support/device_output.h"
#include "tests/unit/support/refused_calls.h"
#include "tests/unit/support/sdk_test.h"

namespace darokleim::test {
namespace {

using namespace std::string_literals;

class InstallTest : public SdkTest {
 protected:
  const std::string install = " -s S1 shell pm install -r '\"/data/local/tmp/app.apk\"'";
  const std::string df = " -s S1 shell df /sdcard | grep /";

  void ExpectFreeSpace(const std::string& available) {
    channel.Expect(df).Prints("/dev/fuse 5.0G 1.2G " + available + " 24% /sdcard\n").WithoutCancelFlag();
  }
  int Install() { return AdbInstallAppFromDevicePath("S1", "/data/local/tmp/app.apk", &cancel); }
};

TEST_F(InstallTest, OfAFileOnTheDevice) {
  channel.Expect(install).Prints("\tpkg: /data/local/tmp/app.apk\nSuccess\n");
  EXPECT_EQ(Install(), ADB_RESULT_OK);
  EXPECT_THAT(journal(), ElementsAre(Info("AdbInstallAppFromDevicePath Enter."), Ran(install), GaveBack(),
                                     Info("AdbInstallAppFromDevicePath Leave, return 0.")));
}

TEST_F(InstallTest, AFailureIsOneOfSpaceWhenLittleIsFree) {
  const struct {
    const char* available;
    int code;
  } cases[] = {
      {"1.0G", ADB_RESULT_FAILURE},
      {"100M", ADB_RESULT_NOT_ENOUGH_SPACE},
      {"200M", ADB_RESULT_FAILURE},
      {"199M", ADB_RESULT_NOT_ENOUGH_SPACE},
      {"204800", ADB_RESULT_FAILURE},                      // KiB: 209715200 bytes
      {"204799", ADB_RESULT_NOT_ENOUGH_SPACE},             // 209714176 bytes
      {"204799.9990234375", ADB_RESULT_NOT_ENOUGH_SPACE},  // 209715199 bytes
      {"0", ADB_RESULT_NOT_ENOUGH_SPACE},
      {"-1", ADB_RESULT_FAILURE},  // compared without a sign
      {"17179869183G", ADB_RESULT_FAILURE},
  };
  for (const auto& c : cases) {
    channel.Expect(install).Prints("Failure [INSTALL_FAILED_INSUFFICIENT_STORAGE]\n");
    ExpectFreeSpace(c.available);
    EXPECT_EQ(Install(), c.code) << c.available;
  }
}

TEST_F(InstallTest, FreeSpaceThatCannotBeReadCountsAsNone) {
  channel.Expect(install).Prints("Failure\n");
  channel.Expect(df).Returns(3003).WithoutCancelFlag();
  EXPECT_EQ(Install(), ADB_RESULT_NOT_ENOUGH_SPACE);
  for (const char* output : {"", "df: /sdcard: No such file or directory", "three words only"}) {
    channel.Expect(install).Prints("Failure\n");
    channel.Expect(df).Prints(output).WithoutCancelFlag();
    EXPECT_EQ(Install(), ADB_RESULT_NOT_ENOUGH_SPACE) << output;
  }
}

TEST_F(InstallTest, TheBufferGoesBackBeforeTheFreeSpaceIsRead) {
  channel.Expect(install).Prints("Failure\n");
  ExpectFreeSpace("100M");
  Install();
  EXPECT_THAT(journal(), ElementsAre(Info("AdbInstallAppFromDevicePath Enter."), Ran(install),
                                     Info("Failure\n"), GaveBack(), Info("AdbGetStorageFreeSpace Enter."),
                                     Ran(df), Info("out buf: /dev/fuse 5.0G 1.2G 100M 24% /sdcard\n"),
                                     GaveBack(), Info("AdbGetStorageFreeSpace Leave, return 0."),
                                     Info("AdbInstallAppFromDevicePath Leave, return 43.")));
}

TEST_F(InstallTest, WithoutOutputTheChannelsValueIsTheCode) {
  for (const int value : {0, 3003}) {
    channel.Expect(install).Returns(value);
    EXPECT_EQ(Install(), value);
  }
  channel.Expect(install).Returns(ADB_RESULT_FAILURE);
  ExpectFreeSpace("1G");
  EXPECT_EQ(Install(), ADB_RESULT_FAILURE) << "the free space is read for a status of 31 too";
}

// The result of each message: a failure without a code of its own is 31, or one of space when little is free.
TEST_F(InstallTest, RealMessages) {
  const struct {
    const char* sample;
    int code;
  } messages[] = {
      {"adb-exe-user-restricted.txt", ADB_RESULT_INSTALL_CANCELED_BY_USER},
      {"awesome-adb-1.0.36-success.txt", ADB_RESULT_OK},
      {"existing-package-newer.txt", ADB_RESULT_FAILURE},
      {"failed-prefix-update-incompatible.txt", ADB_RESULT_FAILURE},
      {"install-multi-package-apex.txt", ADB_RESULT_OK},  // says "Error", not "Failure"
      {"install-write-streamed.txt", ADB_RESULT_OK},
      {"multiple-user-restricted-miui.txt", ADB_RESULT_INSTALL_CANCELED_BY_USER},
      {"no-matching-abis.txt", ADB_RESULT_FAILURE},
      {"old-already-exists.txt", ADB_RESULT_INSTALL_ALREADY_EXISTS},
      {"old-inconsistent-certificates-daemon.txt", ADB_RESULT_FAILURE},
      {"old-success-2009.txt", ADB_RESULT_OK},
      {"old-update-incompatible.txt", ADB_RESULT_FAILURE},
      {"push-install-40.txt", ADB_RESULT_OK},
      {"streamed-success.txt", ADB_RESULT_OK},
      {"streamed-user-restricted.txt", ADB_RESULT_INSTALL_CANCELED_BY_USER},
      {"test-only-failed-to-install.txt", ADB_RESULT_FAILURE},
      {"test-only-new-text.txt", ADB_RESULT_FAILURE},
      {"test-only.txt", ADB_RESULT_FAILURE},
      {"xiaomi-prompt-line-downgrade.txt", ADB_RESULT_INSTALL_VERSION_DOWNGRADE},
  };
  EXPECT_EQ(DeviceOutputsIn("pm-install").size(), std::size(messages));
  for (const auto& c : messages) {
    SCOPED_TRACE(c.sample);
    const std::string output = DeviceOutput("pm-install/"s + c.sample);
    channel.Expect(install).Prints(output);
    if (c.code == ADB_RESULT_FAILURE) ExpectFreeSpace("1.0G");
    EXPECT_EQ(Install(), c.code);
    if (c.code != ADB_RESULT_FAILURE) continue;
    channel.Expect(install).Prints(output);
    ExpectFreeSpace("100M");
    EXPECT_EQ(Install(), ADB_RESULT_NOT_ENOUGH_SPACE);
  }
}

// Every reason that package managers know, alone and with an explanation.
TEST_F(InstallTest, OnlyAFewReasonsHaveACodeOfTheirOwn) {
  const std::string all_31[] = {
      "INSTALL_FAILED_INVALID_APK", "INSTALL_FAILED_INVALID_URI", "INSTALL_FAILED_INSUFFICIENT_STORAGE",
      "INSTALL_FAILED_DUPLICATE_PACKAGE", "INSTALL_FAILED_NO_SHARED_USER",
      "INSTALL_FAILED_UPDATE_INCOMPATIBLE", "INSTALL_FAILED_SHARED_USER_INCOMPATIBLE",
      "INSTALL_FAILED_MISSING_SHARED_LIBRARY", "INSTALL_FAILED_REPLACE_COULDNT_DELETE",
      "INSTALL_FAILED_DEXOPT", "INSTALL_FAILED_OLDER_SDK", "INSTALL_FAILED_CONFLICTING_PROVIDER",
      "INSTALL_FAILED_NEWER_SDK", "INSTALL_FAILED_TEST_ONLY", "INSTALL_FAILED_CPU_ABI_INCOMPATIBLE",
      "INSTALL_FAILED_MISSING_FEATURE", "INSTALL_FAILED_CONTAINER_ERROR",
      "INSTALL_FAILED_INVALID_INSTALL_LOCATION", "INSTALL_FAILED_MEDIA_UNAVAILABLE",
      "INSTALL_FAILED_VERIFICATION_TIMEOUT", "INSTALL_FAILED_VERIFICATION_FAILURE",
      "INSTALL_FAILED_PACKAGE_CHANGED", "INSTALL_FAILED_UID_CHANGED",
      "INSTALL_FAILED_PERMISSION_MODEL_DOWNGRADE", "INSTALL_FAILED_SANDBOX_VERSION_DOWNGRADE",
      "INSTALL_FAILED_MISSING_SPLIT", "INSTALL_FAILED_ABORTED", "INSTALL_FAILED_INTERNAL_ERROR",
      "INSTALL_FAILED_NO_MATCHING_ABIS", "INSTALL_FAILED_DUPLICATE_PERMISSION",
      "INSTALL_FAILED_BAD_DEX_METADATA", "INSTALL_FAILED_BAD_SIGNATURE", "INSTALL_PARSE_FAILED_NOT_APK",
      "INSTALL_PARSE_FAILED_BAD_MANIFEST", "INSTALL_PARSE_FAILED_UNEXPECTED_EXCEPTION",
      "INSTALL_PARSE_FAILED_INCONSISTENT_CERTIFICATES", "INSTALL_PARSE_FAILED_CERTIFICATE_ENCODING",
      "INSTALL_PARSE_FAILED_BAD_PACKAGE_NAME", "INSTALL_PARSE_FAILED_BAD_SHARED_USER_ID",
      "INSTALL_PARSE_FAILED_MANIFEST_MALFORMED", "INSTALL_PARSE_FAILED_MANIFEST_EMPTY",
      // With a reason these are not what they are without one.
      "INSTALL_FAILED_ALREADY_EXISTS: Attempt to re-install com.a without first uninstalling.",
      "INSTALL_FAILED_USER_RESTRICTED: Invalid apk", "INSTALL_FAILED_CANCELLED_BY_USER: no",
      "INSTALL_CANCELED_BY_USER: no", "INSTALL_PARSE_FAILED_NO_CERTIFICATES: Failed to collect certificates",
      "-200", "-98"};
  for (const std::string& reason : all_31) {
    for (const std::string& text : {"Failure [" + reason + "]\n", "Failure [" + reason + ": why not]\r\n"}) {
      channel.Expect(install).Prints(text);
      ExpectFreeSpace("1.0G");
      EXPECT_EQ(Install(), ADB_RESULT_FAILURE) << text;
    }
  }
  const struct {
    const char* reason;
    int code;
  } others[] = {
      {"INSTALL_FAILED_ALREADY_EXISTS", ADB_RESULT_INSTALL_ALREADY_EXISTS},
      {"-99", ADB_RESULT_INSTALL_FAILURE_99},
      {"INSTALL_FAILED_VERSION_DOWNGRADE", ADB_RESULT_INSTALL_VERSION_DOWNGRADE},
      {"INSTALL_FAILED_VERSION_DOWNGRADE: Downgrade detected", ADB_RESULT_INSTALL_VERSION_DOWNGRADE},
      {"INSTALL_FAILED_USER_RESTRICTED", ADB_RESULT_INSTALL_USER_RESTRICTED},
      {"INSTALL_FAILED_USER_RESTRICTED: Install canceled by user", ADB_RESULT_INSTALL_CANCELED_BY_USER},
      {"INSTALL_CANCELED_BY_USER", ADB_RESULT_INSTALL_USER_RESTRICTED},
      {"INSTALL_FAILED_CANCELLED_BY_USER", ADB_RESULT_INSTALL_CANCELLED_BY_USER},
      {"INSTALL_PARSE_FAILED_NO_CERTIFICATES", ADB_RESULT_INSTALL_NO_CERTIFICATES},
  };
  for (const auto& c : others) {
    channel.Expect(install).Prints("Failure ["s + c.reason + "]\n");
    EXPECT_EQ(Install(), c.code) << c.reason << " does not read the free space";
  }
}

TEST_F(InstallTest, TheChannelsStatusIsTheResultUnlessTheTextIsKnown) {
  channel.Expect(install).Prints("Error: Unable to open file: /data/local/tmp/app.apk\n").Returns(1001);
  EXPECT_EQ(Install(), 1001);
  EXPECT_EQ(log_lines()[1],
            Error("ret is 1001,outbuf is:Error: Unable to open file: /data/local/tmp/app.apk\n"));
  channel.Expect(install).Prints("Success\n").Returns(1001);
  EXPECT_EQ(Install(), 1001) << "success in the text is not looked for";
  channel.Expect(install).Prints("Failure [INSTALL_FAILED_ALREADY_EXISTS]\n").Returns(1001);
  EXPECT_EQ(Install(), ADB_RESULT_INSTALL_ALREADY_EXISTS);
  channel.Expect(install).Prints("Failure\n").Returns(1001);
  ExpectFreeSpace("199M");
  EXPECT_EQ(Install(), ADB_RESULT_NOT_ENOUGH_SPACE);
}

TEST_F(InstallTest, NullTextsAreRefused) {
  EXPECT_EQ(AdbInstallAppFromDevicePath(nullptr, "/a.apk", &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_EQ(AdbInstallAppFromDevicePath("S1", nullptr, &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_EQ(journal(), RefusedCalls("AdbInstallAppFromDevicePath", 2));
}

TEST_F(InstallTest, CommandsAreCutAt255CharactersTheQuotesFirst) {
  const std::string head = " -s S1 shell pm install -r '\"";
  for (const std::size_t length : {254U, 255U, 256U, 257U, 300U}) {
    const std::string path = std::string(length - head.size() - 2, 'p');
    channel.Expect((head + path + "\"'").substr(0, 255)).Returns(7);
    EXPECT_EQ(AdbInstallAppFromDevicePath("S1", path.c_str(), &cancel), 7) << length;
  }
}

class InstallFromHostTest : public InstallTest {
 protected:
  const std::string push = " -s S1 push --sync \"/Users/a/Downloads/app.apk\" \"/data/local/tmp/app.apk\"";
  const std::string remove = " -s S1 shell rm \"/data/local/tmp/app.apk\"";

  int InstallFromHost() { return AdbInstallAppFromPCPath("S1", "/Users/a/Downloads/app.apk", &cancel); }
};

TEST_F(InstallFromHostTest, PushesInstallsAndRemoves) {
  channel.Expect(push).Prints("1 file pushed");
  channel.Expect(install).Prints("Success\n");
  channel.Expect(remove).Prints("");
  EXPECT_EQ(InstallFromHost(), ADB_RESULT_OK);
  EXPECT_THAT(journal(),
              ElementsAre(Info("AdbInstallAppFromPCPath Enter."), Ran(push), GaveBack(),
                          Info("AdbInstallAppFromDevicePath Enter."), Ran(install), GaveBack(),
                          Info("AdbInstallAppFromDevicePath Leave, return 0."), Info("AdbRemoveFile Enter."),
                          Ran(remove), GaveBack(), Info("AdbRemoveFile Leave, return 0."),
                          Info("AdbInstallAppFromPCPath Leave, return 0.")));
}

TEST_F(InstallFromHostTest, AFailedPushInstallsNothingAndIsCleanedUp) {
  for (const int removal : {0, 1001}) {
    channel.Expect(push).Returns(3003);
    channel.Expect(remove).Returns(removal);
    EXPECT_EQ(InstallFromHost(), 3003);
  }
  channel.Expect(push).Prints("adb: error: No space left on device").Returns(1001);
  channel.Expect(remove).Prints("rm: /data/local/tmp/app.apk: No such file or directory");
  EXPECT_EQ(InstallFromHost(), ADB_RESULT_NO_SPACE_LEFT);
}

TEST_F(InstallFromHostTest, AFailedInstallIsCleanedUp) {
  channel.Expect(push).Prints("1 file pushed");
  channel.Expect(install).Prints("Failure [INSTALL_FAILED_ALREADY_EXISTS]\n");
  channel.Expect(remove).Prints("device unauthorized");
  EXPECT_EQ(InstallFromHost(), ADB_RESULT_INSTALL_ALREADY_EXISTS);

  channel.Expect(push).Prints("1 file pushed");
  channel.Expect(install).Prints("Failure [INSTALL_FAILED_TEST_ONLY]\n");
  ExpectFreeSpace("100M");
  channel.Expect(remove).Prints("");
  EXPECT_EQ(InstallFromHost(), ADB_RESULT_NOT_ENOUGH_SPACE);
}

TEST_F(InstallFromHostTest, AFailedRemovalIsIgnored) {
  channel.Expect(push).Prints("1 file skipped");
  channel.Expect(install).Prints("Success");
  channel.Expect(remove).Prints("rm: Permission denied").Returns(1001);
  EXPECT_EQ(InstallFromHost(), ADB_RESULT_OK);
}

TEST_F(InstallFromHostTest, TheNameIsWhatFollowsTheLastSlash) {
  const struct {
    const char* host_path;
    const char* staged;
  } cases[] = {{"app.apk", "/data/local/tmp/app.apk"},
               {"C:\\apps\\app.apk", "/data/local/tmp/C:\\apps\\app.apk"},
               {"./a//b c.apk", "/data/local/tmp/b c.apk"},
               {"/apps/", "/data/local/tmp/"},
               {"", "/data/local/tmp/"},
               {"/x/\xe6\xb7\xbb\xff.apk", "/data/local/tmp/\xe6\xb7\xbb\xff.apk"}};
  for (const auto& c : cases) {
    channel.Expect(" -s S1 push --sync \""s + c.host_path + "\" \"" + c.staged + "\"").Prints("file pushed");
    channel.Expect(" -s S1 shell pm install -r '\""s + c.staged + "\"'").Prints("Success");
    channel.Expect(" -s S1 shell rm \""s + c.staged + "\"").Prints("");
    EXPECT_EQ(AdbInstallAppFromPCPath("S1", c.host_path, &cancel), ADB_RESULT_OK) << c.host_path;
  }
}

TEST_F(InstallFromHostTest, OnlyTheInstallCommandIsCut) {
  const std::string name(300, 'n');
  const std::string staged = "/data/local/tmp/" + name;
  channel.Expect(" -s S1 push --sync \"/" + name + "\" \"" + staged + "\"").Prints("file pushed");
  channel.Expect((" -s S1 shell pm install -r '\"" + staged).substr(0, 255)).Prints("Success");
  channel.Expect(" -s S1 shell rm \"" + staged + "\"").Prints("");
  EXPECT_EQ(AdbInstallAppFromPCPath("S1", ("/" + name).c_str(), &cancel), ADB_RESULT_OK);
}

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

TEST_F(InstallMultipleTest, PathsAreInQuotesUnchanged) {
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
