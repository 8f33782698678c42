// darokleim server. What kills processes runs in a PID namespace of its own, where it can reach none but the test's.
#include <gmock/gmock.h>
#include <stdlib.h>

#include <filesystem>

#include "tests/cli/tool_run.h"
#include "tests/support/eventually.h"
#include "tests/support/file_content.h"
#include "tests/support/simulated_phones.h"

namespace darokleim::cli {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

constexpr char kWarning[] = "this kills every process of this computer with the word adb";

class ServerTest : public ToolTest {
 protected:
  // An adb that writes its words down.
  void MakeRecordingAdb(const std::string& body = "") const {
    MakeAdb("echo \"$*\" >>" + File("words") + "\n" + body);
  }
  std::string Words() const { return test::ReadFile(File("words")); }

  void ExpectKillsNothingWithoutForce(const std::string& command) const {
    MakeRecordingAdb();
    const auto outcome = Run({"server", command});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "");
    EXPECT_THAT(outcome.errors, AllOf(HasSubstr(kWarning), HasSubstr("darokleim server ")));
    EXPECT_EQ(Words(), "");
  }
};

TEST_F(ServerTest, IsStarted) {
  MakeRecordingAdb();
  const auto outcome = Run({"server", "start"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output, "The adb server is running.\n");
  EXPECT_EQ(outcome.errors, "");
  EXPECT_EQ(Words(), "start-server\n");
}

TEST_F(ServerTest, HasStartedAlsoWhenAdbsNewsComeFirst) {
  MakeRecordingAdb("echo daemon started successfully");
  EXPECT_EQ(Run({"server", "start"}).status, 0);
}

TEST_F(ServerTest, ThatCannotBeStartedIsAnError) {
  MakeRecordingAdb("echo 'cannot bind' >&2; exit 1");
  const auto outcome = Run({"server", "start"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.errors, StartsWith("darokleim: cannot start the adb server: adb exit status 1 (1001)"));
}

TEST_F(ServerTest, NothingIsKilledWithoutForce) {
  ExpectKillsNothingWithoutForce("kill");
  ExpectKillsNothingWithoutForce("stop");
  ExpectKillsNothingWithoutForce("restart");
}

TEST_F(ServerTest, TheToolDoesNotKillItself) {
  MakeRecordingAdb();
  for (const char* command : {"kill", "restart", "start"}) {
    const auto outcome = Run({"--adb", File("bin/adb"), "server", command, "--force"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("this command would kill itself"));
  }
  EXPECT_EQ(Words(), "");
}

#if defined(__linux__)
class ForcedServerTest : public ServerTest {
 protected:
  // Beside a victim, whose end is the last line: 137 when it was killed, 124 when it lived on.
  void ExpectBesideVictim(const std::string& words, const std::string& expected) {
    for (const auto& [variable, value] : test::AdbEnvironment(phones_.port())) Set(variable, value);
    Set("PATH", getenv("PATH"));
    std::filesystem::create_directory(File("work"));
    test::WriteFile(File("work/adb.txt"), "");
    test::WriteFile(File("work/play"), R"(timeout 5 tail -f adb.txt 2>/dev/null & victim=$!
sleep 0.2
"$TOOL" server )" + words + R"(
echo "status $?"
wait $victim
echo "victim $?")");
    const auto outcome = RunShell("cd " + File("work") + "\n" + kInNamespace + " sh ./play");
    if (outcome.status == kNoNamespace)
      GTEST_SKIP() << "the system refuses PID namespaces: " << outcome.errors;
    EXPECT_EQ(outcome.output, expected) << outcome.errors;
  }

  // An ordinary user needs a user namespace around it, which some systems refuse; so do containers to root.
  static constexpr int kNoNamespace = 99;
  static constexpr char kInNamespace[] = R"(in_namespace='unshare --pid --fork --mount-proc'
$in_namespace true 2>/dev/null || in_namespace='unshare --user --map-root-user --pid --fork --mount-proc'
$in_namespace true || exit 99
$in_namespace)";

  test::SimulatedPhones phones_{{"TEST0001"}, {"--restart-on-kill"}};
};

TEST_F(ForcedServerTest, IsKilledWithWhatHoldsItsName) {
  ExpectBesideVictim("kill --force", "The adb server has ended.\nstatus 0\nvictim 137\n");
}

TEST_F(ForcedServerTest, IsRestarted) {
  ExpectBesideVictim("restart --force", "The adb server is running.\nstatus 0\nvictim 137\n");
  EXPECT_TRUE(
      test::Eventually([this] { return Run({"devices"}).output.find("TEST0001") != std::string::npos; }));
}

TEST_F(ForcedServerTest, IsStartedAfterOneThatHangs) {
  ExpectBesideVictim("start --force", "The adb server is running.\nstatus 0\nvictim 137\n");
}

TEST_F(ForcedServerTest, IsNotKilledByAnOrdinaryStart) {
  ExpectBesideVictim("start", "The adb server is running.\nstatus 0\nvictim 124\n");
}
#endif

}  // namespace
}  // namespace darokleim::cli
