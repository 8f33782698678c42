// Memory runs out at every moment at which a command without adb allocates some. The adb server is a process of its own:
// every allocation of this one may be the one that fails.
#include <fcntl.h>
#include <sys/stat.h>

#include "tests/channel/direct/direct_channel_test.h"
#include "tests/channel/direct/phone_answers.h"
#include "tests/channel/memory_trials.h"
#include "tests/support/eventually.h"
#include "tests/support/file_content.h"
#include "tests/support/forked_server.h"
#include "tests/support/open_descriptors.h"

namespace darokleim::channel {
namespace {

constexpr int kConnectionBroken = 3007;

struct Form {
  std::string name;
  std::string features;
  std::string words;          // after the serial number; HERE is the folder of the test
  PhoneServer::Serve answer;  // of the phone
  int status = 0;
  std::string output = "";  // how it begins: a transfer ends with the time that it took
};

void PrintTo(const Form& form, std::ostream* out) {
  *out << form.name;
}

PhoneServer::Serve Say(const std::string& answer) {
  return [answer](const std::string&, int connection) { WriteBytes(connection, answer); };
}

PhoneServer::Serve ModernFiles(uint32_t error_of_target, const std::string& answer_to_send) {
  return FilesByRequest({{"STA2", Status2("STA2", error_of_target, error_of_target == 0 ? 0100644 : 0, 6)},
                         {"LST2", Status2("LST2", 2, 0, 0)},
                         {"LIS2", List2()},
                         {"RECV", Content()},
                         {"SEND", answer_to_send}});
}

PhoneServer::Serve OldFiles() {
  return FilesByRequest({{"STAT", Status1("STAT", 0100644, 6)}, {"LIST", List1()}, {"RECV", Content()}});
}

std::string SyncMessage(const std::string& id, const std::string& text) {
  return id + Number32(static_cast<uint32_t>(text.size())) + text;
}

const std::string kSent = SyncMessage("OKAY", "");
const std::string kTwoFiles = "000081a4 00000005 5e0d5da5 a\n000081a4 00000005 5e0d5da5 b\n";

// Those of the file service, which keep their connection.
std::vector<Form> FileForms() {
  const std::string target = "HERE/pulled", source = "HERE/sent";
  return {
      {"List", kModern, "ls \"/a\"", ModernFiles(0, kSent), 0, kTwoFiles},
      {"OldList", "", "ls \"/a\"", OldFiles(), 0, kTwoFiles},
      {"Pull", kModern, "pull -a \"/a\" \"" + target + "\"", ModernFiles(0, kSent), 0, "/a: 1 file pulled"},
      {"OldPull", "", "pull \"/a\" \"" + target + "\"", OldFiles(), 0, "/a: 1 file pulled"},
      {"PullOfNothing", kModern, "pull \"/a\" \"" + target + "\"", ModernFiles(2, kSent), 1001,
       "adb: error: failed to stat remote object '/a': No such file or directory\n"},
      {"Push", kModern, "push \"" + source + "\" \"/a\"", ModernFiles(2, kSent)},
      {"PushOfChanges", kModern, "push --sync \"" + source + "\" \"/a\"", ModernFiles(2, kSent)},
      {"RefusedPush", kModern, "push \"" + source + "\" \"/a\"", ModernFiles(2, SyncMessage("FAIL", "nope")),
       1001},
  };
}

std::vector<Form> OtherForms() {
  const std::string done = "OKAYOKAY", refused = "FAIL0006closed";
  return {
      {"Devices", kModern, "devices", nullptr, 0, "List of devices attached\nX\tdevice\n\n"},
      {"Shell", kModern, "shell cat /a", Say("OKAY" + ShellAnswer()), 0, "line\nerror\n"},
      {"OldShell", "", "shell cat /a", Say("OKAYline\n"), 0, "line\n"},
      {"RefusedShell", kModern, "shell cat /a", Say(refused), 1001, "error: closed\n"},
      {"CutShell", kModern, "shell cat /a", Say("OKAY" + Packet(1, "line\n")), kConnectionBroken},
      {"Log", kModern, "logcat -d -s a", Say("OKAY" + ShellAnswer()), 0, "line\nerror\n"},
      {"Forward", kModern, "forward tcp:0 tcp:2", Say(done + "000540001"), 0, "40001\n"},
      {"Reverse", kModern, "reverse --remove tcp:1", Say(done)},
      {"Reboot", kModern, "reboot", Say("OKAY")},
      {"RefusedReboot", kModern, "reboot", Say(refused), 1001, "error: closed\n"},
  };
}

class DirectMemoryTest : public DirectChannelTest {
 protected:
  DirectMemoryTest() { test::WriteFile(File("sent"), "content"); }

