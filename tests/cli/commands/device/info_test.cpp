// darokleim info, on simulated phones.
#include "tests/cli/phone_tool_test.h"

namespace darokleim::cli {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;

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
}

TEST_P(PhoneInfoTest, ShowsTheChosenFactsAndProperties) {
  const Json::Value facts =
      ParseJson(Succeed({"info", "sdk", "--json", "-p", "ro.product.name", "-p", "no.such"}));
  EXPECT_EQ(facts.size(), 3u);
  EXPECT_EQ(facts["sdk"], is_legacy() ? "23" : "33");
  EXPECT_EQ(facts["ro.product.name"], Shell("getprop ro.product.name"));
  EXPECT_TRUE(facts["no.such"].isNull());
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
  EXPECT_THAT(Fail({"-s", "TEST0001", "info"}),
              AllOf(HasSubstr("cannot read \"Manufacturer\": ADB_RESULT_DEVICE_UNAUTHORIZED (42): "),
                    HasSubstr("allow USB debugging on its screen")));
}

INSTANTIATE_FOR_BOTH_PHONES(PhoneInfoTest);

class XiaomiInfoTest : public PhoneToolTest {
 protected:
  XiaomiInfoTest() : PhoneToolTest(",profile=miui125,su=xbin,encryption=none") {}
};

TEST_P(XiaomiInfoTest, KnowsMiuiAndRoot) {
  const Json::Value facts = ParseJson(Succeed({"info", "--json"}));
  EXPECT_EQ(facts["miui_version"], "12.5.3.0");
  EXPECT_EQ(facts["miui_region"], "cn");
  EXPECT_EQ(facts["rooted"], true);
  EXPECT_EQ(facts["encrypted"], false);
}

INSTANTIATE_FOR_BOTH_PHONES(XiaomiInfoTest);

class OldXiaomiInfoTest : public PhoneToolTest {
 protected:
  OldXiaomiInfoTest() : PhoneToolTest(",profile=miui12,prop.ro.boot.flash.locked=") {}
};

TEST_P(OldXiaomiInfoTest, ReadsTheBuildDateFromTheTimeCode) {
  const Json::Value facts = ParseJson(Succeed({"info", "--json", "miui_build", "boot_loader_locked"}));
  EXPECT_EQ(facts["miui_build"], "10.6.18");  // 2020-06-17, written a day later by MIUI's own rule
  EXPECT_TRUE(facts["boot_loader_locked"].isNull());
}

INSTANTIATE_FOR_BOTH_PHONES(OldXiaomiInfoTest);

}  // namespace
}  // namespace darokleim::cli
