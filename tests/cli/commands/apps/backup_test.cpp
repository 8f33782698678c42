// darokleim backup, restore, backup-stop, on simulated phones.
#include <signal.h>

#include <chrono>
#include <filesystem>
#include <thread>

#include "tests/cli/phone_tool_test.h"
#include "tests/support/file_content.h"

namespace darokleim::cli {
namespace {

using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

constexpr char kNote[] = "/data/data/com.example.notes/files/note";

class PhoneBackupTest : public PhoneToolTest {
 protected:
  void SetUp() override { phones().Adb({"install", DAROKLEIM_PHONE_TEST_DATA "/notes-1.apk"}); }

  std::string Activities() { return phones().Control({"TEST0001", "show", "activities"}).output; }

  // A backup that waits for its answer on the phone.
  std::unique_ptr<HostProcess> StartWaitingBackup() {
    SwitchOn("unconfirmed-backup");
    auto tool = Start({"backup", kNotes, "notes.ab"});
    EXPECT_EQ(tool->ReadLine(), "Confirm the backup on the phone's screen.");
    while (Activities().empty()) std::this_thread::sleep_for(std::chrono::milliseconds(20));
    return tool;
  }
};

TEST_P(PhoneBackupTest, BringsTheDataBack) {
  Shell("echo precious > " + std::string(kNote));
  EXPECT_THAT(Succeed({"backup", kNotes, "my \"notes\".ab"}),
              MatchesRegex("Confirm the backup on the phone's screen\\.\n"
                           "Saved [0-9.]+ (B|KiB) in my \"notes\"\\.ab\\.\n"));
  EXPECT_THAT(test::ReadFile(File("work/my \"notes\".ab")), StartsWith("ANDROID BACKUP\n"));
  Shell("rm " + std::string(kNote));
  EXPECT_THAT(Succeed({"restore", "my \"notes\".ab"}),
              HasSubstr("The phone has received my \"notes\".ab.\n"));
  EXPECT_EQ(Shell("cat " + std::string(kNote)), "precious");
}

TEST_P(PhoneBackupTest, SaysWhenNothingWasSaved) {
  auto tool = StartWaitingBackup();
  Succeed({"backup-stop"});
  EXPECT_THAT(tool->Finish().errors, HasSubstr("nothing was saved of com.example.notes"));
  EXPECT_FALSE(std::filesystem::exists(File("work/notes.ab")));
}

TEST_P(PhoneBackupTest, NamesAFileThatCannotBeWrittenOrRead) {
  EXPECT_THAT(Fail({"-q", "backup", kNotes, "missing/notes.ab"}), HasSubstr("cannot write in "));
  EXPECT_THAT(Fail({"-q", "restore", "none.ab"}),
              HasSubstr("cannot restore none.ab: No such file or directory."));
}

TEST_P(PhoneBackupTest, CtrlCClosesTheQuestion) {
  auto tool = StartWaitingBackup();
  tool->Signal(SIGINT);
  const auto outcome = tool->Finish();
  EXPECT_EQ(outcome.status, 130);
  EXPECT_EQ(outcome.errors, "darokleim: cancelled\n");
  EXPECT_EQ(Activities(),
            "start com.android.backupconfirm/com.android.backupconfirm.BackupRestoreConfirmation\n"
            "force-stop com.android.backupconfirm\n");
}

TEST_P(PhoneBackupTest, EndsWhenTheQuestionIsClosedElsewhere) {
  auto tool = StartWaitingBackup();
  EXPECT_EQ(Succeed({"backup-stop"}), "The phone's question is closed.\n");
  const auto outcome = tool->Finish();
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.errors, HasSubstr("nothing was saved of com.example.notes"));
}

TEST_P(PhoneBackupTest, ThatFailsKeepsTheOlderFile) {
  test::WriteFile(File("work/notes.ab"), "older");
  EXPECT_THAT(Fail({"-q", "backup", "com.example.notez", "notes.ab"}),
              HasSubstr("com.example.notez is not installed."));
  EXPECT_EQ(Run({"-q", "-s", "ABSENT", "backup", kNotes, "notes.ab"}).status, 1);
  EXPECT_EQ(test::ReadFile(File("work/notes.ab")), "older");
  EXPECT_THAT(Fail({"-q", "backup", "com.example.notez", "new.ab"}), HasSubstr("is not installed."));
  EXPECT_FALSE(std::filesystem::exists(File("work/new.ab")));
}

TEST_P(PhoneBackupTest, ThatIsCancelledKeepsTheOlderFile) {
  test::WriteFile(File("work/notes.ab"), "older");
  auto tool = StartWaitingBackup();
  tool->Signal(SIGINT);
  EXPECT_EQ(tool->Finish().status, 130);
  EXPECT_EQ(test::ReadFile(File("work/notes.ab")), "older");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(File("work")), {}), 1);
}

TEST_P(PhoneBackupTest, AFileThatIsNotABackupIsNotSent) {
  test::WriteFile(File("work/random.ab"), "ANDROID BACKUQ\n5\n1\nnone\n");
  EXPECT_THAT(Fail({"-q", "restore", "random.ab"}),
              HasSubstr("cannot restore random.ab: it is not an Android backup."));
  test::WriteFile(File("work/empty.ab"), "");
  EXPECT_THAT(Fail({"-q", "restore", "empty.ab"}), HasSubstr("it is not an Android backup."));
  EXPECT_EQ(Activities(), "");
}

INSTANTIATE_FOR_BOTH_PHONES(PhoneBackupTest);

}  // namespace
}  // namespace darokleim::cli