  // The server adds a byte to a file for each service of a phone that is asked for.
  void Start(const std::string& features, const PhoneServer::Serve& answer) {
    const std::string path = File("services");
    server_.emplace([&](const test::ForkedServer::Report& report) {
      const int services = open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
      const PhoneServer server(features, [&](const std::string& service, int connection) {
        if (write(services, "s", 1) == 1) answer(service, connection);
      });
      report(std::stoi(server.port()));
    });
    setenv("ANDROID_ADB_SERVER_PORT", std::to_string(server_->port()).c_str(), 1);
  }
  // The words of the command with a serial number, always of the same length.
  std::string Arguments(const Form& form, int serial) const {
    std::string words = form.words;
    if (const size_t here = words.find("HERE"); here != std::string::npos) words.replace(here, 4, File(""));
    if (words == "devices") return " " + words;
    return " -s " + std::to_string(1000000 + serial) + " " + words;
  }

  void ExpectOutcome(const Form& form, const Outcome& outcome) const {
    if (outcome.status != form.status) {
      ExpectNoMemory(outcome);
    } else if (outcome.status == kConnectionBroken) {
      EXPECT_EQ(outcome.out, nullptr);
    } else {
      EXPECT_EQ(outcome.output().substr(0, form.output.size()), form.output);
    }
    ReleaseAdbOutBuffer(outcome.out);
    const std::string pulled = test::ReadFile(File("pulled"));
    EXPECT_TRUE(pulled.empty() || pulled == "abcdef" || pulled == "older") << pulled;
    test::WriteFile(File("pulled"), "older");
  }

  // Runs a command again and again, with another allocation failing each time.
  // again: on the connection that the same command has kept.
  void RunOut(const Form& form, bool again) {
    Start(form.features, form.answer);
    const size_t before = test::OpenDescriptors();
    RunAdb(Arguments(form, 0));  // what is kept for the process is allocated once
    size_t commands = 1;
    const long allocations = WithEachAllocationFailing([&](long number) {
      SCOPED_TRACE(number);
      // Otherwise of another phone than before, which has no connection yet.
      const std::string args = Arguments(form, again ? 1 : static_cast<int>(number) + 2);
      if (again) RunAdb(args);
      Outcome outcome;
      const bool failed = outcome.Run(args, number);
      commands += again ? 2 : 1;
      EXPECT_TRUE(failed || outcome.status == form.status);
      ExpectOutcome(form, outcome);
      return failed;
    });
    EXPECT_GT(allocations, 5);
    ExpectNothingIsLeft(before, commands);
  }

  // The same for a stream of so many bytes.
  void RunOutInStreams(const std::string& args, size_t bytes) {
    const size_t before = test::OpenDescriptors();
    size_t streams = 0;
    const long allocations = WithEachAllocationFailing([&](long number) {
      SCOPED_TRACE(number);
      ++streams;
      return RunOutOnceInAStream(args, static_cast<long long>(bytes), number);
    });
    EXPECT_GT(allocations, 5);
    ExpectNothingIsLeft(before, streams);
  }

  void ExpectNothingIsLeft(size_t descriptors, size_t commands) const {
    EXPECT_LE(test::ReadFile(File("services")).size(), commands) << "no command runs twice";
    EXPECT_TRUE(test::Eventually([&] { return test::OpenDescriptors() <= descriptors; }));
  }

 private:
  std::optional<test::ForkedServer> server_;
};

class DirectCommand : public DirectMemoryTest, public testing::WithParamInterface<Form> {};
class DirectFileCommand : public DirectCommand {};

std::string NameOf(const testing::TestParamInfo<Form>& form) {
  return form.param.name;
}

TEST_P(DirectCommand, RunsOutOfMemory) {
  RunOut(GetParam(), false);
}

TEST_P(DirectFileCommand, RunsOutOfMemoryOnANewConnection) {
  RunOut(GetParam(), false);
}

TEST_P(DirectFileCommand, RunsOutOfMemoryOnAKeptConnection) {
  RunOut(GetParam(), true);
}

INSTANTIATE_TEST_SUITE_P(, DirectCommand, testing::ValuesIn(OtherForms()), NameOf);
INSTANTIATE_TEST_SUITE_P(, DirectFileCommand, testing::ValuesIn(FileForms()), NameOf);

TEST_F(DirectMemoryTest, RunsOutInAStream) {
  const std::string lines(100000, 'l');
  Start(kModern, Say("OKAY" + Packet(1, lines) + Packet(3, std::string(1, '\0'))));
  RunOutInStreams(" -s 1000000 logcat -s a", lines.size());
}

TEST_F(DirectMemoryTest, RunsOutInAStreamOfAList) {
  Start(kModern, ModernFiles(0, kSent));
  RunOutInStreams(" -s 1000000 ls \"/a\"", kTwoFiles.size());
}

TEST_F(DirectMemoryTest, RunsOutInAStreamThatGoesThroughAdbAfterAll) {
  { const PhoneServer gone(kModern, nullptr); }
  UseAdb(DAROKLEIM_MISBEHAVING_ADB);
  const Misbehaviour misbehaviour("print:text");
  RunOutInStreams(" -s 1000000 logcat -s a", 4);
}

}  // namespace
}  // namespace darokleim::channel
