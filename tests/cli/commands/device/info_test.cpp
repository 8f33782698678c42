// darokleim info, battery, storage and screenshot, on simulated phones.
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "tests/cli/documented_json.h"
#include "tests/cli/phone_tool_test.h"
#include "tests/support/file_content.h"

namespace darokleim::cli {
namespace {

using testing::AllOf;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;
using testing::StartsWith;

class PhoneInfoTest : public PhoneToolTest {};

TEST_P(PhoneInfoTest, ShowsWhatThePhoneSaysOfItself) {
  const std::string text = Succeed({"info"});
  EXPECT_THAT(text,
              AllOf(HasSubstr("Serial number       TEST0001\n"), HasSubstr("Manufacturer        Google\n"),
                    HasSubstr("Model               Pixel 7\n"), HasSubstr("Boot loader locked  yes\n"),
                    HasSubstr("Rooted              no\n")));
  EXPECT_THAT(text, HasSubstr(is_legacy() ? "Android SDK         23\n" : "Android SDK         33\n"));
  EXPECT_THAT(text, Not(HasSubstr("MIUI")));
}

TEST_P(PhoneInfoTest, IsAnObjectOfTypedFactsForPrograms) {
  const Json::Value facts = ParseJson(Succeed({"info", "--json"}));
  ExpectDocumented("info", facts);
  EXPECT_EQ(facts["serial"], "TEST0001");
  EXPECT_EQ(facts["manufacturer"], "Google");
  EXPECT_EQ(facts["model"], "Pixel 7");
  EXPECT_EQ(facts["android"], is_legacy() ? "6.0.1" : "13");
  EXPECT_EQ(facts["encrypted"], true);
  EXPECT_EQ(facts["encryption_type"], "file");
  EXPECT_EQ(facts["harmony"], false);
  EXPECT_EQ(facts["rooted"], false);
  EXPECT_TRUE(facts.isMember("miui_version"));
  EXPECT_TRUE(facts["miui_version"].isNull());
  EXPECT_THAT(facts["ip_address"].asString(), MatchesRegex("192\\.168\\.1\\.[0-9]+/24"));
  EXPECT_THAT(facts["time"].asString(),
              MatchesRegex("[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}"));
}

TEST_P(PhoneInfoTest, PrintsOneFactAsItIs) {
  EXPECT_EQ(Succeed({"info", "model"}), "Pixel 7\n");
  EXPECT_EQ(Succeed({"info", "rooted"}), "no\n");
  EXPECT_EQ(Succeed({"info", "miui_version"}), "\n");
  EXPECT_EQ(Succeed({"info", "-p", "ro.product.name"}), Shell("getprop ro.product.name") + "\n");
}

TEST_P(PhoneInfoTest, ShowsTheChosenFactsAndProperties) {
  const Json::Value facts =
      ParseJson(Succeed({"info", "sdk", "--json", "-p", "ro.product.name", "-p", "no.such"}));
  ExpectDocumented("info", facts);
  EXPECT_EQ(facts.size(), 3u);  // with the errors
  EXPECT_EQ(facts["sdk"], is_legacy() ? "23" : "33");
  EXPECT_EQ(facts["properties"][0]["value"], Shell("getprop ro.product.name"));
  EXPECT_TRUE(facts["properties"][1]["value"].isNull());
}

TEST_P(PhoneInfoTest, AddressIsLeftOutWithoutWifi) {
  SwitchOn("no-wifi");
  EXPECT_THAT(Succeed({"info"}), Not(HasSubstr("Wi-Fi address")));
  EXPECT_TRUE(ParseJson(Succeed({"info", "--json", "ip_address"}))["ip_address"].isNull());
}

TEST_P(PhoneInfoTest, RefusesNamesThatItDoesNotKnow) {
  EXPECT_EQ(Run({"info", "colour"}).status, 2);
  EXPECT_EQ(Run({"info", "-p", "a; rm -rf /"}).status, 2);
}

TEST_P(PhoneInfoTest, SaysWhatToDoAboutAPhoneThatDoesNotTrustTheComputer) {
  phones().Control({"TEST0001", "state", "unauthorized"});
  for (const Words& words : {Words{"-s", "TEST0001", "info"}, Words{"battery"}}) {
    const auto outcome = Run(words);
    EXPECT_EQ(outcome.status, 3);
    EXPECT_THAT(outcome.errors, HasSubstr("USB debugging"));
  }
}

TEST_P(PhoneInfoTest, TheBatteryIsShown) {
  EXPECT_THAT(Succeed({"battery"}), MatchesRegex("Level        [0-9]+%\nCharging     (yes|no)\n"
                                                 "Temperature  [0-9.]+ °C\n(Voltage      [0-9]+ mV\n)?"));
  const Json::Value json = ParseJson(Succeed({"battery", "--json"}));
  ExpectDocumented("battery", json);
  EXPECT_GT(json["level"].asInt(), 0);
}

TEST_P(PhoneInfoTest, TheStorageIsShown) {
  EXPECT_THAT(Succeed({"storage"}),
              AllOf(StartsWith("PATH "), ContainsRegex("/storage/1A2B-3C4D +card +[0-9]")));
  const Json::Value json = ParseJson(Succeed({"storage", "--json"}));
  ExpectDocumented("storage", json);
  ASSERT_EQ(json["volumes"].size(), 2u);
  for (const Json::Value& volume : json["volumes"]) {
    EXPECT_GT(volume["total"].asUInt64(), 0u);
    EXPECT_LE(volume["used"].asUInt64(), volume["total"].asUInt64());
  }
}

TEST_P(PhoneInfoTest, AScreenshotIsAFile) {
  EXPECT_THAT(Succeed({"screenshot", "my screen.png"}),
              ContainsRegex("/work/my screen\\.png  [0-9.]+ (B|KiB|MiB)\n"));
  EXPECT_THAT(test::ReadFile(File("work/my screen.png")), StartsWith("\x89PNG"));
  std::filesystem::create_directory(File("work/pictures"));
  Succeed({"screenshot", "pictures"});
  Succeed({"screenshot"});
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(File("work/pictures")), {}), 1);
  const Json::Value json = ParseJson(Succeed({"screenshot", "a.png", "--json"}));
  ExpectDocumented("screenshot", json);
  EXPECT_EQ(json["path"], File("work/a.png"));
  EXPECT_EQ(json["size"].asUInt64(), std::filesystem::file_size(File("work/a.png")));
}

