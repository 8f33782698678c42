// darokleim server, and which commands start adb.
#include <gmock/gmock.h>
#include <stdlib.h>

#include <filesystem>
#include <optional>

#include "tests/cli/documented_json.h"
#include "tests/cli/phone_tool_test.h"
#include "tests/support/eventually.h"
#include "tests/support/file_content.h"

namespace darokleim::cli {
namespace {

using testing::AllOf;
using testing::HasSubstr;

class ServerTest : public ToolTest {
 protected:
  // An adb that writes its words down.
  void MakeRecordingAdb(const std::string& body = "") const {
    MakeAdb("echo \"$*\" >>" + File("words") + "\n" + body);
  }
  std::string Words() const {
    return std::filesystem::exists(File("words")) ? test::ReadFile(File("words")) : "";
  }

  void UsePort(const std::string& port) {
    for (const auto& [variable, value] : test::AdbEnvironment(port)) Set(variable, value);
  }
  // Where nobody listens.
  void UseNoServer() {
    std::optional<test::SimulatedPhones> phones(std::in_place, test::Words{});
    UsePort(phones->port());
  }
};

TEST_F(ServerTest, ThatRunsIsNotStartedAgain) {
  const test::SimulatedPhones phones({});
  UsePort(phones.port());
  MakeRecordingAdb();
  EXPECT_EQ(Run({"server", "start"}).output, "The adb server is running.\n");
  const auto status = Run({"server", "status", "--json"});
  ExpectDocumented("server", ParseJson(status.output));
  EXPECT_EQ(ParseJson(status.output)["version"], 41);
  EXPECT_EQ(Words(), "");
}

TEST_F(ServerTest, IsStartedByAdb) {
  UseNoServer();
  MakeRecordingAdb("exit 1");
  const auto outcome = Run({"server", "start"});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(Words(), HasSubstr("start-server"));
}

TEST_F(ServerTest, StatusStartsNone) {
  UseNoServer();
  MakeRecordingAdb();
  const auto status = Run({"server", "status"});
  EXPECT_EQ(status.status, 0) << status.errors;
  EXPECT_EQ(status.output, "No adb server is running.\n");
  EXPECT_EQ(ParseJson(Run({"server", "status", "--json"}).output)["running"], false);
  EXPECT_EQ(Run({"server", "stop"}).output, "No adb server was running.\n");
  EXPECT_EQ(Words(), "");
}

TEST_F(ServerTest, IsEnded) {
  const test::SimulatedPhones phones({});
  UsePort(phones.port());
  MakeRecordingAdb();
  const auto outcome = Run({"server", "stop", "--json"});
  EXPECT_EQ(outcome.status, 0);
  ExpectDocumented("server", ParseJson(outcome.output));
  EXPECT_TRUE(test::Eventually([this] {
    return Run({"server", "status"}).output == "No adb server is running.\n";
  }));
  EXPECT_EQ(Words(), "");
}

TEST_F(ServerTest, IsRestarted) {
  const test::SimulatedPhones phones({"TEST0001"}, {"--restart-on-kill"});
  UsePort(phones.port());
  MakeRecordingAdb("exit 1");
  EXPECT_TRUE(test::Eventually([this] { return Run({"server", "restart"}).status == 0; }));
  EXPECT_TRUE(test::Eventually([this] { return Run({"info", "model"}).output == "Pixel 7\n"; }));
}

// A server answers, so adb is not needed.
class NoAdbTest : public PhoneToolTest {};

TEST_P(NoAdbTest, IsStartedWhileAServerRuns) {
  const std::string apk = DAROKLEIM_PHONE_TEST_DATA "/notes-1.apk";
  MakeAdb("echo \"$*\" >>" + File("words") + "\nexit 1");
  Set("PATH", File("bin") + ":/usr/bin:/bin");
  for (const Words& words : std::vector<Words>{{"devices"},
                                               {"wait"},
                                               {"info"},
                                               {"battery"},
                                               {"storage"},
                                               {"app", "install", apk},
                                               {"app", "list", "-l"},
                                               {"app", "info", "com.example.notes"},
                                               {"app", "start", "com.example.notes"},
                                               {"app", "stop", "com.example.notes"},
                                               {"app", "pull", "com.example.notes"},
                                               {"backup", "com.example.notes", "notes.ab"},
                                               {"restore", "notes.ab"},
                                               {"app", "clear", "com.example.notes"},
                                               {"app", "uninstall", "com.example.notes"},
                                               {"screenshot", "a.png"},
                                               {"type", "text"},
                                               {"key", "HOME"},
                                               {"tap", "1", "2"},
                                               {"logcat", "--dump"},
                                               {"logcat", "--clear"},
                                               {"forward", "list"},
                                               {"reverse", "list"},
                                               {"server", "status"},
                                               {"reconnect"}}) {
    EXPECT_EQ(Run(words).status, 0) << words.front() << " " << words.back();
  }
  EXPECT_FALSE(std::filesystem::exists(File("words"))) << test::ReadFile(File("words"));
}

INSTANTIATE_FOR_BOTH_PHONES(NoAdbTest);

}  // namespace
}  // namespace darokleim::cli
