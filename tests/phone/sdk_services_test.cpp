// Backup, log, activities and input of a phone.
#include <atomic>
#include <mutex>
#include <thread>

#include "tests/phone/sdk_on_phone.h"

namespace darokleim::test {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class SdkServices : public SdkOnPhone {
 protected:
  void InstallNotes() {
    ASSERT_EQ(AdbInstallAppFromPCPath(phone(), DataFile("notes-1.apk").c_str(), cancel_), kOk);
  }
  void TearDown() override {
    if (!is_simulated()) Shell(std::string("pm uninstall ") + kNotes);
    SdkOnPhone::TearDown();
  }
};

class SdkBackup : public SdkServices {
 protected:
  void SetUp() override {
    SdkServices::SetUp();
    REQUIRE_SIMULATED_PHONE("asks its user first");
    InstallNotes();
    Shell(std::string("echo precious > ") + kNote);
  }

  int Backup(const bool* cancel) { return AdbBackupApp(phone(), kNotes, file_().c_str(), cancel); }
  int Restore(const bool* cancel) { return AdbRestoreApp(phone(), file_().c_str(), cancel); }
  std::string file_() const { return OnHost("my \xe7\xac\x94\xe8\xae\xb0 it's.ab"); }
};

TEST_P(SdkBackup, BringsTheDataBack) {
  EXPECT_EQ(Backup(cancel_), kOk);
  EXPECT_THAT(ReadFile(file_()), StartsWith("ANDROID BACKUP\n"));
  Shell(std::string("echo changed > ") + kNote);
  EXPECT_EQ(Restore(cancel_), kOk);
  EXPECT_EQ(Text(std::string("cat ") + kNote), "precious\n");
}

TEST_P(SdkBackup, NeedsAFileOfTheHost) {
  EXPECT_EQ(AdbBackupApp(phone(), kNotes, OnHost("none/b.ab").c_str(), cancel_), ADB_RESULT_NO_SUCH_FILE);
  EXPECT_EQ(AdbRestoreApp(phone(), OnHost("none.ab").c_str(), cancel_), ADB_RESULT_NO_SUCH_FILE);
}

TEST_P(SdkBackup, AFileThatIsNoneRestoresNothing) {
  WriteFile(file_(), "no backup");
  EXPECT_EQ(Restore(cancel_), kOk) << "adb does not report it";
  EXPECT_EQ(Text(std::string("cat ") + kNote), "precious\n");
}

TEST_P(SdkBackup, ThatNobodyConfirmsIsAbandoned) {
  SwitchOn("unconfirmed-backup");
  int code = -1;
  std::thread backup([&] { code = Backup(cancel_); });
  EXPECT_TRUE(Eventually([this] { return IsAsking(); }));
  EXPECT_EQ(AdbStopDeviceBackupRestoreProcess(phone(), cancel_), kOk);
  backup.join();
  EXPECT_EQ(code, kOk) << "adb does not report it";
  EXPECT_EQ(ReadFile(file_()), "") << "but the file does";
}

TEST_P(SdkBackup, ARestoreThatNobodyConfirmsIsAbandoned) {
  Backup(cancel_);
  Shell(std::string("echo changed > ") + kNote);
  SwitchOn("unconfirmed-backup");
  int code = -1;
  std::thread restore([&] { code = Restore(cancel_); });
  EXPECT_TRUE(Eventually([this] { return IsAsking(); }));
  EXPECT_EQ(AdbStopDeviceBackupRestoreProcess(phone(), cancel_), kOk);
  restore.join();
  EXPECT_EQ(code, kOk);
  EXPECT_EQ(Text(std::string("cat ") + kNote), "changed\n");
}

TEST_P(SdkBackup, IsCancelledByItsFlag) {
  SwitchOn("unconfirmed-backup");
  bool cancel = false;
  int code = -1;
  std::thread backup([&] { code = Backup(&cancel); });
  EXPECT_TRUE(Eventually([this] { return IsAsking(); }));
  __atomic_store_n(&cancel, true, __ATOMIC_SEQ_CST);
  backup.join();
  EXPECT_EQ(code, 3003);
}

INSTANTIATE_FOR_PHONES(SdkBackup);

// What a stream of the log has brought so far.
class Heard {
 public:
  bool Has(const std::string& part) const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return text_.find(part) != std::string::npos;
  }
  bool HasEnded() const { return ends_ > 0; }
  int ends() const { return ends_; }
  int status() const { return status_; }

  int Follow(const char* serial, const char* filter, const bool* cancel) {
    return AdbLogcatAnsync(serial, filter, reinterpret_cast<void*>(&OnOutput), this, cancel);
  }

 private:
  static void OnOutput(void* context, const char* data, int length) {
    auto* heard = static_cast<Heard*>(context);
    const std::lock_guard<std::mutex> lock(heard->mutex_);
    if (data == nullptr) {
      heard->status_ = length;
      ++heard->ends_;
    } else {
      heard->text_.append(data, static_cast<size_t>(length));
    }
  }

  mutable std::mutex mutex_;
  std::string text_;
  std::atomic<int> ends_{0};
  std::atomic<int> status_{-1};
};

