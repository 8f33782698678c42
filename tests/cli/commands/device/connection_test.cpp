// darokleim authorize, reconnect, reboot and busybox, on simulated phones.
#include <signal.h>

#include <chrono>
#include <thread>

#include "tests/cli/phone_tool_test.h"
#include "tests/support/eventually.h"
#include "tests/support/file_content.h"

namespace darokleim::cli {
namespace {

using test::Eventually;
using testing::HasSubstr;
using testing::StartsWith;

class PhoneConnectionTest : public PhoneToolTest {
 protected:
  void SetState(const std::string& state) { phones().Control({"TEST0001", "state", state}); }
  bool Answers() const { return Shell("echo here") == "here"; }
};

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
  const auto outcome = Run({"authorize", "--wait", "1"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.errors, HasSubstr("USB debugging was not allowed on TEST0001 within 1 s"));
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
  EXPECT_THAT(Fail({"authorize"}), HasSubstr("no attached device is unauthorized:\nSERIAL"));
  EXPECT_THAT(Fail({"-s", "NONE", "authorize"}), HasSubstr("ADB_RESULT_NO_DEVICE (24)"));
}

TEST_P(PhoneConnectionTest, ReconnectOpensTheConnectionAgain) {
  EXPECT_THAT(Succeed({"reconnect"}), StartsWith("adb was asked to reconnect."));
  EXPECT_TRUE(Eventually([this] { return Answers(); }));
  MakeExecutable(File("refusing-adb"),
                 "#!/bin/sh\necho 'error: more than one device/emulator' >&2\nexit 1\n");
  EXPECT_THAT(Fail({"--adb", File("refusing-adb"), "reconnect"}),
              HasSubstr("cannot reconnect: adb exit status 1 (1001): "));
}

TEST_P(PhoneConnectionTest, RebootRestartsThePhone) {
  Shell("setprop darokleim.before.reboot 1");
  EXPECT_EQ(Succeed({"reboot"}), "TEST0001 is restarting.\n");
  EXPECT_TRUE(Eventually([this] { return Answers() && Shell("getprop darokleim.before.reboot").empty(); }));
  EXPECT_THAT(Fail({"-s", "NONE", "reboot"}), HasSubstr("ADB_RESULT_NO_DEVICE (24)"));
}

TEST_P(PhoneConnectionTest, BusyboxIsInstalled) {
  MakeExecutable(File("busybox"), "#!/system/bin/sh\necho busy\n");
  EXPECT_EQ(Succeed({"--busybox", File("busybox"), "busybox"}),
            "busybox is at /data/local/tmp/busybox on the device.\n");
  EXPECT_EQ(Shell("/data/local/tmp/busybox"), "busy");
}

TEST_P(PhoneConnectionTest, BusyboxMustBeThere) {
  EXPECT_THAT(Fail({"busybox"}), HasSubstr("--busybox"));
  EXPECT_EQ(Shell("ls /data/local/tmp"), "");
}

TEST_P(PhoneConnectionTest, AuthorizeAsksNothingOfAReadyPhone) {
  EXPECT_EQ(Succeed({"-s", "TEST0001", "authorize"}), "TEST0001 is ready.\n");
}

INSTANTIATE_FOR_BOTH_PHONES(PhoneConnectionTest);

}  // namespace
}  // namespace darokleim::cli
