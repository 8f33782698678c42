#include <string>

#include "tests/support/sleeper.h"
#include "tests/unit/support/device_output.h"
#include "tests/unit/support/listed_processes.h"
#include "tests/unit/support/sdk_test.h"

namespace darokleim::test {
namespace {

using namespace std::string_literals;

class ServerControlTest : public SdkTest {
 protected:
  // No process but those of the test may be found.
  const ListedProcesses nothing_listed{""};
};

TEST_F(ServerControlTest, KillingLogsWhatAdbSaid) {
  channel.Expect(" kill-server").Prints("cannot connect to daemon at tcp:5037: Connection refused\n");
  AdbKillDaemon(&cancel);
  EXPECT_THAT(journal(), ElementsAre(Info("AdbKillDaemon Enter ..."), Ran(" kill-server"),
                                     Info("cannot connect to daemon at tcp:5037: Connection refused\n"),
                                     GaveBack(), Info("AdbKillDaemon Leave, return 0.")));
}

TEST_F(ServerControlTest, KillingCannotFail) {
  for (const int value : {0, 1, 1001, 3002, -1}) {
    channel.Expect(" kill-server").Returns(value);
    AdbKillDaemon(&cancel);
    EXPECT_EQ(journal().back(), Info("AdbKillDaemon Leave, return 0."));
  }
  EXPECT_EQ(journal().size(), 15U) << "enter, run and leave each time";
  channel.Expect(" kill-server").Prints("").Returns(1001);
  AdbKillDaemon(&cancel);
  EXPECT_EQ(journal().back(), Info("AdbKillDaemon Leave, return 0."));
}

TEST_F(ServerControlTest, KillingAlsoEndsTheProcessesThatAreLeft) {
  Sleeper adb("adb fork-server");
  const ListedProcesses listed(adb.id() + " ? S 0:00 adb -L tcp:5037 fork-server server\n");
  bool alive_during_the_command = false;
  channel.Expect(" kill-server").Meanwhile([&] { alive_during_the_command = !adb.WasKilled(); });
  AdbKillDaemon(&cancel);
  EXPECT_TRUE(alive_during_the_command) << "the server gets its chance to end by itself";
  EXPECT_TRUE(adb.WasKilled());
}

TEST_F(ServerControlTest, StartingRunsOneCommand) {
  channel.Expect(" start-server").Prints("");
  EXPECT_EQ(AdbStartDaemon(false, &cancel), 0);
  EXPECT_THAT(journal(), ElementsAre(Info("AdbStartDaemon Enter ..."), Ran(" start-server"), Info(""),
                                     GaveBack(), Info("AdbStartDaemon Leave, return 0.")));
}

TEST_F(ServerControlTest, TheOtherNameStandsInTheLogAlone) {
  channel.Expect(" start-server").Prints("said\n").Returns(1001);
  EXPECT_EQ(AdbStartDaemonEx(false, &cancel), 1001);
  EXPECT_THAT(journal(), ElementsAre(Info("AdbStartDaemonEx Enter ..."), Ran(" start-server"), Info("said\n"),
                                     GaveBack(), Info("AdbStartDaemonEx Leave, return 1001.")));
}

TEST_F(ServerControlTest, WithoutOutputTheChannelsValueIsTheCode) {
  for (const int value : {0, 1, 27, 1001, 3002}) {
    channel.Expect(" start-server").Returns(value);
    EXPECT_EQ(AdbStartDaemon(false, &cancel), value);
    channel.Expect(" start-server").Returns(value);
    EXPECT_EQ(AdbStartDaemonEx(false, &cancel), value);
  }
  channel.Expect(" start-server").WithoutCancelFlag();
  EXPECT_EQ(AdbStartDaemon(false, nullptr), 0);
}

TEST_F(ServerControlTest, OneTellsThatTheTextBeganWithTheStart) {
  const struct {
    std::string text;
    int value;
    int code;
  } cases[] = {
      {"daemon started successfully", 0, 1},
      {"daemon started successfully *\n", 0, 1},
      {"daemon started successfully", 1001, 1},
      {"* daemon started successfully\n", 0, 0},
      {" daemon started successfully\n", 0, 0},
      {"* daemon not running; starting now at tcp:5037\n* daemon started successfully\n", 0, 0},
      {"* daemon started successfully\n", 7, 7},
      {"daemon started successfull", 0, 0},
      {"Daemon started successfully", 0, 0},
      {"", 9, 9},
      {"\0daemon started successfully"s, 0, 0},
  };
  for (const auto& c : cases) {
    channel.Expect(" start-server").Prints(c.text).Unterminated().Returns(c.value);
    EXPECT_EQ(AdbStartDaemon(false, &cancel), c.code) << c.text;
  }
}

TEST_F(ServerControlTest, StartingIsNotClassified) {
  for (const std::string& sample : DeviceOutputsIn("adb-server")) {
    channel.Expect(" start-server").Prints(DeviceOutput(sample));
    EXPECT_EQ(AdbStartDaemon(false, &cancel), 0) << sample;
    channel.Expect(" start-server").Prints(DeviceOutput(sample)).Returns(1001);
    EXPECT_EQ(AdbStartDaemonEx(false, &cancel), 1001) << sample;
  }
}

TEST_F(ServerControlTest, KillingFirstIgnoresTheCancelFlag) {
  channel.Expect(" kill-server").WithoutCancelFlag();
  channel.Expect(" start-server");
  EXPECT_EQ(AdbStartDaemonEx(true, &cancel), 0);
  EXPECT_THAT(journal(), ElementsAre(Info("AdbStartDaemonEx Enter ..."),
                                     Info("AdbStartDaemonEx adb not been killed,killing now"),
                                     Info("AdbKillDaemon Enter ..."), Ran(" kill-server"),
                                     Info("AdbKillDaemon Leave, return 0."), Ran(" start-server"),
                                     Info("AdbStartDaemonEx Leave, return 0.")));
}

TEST_F(ServerControlTest, RestartingKillsAndStartsWithoutAnyCancelFlag) {
  Sleeper adb("adb");
  const ListedProcesses listed(adb.id() + " adb\n");
  channel.Expect(" kill-server").WithoutCancelFlag().Prints("");
  bool killed_before_the_start = false;
  channel.Expect(" start-server").WithoutCancelFlag().Prints("daemon started successfully\n").Meanwhile([&] {
    killed_before_the_start = adb.WasKilled();
  });
  EXPECT_EQ(AdbRestartDaemon(), 1);
  EXPECT_TRUE(killed_before_the_start);
  EXPECT_THAT(journal(), ElementsAre(Info("AdbStartDaemon Enter ..."),
                                     Info("AdbStartDaemon adb not been killed,killing now"),
                                     Info("AdbKillDaemon Enter ..."), Ran(" kill-server"), Info(""),
                                     GaveBack(), Info("AdbKillDaemon Leave, return 0."), Ran(" start-server"),
                                     Info("daemon started successfully\n"), GaveBack(),
                                     Info("AdbStartDaemon Leave, return 1.")));
}

}  // namespace
}  // namespace darokleim::test
