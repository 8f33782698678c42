// darokleim sdk, on simulated phones. What kills processes runs in a PID namespace of its own, where it can reach none
// but the test's.
#include <signal.h>
#include <unistd.h>

#include <filesystem>
#include <map>
#include <regex>

#include "tests/cli/documented_json.h"
#include "tests/cli/phone_tool_test.h"
#include "tests/support/eventually.h"
#include "tests/support/file_content.h"

namespace darokleim::cli {
namespace {

using testing::AllOf;
using testing::ContainsRegex;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;

std::string Apk(const std::string& name) {
  return DAROKLEIM_PHONE_TEST_DATA "/" + name;
}

// The functions of the header and their parameters.
std::map<std::string, std::vector<std::string>> FunctionsOfTheHeader() {
  std::map<std::string, std::vector<std::string>> functions;
  const std::string header = test::ReadFile(DAROKLEIM_HEADER);
  const std::regex declaration(R"(\nDAROKLEIM_EXPORT [a-z]+ (\w+)\(([^)]*)\);)");
  const std::regex name(R"((\w+)\s*(,|$))");
  for (std::sregex_iterator found(header.begin(), header.end(), declaration), end; found != end; ++found) {
    auto& parameters = functions[(*found)[1]];
    const std::string list = (*found)[2];
    if (list == "void") continue;
    for (std::sregex_iterator word(list.begin(), list.end(), name); word != end; ++word) {
      parameters.push_back((*word)[1]);
    }
  }
  return functions;
}

class SdkListTest : public ToolTest {};

TEST_F(SdkListTest, HasEveryFunctionOfTheHeaderWithItsParameters) {
  const auto outcome = Run({"sdk", "--json"});
  ASSERT_EQ(outcome.status, 0) << outcome.errors;
  std::map<std::string, std::vector<std::string>> listed;
  const Json::Value document = ParseJson(outcome.output);
  ExpectDocumented("sdk without a function", document);
  for (const Json::Value& entry : document["functions"]) {
    auto& parameters = listed[entry["function"].asString()];
    for (const Json::Value& parameter : entry["parameters"])
      parameters.push_back(parameter["name"].asString());
  }
  EXPECT_EQ(listed.size(), 71u);
  EXPECT_EQ(listed, FunctionsOfTheHeader());
}

TEST_F(SdkListTest, IsALineForEach) {
  EXPECT_THAT(Run({"sdk"}).output, AllOf(ContainsRegex("\nAdbPullFile DEVICE_PATH HOST_PATH +Copies a file"),
                                         ContainsRegex("\nAdbGetPackagesNameList \\[FILTER\\] +Lists")));
}

TEST_F(SdkListTest, AFunctionExplainsItself) {
  EXPECT_THAT(Run({"sdk", "AdbGetDirFiles", "--help"}).output,
              AllOf(HasSubstr("Usage: darokleim sdk AdbGetDirFiles "), HasSubstr("F:\\file_list.json"),
                    HasSubstr("Outputs: json, json_len")));
  EXPECT_THAT(Run({"sdk", "AdbKillDaemon", "--help"}).output, HasSubstr("kills every process"));
}

TEST_F(SdkListTest, RefusesWrongWords) {
  for (const Words& words :
       {Words{"sdk", "AdbNothing"}, Words{"sdk", "AdbRemoveFile"}, Words{"sdk", "AdbStartDaemon", "2"},
        Words{"sdk", "AdbReboot", "TEST0001"}, Words{"sdk", "AdbGetDevices", "--channel", "other"},
        Words{"sdk", "AdbGetDevices", "--buffer-size", "0"}}) {
    const auto outcome = Run(words);
    EXPECT_EQ(outcome.status, 2) << words.back();
    EXPECT_EQ(outcome.output, "");
  }
}

// Without a phone: what needs none.

TEST_F(SdkListTest, ShowsWhatAFunctionReturnedThatRunsNoCommand) {
  const auto outcome = Run({"sdk", "AppendMiuiVersionByTimeCode", "1583366400", "12."});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(
      outcome.output,
      MatchesRegex("AppendMiuiVersionByTimeCode returned true\nversion = 12\\.10\\.3\\.6\n[0-9.]+ ms\n"
                   "commands: none\n"));
  const auto refused = Run({"sdk", "AppendMiuiVersionByTimeCode", "soon", "--json"});
  EXPECT_EQ(refused.status, 1);
  EXPECT_EQ(ParseJson(refused.output)["returned"], false);
  EXPECT_EQ(ParseJson(refused.output)["outputs"][0]["value"], "");
}

TEST_F(SdkListTest, StartsTheLibraryByHand) {
  std::filesystem::create_directory(File("resources"));
  const auto missing = Run({"sdk", "AdbSdkInit", File("resources"), File("tmp"), "--json"});
  EXPECT_EQ(missing.status, 1);
  EXPECT_EQ(ParseJson(missing.output)["name"], "ADB_RESULT_RESOURCE_INCOMPLETE");
  test::WriteFile(File("resources/adb"), "");
  test::WriteFile(File("resources/busybox"), "");
  EXPECT_EQ(Run({"sdk", "AdbSdkInit", File("resources"), File("tmp")}).status, 0);
}

// A call of every function, with what it must come to.
class SdkCallTest : public PhoneToolTest {
 protected:
  // The report of a call that returns that code.
  Json::Value Call(const Words& words, int code = 0) {
    Words line = {"sdk", "--json"};
    line.insert(line.end(), words.begin(), words.end());
    const auto outcome = Run(line);
    const Json::Value report = ParseJson(outcome.output);
    EXPECT_EQ(report["function"], words.front()) << outcome.errors;
    EXPECT_EQ(report["code"], code) << words.front() << ": " << outcome.output;
    EXPECT_EQ(outcome.errors, "");
    ExpectDocumented("sdk", report);
    EXPECT_GE(report["milliseconds"].asDouble(), 0);
    return report;
  }
  Json::Value OutputOf(const Words& words, const char* output, int code = 0) {
    return ValueOf(Call(words, code), output);
  }
  // Null, and a failure, when the function does not have such an output.
  static Json::Value ValueOf(const Json::Value& report, const std::string& output) {
    for (const Json::Value& entry : report["outputs"]) {
      if (entry["name"] == output) return entry["value"];
    }
    ADD_FAILURE() << "no output " << output;
    return {};
  }
  static std::string LastCommand(const Json::Value& report) {
    const Json::Value& commands = report["commands"];
    if (commands.empty()) return "";
    return commands[commands.size() - 1]["arguments"].asString();
  }
};

TEST_P(SdkCallTest, ReportsTheCommandsOfTheCall) {
  const Json::Value report = Call({"AdbGetPhoneProductModel"});
  EXPECT_EQ(report["name"], "ADB_RESULT_OK");
  EXPECT_EQ(report["meaning"], "it worked.");
  EXPECT_EQ(report["outputs"].size(), 1u);
  EXPECT_EQ(ValueOf(report, "buffer"), "Pixel 7");
  ASSERT_EQ(report["commands"].size(), 1u);
  const Json::Value& command = report["commands"][0];
  EXPECT_EQ(command["route"], "adb");
  EXPECT_EQ(command["arguments"], "-s TEST0001 shell getprop ro.product.model");
  EXPECT_EQ(command["status"], 0);
  EXPECT_GE(command["bytes"].asInt(), 8);
}

TEST_P(SdkCallTest, ReportsToPeopleToo) {
  EXPECT_THAT(
      Succeed({"sdk", "AdbGetPhoneProductModel", "--log"}),
      MatchesRegex("AdbGetPhoneProductModel returned 0, ADB_RESULT_OK: it worked\\.\n"
                   "buffer = Pixel 7\n[0-9.]+ ms\ncommands:\n"
                   "  adb -s TEST0001 shell getprop ro\\.product\\.model  \\(status 0, [0-9]+ bytes, "
                   "[0-9]+ ms\\)\nlog:\n(  [^\n]*\n)*  [^\n]*AdbGetPhoneProductModel Leave, return 0\\.\n"));
  const auto failed = Run({"sdk", "AdbGetFileSize", "/sdcard/none"});
  EXPECT_EQ(failed.status, 1);
  EXPECT_EQ(failed.errors, "");
  EXPECT_THAT(failed.output, HasSubstr("AdbGetFileSize returned 25, ADB_RESULT_NO_SUCH_FILE: the path"));
}

TEST_P(SdkCallTest, RunsCommandsAsTheChannelIsTold) {
  EXPECT_EQ(Call({"AdbGetDevicesEx", "--channel", "direct"})["commands"][0]["route"], "direct");
  // Without assistance a path with a space falls apart on the phone.
  PutOnPhone("/sdcard/my file", "x");
  EXPECT_EQ(OutputOf({"AdbCheckFileExisted", "/sdcard/my file"}, "exists"), true);
  EXPECT_THAT(LastCommand(Call({"AdbChmodFile", "/sdcard/my file", "644", "--channel", "plain"}, 25)),
              HasSubstr("chmod 644"));
}

TEST_P(SdkCallTest, BuffersHaveTheSizeThatWasAsked) {
  EXPECT_EQ(OutputOf({"AdbGetPhoneProductModel", "--buffer-size", "4"}, "buffer", 8), "Pix");
  EXPECT_EQ(OutputOf({"AdbGetDevices", "--buffer-size", "6"}, "buffer"), "TEST0");
  const Json::Value refused = Call({"AdbGetFirstSDCardPath", "--buffer-size", "8"}, 8);
  EXPECT_EQ(ValueOf(refused, "buffer"), "");
  EXPECT_EQ(refused["commands"].size(), 0u);
}

TEST_P(SdkCallTest, LogsAreKeptWhereTheUserWantsThem) {
  Call({"AdbGetDevicesEx", "--log-dir", File("logs")});
  EXPECT_THAT(test::ReadFile(File("logs/adb_channel.log")), HasSubstr("adb devices: status 0"));
  EXPECT_TRUE(std::filesystem::is_empty(File("tmp")));
}

TEST_P(SdkCallTest, IsCancelledByTheTimeLimitAndCtrlC) {
  SwitchOn("slow=20");
  EXPECT_EQ(Call({"AdbGetPhoneProductModel", "--timeout", "1"}, 3003)["name"], "cancelled");
  // It takes no flag: its adb is ended.
  EXPECT_EQ(Call({"AdbStartApp", "com.example.notes/.MainActivity", "--timeout", "1"}, 2015)["name"],
            "adb signal 15");
  auto tool = Start({"sdk", "AdbGetPhoneProductModel", "--json"});
  usleep(300'000);
  tool->Signal(SIGINT);
  const auto outcome = tool->Finish();
  EXPECT_EQ(outcome.status, 130);
  EXPECT_EQ(ParseJson(outcome.output)["code"], 3003);
}

TEST_P(SdkCallTest, OfDevices) {
  EXPECT_EQ(OutputOf({"AdbGetDevices"}, "buffer"), "TEST0001-device;");
  const Json::Value list = Call({"AdbGetDevicesEx"});
  EXPECT_EQ(ValueOf(list, "list"), "TEST0001-device;");
  EXPECT_EQ(ValueOf(list, "list_len"), 17);
  const auto freed = ParseJson(Succeed({"sdk", "AdbFreeResource", "--json"}));
  EXPECT_TRUE(ValueOf(freed, "buffer").isNull());
  EXPECT_FALSE(freed.isMember("code"));
  phones().Control({"TEST0001", "state", "unauthorized"});
  const auto asked = Run({"-s", "TEST0001", "sdk", "AdbAuthenticateShow"});
  EXPECT_EQ(asked.status, 0);
  EXPECT_THAT(asked.output, HasSubstr("returned 1, ADB_RESULT_PROTOCOL_FAULT: it worked;"));
  phones().Control({"TEST0001", "state", "device"});
  EXPECT_TRUE(test::Eventually([this] { return Shell("echo here") == "here"; }));
  Call({"AdbReconnectDevice"});
  EXPECT_TRUE(test::Eventually([this] { return Shell("echo here") == "here"; }));
  Call({"AdbReboot", "-s", "NONE"}, 24);
  Shell("setprop darokleim.before.reboot 1");
  Call({"AdbReboot"});
  EXPECT_TRUE(test::Eventually(
      [this] { return Shell("echo here") == "here" && Shell("getprop darokleim.before.reboot").empty(); }));
}

TEST_P(SdkCallTest, OfProperties) {
  EXPECT_EQ(OutputOf({"AdbGetPhoneManufacturer"}, "buffer"), "Google");
  EXPECT_EQ(OutputOf({"AdbGetPhoneSoftVersion"}, "buffer"), is_legacy() ? "6.0.1" : "13");
  EXPECT_EQ(OutputOf({"AdbGetMiuiBuildRegin"}, "buffer"), "");
  EXPECT_EQ(OutputOf({"AdbGetMiuiVersion"}, "buffer", 44), "");
  EXPECT_EQ(OutputOf({"AdbCheckLockedState"}, "locked"), true);
  EXPECT_EQ(OutputOf({"AdbCheckEncryptState"}, "encrypted"), true);
  EXPECT_EQ(OutputOf({"AdbGetEncryptType"}, "type"), 0);
  EXPECT_EQ(OutputOf({"AdbCheckIsHarmony"}, "is_harmony"), false);
  EXPECT_EQ(OutputOf({"IsDeviceHadBeenRooted"}, "rooted"), false);
  EXPECT_THAT(OutputOf({"AdbGetIPAddress"}, "ip").asString(), MatchesRegex("192\\.168\\.1\\.[0-9]+/24"));
  EXPECT_THAT(OutputOf({"AdbGetDeviceCurrentTime"}, "buffer").asString(), MatchesRegex("[0-9-]+ [0-9:]+"));
  // With assistance as every function reads it, with CR LF.
  const Json::Value property = Call({"GetPropInfo", "ro.product.model"});
  EXPECT_EQ(ValueOf(property, "out"), "Pixel 7\r\n");
  EXPECT_EQ(ValueOf(property, "out_len"), 9);
}

TEST_P(SdkCallTest, OfFiles) {
  test::WriteFile(File("work/a.txt"), "hello");
  Call({"AdbPushFile", "a.txt", "/sdcard/a.txt"});
  EXPECT_EQ(OutputOf({"AdbGetFileSize", "/sdcard/a.txt"}, "size"), 5);
  EXPECT_GT(OutputOf({"AdbGetFileCreateTime", "/sdcard/a.txt"}, "seconds").asUInt64(), 1'500'000'000u);
  EXPECT_GT(OutputOf({"AdbGetFileCreateTimeFromLs", "/sdcard/a.txt"}, "seconds").asUInt64(), 1'500'000'000u);
  EXPECT_EQ(OutputOf({"AdbCheckFileExisted", "/sdcard/a.txt"}, "exists"), true);
  EXPECT_EQ(OutputOf({"AdbCheckFileExistedUsingFolderContent", "/sdcard/b.txt"}, "exists"), false);
  Call({"AdbCopyFile", "/sdcard/a.txt", "/sdcard/b.txt"});
  Call({"AdbCreateDir", "/sdcard/new/folder"});
  Call({"AdbRenameFile", "/sdcard/b.txt", "/sdcard/new/folder/b.txt"});
  Call({"AdbChmodFile", "/sdcard/new/folder/b.txt", "600"});
  Call({"AdbPullFile", "/sdcard/new/folder/b.txt", "b.txt"});
  EXPECT_EQ(test::ReadFile(File("work/b.txt")), "hello");
  Call({"AdbRemoveFile", "/sdcard/new/folder/b.txt"});
  Call({"AdbRemoveFile", "/sdcard/new/folder/b.txt"}, 25);
  Call({"AdbScreencapToPC", "screen.png"});
  EXPECT_THAT(test::ReadFile(File("work/screen.png")), testing::StartsWith("\x89PNG"));
  Call({"AdbScreencapToDevice", "/sdcard/screen.png"});
  EXPECT_EQ(Shell("ls /sdcard/screen.png"), "/sdcard/screen.png");
}

TEST_P(SdkCallTest, OfDirectories) {
  PutOnPhone("/sdcard/photos/a.jpg", "12345");
  PutOnPhone("/sdcard/photos/b.txt", "1");
  const auto listed = [](const Json::Value& json) { return ParseJson(json.asString()); };
  EXPECT_EQ(listed(OutputOf({"AdbGetDirFiles", "/sdcard/photos", "0", "0"}, "json"))["file_count"], 2);
  EXPECT_EQ(listed(OutputOf({"AdbGetDirFilesEx", "/sdcard/photos", "0", "0"}, "json"))["file_count"], 2);
  EXPECT_EQ(listed(OutputOf({"AdbGetDirFilesAndDirs", "/sdcard/photos", "0", "0"}, "json"))["Name"],
            "/sdcard/photos");
  const Json::Value found = Call({"AdbGetFilesBySuffix", "/sdcard/photos", "jpg;png"});
  EXPECT_EQ(listed(ValueOf(found, "json"))["files"][0]["file"], "/sdcard/photos/a.jpg");
  EXPECT_EQ(ValueOf(found, "json_len").asUInt64(), ValueOf(found, "json").asString().size());
  MakeExecutable(File("busybox"), "#!/system/bin/sh\nexec \"$@\"\n");
  EXPECT_GT(OutputOf({"AdbGetDirSize", "/sdcard/photos", "--busybox", File("busybox")}, "size").asInt(), 0);
  Call({"AdbConfigDeviceBusybox", "--busybox", File("busybox")});
  EXPECT_EQ(Shell("/data/local/tmp/busybox echo busy"), "busy");
}

TEST_P(SdkCallTest, OfStorage) {
  EXPECT_EQ(OutputOf({"AdbGetFirstSDCardPath"}, "buffer"), "/sdcard");
  EXPECT_GT(OutputOf({"AdbGetStorageFreeSpace", "/sdcard"}, "free_bytes").asUInt64(), 0u);
  EXPECT_THAT(OutputOf({"AdbSearchSDCardPath"}, "paths").asString(), HasSubstr("/storage/1A2B-3C4D"));
  EXPECT_THAT(OutputOf({"AdbSearchExternalSDCardPath"}, "path").asString(),
              testing::AnyOf("", "/storage/1A2B-3C4D"));
}

TEST_P(SdkCallTest, OfPackages) {
  Call({"AdbInstallAppFromPCPath", Apk("notes-1.apk")});
  EXPECT_EQ(OutputOf({"AdbCheckAppInstalled", kNotes}, "installed"), true);
  EXPECT_THAT(OutputOf({"AdbGetPackagesNameOfInstalled", "--", "-3"}, "list").asString(),
              MatchesRegex("package:com\\.example\\.notes\r?\n"));
  EXPECT_THAT(OutputOf({"AdbGetPackagesNameList"}, "list").asString(), HasSubstr("com.android.settings"));
  EXPECT_THAT(OutputOf({"AdbGetPackagesNameList", "example"}, "list").asString(),
              Not(HasSubstr("com.android.settings")));
  EXPECT_THAT(OutputOf({"AdbGetApkPathOfInstatlled", kNotes}, "buffer").asString(), HasSubstr("/base.apk"));
  const auto paths = OutputOf({"AdbGetApkPathOfInstatlledEx", kNotes}, "json");
  EXPECT_EQ(ParseJson(paths.asString())["path"].size(), 1u);
  EXPECT_EQ(OutputOf({"AdbGetAppVersion", kNotes, "--buffer-size", "2"}, "buffer"), "1.2.0");
  Call({"AdbCheckAppExist", kNotes, "0"});
  Call({"AdbStartApp", "com.example.notes/.MainActivity"});
  Call({"AdbStartApp", "com.example.notes/.Missing", "--", "-a x"}, 1);
  EXPECT_THAT(LastCommand(Call({"AdbUninstallApp", kNotes, "1"})), HasSubstr("uninstall -k"));
  PutOnPhone("/data/local/tmp/notes.apk", test::ReadFile(Apk("notes-1.apk")));
  Call({"AdbInstallAppFromDevicePath", "/data/local/tmp/notes.apk"});
  Call({"AdbInstallMultipleAppFromPCPath",
        "{\"apks\": [\"" + Apk("notes-1.apk") + "\", \"" + Apk("notes-1-split.apk") + "\"]}"});
}

TEST_P(SdkCallTest, OfControl) {
  Call({"AdbInstallAppFromPCPath", Apk("notes-1.apk")});
  Call({"AdbBackupApp", kNotes, "notes.ab"});
  EXPECT_THAT(test::ReadFile(File("work/notes.ab")), testing::StartsWith("ANDROID BACKUP\n"));
  Call({"AdbRestoreApp", "notes.ab"});
  Call({"AdbStopDeviceBackupRestoreProcess"});
  EXPECT_EQ(LastCommand(Call({"AdbInputStringToDevice", "secret"})), "-s TEST0001 shell input text ***");
  EXPECT_THAT(phones().Control({"TEST0001", "show", "input"}).output, HasSubstr("text secret\n"));
  Call({"AdbClearLogcat"});
}

TEST_P(SdkCallTest, OfAStream) {
  Shell("log -t Mine 'a message'");
  const Json::Value report = Call({"AdbLogcatAnsync", "Mine:V", "--timeout", "2"});
  EXPECT_THAT(ValueOf(report, "on_output").asString(), HasSubstr("a message"));
  EXPECT_EQ(report["stream_status"], 3003);
  EXPECT_EQ(report["commands"][0]["status"], 3003);

  auto tool = Start({"sdk", "AdbLogcatAnsync", "Mine:V"});
  std::string line = tool->ReadLine();
  while (line.find("a message") == std::string::npos && !line.empty()) line = tool->ReadLine();
  EXPECT_NE(line, "");
  tool->Signal(SIGINT);
  const auto outcome = tool->Finish();
  EXPECT_EQ(outcome.status, 130);
  EXPECT_THAT(outcome.output, HasSubstr("the stream ended with cancelled (3003)"));
}

TEST_P(SdkCallTest, OfPorts) {
  const std::string port = std::to_string(20000 + getpid() % 10000);  // others run at the same time
  Call({"AdbFowardBind", port, "80"});
  EXPECT_THAT(phones().Adb({"forward", "--list"}).output, HasSubstr("tcp:" + port + " tcp:80"));
  Call({"AdbFowardRemove", port});
  Call({"AdbFowardRemove", port}, 1001);
  Call({"AdbReverseBind", "8798", "18798"});
  Call({"AdbReverseRemove", "8798"});
}

TEST_P(SdkCallTest, OfTheServer) {
  Call({"AdbStartDaemon", "0"});
  Call({"AdbStartDaemonEx", "0"});
}

INSTANTIATE_FOR_BOTH_PHONES(SdkCallTest);

// Functions that kill every process with the word adb in its line of `ps`.
class SdkKillTest : public ToolTest {};

TEST_F(SdkKillTest, NothingIsKilledWithoutForce) {
  MakeAdb("echo called >>" + File("words"));
  for (const Words& words : {Words{"AdbKillDaemon"}, Words{"AdbRestartDaemon"}, Words{"AdbStartDaemon", "1"},
                             Words{"AdbStartDaemonEx", "1"}}) {
    Words line = {"sdk"};
    line.insert(line.end(), words.begin(), words.end());
    const auto refused = Run(line);
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.output, "");
    EXPECT_THAT(refused.errors, HasSubstr("this kills every process of this computer with the word adb"));
    line.insert(line.end(), {"--force", "--adb", File("bin/adb")});
    EXPECT_THAT(Run(line).errors, HasSubstr("this command would kill itself"));
  }
  EXPECT_FALSE(std::filesystem::exists(File("words")));
}

#if defined(__linux__)
class SdkForcedKillTest : public SdkKillTest, public testing::WithParamInterface<const char*> {
 protected:
  test::SimulatedPhones phones_{{"TEST0001"}, {"--restart-on-kill"}};
};

// A victim ends with 137 when it was killed.
TEST_P(SdkForcedKillTest, KillsWhatHoldsTheName) {
  constexpr int kNoNamespace = 99;
  for (const auto& [variable, value] : test::AdbEnvironment(phones_.port())) Set(variable, value);
  Set("PATH", getenv("PATH"));
  std::filesystem::create_directory(File("work"));
  test::WriteFile(File("work/adb.txt"), "");
  test::WriteFile(File("work/play"), R"(timeout 5 tail -f adb.txt 2>/dev/null & victim=$!
sleep 0.2
"$TOOL" sdk )" + std::string(GetParam()) +
                                         R"( --force >report
echo "status $?"
wait $victim
echo "victim $?")");
  // An ordinary user needs a user namespace around it, which some systems refuse; so do containers to root.
  const auto outcome = RunShell("cd " + File("work") + R"(
in_namespace='unshare --pid --fork --mount-proc'
$in_namespace true 2>/dev/null || in_namespace='unshare --user --map-root-user --pid --fork --mount-proc'
$in_namespace true || exit 99
$in_namespace sh ./play)");
  if (outcome.status == kNoNamespace) GTEST_SKIP() << "the system refuses PID namespaces: " << outcome.errors;
  EXPECT_EQ(outcome.output, "status 0\nvictim 137\n") << outcome.errors;
  EXPECT_THAT(test::ReadFile(File("work/report")), HasSubstr("adb kill-server  (status 0"));
}

INSTANTIATE_TEST_SUITE_P(, SdkForcedKillTest,
                         testing::Values("AdbKillDaemon", "AdbRestartDaemon", "AdbStartDaemon 1",
                                         "AdbStartDaemonEx 1"),
                         [](const auto& words) {
                           const std::string text = words.param;
                           return text.substr(0, text.find(' '));
                         });
#endif

}  // namespace
}  // namespace darokleim::cli
