// Each test stands for the life of one process: what AdbSdkInit keeps, it never gives up.
#include "src/core/sdk.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

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

}  // namespace
}  // namespace darokleim::test