TEST_P(PhoneInfoTest, AScreenshotGoesToStandardOutput) {
  EXPECT_THAT(Succeed({"screenshot", "-"}), StartsWith("\x89PNG"));
  EXPECT_TRUE(std::filesystem::is_empty(File("work")));
  EXPECT_EQ(Run({"screenshot", "-", "--json"}).status, 2);
}

TEST_P(PhoneInfoTest, AScreenshotThatIsCancelledLeavesNothing) {
  SwitchOn("slow=5");
  auto tool = Start({"screenshot", "a.png"});
  usleep(300'000);
  tool->Signal(SIGINT);
  EXPECT_EQ(tool->Finish().status, 130);
  EXPECT_TRUE(std::filesystem::is_empty(File("work")));
  EXPECT_TRUE(std::filesystem::is_empty(PhoneFiles() + "/data/local/tmp"));
}

TEST_P(PhoneInfoTest, AScreenshotThatFailsKeepsTheOlderFile) {
  test::WriteFile(File("work/a.png"), "older");
  EXPECT_EQ(Run({"-s", "NONE", "screenshot", "a.png"}).status, 3);
  SwitchOn("no-screencap");
  EXPECT_NE(Fail({"screenshot", "a.png"}), "");
  EXPECT_THAT(Fail({"screenshot", "missing/a.png"}), HasSubstr("no such folder on this computer"));
  EXPECT_EQ(test::ReadFile(File("work/a.png")), "older");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(File("work")), {}), 1);
}

INSTANTIATE_FOR_BOTH_PHONES(PhoneInfoTest);

class XiaomiInfoTest : public PhoneToolTest {
 protected:
  XiaomiInfoTest() : PhoneToolTest(",profile=miui125,su=xbin,encryption=none") {}
};

TEST_P(XiaomiInfoTest, KnowsMiuiAndRoot) {
  const Json::Value facts = ParseJson(Succeed({"info", "--json"}));
  ExpectDocumented("info", facts);
  EXPECT_EQ(facts["miui_version"], "12.5.3.0");
  EXPECT_EQ(facts["miui_region"], "cn");
  EXPECT_EQ(facts["rooted"], true);
  EXPECT_EQ(facts["encrypted"], false);
}

INSTANTIATE_FOR_BOTH_PHONES(XiaomiInfoTest);

}  // namespace
}  // namespace darokleim::cli
