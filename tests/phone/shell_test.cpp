#include <gmock/gmock.h>

#include <chrono>
#include <thread>

#include "tests/support/simulated_phones.h"

namespace darokleim::test {
namespace {

using testing::HasSubstr;

TEST(ModernShell, KeepsOutputErrorsAndExitStatusApart) {
  const SimulatedPhones phones({"ALFA1"});
  const Outcome outcome = phones.Adb({"shell", "echo one; echo two >&2; exit 7"});
  EXPECT_EQ(outcome.output, "one\n");
  EXPECT_EQ(outcome.errors, "two\n");
  EXPECT_EQ(outcome.status, 7);
}

TEST(ModernShell, ReportsTheSignalThatEndedACommand) {
  const SimulatedPhones phones({"ALFA1"});
  EXPECT_EQ(phones.Adb({"shell", "kill -9 $$"}).status, 128 + 9);
}

TEST(ModernShell, WithoutPacketsStillKeepsLineEnds) {
  const SimulatedPhones phones({"ALFA1"});
  const Outcome outcome = phones.Adb({"shell", "-x", "echo one; exit 7"});
  EXPECT_EQ(outcome.output, "one\n");
  EXPECT_EQ(outcome.status, 0);
}

TEST(ModernShell, GivesTheCommandItsInput) {
  const SimulatedPhones phones({"ALFA1"});
  const std::string input(300000, 'x');
  EXPECT_EQ(phones.Adb({"shell", "wc", "-c"}, input).output, "300000\n");
}

TEST(ModernShell, DoesNotWaitForInputThatNobodyReads) {
  const SimulatedPhones phones({"ALFA1"});
  EXPECT_EQ(phones.Adb({"shell", "echo done"}, std::string(3000000, 'x')).output, "done\n");
}

TEST(ModernShell, CarriesEveryByteUnchanged) {
  const SimulatedPhones phones({"ALFA1"});
  std::string bytes;
  for (int i = 0; i < 1024; ++i) bytes += static_cast<char>(i % 256);
  EXPECT_EQ(phones.Adb({"shell", "cat"}, bytes).output, bytes);
  EXPECT_EQ(phones.Adb({"exec-out", "printf '\\x00\\r\\n\\xff'"}).output, std::string("\0\r\n\xff", 4));
}

TEST(ModernShell, OpensATerminalWhenAsked) {
  const SimulatedPhones phones({"ALFA1"});
  EXPECT_EQ(phones.Adb({"shell", "-t", "-t", "tty >/dev/null && echo yes"}).output, "yes\r\n");
  EXPECT_EQ(phones.Adb({"shell", "tty >/dev/null || echo no"}).output, "no\n");
}

TEST(ModernShell, TakesCommandsFromItsInput) {
  const SimulatedPhones phones({"ALFA1"});
  EXPECT_THAT(phones.Adb({"shell"}, "echo $((40 + 2))\nexit\n").output, HasSubstr("42"));
}

TEST(LegacyShell, HasOneStreamThroughATerminalAndNoExitStatus) {
  const SimulatedPhones phones({"ALFA1,android=legacy"});
  const Outcome outcome = phones.Adb({"shell", "echo one; echo two >&2; exit 7"});
  EXPECT_EQ(outcome.output, "one\r\ntwo\r\n");
  EXPECT_EQ(outcome.errors, "");
  EXPECT_EQ(outcome.status, 0);
}

TEST(LegacyShell, EscapesBlanksInNamesWhenItsToolsAreToyboxs) {
  const SimulatedPhones phones({"OLD1,android=legacy,tools=toybox", "NEW1"});
  const std::string command = "mkdir /data/local/tmp/d; touch '/data/local/tmp/d/a b'; ls /data/local/tmp/d";
  EXPECT_EQ(phones.Adb({"-s", "OLD1", "shell", command}).output, "a\\ b\r\n");
  EXPECT_EQ(phones.Adb({"-s", "NEW1", "shell", command}).output, "a b\n");
}

TEST(Shell, RunsAsTheShellUserInsideThePhoneOnly) {
  const SimulatedPhones phones({"ALFA1"});
  EXPECT_THAT(phones.Adb({"shell", "id"}).output, HasSubstr("uid=2000(shell) gid=2000(shell)"));
  EXPECT_EQ(phones.Adb({"shell", "ls -d /home /root /work /usr/bin /usr/share 2>/dev/null"}).output, "");
  EXPECT_EQ(phones.Adb({"shell", "echo $ANDROID_DATA:$EXTERNAL_STORAGE"}).output, "/data:/sdcard\n");
}

TEST(Shell, MayNotReadAFolderWithoutPermission) {
  const SimulatedPhones phones({"ALFA1"});
  const Outcome outcome =
      phones.Adb({"shell", "cd /data/local/tmp && mkdir d && chmod 0 d && ls d; chmod 700 d"});
  EXPECT_EQ(outcome.errors, "ls: d: Permission denied\n");
}

TEST(Shell, SaysWhichCommandIsMissing) {
  const SimulatedPhones phones({"ALFA1"});
  const Outcome outcome = phones.Adb({"shell", "nothing_like_this"});
  EXPECT_THAT(outcome.errors, HasSubstr("/system/bin/sh: nothing_like_this: "));
  EXPECT_THAT(outcome.errors, HasSubstr("not found"));
  EXPECT_EQ(outcome.status, 127);
}

// True once no process of the phone's holds `word` in its command line.
bool GoneWithin(const SimulatedPhones& phones, const std::string& serial, const std::string& word) {
  const std::string pattern = "[" + word.substr(0, 1) + "]" + word.substr(1);
  for (int attempt = 0; attempt < 100; ++attempt) {
    const Outcome found = phones.Adb({"-s", serial, "shell", "ps -A -o ARGS | grep -c '" + pattern + "'"});
    if (found.output.substr(0, 1) == "0") return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  return false;
}

TEST(Shell, EndsWithItsClientAndEverythingItStarted) {
  const SimulatedPhones phones({"OLD1,android=legacy", "NEW1"});
  for (const std::string serial : {"OLD1", "NEW1"}) {
    {
      const auto client =
          phones.StartAdb({"-s", serial, "shell",
                           "trap '' HUP; sleep 77001 & (sleep 77001; true) & echo started; sleep 77001"});
      EXPECT_THAT(client->ReadLine(), HasSubstr("started"));
    }
    EXPECT_TRUE(GoneWithin(phones, serial, "sleep 77001")) << serial;
  }
}

TEST(Exec, GivesTheCommandAllItsInputBeforeItEnds) {
  const SimulatedPhones phones({"ALFA1"});
  const std::string input(3000000, 'x');
  phones.Adb({"exec-in", "cat > /data/local/tmp/copy"}, input);
  for (int attempt = 0; attempt < 100; ++attempt) {
    if (phones.Adb({"shell", "wc -c < /data/local/tmp/copy"}).output == "3000000\n") return;
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  FAIL() << phones.Adb({"shell", "wc -c < /data/local/tmp/copy"}).output;
}

}  // namespace
}  // namespace darokleim::test
