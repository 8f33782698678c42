// darokleim devices, through the real adb client, on simulated phones.
#include <gmock/gmock.h>
#include <stdlib.h>

#include "tests/cli/tool_run.h"
#include "tests/support/simulated_phones.h"

namespace darokleim::cli {
namespace {

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
      "BBB222  offline       Does not answer: unplug it and plug it in again, or restart it.\n"
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
