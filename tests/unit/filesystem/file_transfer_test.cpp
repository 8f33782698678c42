#include <string>

#include "tests/unit/support/device_output.h"
#include "tests/unit/support/sdk_test.h"

namespace darokleim::test {
namespace {

class FileTransferTest : public SdkTest {
 protected:
  const std::string push = " -s S1 push --sync \"/host/a\" \"/sdcard/a\"";
  const std::string pull = " -s S1 pull -a \"/sdcard/a\" \"/host/a\"";

  int Push(const std::string& output, int status = 0) {
    channel.Expect(push).Prints(output).Returns(status);
    return AdbPushFile("S1", "/host/a", "/sdcard/a", &cancel);
  }
  int Pull(const std::string& output, int status = 0) {
    channel.Expect(pull).Prints(output).Returns(status);
    return AdbPullFile("S1", "/sdcard/a", "/host/a", &cancel);
  }
};

TEST_F(FileTransferTest, APushIsDoneWhenAdbSaysSo) {
  EXPECT_EQ(Push("/host/a: 1 file pushed, 0 skipped.\n"), ADB_RESULT_OK);
  EXPECT_EQ(Push("/host/a: 0 files pushed, 1 file skipped.\n"), ADB_RESULT_OK);
  EXPECT_THAT(journal(), ElementsAre(Ran(push), GaveBack(), Ran(push), GaveBack())) << "no log lines";
}

TEST_F(FileTransferTest, TheMarkerOfAPushWinsOverAnyMessage) {
  EXPECT_EQ(Push("x: No such file or directory\n1 file pushed\n"), ADB_RESULT_OK);
}

TEST_F(FileTransferTest, TheMarkerOfAPushCountsWithTheValueZeroOnly) {
  EXPECT_EQ(Push("1 file pushed", 1001), 1001);
  EXPECT_EQ(Push("1 file pushed, No space left on device", 1001), ADB_RESULT_NO_SPACE_LEFT);
}

TEST_F(FileTransferTest, APushWithoutAMarkerIsClassified) {
  EXPECT_EQ(Push("2 files pushed"), ADB_RESULT_OK) << "nothing known, the channel's 0";
  EXPECT_EQ(Push(""), ADB_RESULT_OK);
  EXPECT_EQ(Push("adb: error: cannot stat '/host/a': No such file or directory", 1001),
            ADB_RESULT_NO_SUCH_FILE);
}

TEST_F(FileTransferTest, APullIsDoneWhenAdbSaysSo) {
  EXPECT_EQ(Pull("/sdcard/a: 1 file pulled, 0 skipped.\n"), ADB_RESULT_OK);
  EXPECT_EQ(Pull("file pulled"), ADB_RESULT_OK);
  EXPECT_EQ(Pull("file skipped"), ADB_RESULT_OK);
  EXPECT_EQ(log_lines(), Journal{});
}

TEST_F(FileTransferTest, APullThatDoesNotSaySoIsOne) {
  for (const char* output : {"", "x", "file pulle", "2 files pulled, 0 skipped.", "all of it was copied"}) {
    EXPECT_EQ(Pull(output), 1) << output;
  }
}

TEST_F(FileTransferTest, AMessageWinsOverTheMarkerOfAPull) {
  EXPECT_EQ(Pull("1 file pulled\nNo space left on device"), ADB_RESULT_NO_SPACE_LEFT);
  EXPECT_EQ(Pull("1 file pulled", 1001), 1001);
}

TEST_F(FileTransferTest, WithoutOutputTheChannelsValueIsTheCode) {
  for (const int value : {0, 3003}) {
    channel.Expect(push).Returns(value);
    EXPECT_EQ(AdbPushFile("S1", "/host/a", "/sdcard/a", &cancel), value);
    channel.Expect(pull).Returns(value);
    EXPECT_EQ(AdbPullFile("S1", "/sdcard/a", "/host/a", &cancel), value);
  }
}

TEST_F(FileTransferTest, NullArgumentsAreRefused) {
  EXPECT_EQ(AdbPushFile(nullptr, "a", "b", &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_EQ(AdbPushFile("S", nullptr, "b", &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_EQ(AdbPushFile("S", "a", nullptr, &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_EQ(AdbPullFile(nullptr, "a", "b", &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_EQ(AdbPullFile("S", nullptr, "b", &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_EQ(AdbPullFile("S", "a", nullptr, &cancel), ADB_RESULT_INVALID_PARAM);
  const Event push_line = Error("AdbPushFile, invalid param.");
  const Event pull_line = Error("AdbPullFile, invalid param.");
  EXPECT_THAT(journal(), ElementsAre(push_line, push_line, push_line, pull_line, pull_line, pull_line));
}

// What a phone or an adb of its time printed, with the value that its exit status gives.
TEST_F(FileTransferTest, RealOutputs) {
  struct RealOutput {
    const char* sample;
    int status;
    int code;
  };
  const RealOutput pushes[] = {
      {"adb-push/1.0.32-percent-only.txt", 0, ADB_RESULT_OK},
      {"adb-push/1.0.36-path-prefix.txt", 0, ADB_RESULT_OK},
      {"adb-push/1.0.39-zero-rate.txt", 0, ADB_RESULT_OK},
      {"adb-push/41-copy-response-eof-then-success.txt", 1001, 1001},
      {"adb-push/41-dir.txt", 0, ADB_RESULT_OK},
      {"adb-push/41-multi-file.txt", 0, ADB_RESULT_OK},
      {"adb-push/41-readonly-fs-with-summary.txt", 1001, 1001},
      {"adb-push/41-skipping-empty-dir-squeezed.txt", 0, ADB_RESULT_OK},
  };
  EXPECT_EQ(DeviceOutputsIn("adb-push").size(), std::size(pushes));
  for (const auto& c : pushes) EXPECT_EQ(Push(DeviceOutput(c.sample), c.status), c.code) << c.sample;
  const RealOutput pulls[] = {
      {"adb-pull/1.0.31-herong-windows-tail.txt", 0, 1},
      {"adb-pull/1.0.31-music-tail.txt", 0, 1},
      {"adb-pull/1.0.31-remote-object-missing.txt", 1001, 1001},
      {"adb-pull/1.0.36-remote-object-missing.txt", 1001, 1001},
      {"adb-pull/1.0.39-dir-old-dot-form.txt", 0, 1},
      {"adb-pull/1.0.39-one-file.txt", 0, ADB_RESULT_OK},
      {"adb-pull/41-denied-directory-exit0.txt", 0, 1},
      {"adb-pull/stat-remote-denied.txt", 1001, 1001},
  };
  EXPECT_EQ(DeviceOutputsIn("adb-pull").size(), std::size(pulls));
  for (const auto& c : pulls) EXPECT_EQ(Pull(DeviceOutput(c.sample), c.status), c.code) << c.sample;
}

class ScreenshotTest : public SdkTest {
 protected:
  void ExpectSteps(int steps) {
    if (steps > 0) channel.Expect(" -s S1 shell screencap -p \"/data/local/tmp/shot.png\"").Prints("");
    if (steps > 1) {
      channel.Expect(" -s S1 pull -a \"/data/local/tmp/shot.png\" \"/host/shot.png\"")
          .Prints("1 file pulled");
    }
    if (steps > 2) channel.Expect(" -s S1 shell rm \"/data/local/tmp/shot.png\"").Prints("");
  }
};

TEST_F(ScreenshotTest, IsTakenPulledAndRemoved) {
  ExpectSteps(3);
  EXPECT_EQ(AdbScreencapToPC("S1", "/host/shot.png", &cancel), ADB_RESULT_OK);
  EXPECT_THAT(log_lines(),
              ElementsAre(Info("AdbScreencapToPC Enter."), Info("AdbScreencapToDevice Enter."),
                          Info("AdbScreencapToDevice Leave, return 0."), Info("AdbRemoveFile Enter."),
                          Info("AdbRemoveFile Leave, return 0."), Info("AdbScreencapToPC Leave, return 0.")));
}

TEST_F(ScreenshotTest, EndsAtTheFirstFailureWithoutALeaveLine) {
  channel.Expect(" -s S1 shell screencap -p \"/data/local/tmp/shot.png\"").Returns(3003);
  EXPECT_EQ(AdbScreencapToPC("S1", "/host/shot.png", &cancel), 3003);
  EXPECT_EQ(log_lines().back(), Info("AdbScreencapToDevice Leave, return 3003."));

  ExpectSteps(1);
  channel.Expect(" -s S1 pull -a \"/data/local/tmp/shot.png\" \"/host/shot.png\"").Prints("");
  EXPECT_EQ(AdbScreencapToPC("S1", "/host/shot.png", &cancel), 1);

  ExpectSteps(2);
  channel.Expect(" -s S1 shell rm \"/data/local/tmp/shot.png\"").Returns(1001);
  EXPECT_EQ(AdbScreencapToPC("S1", "/host/shot.png", &cancel), 1001);
  EXPECT_EQ(log_lines().back(), Info("AdbRemoveFile Leave, return 1001."));
}

TEST_F(ScreenshotTest, APathWithoutAFileNameIsRefusedSilently) {
  for (const char* path : {"/host/", "", "/"}) EXPECT_EQ(AdbScreencapToPC("S1", path, &cancel), 4) << path;
  const Event enter = Info("AdbScreencapToPC Enter.");
  EXPECT_THAT(journal(), ElementsAre(enter, enter, enter));
}

TEST_F(ScreenshotTest, NullArgumentsAreRefused) {
  EXPECT_EQ(AdbScreencapToPC(nullptr, "a", &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_EQ(AdbScreencapToPC("S1", nullptr, &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_EQ(journal().back(), Error("AdbScreencapToPC, invalid param."));
}

TEST_F(ScreenshotTest, ARelativePathIsItsOwnFileName) {
  channel.Expect(" -s S1 shell screencap -p \"/data/local/tmp/a b.png\"").Returns(7);
  EXPECT_EQ(AdbScreencapToPC("S1", "a b.png", &cancel), 7);
}

}  // namespace
}  // namespace darokleim::test
