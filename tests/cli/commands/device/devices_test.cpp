// darokleim devices, with an adb of the test's own and on simulated phones.
#include <gmock/gmock.h>
#include <json/reader.h>
#include <stdlib.h>

#include <memory>
#include <vector>

#include "tests/cli/tool_run.h"
#include "tests/support/file_content.h"
#include "tests/support/simulated_phones.h"

namespace darokleim::cli {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

class DevicesTest : public ToolTest {};

TEST_F(DevicesTest, AreListedForPeople) {
  MakeAdb(kTwoDevices);
  const auto outcome = Run({"devices"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(
      outcome.output,
      "SERIAL            STATE\n"
      "0123456789ABCDEF  device\n"
      "FEDCBA98          unauthorized  Unlock the phone and allow USB debugging for this computer on its "
      "screen.\n");
  EXPECT_EQ(outcome.errors, "");
}

TEST_F(DevicesTest, AnOfflineOneComesWithAdvice) {
  MakeAdb(R"(printf 'List of devices attached\nABC\toffline\n\n')");
  EXPECT_THAT(Run({"devices"}).output, HasSubstr("\nABC     offline  Does not respond: "));
}

TEST_F(DevicesTest, AreListedAsJson) {
  MakeAdb(kTwoDevices);
  const auto outcome = Run({"devices", "--json"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.errors, "");
  Json::Value list;
  const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
  ASSERT_TRUE(
      reader->parse(outcome.output.data(), outcome.output.data() + outcome.output.size(), &list, nullptr));
  ASSERT_TRUE(list.isArray());
  ASSERT_EQ(list.size(), 2u);
  EXPECT_EQ(list[0]["serial"].asString(), "0123456789ABCDEF");
  EXPECT_EQ(list[0]["state"].asString(), "device");
  EXPECT_EQ(list[1]["serial"].asString(), "FEDCBA98");
  EXPECT_EQ(list[1]["state"].asString(), "unauthorized");
  EXPECT_EQ(list[1].size(), 2u);
}

TEST_F(DevicesTest, NoneSaysWhatToCheck) {
  MakeAdb(R"(printf 'List of devices attached\n\n')");
  const auto text = Run({"devices"});
  EXPECT_EQ(text.status, 0);
  EXPECT_THAT(text.output, StartsWith("No device is attached. Check that\n"));
  const auto json = Run({"devices", "--json"});
  EXPECT_EQ(json.status, 0);
  EXPECT_EQ(json.output, "[]\n");
}

TEST_F(DevicesTest, AFailureNamesTheResultAndWhatHelps) {
  MakeAdb(R"(echo '* daemon not running; starting now at tcp:5037'
echo 'error: cannot connect to daemon' >&2
exit 1)");
  const auto outcome = Run({"devices", "--json"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.output, "");
  EXPECT_THAT(
      outcome.errors,
      StartsWith("darokleim: cannot list devices: ADB_RESULT_CANNOT_CONNECT_DAEMON (27): adb could not reach "
                 "its server. Start it with "));
}

TEST_F(DevicesTest, AFailureWithoutAKnownMessageNamesTheExitStatusAdbAndTheLog) {
  MakeAdb("echo 'something new' >&2; exit 3");
  const auto outcome = Run({"devices"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.errors, StartsWith("darokleim: cannot list devices: adb exit status 3 (1003): "));
  EXPECT_THAT(outcome.errors, HasSubstr("(adb: " + File("bin/adb") + ", log: "));
#if defined(__linux__)
  EXPECT_THAT(test::ReadFile(File("home/.local/state/darokleim/adb_sdk.log")), HasSubstr("something new"));
#endif
}

TEST_F(DevicesTest, TheChannelIsAskedForItsAssistanceUnlessTheUserDecidedOtherwise) {
  MakeAdb("echo \"$DAROKLEIM_CHANNEL_ASSIST\" >" + File("assist"));
  Run({"devices"});
  EXPECT_EQ(test::ReadFile(File("assist")), "1\n");
  Set("DAROKLEIM_CHANNEL_ASSIST", "0");
  Run({"devices"});
  EXPECT_EQ(test::ReadFile(File("assist")), "0\n");
}

TEST_F(DevicesTest, ManyToolsMayRunAtOnce) {
  MakeAdb(kTwoDevices);
  std::vector<std::unique_ptr<HostProcess>> tools;
  for (int i = 0; i < 16; ++i) tools.push_back(Start({"devices", "--json"}));
  for (auto& tool : tools) {
    const auto outcome = tool->Finish();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
  }
}

class PhoneDevicesTest : public ToolTest {
 protected:
  // The tool of a user whose adb talks to these phones.
  Outcome RunOn(const test::SimulatedPhones& phones, const Words& arguments) {
    for (const auto& [variable, value] : test::AdbEnvironment(phones.port())) Set(variable, value);
    const char* path = getenv("PATH");
    Set("PATH", path == nullptr ? "/usr/bin:/bin" : path);
    return Run(arguments);
  }
};

TEST_F(PhoneDevicesTest, ShowThePhonesOfTheServer) {
  const test::SimulatedPhones phones({"AAA111", "BBB222,state=offline", "CCC333,state=unauthorized"});
  const auto text = RunOn(phones, {"devices"});
  EXPECT_EQ(text.status, 0) << text.errors;
  EXPECT_EQ(
      text.output,
      "SERIAL  STATE\n"
      "AAA111  device\n"
      "BBB222  offline       Does not respond: unplug it and plug it in again, or restart it.\n"
      "CCC333  unauthorized  Unlock the phone and allow USB debugging for this computer on its screen.\n");
  EXPECT_EQ(text.errors, "");
}

TEST_F(PhoneDevicesTest, NoneIsAnEmptyArray) {
  const test::SimulatedPhones phones({});
  const auto json = RunOn(phones, {"devices", "--json"});
  EXPECT_EQ(json.status, 0) << json.errors;
  EXPECT_EQ(json.output, "[]\n");
}

}  // namespace
}  // namespace darokleim::cli