class SdkLog : public SdkServices {
 protected:
  void Write(const std::string& tag, const std::string& line) const { Shell("log -t " + tag + " " + line); }
};

TEST_P(SdkLog, IsFollowedUntilTheFlagIsSet) {
  Heard heard;
  bool stop = false;
  ASSERT_EQ(heard.Follow(phone(), "DarokleimTest:I", &stop), kOk);
  EXPECT_TRUE(Eventually([&] {
    Write("DarokleimTest", "a line for the test");
    return heard.Has("a line for the test");
  }));
  Write("DarokleimOther", "a line for nobody");
  __atomic_store_n(&stop, true, __ATOMIC_SEQ_CST);
  EXPECT_TRUE(Eventually([&] { return heard.HasEnded(); }));
  EXPECT_EQ(heard.status(), 3003);
  EXPECT_EQ(heard.ends(), 1);
  EXPECT_FALSE(heard.Has("a line for nobody"));
}

TEST_P(SdkLog, SeveralStreamsRunSideBySide) {
  Heard first;
  Heard second;
  bool stop_first = false;
  bool stop_second = false;
  ASSERT_EQ(first.Follow(phone(), "DarokleimOne:I", &stop_first), kOk);
  ASSERT_EQ(second.Follow(phone(), "DarokleimTwo:I *:S", &stop_second), kOk);
  EXPECT_TRUE(Eventually([&] {
    Write("DarokleimOne", "for the first");
    Write("DarokleimTwo", "for the second");
    return first.Has("for the first") && second.Has("for the second");
  }));
  __atomic_store_n(&stop_first, true, __ATOMIC_SEQ_CST);
  EXPECT_TRUE(Eventually([&] { return first.HasEnded(); }));
  EXPECT_FALSE(second.HasEnded());
  EXPECT_TRUE(Eventually([&] {
    Write("DarokleimTwo", "still there");
    return second.Has("still there");
  }));
  __atomic_store_n(&stop_second, true, __ATOMIC_SEQ_CST);
  EXPECT_TRUE(Eventually([&] { return second.HasEnded(); }));
  EXPECT_FALSE(first.Has("for the second"));
  EXPECT_FALSE(second.Has("for the first"));
}

TEST_P(SdkLog, EndsWithThePhone) {
  REQUIRE_SIMULATED_PHONE("would have to be unplugged");
  Heard heard;
  const bool never = false;
  ASSERT_EQ(heard.Follow(phone(), "DarokleimTest:I", &never), kOk);
  EXPECT_TRUE(Eventually([&] {
    Write("DarokleimTest", "before");
    return heard.Has("before");
  }));
  Control({"unplug"});
  EXPECT_TRUE(Eventually([&] { return heard.HasEnded(); }));
}

TEST_P(SdkLog, IsCleared) {
  REQUIRE_SIMULATED_PHONE("writes more into its log");
  Write("DarokleimTest", "gone soon");
  EXPECT_THAT(Adb({"logcat", "-d", "-s", "DarokleimTest"}).output, HasSubstr("gone soon"));
  EXPECT_EQ(AdbClearLogcat(phone(), cancel_), kOk);
  EXPECT_THAT(Adb({"logcat", "-d", "-s", "DarokleimTest"}).output, Not(HasSubstr("gone soon")));
}

INSTANTIATE_FOR_PHONES(SdkLog);

TEST_P(SdkServices, StartsActivities) {
  InstallNotes();
  EXPECT_EQ(AdbStartApp(phone(), "com.example.notes/.MainActivity", nullptr), kOk);
  EXPECT_EQ(AdbStartApp(phone(), "com.example.notes/.EditActivity",
                        "-a android.intent.action.VIEW -d note://1 --es title hello"),
            kOk);
  EXPECT_EQ(AdbStartApp(phone(), "com.example.notes/.Missing", nullptr), 1);
  EXPECT_EQ(AdbStartApp(phone(), "com.example.none/.MainActivity", ""), 1);
  REQUIRE_SIMULATED_PHONE("does not show what it started");
  EXPECT_EQ(Control({"show", "activities"}).output,
            "start com.example.notes/com.example.notes.MainActivity\n"
            "start com.example.notes/com.example.notes.EditActivity\n");
  Control({"unplug"});
  EXPECT_EQ(AdbStartApp(phone(), "com.example.notes/.MainActivity", nullptr), 1001);
}

TEST_P(SdkServices, TypesIntoThePhone) {
  REQUIRE_SIMULATED_PHONE("types it into whatever has the focus");
  EXPECT_EQ(AdbInputStringToDevice(phone(), "it's $5 & more", cancel_), kOk);
  EXPECT_EQ(AdbInputStringToDevice(phone(), "a%sgap", cancel_), kOk);
  EXPECT_EQ(Control({"show", "input"}).output, "text it's $5 & more\ntext a gap\n");
  Control({"state", "unauthorized"});
  EXPECT_EQ(AdbInputStringToDevice(phone(), "nothing", cancel_), ADB_RESULT_DEVICE_UNAUTHORIZED);
}

INSTANTIATE_FOR_PHONES(SdkServices);

}  // namespace
}  // namespace darokleim::test
