// Each test needs a process of its own: what AdbSdkInit keeps is never reset.
#include "src/core/sdk.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "tests/unit/support/sdk_test.h"

namespace darokleim::test {
namespace {

namespace fs = std::filesystem;

class SdkStartTest : public SdkTest {
 protected:
  void SetUp() override {
    ASSERT_FALSE(is_inited) << "needs a process of its own: run one test at a time, as ctest does";
    char name[] = "/tmp/darokleim-sdk-XXXXXX";
    ASSERT_NE(mkdtemp(name), nullptr);
    directory = name;
  }
  void TearDown() override { fs::remove_all(directory); }

  void Make(const std::string& file) { std::ofstream(directory + "/" + file) << "x"; }
  int Start() { return AdbSdkInit(directory.c_str(), &context, "/logs"); }

  const Event kVersionLine = Info("Adb Sdk version: 2.0.109-D-4c1143f.");
  std::string directory;
  const int context = 0;
};

TEST_F(SdkStartTest, StartsTheLogAndTheChannel) {
  Make("adb");
  Make("busybox");
  EXPECT_EQ(Start(), ADB_RESULT_OK);
  EXPECT_TRUE(is_inited);
  EXPECT_EQ(s_busybox_fullpath, directory + "/busybox");
  EXPECT_THAT(journal(), ElementsAre(OpenedLog("/logs/adb_sdk.log"), kVersionLine,
                                     InitChannel(directory + "/adb", "/logs")));
  EXPECT_EQ(log_context, &context);
  EXPECT_EQ(channel_context, &context);
}

TEST_F(SdkStartTest, ANullArgumentHasNoEffect) {
  Make("adb");
  Make("busybox");
  EXPECT_EQ(AdbSdkInit(nullptr, &context, "/logs"), ADB_RESULT_INVALID_PARAM);
  EXPECT_EQ(AdbSdkInit(directory.c_str(), nullptr, "/logs"), ADB_RESULT_INVALID_PARAM);
  EXPECT_EQ(AdbSdkInit(directory.c_str(), &context, nullptr), ADB_RESULT_INVALID_PARAM);
  EXPECT_THAT(journal(), IsEmpty());
  EXPECT_FALSE(is_inited);
  EXPECT_EQ(s_busybox_fullpath, "");
  EXPECT_EQ(Start(), ADB_RESULT_OK);
  EXPECT_TRUE(is_inited);
}

TEST_F(SdkStartTest, ASecondStartChangesNothing) {
  Make("adb");
  Make("busybox");
  EXPECT_EQ(Start(), ADB_RESULT_OK);
  const Journal first = journal();
  EXPECT_EQ(AdbSdkInit("/elsewhere", &context, "/other"), ADB_RESULT_OK);
  EXPECT_EQ(s_busybox_fullpath, directory + "/busybox");
  EXPECT_EQ(journal(), first);
  EXPECT_EQ(AdbSdkInit(nullptr, &context, "/other"), ADB_RESULT_INVALID_PARAM);
}

TEST_F(SdkStartTest, WithoutBusyboxItIsIncompleteOnceAndThenStaysSilent) {
  Make("adb");
  EXPECT_EQ(Start(), ADB_RESULT_RESOURCE_INCOMPLETE);
  EXPECT_TRUE(is_inited);
  EXPECT_THAT(journal(),
              ElementsAre(OpenedLog("/logs/adb_sdk.log"), kVersionLine, Info("Resource file not complete!")));
  EXPECT_EQ(Start(), ADB_RESULT_OK);
  EXPECT_EQ(journal().size(), 3U) << "the channel stays unprepared";
}

TEST_F(SdkStartTest, WithoutAdbItIsIncomplete) {
  Make("busybox");
  EXPECT_EQ(Start(), ADB_RESULT_RESOURCE_INCOMPLETE);
  EXPECT_EQ(s_busybox_fullpath, directory + "/busybox");
}

TEST_F(SdkStartTest, WithAMissingDirectoryItIsIncomplete) {
  EXPECT_EQ(AdbSdkInit("/does/not/exist", &context, "/logs"), ADB_RESULT_RESOURCE_INCOMPLETE);
}

TEST_F(SdkStartTest, EntriesOfAnyKindCount) {
  fs::create_directory(directory + "/adb");
  Make("real");
  fs::create_symlink(directory + "/real", directory + "/busybox");
  EXPECT_EQ(Start(), ADB_RESULT_OK);
}

TEST_F(SdkStartTest, ALinkToNothingIsMissing) {
  fs::create_symlink(directory + "/nothing", directory + "/adb");
  Make("busybox");
  EXPECT_EQ(Start(), ADB_RESULT_RESOURCE_INCOMPLETE);
}

TEST_F(SdkStartTest, AnEntryWhoseStatusCannotBeReadIsMissing) {
  fs::create_symlink("adb", directory + "/adb");  // a link to itself
  Make("busybox");
  EXPECT_EQ(Start(), ADB_RESULT_RESOURCE_INCOMPLETE);
}

TEST_F(SdkStartTest, ATrailingSlashIsLeftAsItIs) {
  Make("adb");
  Make("busybox");
  EXPECT_EQ(AdbSdkInit((directory + "/").c_str(), &context, "/logs/"), ADB_RESULT_OK);
  EXPECT_EQ(s_busybox_fullpath, directory + "//busybox");
  EXPECT_THAT(journal(), ElementsAre(OpenedLog("/logs//adb_sdk.log"), kVersionLine,
                                     InitChannel(directory + "//adb", "/logs/")));
}

TEST_F(SdkStartTest, ALogThatDoesNotOpenIsReportedOnStandardOutputAndTheStartGoesOn) {
  Make("adb");
  Make("busybox");
  log_opens = false;
  ::testing::internal::CaptureStdout();
  const int code = Start();
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), "Fail to init log!\n");
  EXPECT_EQ(code, ADB_RESULT_OK);
  EXPECT_THAT(journal(), ElementsAre(OpenedLog("/logs/adb_sdk.log"), kVersionLine,
                                     InitChannel(directory + "/adb", "/logs")));
}

