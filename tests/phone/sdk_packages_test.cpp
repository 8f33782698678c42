// Which applications a phone has, and putting them on and taking them off.
#include <algorithm>
#include <filesystem>
#include <functional>
#include <thread>

#include "tests/phone/sdk_on_phone.h"
#include "tests/support/adb_version.h"

namespace darokleim::test {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::MatchesRegex;

// The channel's status when adb cannot be started.
constexpr int kNotStarted = 3002;

std::string WithoutBlanks(std::string text) {
  text.erase(std::remove_if(text.begin(), text.end(), [](char c) { return c == ' ' || c == '\n'; }),
             text.end());
  return text;
}

// The application of the test is removed from the phone afterwards.
class SdkPackages : public SdkOnPhone {
 protected:
  void SetUp() override {
    SdkOnPhone::SetUp();
    staged_before_ = Staged();
  }
  void TearDown() override {
    if (!is_simulated()) Shell(std::string("pm uninstall ") + kNotes);
    SdkOnPhone::TearDown();
  }

  int Install(const std::string& file = DataFile("notes-1.apk")) const {
    return AdbInstallAppFromPCPath(phone(), file.c_str(), cancel_);
  }
  int InstallSet(const Words& files) const {
    std::string json = "{\"files\": [";
    for (const std::string& file : files) json += (&file == &files[0] ? "\"" : ", \"") + file + "\"";
    return AdbInstallMultipleAppFromPCPath(phone(), (json + "]}").c_str(), cancel_);
  }
  bool IsInstalled() const { return !Text(std::string("pm path ") + kNotes).empty(); }
  // What is in the folder where packages are staged, but for the test's own folder.
  std::string Staged() const { return Text("ls /data/local/tmp | grep -v darokleim-test"); }
  void ExpectNothingIsLeft() const { EXPECT_EQ(Staged(), staged_before_) << "staged and not removed"; }
  // A copy of the package on the host.
  std::string PackageNamed(const std::string& name) const {
    WriteFile(OnHost(name), ReadFile(DataFile("notes-1.apk")));
    return OnHost(name);
  }

