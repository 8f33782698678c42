// darokleim logcat, on simulated phones.
#include <json/value.h>
#include <signal.h>

#include <sstream>

#include "tests/cli/phone_tool_test.h"
#include "tests/support/file_content.h"

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
              MatchesRegex("[0-9-]+ [0-9:.]+ +[0-9]+ +[0-9]+ I Before *: an older line"));
  Log("w", "After", "a newer line");
  EXPECT_THAT(LineWith(*tool, "After"), testing::EndsWith(": a newer line"));
  tool->Signal(SIGINT);
  const auto outcome = tool->Finish();
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.errors, "");
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

TEST_P(PhoneLogcatTest, IsAnObjectALineForPrograms) {
  Log("w", "MyTag", "a: \"quoted\" message");
  std::istringstream lines(Succeed({"logcat", "--dump", "--json", "MyTag:V"}));
  Json::Value found;
  for (std::string line; std::getline(lines, line);) {
    const Json::Value entry = ParseJson(line);
    if (entry["tag"] == "MyTag") found = entry;
  }
  EXPECT_EQ(found["priority"], "W");
  EXPECT_EQ(found["message"], "a: \"quoted\" message");
  EXPECT_GT(found["pid"].asInt(), 0);
  EXPECT_THAT(found["time"].asString(), MatchesRegex("[0-9]{2}-[0-9]{2} [0-9:.]{12}"));
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
  EXPECT_THAT(outcome.errors, testing::ContainsRegex("the log has ended|cannot continue the log"));
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

TEST_P(PhoneLogcatTest, RefusesFiltersThatWouldBeCut) {
  EXPECT_THAT(Fail({"logcat", std::string(240, 'T') + ":I"}), HasSubstr("the list of filters is too long"));
  EXPECT_EQ(Run({"logcat", "Tag;reboot"}).status, 2);
}

INSTANTIATE_FOR_BOTH_PHONES(PhoneLogcatTest);

}  // namespace
}  // namespace darokleim::cli
