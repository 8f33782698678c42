#include "src/core/server_control.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string>

#include "tests/support/odd_host.h"
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

TEST_F(ServerControlTest, TheOtherNameDiffersInTheLogOnly) {
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

TEST_F(ServerControlTest, OneMeansThatTheTextBeganWithTheStart) {
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

// How much of the list of processes the SDK reads, in bytes.
constexpr std::size_t kLimit = 511;

class AdbProcessesTest : public SdkTest {
 protected:
  // A line that becomes `bytes` bytes of the list, its line break included, and does not name a process.
  static std::string Padding(std::size_t bytes) { return std::string(bytes - 1, '0') + " adb\n"; }

  Sleeper sleeper_{"sleeper"};
};

TEST_F(AdbProcessesTest, KillsByTheWordInTheLine) {
  for (const std::string line :
       {"adb", "/opt/adb -P 5038 fork-server server", "vi adb.txt", "my-adb", "adb:1", "x 'adb'"}) {
    Sleeper process("x");
    const ListedProcesses listed("  " + process.id() + " ?        S      0:00 " + line + "\n");
    EXPECT_EQ(KillListenNetProcess(5037), 0);
    EXPECT_TRUE(process.WasKilled()) << line;
  }
  EXPECT_THAT(journal(), IsEmpty());
}

TEST_F(AdbProcessesTest, IgnoresWhatOnlyLooksLikeTheWord) {
  for (const std::string line : {"adbd --root_seclabel=u:r:su:s0", "my_adb", "ADB", "adb2", "sleep 1000"}) {
    const ListedProcesses listed("  " + sleeper_.id() + " ?        S      0:00 " + line + "\n");
    EXPECT_EQ(KillListenNetProcess(5037), 0);
    EXPECT_FALSE(sleeper_.WasKilled()) << line;
  }
}

TEST_F(AdbProcessesTest, ThePortMakesNoDifference) {
  for (const int port : {1234, 0, -1}) {
    Sleeper process("x");
    const ListedProcesses listed(process.id() + " adb -P 5037\n");
    EXPECT_EQ(KillListenNetProcess(port), 0);
    EXPECT_TRUE(process.WasKilled()) << port;
  }
}

TEST_F(AdbProcessesTest, KillsAllOfThem) {
  Sleeper first("x");
  Sleeper second("x");
  const ListedProcesses listed(first.id() + " adb\n12345678901234567890 adb\n" + sleeper_.id() + " other\n" +
                               second.id() + " adb\n");
  EXPECT_EQ(KillListenNetProcess(5037), 0);
  EXPECT_TRUE(first.WasKilled());
  EXPECT_TRUE(second.WasKilled());
  EXPECT_FALSE(sleeper_.WasKilled());
}

TEST_F(AdbProcessesTest, LeadingDigitsAreTheNumber) {
  const ListedProcesses listed(sleeper_.id() + "xyz adb\n");
  EXPECT_EQ(KillListenNetProcess(5037), 0);
  EXPECT_TRUE(sleeper_.WasKilled());
}

TEST_F(AdbProcessesTest, WhatIsNotAProcessNumberIsSkipped) {
  // 0 would be the test itself, the negative number the sleeper's process group. The bytes that are not
  // text are last: grep ends its output with them.
  const ListedProcesses listed("0 adb\nPID adb\n-" + sleeper_.id() + " adb\n" + std::string(40, '9') +
                               " adb\n\n" + sleeper_.id() +
                               "00000000000 adb\n4294967296 adb\n\xff\xfe adb\n");
  EXPECT_EQ(KillListenNetProcess(5037), 0);
  EXPECT_FALSE(sleeper_.WasKilled());
}

TEST_F(AdbProcessesTest, AProcessThatIsGoneIsNotAFailure) {
  // Above every process number that systems give.
  const ListedProcesses listed("99999999 adb\n" + sleeper_.id() + " adb\n");
  EXPECT_EQ(KillListenNetProcess(5037), 0);
  EXPECT_TRUE(sleeper_.WasKilled());
}

TEST_F(AdbProcessesTest, WhatTheLimitStillHoldsIsKilled) {
  for (const std::size_t end : {kLimit - 1, kLimit}) {
    Sleeper process("x");
    const ListedProcesses listed(Padding(end - process.id().size()) + process.id() + " adb\n");
    EXPECT_EQ(KillListenNetProcess(5037), 0);
    EXPECT_TRUE(process.WasKilled()) << "the number ends at byte " << end;
  }
}

TEST_F(AdbProcessesTest, ANumberThatEndsAfterTheLimitIsIgnored) {
  const ListedProcesses listed(Padding(kLimit + 1 - sleeper_.id().size()) + sleeper_.id() + " adb\n");
  EXPECT_EQ(KillListenNetProcess(5037), 0);
  EXPECT_FALSE(sleeper_.WasKilled());
}

TEST_F(AdbProcessesTest, WhatComesAfterTheLimitIsIgnored) {
  const ListedProcesses listed(Padding(kLimit) + sleeper_.id() + " adb\n");
  EXPECT_EQ(KillListenNetProcess(5037), 0);
  EXPECT_FALSE(sleeper_.WasKilled());
}

TEST_F(AdbProcessesTest, ANumberThatTheLimitCutsIsIgnored) {
  // Cut at the limit, it is the sleeper's.
  const ListedProcesses listed(Padding(kLimit - sleeper_.id().size()) + sleeper_.id() + "00000000000 adb\n");
  EXPECT_EQ(KillListenNetProcess(5037), 0);
  EXPECT_FALSE(sleeper_.WasKilled());
}

TEST_F(AdbProcessesTest, TheFirstOfACutListIsKilled) {
  const ListedProcesses listed(sleeper_.id() + " adb\n" + Padding(kLimit));
  EXPECT_EQ(KillListenNetProcess(5037), 0);
  EXPECT_TRUE(sleeper_.WasKilled());
}

TEST_F(AdbProcessesTest, AMillionBytesOfListEndAtTheLimit) {
  Sleeper process("x");
  const ListedProcesses listed(process.id() + " adb " + std::string(1'000'000, 'x') + "\n" +
                               Padding(1'000'000) + sleeper_.id() + " adb\n");
  EXPECT_EQ(KillListenNetProcess(5037), 0);
  EXPECT_TRUE(process.WasKilled());
  EXPECT_FALSE(sleeper_.WasKilled());
}

TEST_F(AdbProcessesTest, WithoutTheToolsNothingHappens) {
  const std::string path = std::getenv("PATH");
  setenv("PATH", "/nonexistent", 1);
  EXPECT_EQ(KillListenNetProcess(5037), 0);
  setenv("PATH", path.c_str(), 1);
  EXPECT_THAT(journal(), IsEmpty());
}

TEST_F(AdbProcessesTest, APipeThatCannotBeOpenedIsLogged) {
  // Before the descriptors are gone: the undefined-behaviour sanitizer needs some when it first meets a type.
  ASSERT_THAT(SdkTest::Current().journal(), IsEmpty());
  {
    const WithoutDescriptors none;
    EXPECT_EQ(KillListenNetProcess(5037), 0);
  }
  EXPECT_THAT(journal(), ElementsAre(Error("KillListenNetProcess Pipe Create Failed. Error = " +
                                           std::to_string(EMFILE))));
}

}  // namespace
}  // namespace darokleim::test
