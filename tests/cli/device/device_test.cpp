// -s, ANDROID_SERIAL, and what happens without.
#include <gmock/gmock.h>

#include "tests/cli/tool_run.h"
#include "tests/support/file_content.h"

namespace darokleim::cli {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

class DeviceChoiceTest : public ToolTest {
 protected:
  // An adb that lists these devices, each a serial number and a state, and notes every other command.
  void MakeAdbWith(const std::string& devices) const {
    MakeAdb("if [ \"$*\" = devices ]; then printf 'List of devices attached\\n" + devices +
            "\\n'; exit; fi\necho \"$*\" >>" + File("commands") + "\nexit 1\n");
  }

  // The device that the tool asked, and nothing when it asked none.
  std::string AskedDevice() const {
    const auto commands = test::ReadLines(File("commands"));
    if (commands.empty()) return "";
    EXPECT_THAT(commands.front(), StartsWith("-s "));
    return commands.front().substr(3, commands.front().find(' ', 3) - 3);
  }
};

TEST_F(DeviceChoiceTest, TheOnlyDeviceNeedsNoName) {
  MakeAdbWith("AAA\\tdevice\\n");
  Run({"info", "model"});
  EXPECT_EQ(AskedDevice(), "AAA");
}

TEST_F(DeviceChoiceTest, TheOnlyDeviceThatIsReadyIsTaken) {
  MakeAdbWith("AAA\\toffline\\nBBB\\tdevice\\nCCC\\tunauthorized\\n");
  Run({"info", "model"});
  EXPECT_EQ(AskedDevice(), "BBB");
}

TEST_F(DeviceChoiceTest, AmongSeveralOneMustBeNamed) {
  MakeAdbWith("AAA\\tdevice\\nBBB\\tdevice\\nCCC\\toffline\\n");
  const auto outcome = Run({"info", "model"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(
      outcome.errors,
      AllOf(StartsWith("darokleim: several devices are attached. Name one with -s SERIAL or in "
                       "ANDROID_SERIAL.\nSERIAL  STATE\nAAA     device\nBBB     device\nCCC     offline")));
  EXPECT_EQ(AskedDevice(), "");
}

TEST_F(DeviceChoiceTest, WithoutADeviceTheErrorSaysWhatToCheck) {
  MakeAdbWith("");
  const auto outcome = Run({"info", "model"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.errors, AllOf(StartsWith("darokleim: No device is attached. Check that\n"),
                                    HasSubstr("Name one with -s SERIAL")));
}

TEST_F(DeviceChoiceTest, WithoutOneThatIsReadyTheErrorShowsTheStates) {
  MakeAdbWith("AAA\\toffline\\n");
  const auto outcome = Run({"info", "model"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.errors,
              AllOf(StartsWith("darokleim: no attached device is ready:\nSERIAL  STATE\nAAA     "
                               "offline  Does not respond"),
                    EndsWith("name them.\n")));
}

TEST_F(DeviceChoiceTest, TheOptionWinsOverTheEnvironment) {
  MakeAdbWith("AAA\\tdevice\\nBBB\\tdevice\\n");
  Set("ANDROID_SERIAL", "BBB");
  Run({"-s", "192.168.1.5:5555", "info", "model"});
  EXPECT_EQ(AskedDevice(), "192.168.1.5:5555");
}

TEST_F(DeviceChoiceTest, TheEnvironmentNamesTheDevice) {
  MakeAdbWith("AAA\\tdevice\\nBBB\\tdevice\\n");
  Set("ANDROID_SERIAL", "BBB");
  Run({"info", "model"});
  EXPECT_EQ(AskedDevice(), "BBB");
}

TEST_F(DeviceChoiceTest, AnInvalidSerialNumberIsRefused) {
  MakeAdbWith("AAA\\tdevice\\n");
  for (const char* serial : {"A B", "$(date)", "A;B", "\"A"}) {
    const auto outcome = Run({"-s", serial, "info", "model"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_THAT(outcome.errors, HasSubstr("is not a valid serial number"));
  }
  Set("ANDROID_SERIAL", "A B");
  const auto outcome = Run({"info", "model"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.errors, HasSubstr("ANDROID_SERIAL is \"A B\", which is not a valid serial number"));
  EXPECT_EQ(AskedDevice(), "");
}

TEST_F(DeviceChoiceTest, AFailureWithoutAMessageIsExplainedByTheDevicesState) {
  MakeAdbWith("AAA\\toffline\\n");
  EXPECT_THAT(Run({"-s", "AAA", "reboot"}).errors, HasSubstr("the device AAA is offline. Does not respond"));
  EXPECT_THAT(Run({"-s", "BBB", "reboot"}).errors, HasSubstr("the device BBB is not attached."));
}

}  // namespace
}  // namespace darokleim::cli
