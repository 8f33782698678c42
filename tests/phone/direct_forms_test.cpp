// Commands that the channel runs without adb: the same text, status and effect as through adb.
#include <gmock/gmock.h>

#include <chrono>
#include <thread>

#include "tests/phone/direct_and_adb.h"
#include "tests/support/eventually.h"
#include "tests/support/file_content.h"

namespace darokleim::test {
namespace {

using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;
using testing::StartsWith;

class DirectForms : public DirectAndAdb {};

TEST_P(DirectForms, Devices) {
  EXPECT_EQ(ExpectSameAnswer(" devices").status, 0);
  EXPECT_EQ(ExpectSameAnswer("devices").status, 0);
}

TEST_P(DirectForms, ShellCommandsThatAnswerByText) {
  for (const std::string command :
       {"getprop ro.build.version.sdk", "getprop no.such.property", "ls -l /storage",
        "ls -l  -a \"\"/data/local/tmp\"\"", "ls \"\"/none\"\"", "ls /data/local/tmp /none",
        "stat \"\"/system\"\"", "stat -c %Y \"\"/none\"\"", "df /proc/none | grep /",
        "du -s \"\"/data/local/tmp\"\"", "find /none -type f -and \\( -name '*.x' \\)", "pm list packages",
        "pm path none.such", "dumpsys package android", "ip address | grep wlan | grep inet"}) {
    ExpectSameAnswer(OnPhone("shell " + command));
  }
  EXPECT_EQ(ExpectSameAnswer(OnPhone("'shell date +\"%Y\"'")).status, 0);
}

TEST_P(DirectForms, ShellCommandsThatAreSilent) {
  for (const std::string command :
       {"true", "false", "exit 77", "exit 255", "kill -9 $$", "rm \"/none\"", "mkdir -p \"\"/system/none\"\"",
        "none-such", "cp \"/none\" \"/none2\"", "chmod 644 /none", "mv \"'/none'\" \"'/none2'\"", "\"\"",
        " echo  two   blanks ", "echo out; sleep 0.1; echo err >&2; exit 3",
        "echo err >&2; sleep 0.1; echo out; true", "printf '\\000\\001\\377'", "input text \"a b\"",
        "echo error: not adb; false", "seq 1 20000; false"}) {
    ExpectSameAnswer(OnPhone("shell " + command));
  }
}

TEST_P(DirectForms, ShellCommandsThatReadTheirInput) {
  if (!is_legacy()) {
    EXPECT_EQ(ExpectSameAnswer(OnPhone("shell cat")).status, 0);
    return;
  }
  // The old shell cannot be told that there is no input: the command waits, through adb too.
  bool cancel = false;
  std::thread user([&cancel] {
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    __atomic_store_n(&cancel, true, __ATOMIC_RELEASE);
  });
  EXPECT_EQ(Directly(OnPhone("shell cat"), &cancel).status, 3003);
  user.join();
}

TEST_P(DirectForms, ShellCommandsOnAwkwardNames) {
  for (const std::string& name : kAwkwardNames) {
    WriteFile(phone_folder_seen() / name, name);
    const std::string path = phone_folder() + "/" + name;
    ExpectSameAnswer(OnPhone("shell ls -l   \"\"" + path + "\"\""));
    ExpectSameAnswer(OnPhone("shell du -s \"\"" + path + "\"\""));
  }
}

TEST_P(DirectForms, ShellOutputThatIsLong) {
  const Answer answer = ExpectSameAnswer(OnPhone("shell seq 1 500000"));
  EXPECT_GT(answer.text.size(), 3'000'000u);
}

TEST_P(DirectForms, ShellCommandsThatAreTooLong) {
  EXPECT_EQ(ThroughAdb(OnPhone("shell echo " + std::string(70000, 'a'))).status, 1001);
  EXPECT_EQ(DirectlyOrThroughAdb(OnPhone("shell echo " + std::string(70000, 'a'))),
            ThroughAdb(OnPhone("shell echo " + std::string(70000, 'a'))));
}

// adb waits for a phone that is absent; here it is reported.
TEST_P(DirectForms, Logcat) {
  ExpectSameAnswer(OnPhone("logcat -c"));
  ExpectSameAnswer(OnPhone("logcat -d"));
  ExpectSameAnswer(OnPhone("logcat -d -s 'it'\\''s'"));
  ExpectSameAnswer(OnPhone("logcat -d -v none"));
  for (const std::string& serial : RefusingSerials()) {
    const Answer answer = Directly(" -s " + serial + " logcat -c");
    EXPECT_EQ(answer.status, 1001);
    EXPECT_EQ(answer.text, ThroughAdb(" -s " + serial + " shell true").text);
  }
}

TEST_P(DirectForms, RefusingPhones) {
  for (const std::string& serial : RefusingSerials()) {
    for (const std::string command : {"shell true", "shell getprop", "shell ls -l /storage",
                                      "forward tcp:0 tcp:7", "forward --remove tcp:9", "reverse tcp:7 tcp:8",
                                      "reverse --remove tcp:7", "reboot", "reboot recovery"}) {
      EXPECT_EQ(ExpectSameAnswer(" -s " + serial + " " + command).status, 1001) << serial << ' ' << command;
    }
  }
  EXPECT_THAT(ExpectSameAnswer(" -s ABSENT reconnect").text, HasSubstr("device 'ABSENT' not found"));
}

class DirectPorts : public DirectAndAdb {
 protected:
  std::string Forwards() const { return phones().Adb({"forward", "--list"}).output; }
  std::string Reverses() const { return phones().Adb({"-s", serial(), "reverse", "--list"}).output; }
  void Reset() override {
    DirectAndAdb::Reset();
    phones().Adb({"forward", "--remove-all"});
    phones().Adb({"-s", serial(), "reverse", "--remove-all"});
  }
  Answer Expect(const std::string& command) {
    return ExpectSameEffect(OnPhone(command), [this] { return Forwards() + Reverses(); });
  }
};

TEST_P(DirectPorts, AreMapped) {
  // Such names are the whole host's.
  EXPECT_EQ(Expect("forward localabstract:darokleim-" + phones().port() + " tcp:7").status, 0);
  EXPECT_EQ(Expect("forward --remove tcp:9").status, 1001);
  EXPECT_EQ(Expect("forward nonsense tcp:7").status, 1001);
  EXPECT_EQ(Expect("reverse tcp:7777 tcp:7").status, 0);
  EXPECT_EQ(Expect("reverse tcp:7777 nonsense").status,
            ThroughAdb(OnPhone("reverse tcp:7777 nonsense")).status);
  EXPECT_EQ(Expect("reverse --remove tcp:7").status, ThroughAdb(OnPhone("reverse --remove tcp:7")).status);
}

TEST_P(DirectPorts, AreChosen) {
  const Answer forward = Directly(OnPhone("forward tcp:0 tcp:7"));
  EXPECT_EQ(forward.status, 0);
  ASSERT_THAT(forward.text, MatchesRegex("[0-9]+\n"));
  const std::string address = "tcp:" + forward.text.substr(0, forward.text.size() - 1);
  EXPECT_THAT(Forwards(), StartsWith(std::string(serial()) + " " + address + " tcp:7\n"));
  EXPECT_EQ(Directly(OnPhone("forward --remove " + address)).status, 0);
  EXPECT_THAT(Forwards(), Not(HasSubstr("tcp:")));
}

TEST_P(DirectPorts, ThatAdbRefusesAreLeftToAdb) {
  for (const char* command :
       {"forward tcp:x tcp:7", "forward tcp: tcp:7", "forward tcp:7777 tcp:0", "forward tcp:7777 tcp:x",
        "reverse tcp:7777 tcp:0", "forward --no-rebind tcp:x tcp:7", "forward --list"}) {
    ExpectLeftToAdb(OnPhone(command));
  }
}

class DirectReboots : public DirectAndAdb {
 protected:
  bool IsBack() const {
    return phones().Adb({"devices"}).output.find(std::string(serial()) + "\tdevice\n") != std::string::npos;
  }
  Answer ExpectItBack(const std::string& command) {
    const Answer expected = ThroughAdb(OnPhone(command));
    EXPECT_TRUE(Eventually([this] { return IsBack(); }));
    EXPECT_EQ(Directly(OnPhone(command)), expected);
    EXPECT_TRUE(Eventually([this] { return IsBack(); }));
    return expected;
  }
};

TEST_P(DirectReboots, AndReconnections) {
  EXPECT_EQ(ExpectItBack("reconnect").text, "reconnecting HEALTHY [device]\n\n");
  EXPECT_EQ(ExpectItBack("reboot").status, 0);
}

TEST_P(DirectForms, OtherFormsAreLeftToAdb) {
  for (const char* command :
       {"shell -T true", "shell -t true", "shell -x true", "get-state", "exec-out echo x", "ls", "ls /a /b",
        "push --sync -z x y", "push", "pull --sync x y", "pull -a -a /x y", "reconnect device", "forward",
        "reverse"}) {
    ExpectLeftToAdb(OnPhone(command));
  }
  ExpectLeftToAdb(" devices -l");
  ExpectLeftToAdb(" version");
  ExpectLeftToAdb(" -t 1 shell echo x");
  ExpectLeftToAdb(" -s \"\" shell echo x");
  EXPECT_EQ(Directly(" -P 1 devices").status, 3002);
  EXPECT_EQ(Directly("").status, 3002);
  EXPECT_EQ(Directly(" -s HEALTHY").status, 3002);
}

INSTANTIATE_FOR_GENERATIONS(DirectForms);
INSTANTIATE_FOR_GENERATIONS(DirectPorts);
INSTANTIATE_FOR_GENERATIONS(DirectReboots);

}  // namespace
}  // namespace darokleim::test
