// darokleim app, on simulated phones.
#include <filesystem>

#include "tests/cli/phone_tool_test.h"
#include "tests/support/file_content.h"

namespace darokleim::cli {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;

std::string Apk(const std::string& name) {
  return DAROKLEIM_PHONE_TEST_DATA "/" + name;
}

class PhoneAppTest : public PhoneToolTest {
 protected:
  void InstallNotes() {
    ASSERT_THAT(phones().Adb({"install", Apk("notes-1.apk")}).output, HasSubstr("Success"));
  }
  bool HasNotes() const { return Shell("pm path com.example.notes").find("base.apk") != std::string::npos; }
  std::string Activities() { return phones().Control({"TEST0001", "show", "activities"}).output; }
};

TEST_P(PhoneAppTest, InstallsAFileOfThisComputer) {
  EXPECT_EQ(Succeed({"app", "install", Apk("notes-1.apk")}), "Installed notes-1.apk.\n");
  EXPECT_TRUE(HasNotes());
  EXPECT_EQ(Shell("ls /data/local/tmp"), "");
  EXPECT_EQ(Succeed({"-q", "app", "install", Apk("notes-1.apk")}), "");
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

TEST_P(PhoneAppTest, SaysWhyAFileCannotBeInstalled) {
  EXPECT_THAT(Fail({"app", "install", "none.apk"}),
              HasSubstr("cannot install none.apk: No such file or directory."));
  EXPECT_THAT(Fail({"app", "install", "."}), HasSubstr("it is not a regular file"));
  EXPECT_THAT(Fail({"app", "install", Apk("notes-unsigned.apk")}),
              HasSubstr(is_legacy() ? "the package is not signed" : "ADB_RESULT_FAILURE (31)"));
  test::WriteFile(File("work/" + std::string(230, 'n') + ".apk"), "");
  EXPECT_THAT(Fail({"app", "install", std::string(230, 'n') + ".apk"}),
              HasSubstr("the file's name is too long"));
}

TEST_P(PhoneAppTest, SaysWhyThePhoneRefuses) {
  SwitchOn("install-failure=INSTALL_FAILED_USER_RESTRICTED: Install canceled by user");
  EXPECT_THAT(Fail({"app", "install", Apk("notes-1.apk")}),
              AllOf(HasSubstr("(38)"), HasSubstr("Try again and allow")));
  SwitchOn("install-failure=INSTALL_FAILED_OTHER");
  SwitchOn("free-space=100M");
  EXPECT_THAT(Fail({"app", "install", Apk("notes-1.apk")}),
              AllOf(HasSubstr("(43)"), HasSubstr("free space")));
}

TEST_P(PhoneAppTest, InstallsTheFilesOfASplitPackage) {
  EXPECT_EQ(Succeed({"app", "install-multiple", Apk("notes-1.apk"), Apk("notes-1-split.apk")}),
            "Installed 2 files.\n");
  EXPECT_TRUE(HasNotes());
  EXPECT_EQ(Run({"app", "install-multiple"}).status, 2);
  std::filesystem::copy_file(Apk("notes-1.apk"), File("work/my notes.apk"));
  EXPECT_THAT(Fail({"app", "install-multiple", "my notes.apk"}), HasSubstr("Rename it."));
}

TEST_P(PhoneAppTest, InstallsAFileOfThePhone) {
  PutOnPhone("/data/local/tmp/my notes.apk", test::ReadFile(Apk("notes-1.apk")));
  EXPECT_EQ(Succeed({"app", "install-from-device", "/data/local/tmp/my notes.apk"}),
            "The device reports no failure for /data/local/tmp/my notes.apk. See `darokleim app list`.\n");
  EXPECT_TRUE(HasNotes());
  EXPECT_THAT(Fail({"app", "install-from-device", "/data/local/tmp/none.apk"}),
              HasSubstr("no such file on the device"));
}

TEST_P(PhoneAppTest, ListsPackages) {
  InstallNotes();
  EXPECT_THAT(Succeed({"app", "list"}),
              AllOf(HasSubstr("com.android.settings\n"), HasSubstr("com.example.notes\n")));
  EXPECT_EQ(Succeed({"app", "list", "-3"}), "com.example.notes\n");
  EXPECT_THAT(Succeed({"app", "list", "--system"}), Not(HasSubstr("com.example.notes\n")));
  EXPECT_EQ(Succeed({"app", "list", "example"}), "com.example.notes\n");
  EXPECT_EQ(Succeed({"app", "list", "nothing.like.this"}), "");
  EXPECT_EQ(Run({"app", "list", "-3", "--system"}).status, 2);
}

TEST_P(PhoneAppTest, ListsPackagesForPrograms) {
  InstallNotes();
  const Json::Value list = ParseJson(Succeed({"app", "list", "-3", "--json"}));
  ASSERT_EQ(list.size(), 1u);
  EXPECT_EQ(list[0]["package"], kNotes);
  EXPECT_EQ(list[0].size(), 1u);
  const Json::Value with_paths = ParseJson(Succeed({"app", "list", "-3", "--paths", "--json"}));
  EXPECT_EQ(with_paths[0]["package"], kNotes);
  EXPECT_THAT(with_paths[0]["path"].asString(), MatchesRegex("/data/app/.*/base\\.apk"));
  EXPECT_EQ(Succeed({"app", "list", "nothing.like.this", "--json"}), "[]\n");
}

TEST_P(PhoneAppTest, ListsThePackagesOfTheCurrentUserWhenOthersAreRefused) {
  InstallNotes();
  SwitchOn("user-restricted=10");
  EXPECT_THAT(Succeed({"app", "list"}), HasSubstr("com.example.notes\n"));
}

TEST_P(PhoneAppTest, TellsWhetherAPackageIsInstalled) {
  const auto missing = Run({"app", "check", kNotes});
  EXPECT_EQ(missing.status, 1);
  EXPECT_EQ(missing.output, "com.example.notes is not installed.\n");
  EXPECT_EQ(missing.errors, "");
  EXPECT_EQ(ParseJson(Run({"app", "check", kNotes, "--json"}).output)["installed"], false);
  InstallNotes();
  EXPECT_EQ(Succeed({"app", "check", kNotes}), "com.example.notes is installed.\n");
  EXPECT_EQ(ParseJson(Succeed({"app", "check", kNotes, "--json"}))["installed"], true);
  EXPECT_EQ(Run({"app", "check", "com.example.note"}).status, 1);
  EXPECT_EQ(Succeed({"app", "check", kNotes, "--ask-only"}),
            "The package manager reports no failure for com.example.notes.\n");
  EXPECT_EQ(Run({"app", "check", kNotes, "--kept-data"}).status, 2);
}

TEST_P(PhoneAppTest, RefusesWhatIsNoNameOfAPackage) {
  for (const char* name : {"", "a b", "com.x; reboot", "$(reboot)", "com/x"}) {
    EXPECT_EQ(Run({"app", "check", name}).status, 2) << name;
    EXPECT_EQ(Run({"app", "uninstall", name}).status, 2) << name;
  }
  EXPECT_EQ(Run({"app", "uninstall", "--", "-k"}).status, 2);
}

TEST_P(PhoneAppTest, ShowsTheVersion) {
  InstallNotes();
  EXPECT_EQ(Succeed({"app", "version", kNotes}), "1.2.0\n");
  EXPECT_EQ(ParseJson(Succeed({"app", "version", kNotes, "--json"}))["version"], "1.2.0");
  EXPECT_THAT(Fail({"app", "version", "com.example.none"}), HasSubstr("com.example.none is not installed."));
}

// The version is any text that the author of the application chose.
TEST_P(PhoneAppTest, AVersionLongerThanAnyBufferIsShownOrRefused) {
  InstallNotes();
  const std::string record = PhoneFiles() + "/../state/packages/" + kNotes;
  std::string facts = test::ReadFile(record);
  const size_t version = facts.find("1.2.0-beta");
  ASSERT_NE(version, std::string::npos) << record;
  test::WriteFile(record, facts.replace(version, 10, std::string(20000, '1')));
  const auto outcome = Run({"app", "version", kNotes});
  if (outcome.status == 0) {
    EXPECT_EQ(outcome.output, std::string(20000, '1') + "\n");
  } else {
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "");
    EXPECT_THAT(outcome.errors, HasSubstr("cannot read the version of com.example.notes"));
  }
}

TEST_P(PhoneAppTest, ShowsWhereTheFilesAre) {
  phones().Adb({"install-multiple", Apk("notes-1.apk"), Apk("notes-1-split.apk")});
  const std::string text = Succeed({"app", "path", kNotes});
  EXPECT_THAT(text, MatchesRegex("/data/app/[^\n]*/base\\.apk\n/data/app/[^\n]*\\.apk\n"));
  EXPECT_EQ(Succeed({"app", "path", kNotes, "--base"}), text.substr(0, text.find('\n') + 1));
  const Json::Value json = ParseJson(Succeed({"app", "path", kNotes, "--json"}));
  EXPECT_EQ(json["package"], kNotes);
  EXPECT_EQ(json["paths"].size(), 2u);
  EXPECT_THAT(Fail({"app", "path", "com.example.none"}), HasSubstr("com.example.none is not installed."));
  EXPECT_THAT(Fail({"app", "path", "com.example.none", "--base"}), HasSubstr("is not installed."));
}

TEST_P(PhoneAppTest, UninstallsAndKeepsTheDataWhenAsked) {
  InstallNotes();
  Shell("echo kept > /data/data/com.example.notes/files/note");
  EXPECT_EQ(Succeed({"app", "uninstall", "--keep-data", kNotes}), "Uninstalled com.example.notes.\n");
  EXPECT_FALSE(HasNotes());
  InstallNotes();
  EXPECT_EQ(Shell("cat /data/data/com.example.notes/files/note"), "kept");
  Succeed({"app", "uninstall", kNotes});
  EXPECT_FALSE(HasNotes());
  EXPECT_THAT(Fail({"app", "uninstall", kNotes}),
              HasSubstr("com.example.notes is not installed. See `darokleim app list`."));
  EXPECT_THAT(Run({"app", "uninstall", "com.android.settings"}).errors, HasSubstr("com.android.settings"));
  EXPECT_THAT(Fail({"app", "uninstall", std::string(120, 'p')}), HasSubstr("the package's name is too long"));
}

TEST_P(PhoneAppTest, StartsAnActivity) {
  InstallNotes();
  EXPECT_EQ(Succeed({"app", "start", "com.example.notes/.MainActivity"}),
            "Started com.example.notes/.MainActivity.\n");
  const std::string started = "start com.example.notes/com.example.notes.MainActivity\n";
  EXPECT_EQ(Activities(), started);
  // A word that fell apart would name another component.
  Succeed({"app", "start", "com.example.notes/.MainActivity", "--", "--es", "title", "it's $HOME & more"});
  EXPECT_EQ(Activities(), started + started);
  EXPECT_THAT(Fail({"app", "start", "com.example.notes/.Missing"}),
              HasSubstr("the phone cannot start com.example.notes/.Missing: no such activity"));
  EXPECT_EQ(Run({"app", "start", "com.example.notes"}).status, 2);
  EXPECT_THAT(Fail({"app", "start", "com.example.notes/." + std::string(500, 'A')}), HasSubstr("too long"));
}

TEST_P(PhoneAppTest, NeedsASubcommand) {
  EXPECT_EQ(Run({"app"}).status, 2);
  EXPECT_EQ(Run({"app", "remove", kNotes}).status, 2);
}

INSTANTIATE_FOR_BOTH_PHONES(PhoneAppTest);

}  // namespace
}  // namespace darokleim::cli
