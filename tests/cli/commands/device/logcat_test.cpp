// darokleim logcat, on simulated phones.
#include <signal.h>
#include <unistd.h>

#include <sstream>

#include "tests/cli/documented_json.h"
#include "tests/cli/phone_tool_test.h"

namespace darokleim::cli {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;

class PhoneLogcatTest : public PhoneToolTest {
 protected:
  void Log(const std::string& priority, const std::string& tag, const std::string& message) const {
    Shell("log -p " + priority + " -t " + tag + " '" + message + "'");
  }

  // Reads on until a line holds the text.
  static std::string LineWith(HostProcess& tool, const std::string& text) {
    for (std::string line = tool.ReadLine(); !line.empty(); line = tool.ReadLine()) {
      if (line.find(text) != std::string::npos) return line;
    }
    return "";
  }
};

TEST_P(PhoneLogcatTest, FollowsTheLogUntilCtrlC) {
  Log("i", "Before", "an older line");
  auto tool = Start({"logcat"});
  EXPECT_THAT(LineWith(*tool, "Before"),
              MatchesRegex("[0-9-]+ [0-9:.]+ +[0-9]+ +[0-9]+ I Before: an older line"));
  Log("w", "After", "a newer line");
  EXPECT_THAT(LineWith(*tool, "After"), testing::EndsWith(": a newer line"));
  tool->Signal(SIGINT);
  EXPECT_EQ(tool->Finish().status, 130);
}

TEST_P(PhoneLogcatTest, DumpsWhatTheFiltersLetThrough) {
  Log("i", "Wanted", "information");
  Log("d", "Wanted", "detail");
  Log("e", "Other", "error");
  EXPECT_THAT(Succeed({"logcat", "--dump", "Wanted:I"}),
              AllOf(HasSubstr(": information\n"), Not(HasSubstr("detail")), Not(HasSubstr("error"))));
  EXPECT_THAT(Succeed({"logcat", "-d", "*:E"}), AllOf(HasSubstr(": error\n"), Not(HasSubstr("information"))));
  EXPECT_THAT(Succeed({"logcat", "-d", "Wanted:D", "Other:V"}),
              AllOf(HasSubstr("detail"), HasSubstr("error")));
  EXPECT_EQ(Succeed({"logcat", "-d"}).find('\r'), std::string::npos);
}

TEST_P(PhoneLogcatTest, ShowsTheLastLinesOnly) {
  for (const char* message : {"one", "two", "three"}) Log("i", "Count", message);
  EXPECT_THAT(Succeed({"logcat", "-d", "-n", "2", "-b", "main", "Count:V"}),
              AllOf(Not(HasSubstr(": one\n")), HasSubstr(": two\n"), HasSubstr(": three\n")));
}

TEST_P(PhoneLogcatTest, ShowsOnlyWhatIsNew) {
  Log("i", "Old", "before");
  sleep(1);  // the phone's clock has seconds
  auto tool = Start({"logcat", "--new", "Old:V", "New:V"});
  usleep(500'000);
  Log("i", "New", "after");
  EXPECT_THAT(tool->ReadLine(), HasSubstr("New: after"));
  tool->Signal(SIGTERM);
  EXPECT_EQ(tool->Finish().status, 130);
}

TEST_P(PhoneLogcatTest, IsAnObjectALineForPrograms) {
  Log("w", "MyTag", "a: \"quoted\" message");
  std::istringstream lines(Succeed({"logcat", "--dump", "--json", "MyTag:V"}));
  Json::Value found;
  for (std::string line; std::getline(lines, line);) {
    const Json::Value entry = ParseJson(line);
    ExpectDocumented("logcat", entry);
    if (entry["tag"] == "MyTag") found = entry;
  }
  EXPECT_EQ(found["level"], "W");
  EXPECT_EQ(found["text"], "a: \"quoted\" message");
  EXPECT_GT(found["process"].asInt(), 0);
  EXPECT_GT(found["time"].asInt64(), 1'500'000'000);
}

TEST_P(PhoneLogcatTest, IsCleared) {
  Log("i", "Old", "to be cleared");
  EXPECT_EQ(Succeed({"logcat", "--clear"}), "The log is cleared.\n");
  EXPECT_THAT(Succeed({"logcat", "--dump"}), Not(HasSubstr("to be cleared")));
  EXPECT_EQ(Run({"logcat", "--clear", "--dump"}).status, 2);
}

TEST_P(PhoneLogcatTest, FailsWhenThePhoneGoes) {
  Log("i", "Here", "still");
  auto tool = Start({"logcat"});
  EXPECT_NE(LineWith(*tool, "still"), "");
  phones().Control({"TEST0001", "unplug"});
  const auto outcome = tool->Finish();
  EXPECT_EQ(outcome.status, 1);
  EXPECT_NE(outcome.errors, "");
}

TEST_P(PhoneLogcatTest, EndsWithItsReader) {
  const auto outcome = RunShell(R"({ "$TOOL" logcat; echo "status $?" >&2; } | head -n 1 >/dev/null &
for line in 1 2 3 4 5 6 7 8 9 10; do
  adb shell log -t More "line $line"
  sleep 0.1
done
wait)");
  EXPECT_EQ(outcome.errors, "status 1\n");
}

TEST_P(PhoneLogcatTest, RefusesWrongWords) {
  EXPECT_EQ(Run({"logcat", "Tag;reboot"}).status, 2);
  EXPECT_EQ(Run({"logcat", "--new", "--dump"}).status, 2);
  EXPECT_EQ(Run({"logcat", "-b", "main;reboot"}).status, 2);
}

INSTANTIATE_FOR_BOTH_PHONES(PhoneLogcatTest);

}  // namespace
}  // namespace darokleim::cli
