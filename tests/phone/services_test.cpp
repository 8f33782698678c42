#include <unistd.h>

#include "tests/phone/phone_under_test.h"

namespace darokleim::test {
namespace {

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

class Services : public PhoneUnderTest {};

TEST_P(Services, EndLinesAsThePhonesGenerationDoes) {
  const std::string output = Shell("getprop ro.build.version.release").output;
  EXPECT_EQ(output.substr(output.find_first_of("\r\n")), is_legacy() ? "\r\n" : "\n");
}

TEST_P(Services, PropertiesCanBeSetUnlessTheyAreReadOnly) {
  Shell("setprop debug.darokleim.test value");
  EXPECT_EQ(Text("getprop debug.darokleim.test"), "value\n");
  EXPECT_THAT(Text("getprop"), HasSubstr("[debug.darokleim.test]: [value]\n"));
  const std::string release = Text("getprop ro.build.version.release");
  Shell("setprop ro.build.version.release 1");
  EXPECT_EQ(Text("getprop ro.build.version.release"), release);
  EXPECT_EQ(Text("getprop no.such.property"), "\n");
}

TEST_P(Services, StorageLooksLikeAPhones) {
  REQUIRE_SIMULATED_PHONE("may be laid out differently");
  const std::string listing = Text("ls -l /storage");
  const std::string group = is_legacy() ? "sdcard_rw" : "everybody";
  EXPECT_THAT(listing, ContainsRegex("d[rwx-]{9} [ 0-9]*root +" + group +
                                     " [ 0-9]* [0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2} emulated\n"));
  EXPECT_THAT(listing, ContainsRegex("root +" + group + " [^\n]*1A2B-3C4D\n"));
  EXPECT_THAT(listing, ContainsRegex("root +root [^\n]*self\n"));
  EXPECT_THAT(Text("df /storage/1A2B-3C4D"), HasSubstr("/storage/1A2B-3C4D"));
}

TEST_P(Services, ListsFilesInTheLongForm) {
  Shell("cd " + storage_folder() + " && printf 1234 > 'a file' && touch -d 2020-01-02T03:04:05 'a file'");
  // Between Android 6 and 7, ls learned to count links and to escape spaces, one before the other.
  EXPECT_THAT(Text("ls -l " + storage_folder()),
              ContainsRegex("-rw[rwx-]+ +(1 )?[^ ]+ +[^ ]+ +4 2020-01-02 03:04 a\\\\? file\n"));
}

TEST_P(Services, StatNamesSizeAndTime) {
  Shell("cd " + phone_folder() + " && printf 1234 > file && touch -d 2020-01-02T03:04:05 file");
  EXPECT_THAT(Text("stat " + phone_folder() + "/file"), HasSubstr("\n  Size: 4"));
  EXPECT_EQ(Text("stat -c %Y " + phone_folder() + "/file"), "1577934245\n");
}

TEST_P(Services, DfShowsWhatIsFree) {
  const std::string line = Text("df /sdcard | grep /");
  EXPECT_THAT(line, is_legacy() ? MatchesRegex("[^ ]+ +[0-9.]+[KMG] +[0-9.]+[KMG] +[0-9.]+[KMG] +[0-9]+\n")
                                : MatchesRegex("[^ ]+ +[0-9]+ +[0-9]+ +[0-9]+ +[0-9]+% /[^ ]+\n"));
}

TEST_P(Services, DfShowsTheFreeSpaceOfAFault) {
  REQUIRE_SIMULATED_PHONE("would have to be filled");
  SwitchOn("free-space=100M");
  EXPECT_THAT(Text("df /sdcard | grep /"), is_legacy() ? HasSubstr(" 100.0M ") : HasSubstr(" 102400 "));
}

TEST_P(Services, DuAndFindWalkAFolder) {
  Shell("cd " + phone_folder() + " && mkdir -p in && echo 1 > in/a.jpg && echo 2 > b.JPG && echo 3 > c.txt");
  EXPECT_EQ(Text("find " + phone_folder() + "/ -type f -and \\( -iname *.jpg -or -iname *.png \\) | sort"),
            phone_folder() + "/b.JPG\n" + phone_folder() + "/in/a.jpg\n");
  EXPECT_THAT(Text("du -s " + phone_folder()), MatchesRegex("[0-9]+\t" + phone_folder() + "\n"));
  EXPECT_THAT(Text("du -a " + phone_folder() + "/ | grep -oE -i '" + phone_folder() + "/.*\\.jpg$' | sort"),
              HasSubstr("in/a.jpg\n"));
}

TEST_P(Services, FindComplainsAboutAClosedFolderAndGoesOn) {
  Shell("cd " + phone_folder() + " && mkdir closed open && touch open/file && chmod 0 closed");
  const Outcome outcome = Shell("find " + phone_folder() + "/ -type f");
  EXPECT_THAT(outcome.output + outcome.errors, HasSubstr("Permission denied"));
  EXPECT_THAT(outcome.output, HasSubstr("open/file"));
}

TEST_P(Services, ACommandCanBeMissing) {
  REQUIRE_SIMULATED_PHONE("has the commands that it has");
  SwitchOn("no-find");
  SwitchOn("no-stat");
  const Outcome ls = Shell("ls /system/bin/find");
  EXPECT_THAT(ls.output + ls.errors, HasSubstr("/system/bin/find: No such file or directory"));
  const Outcome stat = Shell("stat /sdcard");
  EXPECT_THAT(stat.output + stat.errors, ContainsRegex("/system/bin/sh: stat: .*not found"));
  Control({"clear", "no-stat"});
  EXPECT_THAT(Text("stat /sdcard"), HasSubstr("/sdcard"));
}

TEST_P(Services, HasAWirelessAddress) {
  REQUIRE_SIMULATED_PHONE("may have none");
  EXPECT_THAT(Text("ip address | grep wlan | grep inet"),
              MatchesRegex(" +inet [0-9]+\\.[0-9]+\\.[0-9]+\\.[0-9]+/24 brd [0-9.]+ scope global wlan0\n"));
  SwitchOn("no-wifi");
  EXPECT_EQ(Text("ip address | grep wlan | grep inet"), "");
}

TEST_P(Services, RecordsWhatIsTyped) {
  REQUIRE_SIMULATED_PHONE("types it into whatever has the focus");
  Shell("input text hello%sworld");
  Shell("input keyevent 66");
  EXPECT_EQ(Control({"show", "input"}).output, "text hello world\nkeyevent 66\n");
}

TEST_P(Services, SaysWhatTheBatteryHas) {
  const std::string battery = Text("dumpsys battery");
  EXPECT_THAT(battery, StartsWith("Current Battery Service state:\n  AC powered: "));
  for (const char* line :
       {"\n  USB powered: ", "\n  Wireless powered: ", "\n  status: ", "\n  health: ", "\n  present: ",
        "\n  level: ", "\n  scale: ", "\n  voltage: ", "\n  temperature: ", "\n  technology: "}) {
    EXPECT_THAT(battery, HasSubstr(line));
  }
}

TEST_P(Services, SaysTheScreensSizeAndWhatWasSetInstead) {
  REQUIRE_SIMULATED_PHONE("keeps its size");
  EXPECT_EQ(Text("wm size"), "Physical size: 1080x2340\n");
  EXPECT_EQ(Text("wm density"), "Physical density: 420\n");
  Shell("wm size 720x1280; wm density 320");
  EXPECT_EQ(Text("wm size"), "Physical size: 1080x2340\nOverride size: 720x1280\n");
  EXPECT_EQ(Text("wm density"), "Physical density: 420\nOverride density: 320\n");
  Shell("wm size reset; wm density reset");
  EXPECT_EQ(Text("wm size; wm density"), "Physical size: 1080x2340\nPhysical density: 420\n");
}

TEST_P(Services, TakesARealPicture) {
  Shell("screencap -p " + phone_folder() + "/screen.png");
  Adb({"pull", phone_folder() + "/screen.png", host_folder() + "/screen.png"});
  const std::string picture = ReadFile(host_folder() + "/screen.png");
  EXPECT_THAT(picture, StartsWith("\x89PNG\r\n\x1a\n"));
  EXPECT_THAT(picture, HasSubstr("IDAT"));
  EXPECT_GT(picture.size(), 1000u);
}

TEST_P(Services, LogIsFilteredAndCleared) {
  REQUIRE_SIMULATED_PHONE("writes more into its log");
  Shell("log -t First -p i one; log -t Second -p w two; log -t First -p d three");
  EXPECT_THAT(Unix(Adb({"logcat", "-d", "-v", "brief", "-s", "First:I"}).output),
              MatchesRegex("--------- beginning of main\nI/First\\( *[0-9]+\\): one\n"));
  EXPECT_EQ(Adb({"logcat", "-c"}).status, 0);
  EXPECT_EQ(Unix(Adb({"logcat", "-d", "-s", "First"}).output), "--------- beginning of main\n");
}

TEST_P(Services, LogIsFollowed) {
  // Of this run alone: a real phone's log has the lines of earlier ones.
  const std::string tag = "Darokleim" + std::to_string(getpid());
  const auto follower = StartAdb({"logcat", "-v", "raw", "-T", "1", "-s", tag + ":V"});
  EXPECT_EQ(follower->ReadLine().substr(0, 10), "--------- ");
  Shell("log -t " + tag + " first line");
  EXPECT_THAT(follower->ReadLine(), StartsWith("first line"));
  Shell("log -t " + tag + " second line");
  EXPECT_THAT(follower->ReadLine(), StartsWith("second line"));
}

TEST_P(Services, BacksUpAndRestoresTheDataOfAnApplication) {
  REQUIRE_SIMULATED_PHONE("asks its user first");
  const std::string file = host_folder() + "/notes.ab";
  const std::string data = "/data/data/com.example.notes/";
  Adb({"install", DataFile("notes-1.apk")});
  Shell("cd " + data +
        " && echo precious > files/note && mkdir files/in && echo deep > files/in/x && echo y > "
        "shared_prefs/p.xml");
  EXPECT_EQ(Adb({"backup", "-f", file, "-noapk", "-nosystem", "com.example.notes"}).status, 0);
  EXPECT_THAT(ReadFile(file), StartsWith("ANDROID BACKUP\n5\n1\nnone\n"));
  Shell("cd " + data + " && rm -r files/* && echo changed > shared_prefs/p.xml");
  EXPECT_EQ(Adb({"restore", file}).status, 0);
  EXPECT_EQ(Text("cd " + data + " && cat files/note files/in/x shared_prefs/p.xml"), "precious\ndeep\ny\n");
}

TEST_P(Services, RestoreLeavesAloneWhatABrokenFileSays) {
  REQUIRE_SIMULATED_PHONE("asks its user first");
  Adb({"install", DataFile("notes-1.apk")});
  Shell("echo precious > /data/data/com.example.notes/files/note");
  const std::string file = host_folder() + "/notes.ab";
  Adb({"backup", "-f", file, "com.example.notes"});
  const std::string whole = ReadFile(file);
  for (const std::string& broken :
       {std::string("nonsense"), whole.substr(0, whole.size() / 2), std::string()}) {
    WriteFile(file, broken);
    Adb({"restore", file});
    EXPECT_EQ(Text("cat /data/data/com.example.notes/files/note"), "precious\n");
  }
}

TEST_P(Services, AnUnconfirmedBackupEndsWhenItsScreenIsStopped) {
  REQUIRE_SIMULATED_PHONE("has a screen for that");
  SwitchOn("unconfirmed-backup");
  const auto backup = StartAdb({"backup", "-f", host_folder() + "/none.ab", "-all"});
  EXPECT_TRUE(Eventually([this] { return IsAsking(); }));
  Shell("am force-stop com.android.backupconfirm");
  EXPECT_THAT(backup->Finish().output, HasSubstr("confirm the backup operation"));
  EXPECT_EQ(ReadFile(host_folder() + "/none.ab"), "");
}

TEST_P(Services, SlowPhoneAnswersLater) {
  REQUIRE_SIMULATED_PHONE("is as fast as it is");
  SwitchOn("slow=0.5");
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(Text("echo late"), "late\n");
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(500));
}

TEST_P(Services, RebootTakesThePhoneAwayAndBack) {
  REQUIRE_SIMULATED_PHONE("takes minutes to reboot");
  Shell("setprop debug.gone yes; setprop persist.kept yes");
  const auto sleeper = StartAdb({"shell", "echo asleep; sleep 1000"});
  EXPECT_THAT(sleeper->ReadLine(), StartsWith("asleep"));
  Shell("reboot");
  sleeper->Finish();
  EXPECT_TRUE(Eventually([this] { return Shell("true").status != 0; }));
  Adb({"wait-for-device"});
  EXPECT_EQ(Text("getprop debug.gone; getprop persist.kept"), "\nyes\n");
}

INSTANTIATE_FOR_PHONES(Services);

}  // namespace
}  // namespace darokleim::test