 private:
  std::string staged_before_;
};

TEST_P(SdkPackages, AreInstalledListedAndRemoved) {
  bool installed = true;
  EXPECT_EQ(AdbCheckAppInstalled(phone(), kNotes, &installed, cancel_), kOk);
  EXPECT_FALSE(installed);
  EXPECT_EQ(Install(), kOk);
  EXPECT_EQ(AdbCheckAppInstalled(phone(), kNotes, &installed, cancel_), kOk);
  EXPECT_TRUE(installed);
  EXPECT_EQ(AdbCheckAppInstalled(phone(), "com.example.note", &installed, cancel_), kOk);
  EXPECT_FALSE(installed) << "only a longer name is";
  EXPECT_EQ(AdbGetPackagesNameOfInstalled(phone(), "-3", &text_, &length_, cancel_), kOk);
  EXPECT_THAT(Taken(&text_, length_), HasSubstr("package:com.example.notes"));
  EXPECT_EQ(AdbGetPackagesNameOfInstalled(phone(), "com.example.notes", &text_, &length_, cancel_), kOk);
  EXPECT_EQ(Unix(Taken(&text_, length_)), "package:com.example.notes\n");
  EXPECT_EQ(AdbGetPackagesNameList(phone(), nullptr, &text_, &length_), kOk);
  EXPECT_THAT(Taken(&text_, length_), HasSubstr("package:com.android.settings"));
  EXPECT_EQ(AdbCheckAppExist(phone(), kNotes, 0, cancel_), kOk);
  EXPECT_EQ(AdbUninstallApp(phone(), kNotes, 0, cancel_), kOk);
  EXPECT_FALSE(IsInstalled());
  EXPECT_EQ(AdbUninstallApp(phone(), kNotes, 0, cancel_), ADB_RESULT_FAILURE);
}

TEST_P(SdkPackages, HaveAVersionAndPaths) {
  EXPECT_EQ(AdbGetAppVersion(phone(), kNotes, buffer_, sizeof(buffer_), cancel_), ADB_RESULT_NOT_FOUND);
  EXPECT_EQ(AdbGetApkPathOfInstatlled(phone(), kNotes, buffer_, sizeof(buffer_), cancel_),
            ADB_RESULT_NOT_FOUND);
  EXPECT_EQ(AdbGetApkPathOfInstatlledEx(phone(), kNotes, &text_, &length_, cancel_), ADB_RESULT_NOT_FOUND);
  EXPECT_EQ(Taken(&text_, length_), "{\n   \"path\" : null\n}");
  Install();
  EXPECT_EQ(AdbGetAppVersion(phone(), kNotes, buffer_, sizeof(buffer_), cancel_), kOk);
  EXPECT_STREQ(buffer_, "1.2.0") << "the name is 1.2.0-beta";
  Install(DataFile("notes-2.apk"));
  EXPECT_EQ(AdbGetAppVersion(phone(), kNotes, buffer_, sizeof(buffer_), cancel_), kOk);
  EXPECT_STREQ(buffer_, "2.0");
  EXPECT_EQ(AdbGetApkPathOfInstatlled(phone(), kNotes, buffer_, sizeof(buffer_), cancel_), kOk);
  EXPECT_THAT(buffer_, MatchesRegex("/data/app/.*/base\\.apk"));
  EXPECT_EQ(AdbGetApkPathOfInstatlledEx(phone(), kNotes, &text_, &length_, cancel_), kOk);
  EXPECT_EQ(WithoutBlanks(Taken(&text_, length_)), "{\"path\":[\"" + std::string(buffer_) + "\"]}");
}

TEST_P(SdkPackages, AreInstalledFromTheHostWhateverTheirFileIsCalled) {
  for (const char* name :
       {"my notes.apk", "\xe7\xac\x94\xe8\xae\xb0.apk", "it's.apk", "$5 & (more); *.apk"}) {
    EXPECT_EQ(Install(PackageNamed(name)), kOk) << name;
    EXPECT_TRUE(IsInstalled()) << name;
    ExpectNothingIsLeft();
    AdbUninstallApp(phone(), kNotes, 0, cancel_);
  }
}

TEST_P(SdkPackages, AreInstalledFromThePhone) {
  for (const char* name : {"notes.apk", "my notes.apk", "\xe7\xac\x94\xe8\xae\xb0.apk", "(1) & more;.apk"}) {
    const std::string file = phone_folder() + "/" + name;
    AdbPushFile(phone(), DataFile("notes-1.apk").c_str(), file.c_str(), cancel_);
    EXPECT_EQ(AdbInstallAppFromDevicePath(phone(), file.c_str(), cancel_), kOk) << name;
    EXPECT_TRUE(IsInstalled()) << name;
    EXPECT_EQ(Text("ls '" + file + "' >/dev/null && echo there"), "there\n") << "the file stays";
    AdbUninstallApp(phone(), kNotes, 0, cancel_);
  }
}

TEST_P(SdkPackages, AFileThatIsNotOnThePhoneIsNotInstalled) {
  const int code = AdbInstallAppFromDevicePath(phone(), "/data/local/tmp/none.apk", cancel_);
  if (is_legacy()) {
    EXPECT_EQ(code, ADB_RESULT_FAILURE);
  } else {
    // They say "Unable to open file", which is not one of the known messages: the exit status decides.
    EXPECT_GT(code, ADB_CHANNEL_EXIT_STATUS_BASE);
  }
  EXPECT_FALSE(IsInstalled());
}

TEST_P(SdkPackages, ComeInSeveralFiles) {
  const std::string folder_of_split = OnHost("it's my \xe7\xac\x94\xe8\xae\xb0");
  std::filesystem::create_directory(folder_of_split);
  WriteFile(folder_of_split + "/split.apk", ReadFile(DataFile("notes-1-split.apk")));
  EXPECT_EQ(InstallSet({folder_of_split + "/split.apk", DataFile("notes-1.apk")}), kOk);
  EXPECT_EQ(AdbGetApkPathOfInstatlled(phone(), kNotes, buffer_, sizeof(buffer_), cancel_), kOk);
  EXPECT_THAT(buffer_, EndsWith("/base.apk"));
  EXPECT_EQ(AdbGetApkPathOfInstatlledEx(phone(), kNotes, &text_, &length_, cancel_), kOk);
  const std::string folder(buffer_, std::string(buffer_).rfind('/') + 1);
  EXPECT_EQ(WithoutBlanks(Taken(&text_, length_)),
            "{\"path\":[\"" + folder + "base.apk\",\"" + folder + "split_config.en.apk\"]}");
  EXPECT_EQ(AdbUninstallApp(phone(), kNotes, 0, cancel_), kOk);
  EXPECT_FALSE(IsInstalled());
}

TEST_P(SdkPackages, SeveralFilesThatDoNotMakeAPackageAreRefused) {
  EXPECT_NE(InstallSet({DataFile("notes-1-split.apk")}), kOk) << "no base";
  EXPECT_EQ(InstallSet({DataFile("notes-1.apk"), OnHost("none.apk")}), ADB_RESULT_NO_SUCH_FILE);
  EXPECT_NE(InstallSet({}), kOk);
  EXPECT_FALSE(IsInstalled());
}

// adb 29 hands their names to the phone's shell without quotes, as adb 34 does on old phones.
TEST_P(SdkPackages, OfSeveralFilesWithASpaceOrAQuoteInTheirOwnNames) {
  REQUIRE_SIMULATED_PHONE("words its errors in its own ways");
  if (AdbIsOfRelease34() && !is_legacy()) {
    for (const char* name : {"my notes.apk", "it's.apk"}) {
      EXPECT_EQ(InstallSet({PackageNamed(name)}), kOk) << name;
      EXPECT_TRUE(IsInstalled()) << name;
      EXPECT_EQ(AdbUninstallApp(phone(), kNotes, 0, cancel_), kOk);
    }
    return;
  }
  EXPECT_EQ(InstallSet({PackageNamed("my notes.apk")}), ADB_RESULT_NO_SUCH_FILE);
  EXPECT_EQ(InstallSet({PackageNamed("it's.apk")}), ADB_RESULT_NO_CLOSING_QUOTE);
  EXPECT_FALSE(IsInstalled());
}

TEST_P(SdkPackages, MoreFilesThanACommandOfTheHostCanHoldAreRefused) {
  const Words files(40'000, OnHost(std::string(200, 'n')));
  EXPECT_EQ(InstallSet(files), kNotStarted);
  EXPECT_EQ(Install(), kOk) << "the next one is fine";
}

TEST_P(SdkPackages, OfTwoVersionsTheNewerStays) {
  Install(DataFile("notes-2.apk"));
  EXPECT_EQ(Install(), ADB_RESULT_INSTALL_VERSION_DOWNGRADE);
  EXPECT_EQ(InstallSet({DataFile("notes-1.apk")}), ADB_RESULT_INSTALL_VERSION_DOWNGRADE);
  EXPECT_EQ(AdbGetAppVersion(phone(), kNotes, buffer_, sizeof(buffer_), cancel_), kOk);
  EXPECT_STREQ(buffer_, "2.0");
  ExpectNothingIsLeft();
}

TEST_P(SdkPackages, AreRefusedForWhatTheyAre) {
  WriteFile(OnHost("text.apk"), "this is no package");
  WriteFile(OnHost("empty.apk"), "");
  const std::string whole = ReadFile(DataFile("notes-1.apk"));
  WriteFile(OnHost("half.apk"), whole.substr(0, whole.size() / 2));
  for (const std::string& file :
       {OnHost("text.apk"), OnHost("empty.apk"), OnHost("half.apk"), DataFile("notes-test-only.apk"),
        DataFile("notes-future.apk"), DataFile("notes-x86.apk")}) {
    EXPECT_EQ(Install(file), ADB_RESULT_FAILURE) << file;
    EXPECT_EQ(InstallSet({file}), ADB_RESULT_FAILURE) << file;
  }
  EXPECT_NE(Install(DataFile("notes-unsigned.apk")), kOk);
  EXPECT_EQ(Install(OnHost("none.apk")), ADB_RESULT_NO_SUCH_FILE);
  EXPECT_FALSE(IsInstalled());
  ExpectNothingIsLeft();
}

TEST_P(SdkPackages, EachReasonOfThePackageManagerHasItsCode) {
  REQUIRE_SIMULATED_PHONE("fails in its own ways");
  const struct {
    const char* reason;
    int code;
  } reasons[] = {
      {"INSTALL_FAILED_ALREADY_EXISTS", ADB_RESULT_INSTALL_ALREADY_EXISTS},
      {"INSTALL_FAILED_ALREADY_EXISTS: Attempt to re-install", ADB_RESULT_FAILURE},
      {"-99", ADB_RESULT_INSTALL_FAILURE_99},
      {"-200", ADB_RESULT_FAILURE},
      {"INSTALL_FAILED_VERSION_DOWNGRADE", ADB_RESULT_INSTALL_VERSION_DOWNGRADE},
      {"INSTALL_FAILED_VERSION_DOWNGRADE: Downgrade detected", ADB_RESULT_INSTALL_VERSION_DOWNGRADE},
      {"INSTALL_FAILED_USER_RESTRICTED", ADB_RESULT_INSTALL_USER_RESTRICTED},
      {"INSTALL_CANCELED_BY_USER", ADB_RESULT_INSTALL_USER_RESTRICTED},
      {"INSTALL_FAILED_USER_RESTRICTED: Install canceled by user", ADB_RESULT_INSTALL_CANCELED_BY_USER},
      {"INSTALL_FAILED_CANCELLED_BY_USER", ADB_RESULT_INSTALL_CANCELLED_BY_USER},
      {"INSTALL_PARSE_FAILED_NO_CERTIFICATES", ADB_RESULT_INSTALL_NO_CERTIFICATES},
      {"INSTALL_FAILED_INSUFFICIENT_STORAGE", ADB_RESULT_FAILURE},
      {"INSTALL_FAILED_TEST_ONLY: installPackageLI", ADB_RESULT_FAILURE},
  };
  for (const auto& c : reasons) {
    SwitchOn(std::string("install-failure=") + c.reason);
    EXPECT_EQ(Install(), c.code) << c.reason;
    EXPECT_EQ(InstallSet({DataFile("notes-1.apk")}), c.code) << c.reason;
  }
  EXPECT_FALSE(IsInstalled());
  ExpectNothingIsLeft();
}

TEST_P(SdkPackages, AFailureIsOneOfSpaceWhenLittleIsFree) {
  REQUIRE_SIMULATED_PHONE("would have to be filled");
  SwitchOn("install-failure=INSTALL_FAILED_TEST_ONLY");
  SwitchOn("free-space=199M");
  EXPECT_EQ(Install(), ADB_RESULT_NOT_ENOUGH_SPACE);
  EXPECT_EQ(InstallSet({DataFile("notes-1.apk")}), ADB_RESULT_FAILURE) << "not asked";
  SwitchOn("free-space=200M");
  EXPECT_EQ(Install(), ADB_RESULT_FAILURE);
  SwitchOn("full-storage");
  EXPECT_EQ(Install(), ADB_RESULT_NO_SPACE_LEFT) << "for the staged file already";
  Control({"clear", "full-storage"});
  ExpectNothingIsLeft();
}

TEST_P(SdkPackages, LeaveTheirDataWhenAsked) {
  REQUIRE_SIMULATED_PHONE("does not let the shell into the data of applications");
  Install();
  Shell(std::string("echo precious > ") + kNote);
  EXPECT_EQ(AdbUninstallApp(phone(), kNotes, 1, cancel_), kOk);
  EXPECT_FALSE(IsInstalled());
  Install();
  EXPECT_EQ(Text(std::string("cat ") + kNote), "precious\n");
  EXPECT_EQ(AdbUninstallApp(phone(), kNotes, 0, cancel_), kOk);
  Install();
  EXPECT_EQ(Text(std::string("ls ") + kNote + " 2>/dev/null"), "");
}

TEST_P(SdkPackages, AreThoseOfTheCurrentUserWhenTheOthersAreRefused) {
  REQUIRE_SIMULATED_PHONE("has the users that it has");
  Install();
  SwitchOn("user-restricted=10");
  bool installed = false;
  EXPECT_EQ(AdbCheckAppInstalled(phone(), kNotes, &installed, cancel_), kOk);
  EXPECT_TRUE(installed);
  EXPECT_EQ(AdbGetPackagesNameOfInstalled(phone(), "com.example", &text_, &length_, cancel_), kOk);
  EXPECT_EQ(Unix(Taken(&text_, length_)), "package:com.example.notes\n");
  EXPECT_EQ(AdbGetPackagesNameList(phone(), nullptr, &text_, &length_), kOk);
  EXPECT_THAT(Taken(&text_, length_), HasSubstr("package:com.example.notes"));
  EXPECT_EQ(AdbGetApkPathOfInstatlled(phone(), kNotes, buffer_, sizeof(buffer_), cancel_),
            ADB_RESULT_USER_ACCESS_DENIED)
      << "not asked again";
}

TEST_P(SdkPackages, NamesAreReadByTheShellOfThePhone) {
  REQUIRE_SIMULATED_PHONE("words its errors in its own ways");
  bool installed = true;
  EXPECT_EQ(AdbCheckAppInstalled(phone(), "it's", &installed, cancel_), ADB_RESULT_NO_CLOSING_QUOTE);
  EXPECT_FALSE(installed);
  EXPECT_EQ(AdbCheckAppInstalled(phone(), "a;b", &installed, cancel_), ADB_RESULT_SHELL_NOT_FOUND);
  EXPECT_EQ(AdbCheckAppInstalled(phone(), "$NONE*", &installed, cancel_), kOk);
  EXPECT_FALSE(installed);
  EXPECT_EQ(AdbCheckAppInstalled(phone(), std::string(5000, 'n').c_str(), &installed, cancel_), kOk);
  EXPECT_FALSE(installed);
}

INSTANTIATE_FOR_PHONES(SdkPackages);

class SdkInterruptedInstall : public SdkPackages {
 protected:
  void SetUp() override {
    SdkPackages::SetUp();
    REQUIRE_SIMULATED_PHONE("would have to be unplugged at the right moment");
  }

  // Installs while the phone takes a second to begin each command. Meanwhile, when the package is staged and
  // its installation has not begun, the rest happens.
  int InstallAndMeanwhile(const std::function<void()>& rest, const bool* cancel) {
    SwitchOn("slow=1");
    int code = -1;
    std::thread install(
        [&] { code = AdbInstallAppFromPCPath(phone(), DataFile("notes-1.apk").c_str(), cancel); });
    const std::string staged = SeenFromHost("/data/local/tmp/notes-1.apk");
    EXPECT_TRUE(Eventually([&] { return !ReadFile(staged).empty(); }));
    // The push ends within a few milliseconds from here.
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    rest();
    install.join();
    Control({"clear", "slow"});
    return code;
  }
};

TEST_P(SdkInterruptedInstall, ATransferThatBreaksLeavesNothing) {
  std::string package = ReadFile(DataFile("notes-1.apk"));
  WriteFile(OnHost("large.apk"), package + std::string(4000000, 'x'));
  SwitchOn("drop-after=1M");
  EXPECT_EQ(Install(OnHost("large.apk")), kCutTransfer);
  EXPECT_NE(InstallSet({OnHost("large.apk")}), kOk);
  Control({"clear", "drop-after"});
  EXPECT_FALSE(IsInstalled());
  ExpectNothingIsLeft();
}

TEST_P(SdkInterruptedInstall, APhoneThatGoesKeepsTheStagedFile) {
  EXPECT_EQ(InstallAndMeanwhile([this] { Control({"unplug"}); }, cancel_), kBrokenOff);
  Control({"plug"});
  EXPECT_FALSE(IsInstalled());
  EXPECT_EQ(Staged(), "notes-1.apk\n");
  EXPECT_EQ(Install(), kOk);
  ExpectNothingIsLeft();
}

TEST_P(SdkInterruptedInstall, ACancelledOneKeepsTheStagedFile) {
  bool cancel = false;
  const int code = InstallAndMeanwhile([&] { __atomic_store_n(&cancel, true, __ATOMIC_SEQ_CST); }, &cancel);
  EXPECT_EQ(code, 3003);
  EXPECT_EQ(Staged(), "notes-1.apk\n");
}

TEST_P(SdkInterruptedInstall, AMultipleOneOfAPhoneThatIsGoneSaysSo) {
  Control({"unplug"});
  EXPECT_EQ(InstallSet({DataFile("notes-1.apk")}), ADB_RESULT_NO_DEVICE);
  EXPECT_EQ(Install(), ADB_RESULT_NO_DEVICE);
  EXPECT_EQ(AdbInstallAppFromDevicePath(phone(), "/data/local/tmp/a.apk", cancel_), ADB_RESULT_NO_DEVICE);
  EXPECT_EQ(AdbUninstallApp(phone(), kNotes, 0, cancel_), 1001) << "no look at messages";
  EXPECT_EQ(AdbCheckAppExist(phone(), kNotes, 0, cancel_), 1001);
}

INSTANTIATE_FOR_PHONES(SdkInterruptedInstall);

}  // namespace
}  // namespace darokleim::test
