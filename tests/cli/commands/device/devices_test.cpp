// darokleim devices, on simulated phones.
#include <gmock/gmock.h>

#include <chrono>
#include <memory>
#include <thread>
#include <vector>

#include "tests/cli/documented_json.h"
#include "tests/cli/phone_tool_test.h"
#include "tests/support/file_content.h"
#include "tests/support/simulated_phones.h"

namespace darokleim::cli {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

class DevicesTest : public ToolTest {
 protected:
  void Attach(const Words& phones) {
    phones_ = std::make_unique<test::SimulatedPhones>(phones);
    for (const auto& [variable, value] : test::AdbEnvironment(phones_->port())) Set(variable, value);
  }
  const test::SimulatedPhones& phones() const { return *phones_; }

 private:
  std::unique_ptr<test::SimulatedPhones> phones_;
};

TEST_F(DevicesTest, AreShownInEveryState) {
  Attach({"AAA111", "BBB222,state=offline", "CCC333,state=unauthorized", "DDD444,state=no-permissions",
          "emulator-5554,state=offline"});
  const auto outcome = Run({"devices"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.errors, "");
  EXPECT_EQ(
      outcome.output,
      "SERIAL         STATE\n"
      "AAA111         device\n"
      "BBB222         offline         Does not respond: unplug it and plug it in again, or restart it.\n"
      "CCC333         unauthorized    Unlock the phone and allow USB debugging for this computer on its "
      "screen.\n"
      "DDD444         no-permissions  This user may not open it: udev rules are missing (Debian and Ubuntu: "
      "package android-sdk-platform-tools-common), or the user is not in the group plugdev.\n"
      "emulator-5554  offline         Does not respond: restart the emulator.\n");
}

TEST_F(DevicesTest, AreShownWithWhatTheyAre) {
  Attach({"AAA111"});
  EXPECT_THAT(Run({"devices", "-l"}).output,
              testing::ContainsRegex("AAA111  device  usb   Pixel_7  panther  panther  usb:[^ ]+ +[0-9]+\n"));
}

TEST_F(DevicesTest, AreOneDocument) {
  Attach({"AAA111", "BBB222,state=offline"});
  const auto document = ParseJson(Run({"devices", "--json"}).output);
  ExpectDocumented("devices", document);
  ASSERT_EQ(document["devices"].size(), 2u);
  EXPECT_EQ(document["devices"][0]["serial"], "AAA111");
  EXPECT_EQ(document["devices"][0]["state"], "device");
  EXPECT_EQ(document["devices"][1]["state"], "offline");
}

TEST_F(DevicesTest, NoneSaysWhatToCheck) {
  Attach({});
  const auto text = Run({"devices"});
  EXPECT_EQ(text.status, 0);
  EXPECT_THAT(text.output, StartsWith("No device is attached. Check that\n"));
  EXPECT_EQ(Run({"devices", "--json"}).output, "{\"devices\": [],\n\"errors\": []}\n");
}

TEST_F(DevicesTest, OfNoServerAreNone) {
  Set("ANDROID_ADB_SERVER_PORT", "1");
  MakeAdb("echo \"$*\" >>" + File("started"));
  const auto outcome = Run({"devices", "--json"});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.errors, StartsWith("darokleim: cannot list the devices: no adb server answers"));
  EXPECT_EQ(test::ReadFile(File("started")), "start-server\n");
  const auto document = ParseJson(outcome.output);
  ExpectDocumented("errors", document);
  EXPECT_EQ(document["errors"][0]["code"], "NO_SERVER");
}

TEST_F(DevicesTest, StartNoAdbWhereAServerRuns) {
  Attach({"AAA111"});
  MakeAdb("echo \"$*\" >>" + File("started"));
  EXPECT_EQ(Run({"devices"}).status, 0);
  EXPECT_EQ(Run({"ls", "/sdcard"}).status, 0);
  EXPECT_EQ(test::ReadFile(File("started")), "");
}

TEST_F(DevicesTest, AreWatched) {
  Attach({"AAA111"});
  const std::string line = "\"$TOOL\" devices --watch >" + File("text") +
                           " & exec \"$TOOL\" devices --watch --json >" + File("json");
  const HostProcess watching({"/bin/sh", "-c", line},
                             {{"TOOL", DAROKLEIM_TOOL}, {"ANDROID_ADB_SERVER_PORT", phones().port()}});
  const auto wait_for = [this](const char* file, std::size_t lines) {
    for (int i = 0; i < 500 && test::ReadLines(File(file)).size() < lines; ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return test::ReadLines(File(file));
  };
  wait_for("text", 1);
  wait_for("json", 2);
  phones().Control({"AAA111", "unplug"});
  EXPECT_THAT(wait_for("text", 2),
              testing::ElementsAre("added  AAA111  device  Pixel_7", StartsWith("removed  AAA111  ")));
  const auto lines = wait_for("json", 3);
  ASSERT_EQ(lines.size(), 3u);
  for (const auto& text : lines) ExpectDocumented("devices --watch", ParseJson(text));
  EXPECT_EQ(ParseJson(lines[2])["change"], "removed");
  phones().Control({"AAA111", "plug"});
}

TEST_F(DevicesTest, AreWatchedUntilCtrlC) {
  Attach({"AAA111"});
  const auto tool = Start({"devices", "--watch"});
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  const auto start = std::chrono::steady_clock::now();
  tool->Signal(SIGINT);
  const auto outcome = tool->Finish();
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
  EXPECT_EQ(outcome.status, 130);
  EXPECT_EQ(outcome.errors, "darokleim: cancelled\n");
}

TEST_F(DevicesTest, MayBeAskedForByManyAtOnce) {
  Attach({"AAA111"});
  std::vector<std::unique_ptr<HostProcess>> tools;
  for (int i = 0; i < 16; ++i) tools.push_back(Start({"devices"}));
  for (auto& tool : tools) EXPECT_EQ(tool->Finish().output, "SERIAL  STATE\nAAA111  device\n");
}

// Which device a command works with.
class PhoneChoiceTest : public DevicesTest {
 protected:
  static constexpr char kHowToName[] =
      "darokleim: several devices are attached. Name one with -s SERIAL or in ANDROID_SERIAL.\n";
};

TEST_F(PhoneChoiceTest, TakesTheOnlyOneThatIsReady) {
  Attach({"AAA111", "BBB222,state=offline"});
  EXPECT_EQ(Run({"ls", "/sdcard"}).status, 0);
}

TEST_F(PhoneChoiceTest, OfSeveralNeedsAName) {
  Attach({"AAA111", "BBB222"});
  const auto outcome = Run({"ls", "/sdcard"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.errors,
            std::string(kHowToName) +
                "SERIAL  STATE\nAAA111  device\nBBB222  device\nSee `darokleim ls --help`.\n");
  EXPECT_EQ(Run({"ls", "-s", "BBB222", "/sdcard"}).status, 0);
  Set("ANDROID_SERIAL", "AAA111");
  EXPECT_EQ(Run({"ls", "/sdcard"}).status, 0);
  Set("ANDROID_SERIAL", "-x");
  EXPECT_EQ(Run({"ls", "/sdcard"}).status, 2);
}

TEST_F(PhoneChoiceTest, OfNoneThatIsReadySaysWhy) {
  Attach({"emulator-5554,state=offline"});
  const auto outcome = Run({"ls"});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_EQ(outcome.errors,
            "darokleim: no device is ready:\nSERIAL         STATE\n"
            "emulator-5554  offline  Does not respond: restart the emulator.\n");
}

// udev rules are missing.
TEST_F(PhoneChoiceTest, OfOneThatThisUserMayNotOpenSaysTheCause) {
  Attach({"DDD444,state=no-permissions"});
  const auto chosen = Run({"ls", "/sdcard"});
  EXPECT_EQ(chosen.status, 3);
  EXPECT_THAT(chosen.errors, HasSubstr("no device is ready:\n"));
  EXPECT_THAT(chosen.errors,
              HasSubstr("DDD444  no-permissions  This user may not open it: udev rules are missing"));
  const auto named = Run({"-s", "DDD444", "ls", "--json", "/a", "/b"});
  EXPECT_EQ(named.status, 3);
  EXPECT_EQ(named.errors,
            "darokleim: cannot list /a: this user may not open DDD444; on Linux udev rules are missing.\n");
  const auto document = ParseJson(named.output);
  EXPECT_EQ(document["errors"][0]["code"], "DEVICE_NO_PERMISSIONS");
  EXPECT_THAT(document["errors"][0]["words"].asString(), HasSubstr("udev"));
  EXPECT_EQ(ParseJson(Run({"devices", "--json"}).output)["devices"][0]["state"], "no-permissions");
  EXPECT_THAT(phones().Adb({"shell", "true"}).errors, HasSubstr("insufficient permissions for device"))
      << "as adb";
}

TEST_F(PhoneChoiceTest, OfNoneAtAllSaysWhatToCheck) {
  Attach({});
  const auto outcome = Run({"ls", "--json"});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.errors, StartsWith("darokleim: No device is attached. Check that\n"));
  EXPECT_EQ(ParseJson(outcome.output)["errors"][0]["code"], "NO_DEVICE");
}

TEST_F(PhoneChoiceTest, OfOneThatIsNotUsableSaysWhy) {
  Attach({"AAA111", "BBB222,state=unauthorized"});
  const auto locked = Run({"-s", "BBB222", "ls", "/a", "/b"});
  EXPECT_EQ(locked.status, 3);
  EXPECT_EQ(locked.errors,
            "darokleim: cannot list /a: USB debugging is not allowed for this computer; unlock BBB222 and "
            "allow it on its "
            "screen.\n");
  const auto absent = Run({"-s", "ZZZ", "ls", "/a"});
  EXPECT_EQ(absent.status, 3);
  EXPECT_THAT(
      absent.errors,
      StartsWith(
          "darokleim: cannot list /a: ZZZ is not attached. Attached are:\nSERIAL  STATE\nAAA111  device\n"));
}

}  // namespace
}  // namespace darokleim::cli
