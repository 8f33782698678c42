#include <string>

#include "tests/unit/support/device_output.h"
#include "tests/unit/support/refused_calls.h"
#include "tests/unit/support/sdk_test.h"

namespace darokleim::test {
namespace {

using namespace std::string_literals;

class BackupTest : public SdkTest {
 protected:
  const std::string backup = " -s S1 backup -f \"/tmp/b.ab\" -noapk -nosystem com.example";
  const std::string restore = " -s S1 restore \"/tmp/b.ab\"";
  const std::string stop = " -s S1 shell am force-stop com.android.backupconfirm";

  int Backup() { return AdbBackupApp("S1", "com.example", "/tmp/b.ab", &cancel); }
  int Restore() { return AdbRestoreApp("S1", "/tmp/b.ab", &cancel); }
  int Stop() { return AdbStopDeviceBackupRestoreProcess("S1", &cancel); }
};

TEST_F(BackupTest, EachIsOneCommand) {
  channel.Expect(backup).Prints("Now unlock your device and confirm the backup operation.\n");
  EXPECT_EQ(Backup(), ADB_RESULT_OK);
  channel.Expect(restore).Prints("");
  EXPECT_EQ(Restore(), ADB_RESULT_OK);
  channel.Expect(stop);
  EXPECT_EQ(Stop(), ADB_RESULT_OK);
  EXPECT_THAT(journal(), ElementsAre(Info("AdbBackupApp Enter."), Ran(backup), GaveBack(),
                                     Info("AdbBackupApp Leave, return 0."), Info("AdbRestoreApp Enter."),
                                     Ran(restore), GaveBack(), Info("AdbRestoreApp Leave, return 0."),
                                     Info("AdbStopDeviceBackupRestoreProcess Enter."), Ran(stop),
                                     Info("AdbStopDeviceBackupRestoreProcess Leave, return 0.")));
}

TEST_F(BackupTest, MessagesAreClassified) {
  channel.Expect(backup)
      .Prints("adb: unable to open file /tmp/b.ab: No such file or directory")
      .Returns(1001);
  EXPECT_EQ(Backup(), ADB_RESULT_NO_SUCH_FILE);
  channel.Expect(restore).Prints("error: device unauthorized.").Returns(1001);
  EXPECT_EQ(Restore(), ADB_RESULT_DEVICE_UNAUTHORIZED);
  channel.Expect(stop).Prints("error: device 'S1' not found").Returns(1001);
  EXPECT_EQ(Stop(), ADB_RESULT_NO_DEVICE);
  channel.Expect(stop).Prints("unknown").Returns(1255);
  EXPECT_EQ(Stop(), 1255);
  channel.Expect(backup).Prints("Failure");
  EXPECT_EQ(Backup(), ADB_RESULT_FAILURE);
  channel.Expect(restore).Prints("Failure");
  EXPECT_EQ(Restore(), ADB_RESULT_FAILURE);
  channel.Expect(stop).Prints("Failure");
  EXPECT_EQ(Stop(), ADB_RESULT_FAILURE);
}

TEST_F(BackupTest, WithoutOutputTheChannelsValueIsTheCode) {
  for (const int value : {0, 3003}) {
    channel.Expect(backup).Returns(value);
    EXPECT_EQ(Backup(), value);
    channel.Expect(restore).Returns(value);
    EXPECT_EQ(Restore(), value);
    channel.Expect(stop).Returns(value);
    EXPECT_EQ(Stop(), value);
  }
}

TEST_F(BackupTest, WhatAdbAsksTheUserIsNotAnError) {
  for (const std::string& sample : DeviceOutputsIn("adb-backup")) {
    const bool restores = sample == "adb-backup/restore-old.txt";
    channel.Expect(restores ? restore : backup).Prints(DeviceOutput(sample));
    EXPECT_EQ(restores ? Restore() : Backup(), ADB_RESULT_OK) << sample;
  }
}

TEST_F(BackupTest, ABackupNeedsAllItsTexts) {
  EXPECT_EQ(AdbBackupApp(nullptr, "com.example", "/tmp/b.ab", &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_EQ(AdbBackupApp("S1", nullptr, "/tmp/b.ab", &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_EQ(AdbBackupApp("S1", "com.example", nullptr, &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_EQ(journal(), RefusedCalls("AdbBackupApp", 3));
}

TEST_F(BackupTest, PathsHaveNoLimit) {
  const std::string path = "/" + std::string(100'000, 'p') + "\xff b";
  channel.Expect(" -s S1 backup -f \"" + path + "\" -noapk -nosystem com.example").Returns(7);
  EXPECT_EQ(AdbBackupApp("S1", "com.example", path.c_str(), &cancel), 7);
  channel.Expect(" -s S1 restore \"" + path + "\"").Returns(7);
  EXPECT_EQ(AdbRestoreApp("S1", path.c_str(), &cancel), 7);
}

TEST_F(BackupTest, TheCommandToStopIsCutAt127Characters) {
  const std::string rest = " shell am force-stop com.android.backupconfirm";
  for (const std::size_t length : {126U, 127U, 128U, 129U, 300U}) {
    const std::string serial(length - rest.size() - 4, 'S');
    channel.Expect((" -s " + serial + rest).substr(0, 127)).Returns(7);
    EXPECT_EQ(AdbStopDeviceBackupRestoreProcess(serial.c_str(), &cancel), 7) << length;
  }
}

}  // namespace
}  // namespace darokleim::test
