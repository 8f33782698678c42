#include "channel/output/adb_messages.h"

#include <gtest/gtest.h>

#include <string>

namespace darokleim::channel {
namespace {

constexpr char kStarted[] = "* daemon not running; starting now at tcp:5037\n* daemon started successfully\n";

TEST(ServerNotices, AreTheLinesThatLead) {
  EXPECT_EQ(LengthOfLeadingNotices(std::string(kStarted) + "value\n"), std::string(kStarted).size());
  EXPECT_EQ(LengthOfLeadingNotices("adb server version (36) doesn't match this client (41); killing...\n"
                                   "* daemon started successfully\nList of devices attached\n"),
            97u);
  EXPECT_EQ(
      LengthOfLeadingNotices("adb server is out of date.  killing...\n* daemon started successfully *\n"),
      71u);
  EXPECT_EQ(LengthOfLeadingNotices("* daemon started successfully"), 29u);
  EXPECT_EQ(LengthOfLeadingNotices("value\n* daemon started successfully\n"), 0u);
  EXPECT_EQ(LengthOfLeadingNotices(""), 0u);
  EXPECT_EQ(LengthOfLeadingNotices("* daemonic\n"), 0u);
}

TEST(ServerNotices, AreNotOtherLinesThatBeginAlike) {
  for (const char* text : {"* daemons are spirits\n", "adb servers\n", "* a list\n", "adb\n"}) {
    EXPECT_EQ(LengthOfLeadingNotices(text), 0u) << text;
  }
}

TEST(ServerNotices, AreNotFailures) {
  EXPECT_EQ(LengthOfLeadingNotices("* failed to start daemon\n"), 0u);
  EXPECT_EQ(LengthOfLeadingNotices("* daemon still not running\nerror: cannot connect to daemon\n"), 0u);
}

TEST(FailureLines, BeginWithAdbsOwnWords) {
  for (const char* line : {"error: device offline", "adb: failed to stat", "* failed to start daemon",
                           "* cannot start server", "cannot connect to daemon"}) {
    EXPECT_TRUE(IsFailureLine(line)) << line;
  }
  for (const char* line : {"", "Error: no", "ls: error: x", "error:device", " error: x", "adb", "* daemon"}) {
    EXPECT_FALSE(IsFailureLine(line)) << line;
  }
}

TEST(FailureLines, AreFoundHoweverTheTextIsCut) {
  const std::string with = "List of devices\nx\r\ncannot connect to daemon";
  const std::string without = "a error: b\ncannot connec\nerror\n* fail";
  for (size_t cut = 0; cut <= with.size(); ++cut) {
    FailureLineScanner scanner;
    scanner.Scan(std::string_view(with).substr(0, cut));
    scanner.Scan(std::string_view(with).substr(cut));
    EXPECT_TRUE(scanner.Found()) << cut;
  }
  for (size_t cut = 0; cut <= without.size(); ++cut) {
    FailureLineScanner scanner;
    scanner.Scan(std::string_view(without).substr(0, cut));
    scanner.Scan(std::string_view(without).substr(cut));
    EXPECT_FALSE(scanner.Found()) << cut;
  }
}

constexpr char kFailureLine[] = "a\nerror: closed\n";

int Status(std::string_view arguments, ExitOutcome exit, std::string_view output = "a\n") {
  const Command command = ReadCommand(arguments, Assist::kOff);
  const int status = StatusOf(command, exit, output);
  FailureLineScanner scanner;
  scanner.Scan(output);
  if (command.answer() != Answer::kStatedFailure) {
    EXPECT_EQ(StatusOf(command, exit, scanner), status) << arguments;
  }
  return status;
}

constexpr ExitOutcome Exited(int status) {
  return {ExitOutcome::kExited, status};
}

TEST(Outcome, IsTheTextsWhereACommandAnswersByText) {
  EXPECT_EQ(Status("shell ls /x", Exited(1)), 0);
  EXPECT_EQ(Status("shell ls /x", Exited(1), kFailureLine), 1001);
  EXPECT_EQ(Status("shell ls /x", Exited(0), kFailureLine), 0);
}

TEST(Outcome, IsTheExitStatusElsewhere) {
  EXPECT_EQ(Status("shell rm /x", Exited(1)), 1001);
  EXPECT_EQ(Status("devices", Exited(255)), 1255);
  EXPECT_EQ(Status("ls /x", Exited(1)), 1001);
  EXPECT_EQ(Status("shell rm /x", Exited(0), kFailureLine), 0);
}

TEST(Outcome, OfAnInstallationIsTheExitStatusUnlessTheTextStatesTheFailure) {
  for (const char* arguments :
       {"shell pm install -r '\"/x.apk\"'", "shell pm uninstall -k com.a", "'shell pm uninstall com.a'"}) {
    EXPECT_EQ(Status(arguments, Exited(255), "Exception occurred while executing 'install':\n"), 1255);
    EXPECT_EQ(Status(arguments, Exited(137), "Killed\n"), 1137);
    EXPECT_EQ(Status(arguments, Exited(1), ""), 1001);
    EXPECT_EQ(Status(arguments, Exited(1), "Success\n"), 1001);
    EXPECT_EQ(Status(arguments, Exited(0), ""), 0) << "older phones have no exit status";
    EXPECT_EQ(Status(arguments, Exited(1), kFailureLine), 1001);
    for (const char* stated :
         {"Failure [INSTALL_FAILED_OLDER_SDK]\n", "Failure\n",
          "java.lang.SecurityException: Shell does not have permission to access user 10\n",
          "/system/bin/sh: pm: not found\n", "/system/bin/sh: no closing quote\n",
          "cmd: /x.apk: No such file or directory\n", "write: No space left on device\n",
          "Error: not enough space\n"})
      EXPECT_EQ(Status(arguments, Exited(1), stated), 0) << stated;
  }
}

TEST(Outcome, OfOtherCommandsOfThePackageManagerIsTheTexts) {
  EXPECT_EQ(Status("shell pm path com.a", Exited(1), ""), 0);
  EXPECT_EQ(Status("shell pm list packages", Exited(255), "Exception\n"), 0);
  EXPECT_EQ(Status("shell pm path install", Exited(1), ""), 0);
}

TEST(Outcome, IsTheSignalInEveryCase) {
  EXPECT_EQ(Status("shell ls /x", {ExitOutcome::kSignalled, 9}), 2009);
  EXPECT_EQ(Status("devices", {ExitOutcome::kSignalled, 15}), 2015);
}

TEST(Outcome, IsTheTextsWithoutAnExitStatus) {
  EXPECT_EQ(Status("shell rm /x", {ExitOutcome::kUnknown, 0}), 0);
  EXPECT_EQ(Status("shell rm /x", {ExitOutcome::kUnknown, 0}, kFailureLine), 1001);
  EXPECT_EQ(Status("devices", {ExitOutcome::kUnknown, 0}, kFailureLine), 1001);
}

}  // namespace
}  // namespace darokleim::channel
