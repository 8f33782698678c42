// darokleim app, on simulated phones.
#include <signal.h>

#include <chrono>
#include <filesystem>
#include <thread>

#include "tests/cli/documented_json.h"
#include "tests/cli/phone_tool_test.h"
#include "tests/support/eventually.h"
#include "tests/support/file_content.h"

namespace darokleim::cli {
namespace {

using testing::AllOf;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;

constexpr char kNotes[] = "com.example.notes";

std::string Apk(const std::string& name) {
  return DAROKLEIM_PHONE_TEST_DATA "/" + name;
}

class PhoneAppTest : public PhoneToolTest {
 protected:
  void InstallNotes() {
    ASSERT_THAT(phones().Adb({"install", Apk("notes-1.apk")}).output, HasSubstr("Success"));
  }
  void InstallSplitNotes() {
    ASSERT_THAT(phones().Adb({"install-multiple", Apk("notes-1.apk"), Apk("notes-1-split.apk")}).output,
                HasSubstr("Success"));
  }
  bool HasNotes() const { return Shell("pm path com.example.notes").find("base.apk") != std::string::npos; }
  std::string Activities() { return phones().Control({"TEST0001", "show", "activities"}).output; }
};

TEST_P(PhoneAppTest, InstallsAFileOfThisComputer) {
  EXPECT_EQ(Succeed({"app", "install", Apk("notes-1.apk")}), "Installed notes-1.apk.\n");
  EXPECT_TRUE(HasNotes());
  EXPECT_EQ(Shell("ls /data/local/tmp"), "");
  EXPECT_EQ(Succeed({"-q", "app", "install", Apk("notes-1.apk")}), "");
  const Json::Value json = ParseJson(Succeed({"app", "install", Apk("notes-1.apk"), "--json"}));
  ExpectDocumented("app install", json);
  EXPECT_EQ(json["installed"][0], Apk("notes-1.apk"));
}

TEST_P(PhoneAppTest, InstallsAFileWithAnAwkwardName) {
  for (const char* name : {"my notes.apk", "it's.apk", "$HOME & (1).apk", "say \"hi\".apk"}) {
    std::filesystem::copy_file(Apk("notes-1.apk"), File(std::string("work/") + name));
    EXPECT_EQ(Succeed({"app", "install", name}), "Installed " + std::string(name) + ".\n");
    EXPECT_TRUE(HasNotes()) << name;
    phones().Adb({"uninstall", kNotes});
  }
  EXPECT_EQ(Shell("ls /data/local/tmp"), "");
}

TEST_P(PhoneAppTest, ShowsProgressWhenAsked) {
  SwitchOn("slow=2");
  const auto outcome = Run({"app", "install", Apk("notes-1.apk"), "--progress"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.errors, HasSubstr("installing notes-1.apk"));
}

TEST_P(PhoneAppTest, SaysWhyAFileCannotBeInstalled) {
  EXPECT_THAT(Fail({"app", "install", "none.apk"}),
              AllOf(HasSubstr("install none.apk"), HasSubstr("No such file or directory")));
  EXPECT_THAT(Fail({"app", "install", "."}), HasSubstr("install ."));
  EXPECT_THAT(Fail({"app", "install", Apk("notes-unsigned.apk")}),
              AllOf(HasSubstr("INSTALL_PARSE_FAILED_NO_CERTIFICATES"), HasSubstr("not signed")));
  test::WriteFile(File("work/random.apk"), "no APK");
  EXPECT_THAT(Fail({"app", "install", "random.apk"}), HasSubstr("INSTALL_PARSE_FAILED_NOT_APK"));
}

TEST_P(PhoneAppTest, SaysWhyThePhoneRefusesInWordsAndAsThePhoneSaysIt) {
  for (const auto& [reason, words] : std::vector<std::pair<std::string, std::string>>{
           {"INSTALL_FAILED_USER_RESTRICTED: Install canceled by user", "developer options"},
           {"INSTALL_FAILED_INSUFFICIENT_STORAGE", "Free some space"},
           {"INSTALL_FAILED_UPDATE_INCOMPATIBLE: signatures do not match", "Uninstall it first"},
           {"INSTALL_FAILED_OLDER_SDK: Requires newer sdk version", "newer Android"}}) {
    SwitchOn("install-failure=" + reason);
    const auto outcome = Run({"app", "install", Apk("notes-1.apk"), "--json"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, AllOf(HasSubstr(reason), HasSubstr(words)));
    const Json::Value json = ParseJson(outcome.output);
    ExpectDocumented("app install", json);
    EXPECT_EQ(json["errors"][0]["reason"], reason.substr(0, reason.find(':')));
    EXPECT_EQ(json["errors"][0]["code"], "INSTALL_FAILED");
  }
}

TEST_P(PhoneAppTest, DowngradesOnlyWhenAsked) {
  Succeed({"app", "install", Apk("notes-2.apk")});
  EXPECT_THAT(Fail({"app", "install", Apk("notes-1.apk")}),
              AllOf(HasSubstr("INSTALL_FAILED_VERSION_DOWNGRADE"), HasSubstr("--downgrade")));
  Succeed({"app", "install", "--downgrade", "--grant", "--test", Apk("notes-1.apk")});
}

TEST_P(PhoneAppTest, OneOfSeveralThatFailsDoesNotStopTheRest) {
  const auto outcome = Run({"app", "install", "none.apk", Apk("notes-1.apk"), "--json"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(HasNotes());
  const Json::Value json = ParseJson(outcome.output);
  EXPECT_EQ(json["installed"].size(), 1u);
  EXPECT_EQ(json["errors"].size(), 1u);
}

TEST_P(PhoneAppTest, InstallsTheFilesOfASplitApplication) {
  EXPECT_EQ(Succeed({"app", "install", "--split", Apk("notes-1.apk"), Apk("notes-1-split.apk")}),
            "Installed notes-1.apk.\nInstalled notes-1-split.apk.\n");
  EXPECT_TRUE(HasNotes());
  EXPECT_EQ(Run({"app", "install", "--split"}).status, 2);
}

TEST_P(PhoneAppTest, ACancelledInstallLeavesNothing) {
  const auto install_files = [this] { return Shell("find /data/local/tmp /data/app -type f"); };
  const std::string before = install_files();
  test::WriteFile(File("work/big.apk"), "");
  std::filesystem::resize_file(File("work/big.apk"), 1ull << 30);
  const auto tool = Start({"app", "install", "big.apk"});
  std::this_thread::sleep_for(std::chrono::milliseconds(200));
  tool->Signal(SIGINT);
  EXPECT_EQ(tool->Finish().status, 130);
  EXPECT_TRUE(test::Eventually([&] { return install_files() == before; })) << install_files();
  EXPECT_EQ(Shell("pm list packages -3"), "");
}

TEST_P(PhoneAppTest, ListsPackages) {
  InstallNotes();
  EXPECT_THAT(Succeed({"app", "list"}),
              AllOf(HasSubstr("com.android.settings\n"), HasSubstr("com.example.notes\n")));
  EXPECT_EQ(Succeed({"app", "list", "-3"}), "com.example.notes\n");
  EXPECT_THAT(Succeed({"app", "list", "--system"}), Not(HasSubstr("com.example.notes\n")));
  EXPECT_EQ(Succeed({"app", "list", "example"}), "com.example.notes\n");
  EXPECT_EQ(Succeed({"app", "list", "nothing.like.this"}), "");
  EXPECT_EQ(Succeed({"app", "list", "--disabled", "example"}), "");
  EXPECT_THAT(
      Succeed({"app", "list", "-l", "--enabled", "example"}),
      MatchesRegex(
          "PACKAGE +VERSION +SIZE +KIND +APK\ncom\\.example\\.notes +1\\.2\\.0-beta .*user +/data/app/.*"));
  EXPECT_EQ(Run({"app", "list", "-3", "--system"}).status, 2);
}

TEST_P(PhoneAppTest, ListsPackagesForPrograms) {
  InstallNotes();
  const Json::Value list = ParseJson(Succeed({"app", "list", "-3", "--json"}));
  ExpectDocumented("app list, app info", list);
  ASSERT_EQ(list["apps"].size(), 1u);
  EXPECT_EQ(list["apps"][0]["package"], kNotes);
  EXPECT_EQ(list["apps"][0]["version_name"], "1.2.0-beta");
  EXPECT_THAT(list["apps"][0]["apk_paths"][0].asString(), MatchesRegex("/data/app/.*/base\\.apk"));
  ExpectDocumented("app list, app info", ParseJson(Succeed({"app", "list", "-l", "--json"})));
  EXPECT_EQ(ParseJson(Succeed({"app", "list", "nothing.like.this", "--json"}))["apps"].size(), 0u);
}

TEST_P(PhoneAppTest, ShowsVersionSizeAndFiles) {
  InstallSplitNotes();
  EXPECT_THAT(Succeed({"app", "info", kNotes}), AllOf(HasSubstr("Version             1.2.0-beta ("),
                                                      ContainsRegex("APK +/data/app/[^\n]*base\\.apk\n")));
  const Json::Value info = ParseJson(Succeed({"app", "info", kNotes, "--json"}));
  ExpectDocumented("app list, app info", info);
  EXPECT_GT(info["apps"][0]["size"].asInt(), 0);
  EXPECT_THAT(Succeed({"app", "path", kNotes}),
              MatchesRegex("/data/app/[^\n]*/base\\.apk\n/data/app/[^\n]*\\.apk\n"));
  const Json::Value paths = ParseJson(Succeed({"app", "path", kNotes, "--json"}));
  ExpectDocumented("app path", paths);
  EXPECT_EQ(paths["apps"][0]["apk_paths"].size(), 2u);
  for (const char* command : {"info", "path"}) {
    EXPECT_THAT(Fail({"app", command, "com.example.none"}),
                AllOf(HasSubstr("com.example.none"), HasSubstr("not installed")));
  }
}

// The version is any text that the author of the application chose.
TEST_P(PhoneAppTest, ALongVersionIsShown) {
  InstallNotes();
  const std::string record = PhoneFiles() + "/../state/packages/" + kNotes;
  std::string facts = test::ReadFile(record);
  const size_t version = facts.find("1.2.0-beta");
  ASSERT_NE(version, std::string::npos) << record;
  test::WriteFile(record, facts.replace(version, 10, std::string(20000, '1')));
  const Json::Value info = ParseJson(Succeed({"app", "info", kNotes, "--json"}));
  EXPECT_EQ(info["apps"][0]["version_name"], std::string(20000, '1'));
}

TEST_P(PhoneAppTest, RefusesWhatIsNoNameOfAPackage) {
  for (const char* name : {"", "a b", "com.x; reboot", "$(reboot)", "com/x"}) {
    EXPECT_EQ(Run({"app", "info", name}).status, 2) << name;
    EXPECT_EQ(Run({"app", "uninstall", name}).status, 2) << name;
  }
  EXPECT_EQ(Run({"app", "uninstall", "--", "-k"}).status, 2);
}

TEST_P(PhoneAppTest, UninstallsAndKeepsTheDataWhenAsked) {
  InstallNotes();
  Shell("echo kept > /data/data/com.example.notes/files/note");
  EXPECT_EQ(Succeed({"app", "uninstall", "--keep-data", kNotes}), "Uninstalled com.example.notes.\n");
  EXPECT_FALSE(HasNotes());
  InstallNotes();
  EXPECT_EQ(Shell("cat /data/data/com.example.notes/files/note"), "kept");
  const Json::Value json = ParseJson(Succeed({"app", "uninstall", kNotes, "--json"}));
  ExpectDocumented("app uninstall", json);
  EXPECT_FALSE(HasNotes());
  EXPECT_THAT(Fail({"app", "uninstall", kNotes}), HasSubstr("com.example.notes"));
  EXPECT_THAT(Run({"app", "uninstall", "com.android.settings"}).errors, HasSubstr("com.android.settings"));
}

TEST_P(PhoneAppTest, StartsStopsAndClears) {
  InstallNotes();
  EXPECT_EQ(Succeed({"app", "start", "com.example.notes/.MainActivity"}),
            "Started com.example.notes/.MainActivity.\n");
  EXPECT_EQ(Activities(), "start com.example.notes/com.example.notes.MainActivity\n");
  EXPECT_EQ(Succeed({"app", "start", kNotes}), "Started com.example.notes.\n");
  EXPECT_EQ(Succeed({"app", "stop", kNotes}), "Stopped com.example.notes.\n");
  EXPECT_THAT(Activities(), HasSubstr("force-stop com.example.notes\n"));
  Shell("echo gone > /data/data/com.example.notes/files/note");
  EXPECT_EQ(Succeed({"app", "clear", kNotes}), "Deleted the data of com.example.notes.\n");
  EXPECT_EQ(Shell("cat /data/data/com.example.notes/files/note 2>/dev/null"), "");
  ExpectDocumented("app start", ParseJson(Succeed({"app", "start", kNotes, "--json"})));
  ExpectDocumented("app stop", ParseJson(Succeed({"app", "stop", kNotes, "--json"})));
  ExpectDocumented("app clear", ParseJson(Succeed({"app", "clear", kNotes, "--json"})));
}

TEST_P(PhoneAppTest, SaysWhatCannotBeStarted) {
  InstallNotes();
  EXPECT_THAT(Fail({"app", "start", "com.example.notes/.Missing"}), HasSubstr("com.example.notes"));
  EXPECT_THAT(Fail({"app", "start", "com.example.none"}), HasSubstr("com.example.none"));
  EXPECT_THAT(Fail({"app", "clear", "com.example.none"}), HasSubstr("com.example.none"));
  EXPECT_EQ(Run({"app", "start", "com.example.notes/$(reboot)"}).status, 2);
  EXPECT_EQ(Run({"app", "start", "com.example.notes/"}).status, 2);
}

TEST_P(PhoneAppTest, PullsItsFiles) {
  InstallNotes();
  Succeed({"app", "pull", kNotes});
  EXPECT_EQ(test::ReadFile(File("work/com.example.notes.apk")), test::ReadFile(Apk("notes-1.apk")));
  phones().Adb({"uninstall", kNotes});
  InstallSplitNotes();
  test::WriteFile(File("work/com.example.notes.apk"), "older");
  const Json::Value json = ParseJson(Succeed({"app", "pull", kNotes, File("work/apks"), "--json"}));
  ExpectDocumented("app pull", json);
  EXPECT_EQ(json["files"].size(), 2u);
  EXPECT_EQ(test::ReadFile(File("work/apks/com.example.notes/base.apk")), test::ReadFile(Apk("notes-1.apk")));
  EXPECT_EQ(test::ReadFile(File("work/com.example.notes.apk")), "older");
  EXPECT_NE(Fail({"app", "pull", "com.example.none"}), "");
}

TEST_P(PhoneAppTest, NeedsASubcommand) {
  EXPECT_EQ(Run({"app"}).status, 2);
  EXPECT_THAT(Misuse({"app", "instal", kNotes}), HasSubstr("install"));
}

INSTANTIATE_FOR_BOTH_PHONES(PhoneAppTest);

}  // namespace
}  // namespace darokleim::cli