TEST_F(SdkStartTest, ALogThatOpensPrintsNothing) {
  Make("adb");
  ::testing::internal::CaptureStdout();
  Start();
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
}

TEST_F(SdkStartTest, OtherFunctionsRunBeforeTheStart) {
  channel.Expect(" -s S1 reboot").Returns(3001);
  EXPECT_EQ(AdbReboot("S1", &cancel), 3001);
}

TEST_F(SdkStartTest, PathsAreBytesOfAnyLength) {
  const std::string odd = "/\xff\xfe" + std::string(100'000, 'x');
  EXPECT_EQ(AdbSdkInit(odd.c_str(), &context, odd.c_str()), ADB_RESULT_RESOURCE_INCOMPLETE);
  EXPECT_EQ(s_busybox_fullpath, odd + "/busybox");
}

constexpr char kLook[] = " -s S1 shell ls \"\"/data/local/tmp/busybox\"\"";
constexpr char kLookAgain[] = " -s S1 ls \"/data/local/tmp\"";
constexpr char kPush[] = " -s S1 push --sync \"/host/busybox\" \"/data/local/tmp/busybox\"";
constexpr char kChmod[] = " -s S1 shell chmod a+x /data/local/tmp/busybox";

class DeviceBusyboxTest : public SdkTest {
 protected:
  DeviceBusyboxTest() { s_busybox_fullpath = "/host/busybox"; }

  void ExpectAbsent() {
    channel.Expect(kLook).Prints("ls: /data/local/tmp/busybox: No such file or directory\n");
    channel.Expect(kLookAgain).Prints("000041ed 00001000 5e7d0000 .\n");
  }
};

TEST_F(DeviceBusyboxTest, OneThatIsThereIsMadeExecutable) {
  channel.Expect(kLook).Prints("/data/local/tmp/busybox\n");
  channel.Expect(kChmod).Prints("");
  EXPECT_EQ(AdbConfigDeviceBusybox("S1", &cancel), ADB_RESULT_OK);
}

TEST_F(DeviceBusyboxTest, OneThatIsNotIsPushedFirst) {
  ExpectAbsent();
  channel.Expect(kPush).Prints("/host/busybox: 1 file pushed, 0 skipped.\n");
  channel.Expect(kChmod).Prints("");
  EXPECT_EQ(AdbConfigDeviceBusybox("S1", &cancel), ADB_RESULT_OK);
}

TEST_F(DeviceBusyboxTest, TheFirstStepThatFailsEndsIt) {
  channel.Expect(kLook).Prints("error: device unauthorized.\n");
  EXPECT_EQ(AdbConfigDeviceBusybox("S1", &cancel), ADB_RESULT_DEVICE_UNAUTHORIZED);

  ExpectAbsent();
  channel.Expect(kPush).Prints("adb: error: No space left on device\n").Returns(1001);
  EXPECT_EQ(AdbConfigDeviceBusybox("S1", &cancel), ADB_RESULT_NO_SPACE_LEFT);

  channel.Expect(kLook).Prints("/data/local/tmp/busybox\n");
  channel.Expect(kChmod).Returns(1001);
  EXPECT_EQ(AdbConfigDeviceBusybox("S1", &cancel), 1001);
}

TEST_F(DeviceBusyboxTest, APhoneThatVanishesOnTheWay) {
  const std::string vanished = "error: device 'S1' not found\n";
  channel.Expect(kLook).Returns(3003);
  EXPECT_EQ(AdbConfigDeviceBusybox("S1", &cancel), 3003);

  channel.Expect(kLook).Prints("ls: /data/local/tmp/busybox: No such file or directory\n");
  channel.Expect(kLookAgain).Returns(3003);
  channel.Expect(kPush).Prints("adb: " + vanished).Returns(1001);
  EXPECT_EQ(AdbConfigDeviceBusybox("S1", &cancel), ADB_RESULT_NO_DEVICE) << "the second look is not heeded";

  ExpectAbsent();
  channel.Expect(kPush).Returns(3002);
  EXPECT_EQ(AdbConfigDeviceBusybox("S1", &cancel), 3002);

  ExpectAbsent();
  channel.Expect(kPush).Prints("1 file pushed\n");
  channel.Expect(kChmod).Prints(vanished).Returns(1001);
  EXPECT_EQ(AdbConfigDeviceBusybox("S1", &cancel), ADB_RESULT_NO_DEVICE);
}

TEST_F(DeviceBusyboxTest, ANullSerialIsTheFirstStepsAffair) {
  EXPECT_EQ(AdbConfigDeviceBusybox(nullptr, &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_THAT(journal(), ElementsAre(Error("AdbCheckFileExisted, invalid param."))) << "no line of its own";
}

}  // namespace
}  // namespace darokleim::test
