// darokleim forward and reverse, on simulated phones.
#include <unistd.h>

#include "tests/cli/phone_tool_test.h"

namespace darokleim::cli {
namespace {

using testing::HasSubstr;
using testing::Not;

class PhonePortsTest : public PhoneToolTest {
 protected:
  std::string List(const std::string& direction) { return phones().Adb({direction, "--list"}).output; }

  // Of this test's own: others run at the same time.
  const std::string host_port_ = std::to_string(30000 + getpid() % 10000);
};

TEST_P(PhonePortsTest, ForwardsAndStops) {
  EXPECT_EQ(Succeed({"forward", "add", host_port_, "8799"}),
            "Port " + host_port_ + " of this computer is port 8799 of the device.\n");
  EXPECT_THAT(List("forward"), HasSubstr("tcp:" + host_port_ + " tcp:8799"));
  EXPECT_EQ(Succeed({"forward", "remove", host_port_}),
            "Port " + host_port_ + " of this computer is free.\n");
  EXPECT_THAT(List("forward"), Not(HasSubstr("tcp:" + host_port_)));
  EXPECT_THAT(Fail({"forward", "remove", host_port_}), HasSubstr("there may not be one"));
}

TEST_P(PhonePortsTest, ReversesAndStops) {
  EXPECT_EQ(Succeed({"reverse", "add", "8798", "18798"}),
            "Port 8798 of the device is port 18798 of this computer.\n");
  EXPECT_THAT(List("reverse"), HasSubstr("tcp:8798 tcp:18798"));
  EXPECT_EQ(Succeed({"reverse", "remove", "8798"}), "Port 8798 of the device is free.\n");
  EXPECT_THAT(List("reverse"), Not(HasSubstr("tcp:8798")));
}

TEST_P(PhonePortsTest, RefusesWhatIsNoPort) {
  for (const char* port : {"", "0", "65536", "100000", "http", "80x", "+80", "8080;reboot"}) {
    EXPECT_EQ(Run({"forward", "add", port, "80"}).status, 2) << port;
    EXPECT_EQ(Run({"reverse", "remove", port}).status, 2) << port;
  }
  EXPECT_EQ(Run({"forward", "add", "8080"}).status, 2);
  EXPECT_EQ(Run({"forward"}).status, 2);
}

INSTANTIATE_FOR_BOTH_PHONES(PhonePortsTest);

}  // namespace
}  // namespace darokleim::cli
