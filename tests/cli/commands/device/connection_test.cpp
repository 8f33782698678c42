// darokleim wait, connect, disconnect, pair, authorize, reconnect and reboot, on simulated phones.
#include <signal.h>
#include <stdlib.h>
#include <unistd.h>

#include "tests/cli/documented_json.h"
#include "tests/cli/phone_tool_test.h"
#include "tests/support/eventually.h"

namespace darokleim::cli {
namespace {

using test::Eventually;
using testing::HasSubstr;

class PhoneConnectionTest : public PhoneToolTest {
 protected:
  void SetState(const std::string& state) { phones().Control({"TEST0001", "state", state}); }
  bool Answers() const { return Shell("echo here") == "here"; }
};

TEST_P(PhoneConnectionTest, WaitReturnsForAReadyDevice) {
  EXPECT_EQ(Succeed({"wait"}), "TEST0001 is ready.\n");
  EXPECT_EQ(Succeed({"-s", "TEST0001", "wait", "device"}), "TEST0001 is ready.\n");
  const Json::Value json = ParseJson(Succeed({"wait", "--json"}));
  ExpectDocumented("wait", json);
  EXPECT_EQ(json["serial"], "TEST0001");
}

TEST_P(PhoneConnectionTest, WaitsForAState) {
  SetState("offline");
  auto tool = Start({"wait"});
  auto offline = Start({"wait", "offline"});
  EXPECT_EQ(offline->Finish().output, "TEST0001 is in the state offline.\n");
  SetState("device");
  EXPECT_EQ(tool->Finish().output, "TEST0001 is ready.\n");
}

TEST_P(PhoneConnectionTest, WaitEndsWithItsLimitAndCtrlC) {
  EXPECT_THAT(Fail({"-s", "NONE", "wait", "--timeout", "0.3"}), HasSubstr("--timeout"));
  auto tool = Start({"-s", "NONE", "wait"});
  usleep(200'000);
  tool->Signal(SIGINT);
  EXPECT_EQ(tool->Finish().status, 130);
  EXPECT_THAT(Misuse({"wait", "bootlader"}), HasSubstr("bootloader"));
}

TEST_P(PhoneConnectionTest, AuthorizeWaitsForTheAnswerOnThePhone) {
  SetState("unauthorized");
  auto tool = Start({"authorize"});
  EXPECT_EQ(tool->ReadLine(), "Allow USB debugging on the screen of TEST0001.");
  SetState("device");
  EXPECT_EQ(tool->ReadLine(), "TEST0001 is ready.");
  EXPECT_EQ(tool->Finish().status, 0);
}

TEST_P(PhoneConnectionTest, AuthorizeGivesUpInTime) {
  SetState("unauthorized");
  const auto outcome = Run({"authorize", "--wait", "0.5"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.errors, HasSubstr("USB debugging was not allowed on TEST0001 in time"));
  EXPECT_EQ(Succeed({"authorize", "-w", "0", "-q"}), "");
}

TEST_P(PhoneConnectionTest, AuthorizeIsCancelled) {
  SetState("unauthorized");
  auto tool = Start({"authorize"});
  EXPECT_NE(tool->ReadLine(), "");
  tool->Signal(SIGINT);
  const auto outcome = tool->Finish();
  EXPECT_EQ(outcome.status, 130);
  EXPECT_EQ(outcome.errors, "darokleim: cancelled\n");
}

TEST_P(PhoneConnectionTest, AuthorizeNeedsAnUnauthorizedDevice) {
  const auto outcome = Run({"authorize"});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.errors, HasSubstr("no device is unauthorized:\nSERIAL"));
  EXPECT_EQ(Run({"-s", "NONE", "authorize"}).status, 3);
}

TEST_P(PhoneConnectionTest, AuthorizeAsksNothingOfAReadyPhone) {
  EXPECT_EQ(Succeed({"-s", "TEST0001", "authorize"}), "TEST0001 is ready.\n");
  const Json::Value json = ParseJson(Succeed({"-s", "TEST0001", "authorize", "--json"}));
  ExpectDocumented("authorize", json);
  EXPECT_EQ(json["ready"], true);
}

TEST_P(PhoneConnectionTest, ReconnectOpensTheConnectionAgain) {
  EXPECT_THAT(Succeed({"reconnect"}), HasSubstr("TEST0001 is reconnecting."));
  EXPECT_TRUE(Eventually([this] { return Answers(); }));
  const Json::Value json = ParseJson(Succeed({"reconnect", "--json"}));
  ExpectDocumented("reconnect", json);
  EXPECT_EQ(Run({"-s", "NONE", "reconnect"}).status, 3);
}

TEST_P(PhoneConnectionTest, RebootRestartsThePhone) {
  Shell("setprop darokleim.before.reboot 1");
  EXPECT_EQ(Succeed({"reboot"}), "TEST0001 is restarting.\n");
  EXPECT_TRUE(Eventually([this] { return Answers() && Shell("getprop darokleim.before.reboot").empty(); }));
  const Json::Value json = ParseJson(Succeed({"reboot", "recovery", "--json"}));
  ExpectDocumented("reboot", json);
  EXPECT_EQ(json["mode"], "recovery");
  EXPECT_EQ(Run({"-s", "NONE", "reboot"}).status, 3);
}

TEST_P(PhoneConnectionTest, AnUnknownRebootModeIsAUsageError) {
  Shell("setprop darokleim.before.reboot 1");
  EXPECT_THAT(Misuse({"reboot", "recvery"}), HasSubstr("recovery"));
  EXPECT_EQ(Shell("getprop darokleim.before.reboot"), "1");
}

INSTANTIATE_FOR_BOTH_PHONES(PhoneConnectionTest);

class NetworkTest : public ToolTest {
 protected:
  NetworkTest() {
    for (const auto& [variable, value] : test::AdbEnvironment(phones_.port())) Set(variable, value);
  }
  std::string Devices() { return phones_.Adb({"devices"}).output; }

  test::SimulatedPhones phones_{{"192.168.1.5:5555", "192.168.1.6:5555", "TEST0001"}};
};

TEST_F(NetworkTest, DevicesAreDisconnectedAndConnected) {
  EXPECT_EQ(Run({"disconnect", "192.168.1.5:5555"}).output, "Disconnected 192.168.1.5:5555.\n");
  EXPECT_THAT(Devices(), testing::Not(HasSubstr("192.168.1.5")));
  const auto connected = Run({"connect", "192.168.1.5:5555", "--json"});
  EXPECT_EQ(connected.status, 0) << connected.errors;
  ExpectDocumented("connect", ParseJson(connected.output));
  EXPECT_THAT(Devices(), HasSubstr("192.168.1.5"));
  EXPECT_EQ(Run({"connect", "192.168.1.5:5555"}).status, 0);
}

TEST_F(NetworkTest, AllAreDisconnectedButNotTheOthers) {
  const auto outcome = Run({"disconnect", "--all", "--json"});
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  const Json::Value json = ParseJson(outcome.output);
  ExpectDocumented("disconnect", json);
  EXPECT_EQ(json["disconnected"].size(), 2u);
  EXPECT_THAT(Devices(), AllOf(HasSubstr("TEST0001"), testing::Not(HasSubstr("192.168"))));
  EXPECT_EQ(Run({"disconnect"}).status, 2);
}

TEST_F(NetworkTest, OneOfSeveralThatFailsDoesNotStopTheRest) {
  const auto outcome = Run({"disconnect", "10.0.0.1:5555", "192.168.1.6:5555", "--json"});
  EXPECT_EQ(outcome.status, 1);
  const Json::Value json = ParseJson(outcome.output);
  EXPECT_EQ(json["disconnected"][0], "192.168.1.6:5555");
  EXPECT_EQ(json["errors"].size(), 1u);
}

TEST_F(NetworkTest, PairingThatTheServerDoesNotKnowFails) {
  const auto outcome = Run({"pair", "192.168.1.5:41231", "123456"});
  EXPECT_NE(outcome.status, 0);
  EXPECT_THAT(outcome.errors, HasSubstr("cannot pair with 192.168.1.5:41231"));
  EXPECT_EQ(RunShell("\"$TOOL\" pair 192.168.1.5:41231 </dev/null").status, 2);
}

}  // namespace
}  // namespace darokleim::cli
