#include "tests/phone/phone_under_test.h"

namespace darokleim::test {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr char kNotes[] = "com.example.notes";

// The packages are installed on the phone and removed afterwards.
class Packages : public PhoneUnderTest {
 protected:
  void TearDown() override {
    if (!is_simulated()) Shell(std::string("pm uninstall ") + kNotes);
    PhoneUnderTest::TearDown();
  }

  std::string Install(const Words& words) {
    Words command = {"install"};
    command.insert(command.end(), words.begin(), words.end());
    const Outcome outcome = Adb(command);
    return outcome.output + outcome.errors;
  }
  bool IsInstalled() const { return !Text(std::string("pm path ") + kNotes).empty(); }
};

TEST_P(Packages, AreInstalledListedAndRemoved) {
  EXPECT_FALSE(IsInstalled());
  EXPECT_THAT(Install({DataFile("notes-1.apk")}), HasSubstr("Success"));
  EXPECT_EQ(Text("pm list packages com.example"), "package:com.example.notes\n");
  EXPECT_EQ(Text("pm list packages -3 com.example"), "package:com.example.notes\n");
  EXPECT_EQ(Text("pm list packages -s com.example"), "");
  EXPECT_THAT(Text("pm path com.example.notes"), testing::MatchesRegex("package:/data/app/.*/base.apk\n"));
  EXPECT_THAT(Text("pm list packages -f com.example"), StartsWith("package:/data/app/"));
  EXPECT_THAT(Text("dumpsys package com.example.notes"), HasSubstr("versionName=1.2.0-beta\n"));
  EXPECT_EQ(Text("pm uninstall com.example.notes"), "Success\n");
  EXPECT_FALSE(IsInstalled());
  EXPECT_THAT(Text("pm uninstall com.example.notes"), StartsWith("Failure"));
}

TEST_P(Packages, TheInstalledFileIsTheOneThatWasSent) {
  Install({DataFile("notes-1.apk")});
  const std::string path = Text("pm path com.example.notes").substr(std::string("package:").size());
  Adb({"pull", path.substr(0, path.find('\n')), host_folder() + "/back.apk"});
  EXPECT_TRUE(ReadFile(host_folder() + "/back.apk") == ReadFile(DataFile("notes-1.apk")));
}

TEST_P(Packages, AreInstalledFromTheirOwnStorage) {
  Adb({"push", DataFile("notes-1.apk"), phone_folder() + "/a b.apk"});
  EXPECT_THAT(Text("pm install -r \"" + phone_folder() + "/a b.apk\""), HasSubstr("Success\n"));
  EXPECT_TRUE(IsInstalled());
  EXPECT_THAT(
      Adb({"shell", "pm install -r /data/local/tmp/none.apk"}).output +
          Adb({"shell", "pm install -r /data/local/tmp/none.apk"}).errors,
      testing::AnyOf(HasSubstr("Failure [INSTALL_FAILED_INVALID_URI]"), HasSubstr("Unable to open file")));
}

TEST_P(Packages, AreReplacedButNotByAnOlderVersion) {
  Install({DataFile("notes-2.apk")});
  EXPECT_THAT(Install({"-r", DataFile("notes-1.apk")}),
              HasSubstr("Failure [INSTALL_FAILED_VERSION_DOWNGRADE"));
  EXPECT_THAT(Install({"-r", "-d", DataFile("notes-1.apk")}), HasSubstr("Success"));
  EXPECT_THAT(Install({"-r", DataFile("notes-2.apk")}), HasSubstr("Success"));
  EXPECT_THAT(Text("dumpsys package com.example.notes"), HasSubstr("versionName=2.0\n"));
}

TEST_P(Packages, AreOnlyReplacedOnOldPhonesWhenAsked) {
  Install({DataFile("notes-1.apk")});
  EXPECT_THAT(Install({DataFile("notes-1.apk")}),
              HasSubstr(is_legacy() ? "Failure [INSTALL_FAILED_ALREADY_EXISTS]" : "Success"));
}

TEST_P(Packages, ComeInSeveralFiles) {
  const Outcome outcome =
      Adb({"install-multiple", "-r", DataFile("notes-1-split.apk"), DataFile("notes-1.apk")});
  EXPECT_THAT(outcome.output + outcome.errors, HasSubstr("Success"));
  const std::string paths = Text("pm path com.example.notes");
  EXPECT_THAT(paths, testing::MatchesRegex("package:[^\n]*/base.apk\npackage:[^\n]*/split_config.en.apk\n"));
}

TEST_P(Packages, NeedTheirBase) {
  const Outcome outcome = Adb({"install-multiple", DataFile("notes-1-split.apk")});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_FALSE(IsInstalled());
}

TEST_P(Packages, AreRefusedForWhatTheirManifestSays) {
  EXPECT_THAT(Install({DataFile("notes-test-only.apk")}), HasSubstr("Failure [INSTALL_FAILED_TEST_ONLY"));
  EXPECT_THAT(Install({"-t", DataFile("notes-test-only.apk")}), HasSubstr("Success"));
  EXPECT_THAT(Install({"-r", DataFile("notes-future.apk")}), HasSubstr("Failure [INSTALL_FAILED_OLDER_SDK"));
  EXPECT_THAT(Install({"-r", DataFile("notes-x86.apk")}),
              HasSubstr("Failure [INSTALL_FAILED_NO_MATCHING_ABIS"));
  EXPECT_THAT(Install({"-r", DataFile("notes-unsigned.apk")}),
              HasSubstr("Failure [INSTALL_PARSE_FAILED_NO_CERTIFICATES"));
}

TEST_P(Packages, AreRefusedWhenTheyAreNone) {
  WriteFile(host_folder() + "/text.apk", "this is no package");
  EXPECT_THAT(Install({host_folder() + "/text.apk"}), HasSubstr("Failure [INSTALL_PARSE_FAILED_NOT_APK"));
}

TEST_P(Packages, KeepTheirDataWhenAsked) {
  REQUIRE_SIMULATED_PHONE("does not let the shell into the data of applications");
  Install({DataFile("notes-1.apk")});
  Shell("echo kept > /data/data/com.example.notes/files/note");
  EXPECT_EQ(Text("pm uninstall -k com.example.notes"), "Success\n");
  EXPECT_FALSE(IsInstalled());
  Install({DataFile("notes-1.apk")});
  EXPECT_EQ(Text("cat /data/data/com.example.notes/files/note"), "kept\n");
  EXPECT_EQ(Text("pm clear com.example.notes"), "Success\n");
  EXPECT_EQ(Text("ls /data/data/com.example.notes/files"), "");
}

TEST_P(Packages, FailAsTheFaultSays) {
  REQUIRE_SIMULATED_PHONE("fails in its own ways");
  SwitchOn("install-failure=INSTALL_FAILED_USER_RESTRICTED: Install canceled by user");
  EXPECT_THAT(Install({DataFile("notes-1.apk")}),
              HasSubstr("Failure [INSTALL_FAILED_USER_RESTRICTED: Install canceled by user]"));
  EXPECT_FALSE(IsInstalled());
}

TEST_P(Packages, NeedRoom) {
  REQUIRE_SIMULATED_PHONE("would have to be filled");
  Adb({"push", DataFile("notes-1.apk"), phone_folder() + "/notes.apk"});
  SwitchOn("full-storage");
  EXPECT_THAT(Text("pm install -r " + phone_folder() + "/notes.apk"),
              HasSubstr("Failure [INSTALL_FAILED_INSUFFICIENT_STORAGE]\n"));
  EXPECT_FALSE(IsInstalled());
}

TEST_P(Packages, AreThoseOfTheCurrentUserOnly) {
  REQUIRE_SIMULATED_PHONE("has the users that it has");
  Install({DataFile("notes-1.apk")});
  SwitchOn("user-restricted=10");
  const Outcome refused = Shell("pm list packages com.example");
  EXPECT_THAT(refused.output + refused.errors, HasSubstr("Shell does not have permission to access user 0"));
  EXPECT_THAT(Text("dumpsys user"), HasSubstr("Current user: 10\n"));
  EXPECT_EQ(Text("pm list packages --user 10 com.example"), "package:com.example.notes\n");
}

TEST_P(Packages, StartTheirActivities) {
  Install({DataFile("notes-1.apk")});
  EXPECT_EQ(Text("am start -n com.example.notes/.MainActivity"),
            "Starting: Intent { cmp=com.example.notes/.MainActivity }\n");
  const Outcome unknown = Shell("am start -n com.example.notes/.Missing");
  EXPECT_THAT(unknown.output + unknown.errors, HasSubstr("Error type 3"));
  EXPECT_THAT(
      unknown.output + unknown.errors,
      HasSubstr("Error: Activity class {com.example.notes/com.example.notes.Missing} does not exist."));
}

TEST_P(Packages, AreListedWithTheirVersionCodesOnNewPhones) {
  Install({DataFile("notes-1.apk")});
  if (is_legacy()) {
    const Outcome refused = Shell("pm list packages --show-versioncode com.example");
    EXPECT_THAT(refused.output + refused.errors, StartsWith("Error: Unknown option: --show-versioncode"));
    return;
  }
  EXPECT_EQ(Text("pm list packages --show-versioncode com.example"),
            "package:com.example.notes versionCode:1\n");
  EXPECT_THAT(Text("pm list packages -3 -U --show-versioncode com.example"),
              testing::MatchesRegex("package:com.example.notes versionCode:1 uid:[0-9]+\n"));
}

TEST_P(Packages, AreAskedForTheActivityOfTheLauncher) {
  if (is_legacy()) return;
  Install({DataFile("notes-1.apk")});
  EXPECT_THAT(Text("cmd package resolve-activity --brief com.example.notes"),
              testing::MatchesRegex(
                  "priority=0 preferredOrder=0 match=0x[0-9a-f]+ specificIndex=-1 isDefault=(true|false)\n"
                  "com.example.notes/.MainActivity\n"));
  EXPECT_EQ(Text("cmd package resolve-activity --components com.example.notes"),
            "com.example.notes/.MainActivity\n");
  EXPECT_EQ(Text("cmd package resolve-activity --brief com.example.none"), "No activity found\n");
}

TEST_P(Packages, AreNotStartedWithoutAClass) {
  Install({DataFile("notes-1.apk")});
  const Outcome named = Shell("am start -n com.example.notes");
  EXPECT_THAT(named.output + named.errors, HasSubstr("Bad component name: com.example.notes"));
  EXPECT_THAT(named.output, Not(HasSubstr("Starting")));
  // Launchers' activities are not in the category that implicit intents need.
  const Outcome bare = Shell("am start com.example.notes");
  EXPECT_THAT(
      bare.output + bare.errors,
      HasSubstr("Error: Activity not started, unable to resolve Intent { act=android.intent.action.MAIN "
                "cat=[android.intent.category.LAUNCHER]"));
  if (!is_legacy()) {
    EXPECT_EQ(named.status, 255);
    EXPECT_EQ(bare.status, 1);
  }
}

TEST_P(Packages, OutliveAReboot) {
  REQUIRE_SIMULATED_PHONE("takes minutes to reboot");
  Install({DataFile("notes-1.apk")});
  Adb({"reboot"});
  EXPECT_TRUE(Eventually([this] { return Shell("true").status != 0; }));
  Adb({"wait-for-device"});
  EXPECT_TRUE(IsInstalled());
}

INSTANTIATE_FOR_PHONES(Packages);

}  // namespace
}  // namespace darokleim::test
