// Which device a command works with, on simulated phones.
#include <gmock/gmock.h>

#include "tests/cli/tool_run.h"
#include "tests/support/simulated_phones.h"

namespace darokleim::cli {
namespace {

using testing::AllOf;
using testing::HasSubstr;

class DeviceChoiceTest : public ToolTest {
 protected:
  void Use(const test::SimulatedPhones& phones) {
    for (const auto& [variable, value] : test::AdbEnvironment(phones.port())) Set(variable, value);
  }
};

TEST_F(DeviceChoiceTest, TheOnlyOneThatIsReadyIsTaken) {
  const test::SimulatedPhones phones({"AAA", "BBB,state=offline", "CCC,state=unauthorized"});
  Use(phones);
  EXPECT_EQ(Run({"info", "serial"}).output, "AAA\n");
}

TEST_F(DeviceChoiceTest, AmongSeveralOneMustBeNamed) {
  const test::SimulatedPhones phones({"AAA", "BBB"});
  Use(phones);
  const auto outcome = Run({"info", "serial"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.errors, AllOf(HasSubstr("-s SERIAL"), HasSubstr("AAA"), HasSubstr("BBB")));
  EXPECT_EQ(Run({"-s", "BBB", "info", "model", "serial"}).status, 0);
  Set("ANDROID_SERIAL", "BBB");
  EXPECT_EQ(Run({"info", "serial"}).output, "BBB\n");
  EXPECT_EQ(Run({"-s", "AAA", "info", "serial"}).output, "AAA\n");
  for (const char* serial : {"A B", "$(date)", "A;B"}) {
    EXPECT_EQ(Run({"-s", serial, "info"}).status, 2) << serial;
    Set("ANDROID_SERIAL", serial);
    EXPECT_EQ(Run({"info"}).status, 2) << serial;
  }
}

TEST_F(DeviceChoiceTest, WithoutOneTheErrorSaysWhatToCheck) {
  const test::SimulatedPhones phones({"BBB,state=offline"});
  Use(phones);
  const auto outcome = Run({"info"});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.errors, AllOf(HasSubstr("no device is ready"), HasSubstr("BBB")));
}

}  // namespace
}  // namespace darokleim::cli
