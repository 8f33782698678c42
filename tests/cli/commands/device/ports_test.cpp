// darokleim forward and reverse, on simulated phones.
#include <unistd.h>

#include "tests/cli/documented_json.h"
#include "tests/cli/phone_tool_test.h"

namespace darokleim::cli {
namespace {

using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;

class PhonePortsTest : public PhoneToolTest {
 protected:
  std::string List(const std::string& direction) { return phones().Adb({direction, "--list"}).output; }

  // Of this test's own: others run at the same time.
  const std::string host_port_ = std::to_string(20000 + getpid() % 10000);
};

TEST_P(PhonePortsTest, ForwardsAndStops) {
  const std::string from = "tcp:" + host_port_;
  EXPECT_EQ(Succeed({"forward", "add", host_port_, "8799"}),
            from + " of this computer is tcp:8799 of the device.\n");
  EXPECT_THAT(List("forward"), HasSubstr(from + " tcp:8799"));
  EXPECT_THAT(Fail({"forward", "add", host_port_, "8800"}), HasSubstr(host_port_));
  EXPECT_THAT(List("forward"), HasSubstr(from + " tcp:8799"));
  Succeed({"forward", "add", "--replace", host_port_, "localabstract:name"});
  EXPECT_EQ(Succeed({"forward", "list"}), from + "  localabstract:name\n");
  EXPECT_EQ(Succeed({"forward", "remove", host_port_}), from + " of this computer is free.\n");
  EXPECT_THAT(List("forward"), Not(HasSubstr(from)));
  EXPECT_NE(Fail({"forward", "remove", host_port_}), "");
}

TEST_P(PhonePortsTest, ForwardTakesAFreePort) {
  const Json::Value json = ParseJson(Succeed({"forward", "add", "0", "80", "--json"}));
  ExpectDocumented("forward add, reverse add", json);
  EXPECT_THAT(json["from"].asString(), MatchesRegex("tcp:[1-9][0-9]*"));
  EXPECT_THAT(List("forward"), HasSubstr(json["from"].asString() + " tcp:80"));
  const Json::Value list = ParseJson(Succeed({"forward", "list", "--json"}));
  ExpectDocumented("forward list, reverse list", list);
  EXPECT_EQ(list["mappings"][0]["from"], json["from"]);
  const Json::Value removed = ParseJson(Succeed({"forward", "remove", "--all", "--json"}));
  ExpectDocumented("forward remove, reverse remove", removed);
  EXPECT_EQ(removed["removed"][0], json["from"]);
  EXPECT_EQ(Succeed({"forward", "list"}), "");
}

TEST_P(PhonePortsTest, ReversesAndStops) {
  EXPECT_EQ(Succeed({"reverse", "add", "8798", "18798"}),
            "tcp:8798 of the device is tcp:18798 of this computer.\n");
  EXPECT_THAT(List("reverse"), HasSubstr("tcp:8798 tcp:18798"));
  EXPECT_EQ(Succeed({"reverse", "list"}), "tcp:8798  tcp:18798\n");
  EXPECT_EQ(Succeed({"reverse", "remove", "8798"}), "tcp:8798 of the device is free.\n");
  EXPECT_THAT(List("reverse"), Not(HasSubstr("tcp:8798")));
}

TEST_P(PhonePortsTest, RefusesWhatIsNoAddress) {
  for (const char* address : {"", "65536", "100000", "http", "80x", "+80", "8080;reboot", "tcp:", "tcp:x",
                              "jdwp:x", "localabstract:", "vsock:1"}) {
    EXPECT_EQ(Run({"forward", "add", address, "80"}).status, 2) << address;
    EXPECT_EQ(Run({"reverse", "remove", address}).status, 2) << address;
  }
  EXPECT_EQ(Run({"forward", "add", "8080"}).status, 2);
  EXPECT_EQ(Run({"forward", "remove"}).status, 2);
  EXPECT_EQ(Run({"forward"}).status, 2);
}

INSTANTIATE_FOR_BOTH_PHONES(PhonePortsTest);

}  // namespace
}  // namespace darokleim::cli
