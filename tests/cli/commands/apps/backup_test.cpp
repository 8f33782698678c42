// darokleim backup and restore, on simulated phones.
#include <signal.h>

#include <chrono>
#include <filesystem>
#include <thread>

#include "tests/cli/documented_json.h"
#include "tests/cli/phone_tool_test.h"
#include "tests/support/file_content.h"

namespace darokleim::cli {
namespace {

using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

constexpr char kNote[] = "/data/data/com.example.notes/files/note";

constexpr char kSaved[] = "com.example.notes";

class PhoneBackupTest : public PhoneToolTest {
 protected:
  void SetUp() override { phones().Adb({"install", DAROKLEIM_PHONE_TEST_DATA "/notes-1.apk"}); }

  std::string Activities() { return phones().Control({"TEST0001", "show", "activities"}).output; }
  void Write() const { Shell("echo precious > " + std::string(kNote)); }
  void Remove() const { Shell("rm " + std::string(kNote)); }
  std::string Note() const { return Shell("cat " + std::string(kNote)); }

  // A backup that waits for its answer on the phone.
  std::unique_ptr<HostProcess> StartWaitingBackup() {
    SwitchOn("unconfirmed-backup");
    auto tool = Start({"backup", kSaved, "notes.ab"});
    EXPECT_EQ(tool->ReadLine(), "Confirm the backup on the phone's screen.");
    while (Activities().empty()) std::this_thread::sleep_for(std::chrono::milliseconds(20));
    return tool;
  }
};

TEST_P(PhoneBackupTest, BringsTheDataBack) {
  Write();
  EXPECT_THAT(Succeed({"backup", kSaved, "my \"notes\".ab"}),
              MatchesRegex("Confirm the backup on the phone's screen\\.\n"
                           "Saved [0-9.]+ (B|KiB) in my \"notes\"\\.ab\\.\n"));
  EXPECT_THAT(test::ReadFile(File("work/my \"notes\".ab")), StartsWith("ANDROID BACKUP\n"));
  Remove();
  EXPECT_THAT(Succeed({"restore", "my \"notes\".ab"}),
              HasSubstr("The phone has received my \"notes\".ab.\n"));
  EXPECT_EQ(Note(), "precious");
}

TEST_P(PhoneBackupTest, GoesThroughTheStandardStreams) {
  Write();
  EXPECT_EQ(RunShell("cd " + File("work") + " && \"$TOOL\" backup com.example.notes - >notes.ab").status, 0);
  EXPECT_THAT(test::ReadFile(File("work/notes.ab")), StartsWith("ANDROID BACKUP\n"));
  Remove();
  EXPECT_EQ(RunShell("\"$TOOL\" restore - <" + File("work/notes.ab")).status, 0);
  EXPECT_EQ(Note(), "precious");
}

TEST_P(PhoneBackupTest, IsDescribedForPrograms) {
  const Json::Value saved = ParseJson(Succeed({"backup", kSaved, "notes.ab", "--json"}));
  ExpectDocumented("backup", saved);
  EXPECT_EQ(saved["size"].asUInt64(), std::filesystem::file_size(File("work/notes.ab")));
  ExpectDocumented("restore", ParseJson(Succeed({"restore", "notes.ab", "--json"})));
}

TEST_P(PhoneBackupTest, SaysWhenNothingWasSaved) {
  auto tool = StartWaitingBackup();
  Shell("am force-stop com.android.backupconfirm");
  const auto outcome = tool->Finish();
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.errors, HasSubstr("refused on its screen"));
  EXPECT_TRUE(std::filesystem::is_empty(File("work")));
}

TEST_P(PhoneBackupTest, NamesAFileThatCannotBeWrittenOrRead) {
  EXPECT_THAT(Fail({"-q", "backup", kSaved, "missing/notes.ab"}), HasSubstr("cannot write in "));
  EXPECT_THAT(Fail({"-q", "backup", kSaved, "."}), HasSubstr("not a regular file"));
  EXPECT_THAT(Fail({"-q", "restore", "none.ab"}),
              HasSubstr("cannot restore none.ab: No such file or directory."));
  EXPECT_EQ(Activities(), "");
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

TEST_P(PhoneBackupTest, OfAnUnknownPackageLeavesNoFileAndKeepsTheOlderOne) {
  EXPECT_THAT(Fail({"-q", "backup", "com.example.notez", "new.ab"}), HasSubstr("not installed"));
  EXPECT_TRUE(std::filesystem::is_empty(File("work")));
  test::WriteFile(File("work/notes.ab"), "older");
  EXPECT_THAT(Fail({"-q", "backup", "com.example.notez", "notes.ab"}), HasSubstr("not installed"));
  EXPECT_EQ(Run({"-q", "-s", "ABSENT", "backup", kSaved, "notes.ab"}).status, 3);
  EXPECT_EQ(test::ReadFile(File("work/notes.ab")), "older");
}

TEST_P(PhoneBackupTest, ThatIsCancelledKeepsTheOlderFile) {
  test::WriteFile(File("work/notes.ab"), "older");
  auto tool = StartWaitingBackup();
  tool->Signal(SIGTERM);
  EXPECT_EQ(tool->Finish().status, 130);
  EXPECT_EQ(test::ReadFile(File("work/notes.ab")), "older");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(File("work")), {}), 1);
}

TEST_P(PhoneBackupTest, AFileThatIsNotABackupIsNotSent) {
  test::WriteFile(File("work/random.ab"), "ANDROID BACKUQ\n5\n1\nnone\n");
  test::WriteFile(File("work/empty.ab"), "");
  for (const char* name : {"random.ab", "empty.ab"}) {
    EXPECT_THAT(Fail({"-q", "restore", name}), HasSubstr("not an Android backup"));
  }
  EXPECT_EQ(Activities(), "");
}

INSTANTIATE_FOR_BOTH_PHONES(PhoneBackupTest);

}  // namespace
}  // namespace darokleim::cli
