// Commands without adb, with servers and phones that misbehave.
#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <filesystem>
#include <random>

#include "tests/channel/direct/direct_channel_test.h"
#include "tests/channel/direct/phone_answers.h"
#include "tests/support/eventually.h"
#include "tests/support/file_content.h"
#include "tests/support/odd_host.h"

namespace darokleim::channel {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;

constexpr int kBroken = 3007;

class DirectTest : public DirectChannelTest {
 protected:
  static void ExpectBroken(const Result& result) {
    EXPECT_EQ(result.status, kBroken);
    EXPECT_FALSE(result.handed_out);
  }
  // Runs the command against a phone whose answer ends at each of its bytes, and then whole.
  void CutEverywhere(const std::string& features, const std::string& args, const std::string& answer,
                     const std::function<PhoneServer::Serve(const std::string&)>& serve) {
    for (size_t cut = 0; cut < answer.size(); ++cut) {
      const PhoneServer server(features, serve(answer.substr(0, cut)));
      SCOPED_TRACE("after " + std::to_string(cut) + " bytes");
      ExpectBroken(RunAdb(args));
    }
    const PhoneServer server(features, serve(answer));
    EXPECT_EQ(RunAdb(args).status, 0);
  }
  // A phone with this status of the target, and what adb says of a file that is sent there.
  void ExpectPushFails(const std::string& target, const std::string& status, const std::string& error) {
    test::WriteFile(File("sent"), "content");
    const PhoneServer server(kModern, Files({status}));
    const Result result = RunAdb(" -s X push \"" + File("sent") + "\" \"" + target + "\"");
    EXPECT_EQ(result.status, 1001);
    EXPECT_EQ(result.output, "adb: error: " + error + "\n");
  }
};

TEST_F(DirectTest, ServersOfAnotherVersionAreUsed) {
  const PhoneServer server(kModern, nullptr);
  const Result result = RunAdb(" devices");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output, "List of devices attached\nX\tdevice\n\n");
}

TEST_F(DirectTest, HasTheWordDirectInTheLog) {
  const PhoneServer server(kModern, nullptr);
  RunAdb(" devices");
  const std::vector<std::string> lines = test::ReadLines(LogDirectory().File("adb_channel.log"));
  ASSERT_FALSE(lines.empty());
  EXPECT_THAT(lines.back(), HasSubstr("direct devices: status 0, 35 bytes, "));
}

TEST_F(DirectTest, WithoutAServerAdbRuns) {
  { const PhoneServer gone(kModern, nullptr); }
  EXPECT_EQ(RunAdb(" devices").status, 3002);
  UseAdb(DAROKLEIM_MISBEHAVING_ADB);
  EXPECT_EQ(RunAdbWhere("print:through\\sadb exit:0", " devices").output, "through adb");
  EXPECT_EQ(RunAdbWhere("print:through\\sadb exit:0", " -s X shell true").output, "through adb");
}

// A port of the host where something else listens, which says this and closes.
class Foreign {
 public:
  explicit Foreign(std::string answer)
      : listener_(socket(AF_INET, SOCK_STREAM, 0)), answer_(std::move(answer)) {
    sockaddr_in name = {};
    name.sin_family = AF_INET;
    name.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof name;
    EXPECT_EQ(bind(listener_.get(), reinterpret_cast<sockaddr*>(&name), length), 0);
    EXPECT_EQ(listen(listener_.get(), 8), 0);
    getsockname(listener_.get(), reinterpret_cast<sockaddr*>(&name), &length);
    setenv("ANDROID_ADB_SERVER_PORT", std::to_string(ntohs(name.sin_port)).c_str(), 1);
    thread_ = std::thread([this] { Run(); });
  }
  ~Foreign() {
    shutdown(listener_.get(), SHUT_RDWR);
    thread_.join();
  }
  Foreign(const Foreign&) = delete;
  Foreign& operator=(const Foreign&) = delete;

 private:
  void Run() {
    for (;;) {
      const base::UniqueFd connection(accept(listener_.get(), nullptr, nullptr));
      if (!connection.valid()) return;
      ReadBytes(connection.get(), 16);
      WriteBytes(connection.get(), answer_);
    }
  }
  base::UniqueFd listener_;
  const std::string answer_;
  std::thread thread_;
};

TEST_F(DirectTest, WhatIsNotAnAdbServerIsLeftToAdb) {
  for (const char* answer :
       {"", "O", "HTTP/1.1 400 Bad Request\r\n\r\n", "OKAYzzzz", "FAILzzzz", "\0\0\0\0"}) {
    const Foreign foreign(answer);
    for (const char* args :
         {" devices", " -s X shell rm /a", " -s X ls /a", " -s X reboot", " -s X forward tcp:1 tcp:2"}) {
      EXPECT_EQ(RunAdb(args).status, 3002) << answer << ' ' << args;
    }
  }
}

TEST_F(DirectTest, ACutAnswerOfTheShellIsBroken) {
  const auto serve = [](const std::string& answer) -> PhoneServer::Serve {
    return [answer](const std::string&, int connection) { WriteBytes(connection, answer); };
  };
  for (const char* command : {"ls -l \"\"/a\"\"", "getprop", "rm \"/a\""}) {
    CutEverywhere(kModern, std::string(" -s X shell ") + command, "OKAY" + ShellAnswer(), serve);
  }
}

TEST_F(DirectTest, TheOldShellCannotSayWhereItEnds) {
  const PhoneServer server(
      "", [](const std::string&, int connection) { WriteBytes(connection, "OKAYhalf a li"); });
  EXPECT_EQ(RunAdb(" -s X shell getprop").output, "half a li");
}

TEST_F(DirectTest, ACutListIsBroken) {
  for (const auto& [features, answer] : {std::pair{kModern, List2()}, std::pair{"", List1()}}) {
    CutEverywhere(features, " -s X ls \"/a\"", answer, [](const std::string& cut) { return Files({cut}); });
  }
}

TEST_F(DirectTest, AListWithANameThatIsNoneIsBroken) {
  for (const std::string& name : {std::string(), std::string("a/b"), std::string("a\0b", 3)}) {
    const PhoneServer server(kModern, Files({Entry2("a") + Entry2(name) + "DONE" + std::string(72, '\0')}));
    ExpectBroken(RunAdb(" -s X ls \"/a\""));
  }
}

TEST_F(DirectTest, ACutPullIsBrokenAndLeavesNothing) {
  const std::string stat = Status2("STA2", 0, 0100644, 6);
  const std::string content = Content();
  const std::string args = " -s X pull -a \"/a\" \"" + File("pulled") + "\"";
  for (size_t cut = 0; cut < content.size(); ++cut) {
    const PhoneServer server(kModern, Files({stat, content.substr(0, cut)}));
    ExpectBroken(RunAdb(args));
    EXPECT_FALSE(std::filesystem::exists(File("pulled"))) << cut;
  }
  const PhoneServer server(kModern, Files({stat, content}));
  EXPECT_EQ(RunAdb(args).status, 0);
  EXPECT_EQ(test::ReadFile(File("pulled")), "abcdef");
}

TEST_F(DirectTest, ACutPushIsBrokenAndNotSentTwice) {
  test::WriteFile(File("sent"), "content");
  const std::string stat = Status2("STA2", 2, 0, 0);
  const std::string args = " -s X push \"" + File("sent") + "\" \"/a\"";
  const std::string okay = "OKAY" + Number32(0);
  for (size_t cut = 0; cut < okay.size(); ++cut) {
    const PhoneServer server(kModern, Files({stat, okay.substr(0, cut)}));
    ExpectBroken(RunAdb(args));
    EXPECT_THAT(server.services(), ElementsAre("sync:"));
  }
  const PhoneServer server(kModern, Files({stat, okay}));
  EXPECT_EQ(RunAdb(args).status, 0);
}

TEST_F(DirectTest, APulledFileThatVanishesCannotGetItsTime) {
  const PhoneServer server(kModern, [this](const std::string&, int connection) {
    WriteBytes(connection, "OKAY");
    ReadSyncRequest(connection);
    WriteBytes(connection, Status2("STA2", 0, 0100644, 6));
    ReadSyncRequest(connection);
    std::filesystem::remove(File("pulled"));
    WriteBytes(connection, Content());
  });
  const Result result = RunAdb(" -s X pull -a \"/a\" \"" + File("pulled") + "\"");
  EXPECT_EQ(result.status, 1001);
  EXPECT_EQ(result.output, "[100%] /a\n");
  EXPECT_FALSE(std::filesystem::exists(File("pulled")));
}

TEST_F(DirectTest, APushToAFileThatIsNamedAsAFolderFails) {
  ExpectPushFails("/a/", Status2("STA2", 0, 0100644, 6), "failed to access '/a/': Not a directory");
}

TEST_F(DirectTest, AnErrorOfThePhoneHasItsText) {
  const std::pair<std::uint32_t, const char*> texts[] = {{1, "Operation not permitted"},
                                                         {4, "Interrupted system call"},
                                                         {5, "Input/output error"},
                                                         {12, "Cannot allocate memory"},
                                                         {13, "Permission denied"},
                                                         {14, "Bad address"},
                                                         {17, "File exists"},
                                                         {20, "Not a directory"},
                                                         {21, "Is a directory"},
                                                         {22, "Invalid argument"},
                                                         {23, "Too many open files in system"},
                                                         {24, "Too many open files"},
                                                         {26, "Text file busy"},
                                                         {27, "File too large"},
                                                         {28, "No space left on device"},
                                                         {30, "Read-only file system"},
                                                         {36, "File name too long"},
                                                         {40, "Too many levels of symbolic links"},
                                                         {75, "Value too large for defined data type"}};
  for (const auto& [error, text] : texts) {
    ExpectPushFails("/a", Status2("STA2", error, 0, 0),
                    std::string("stat failed when trying to push to /a: ") + text);
  }
}

TEST_F(DirectTest, AnErrorThatOnlyThePhoneKnowsIsOneOfInputAndOutput) {
  ExpectPushFails("/a", Status2("STA2", 99, 0, 0),
                  "stat failed when trying to push to /a: Input/output error");
}

#if defined(__linux__)  // where a regular file can be opened and not read
TEST_F(DirectTest, AFileThatCannotBeReadIsNotSent) {
  const PhoneServer server(kModern, Files({Status2("STA2", 2, 0, 0)}));
  const Result result = RunAdb(" -s X push /proc/self/mem /a");
  EXPECT_EQ(result.status, 1001);
  EXPECT_THAT(result.output,
              HasSubstr("adb: error: failed to read all of '/proc/self/mem': Input/output error\n"));
}
#endif

TEST_F(DirectTest, WhatAPhoneSaysBeforeItRestartsIsPrinted) {
  const PhoneServer server(
      kModern, [](const std::string&, int connection) { WriteBytes(connection, "OKAYgoing down\n"); });
  const Result result = RunAdb(" -s X reboot");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output, "going down\n");
}

TEST_F(DirectTest, ASerialNumberThatIsTooLongForTheServerIsLeftToAdb) {
  const PhoneServer server(kModern, nullptr);
  EXPECT_EQ(RunAdb(" -s " + std::string(70'000, 's') + " reconnect").status, 3002);
}

TEST_F(DirectTest, WithoutADescriptorTheSystemHasRefused) {
  const PhoneServer server(kModern, nullptr);
  EXPECT_EQ(RunAdb(" devices").status, 0);  // the log is open now
  const test::WithoutDescriptors none;
  EXPECT_EQ(RunAdb(" devices").status, 3006);
}

TEST_F(DirectTest, WhatMayHaveRunIsNotRunAgain) {
  UseAdb(DAROKLEIM_MISBEHAVING_ADB);
  const Misbehaviour misbehaviour("print:through\\sadb");
  for (const char* args : {" -s X shell rm \"/a\"", " -s X reboot", " -s X forward tcp:1 tcp:2",
                           " -s X reverse --remove tcp:1", " -s X logcat -c"}) {
    const PhoneServer server(kModern, [](const std::string&, int) {});
    ExpectBroken(RunAdb(args));
    EXPECT_EQ(server.services().size(), 1u) << args;
  }
}

TEST_F(DirectTest, RefusalsOfServicesAreAdbs) {
  const PhoneServer server(
      kModern, [](const std::string&, int connection) { WriteBytes(connection, "FAIL0006closed"); });
  EXPECT_EQ(RunAdb(" -s X shell rm /a").output, "error: closed\n");
  EXPECT_EQ(RunAdb(" -s X reboot").output, "error: closed\n");
  EXPECT_EQ(RunAdb(" -s X reverse tcp:1 tcp:2").output, "adb: error: closed\n");
  EXPECT_EQ(RunAdb(" -s X ls /a").output, "adb: error: connect failed: closed\n");
  for (const char* args :
       {" -s X shell getprop", " -s X reboot", " -s X reverse tcp:1 tcp:2", " -s X ls /a"}) {
    EXPECT_EQ(RunAdb(args).status, 1001);
  }
}

TEST_F(DirectTest, AnswersOfAnyBytesEnd) {
  std::minstd_rand random(1);
  test::WriteFile(File("sent"), "content");
  const std::vector<std::string> pieces = {"OKAY",
                                           "FAIL",
                                           "DATA",
                                           "DONE",
                                           "DNT2",
                                           "STA2",
                                           std::string(4, '\0'),
                                           std::string(1, '\1'),
                                           "\xff\xff\xff\xff",
                                           "\x7f",
                                           Number32(3),
                                           "abc",
                                           "0004"};
  for (int i = 0; i < 300; ++i) {
    std::string answer = random() % 4 == 0 ? "" : "OKAY";
    for (auto n = random() % 12; n > 0; --n) answer += pieces[random() % pieces.size()];
    const PhoneServer server(kModern,
                             [&](const std::string&, int connection) { WriteBytes(connection, answer); });
    for (const std::string& args :
         {std::string("shell getprop"), std::string("ls /a"), std::string("reverse tcp:1 tcp:2"),
          "pull /a \"" + File("pulled") + "\"", "push \"" + File("sent") + "\" /a"}) {
      const int status = RunAdb(" -s X " + args).status;
      EXPECT_TRUE(status == kBroken || (status >= 0 && status < 1256)) << args << ": " << status;
    }
  }
}

class DirectWaits : public DirectTest {
 protected:
  // Cancels a command that waits for ever, and returns how long it took to end.
  static milliseconds TimeToCancel(const std::string& args) {
    bool cancel = false;
    Clock::time_point cancelled;
    std::thread user([&] {
      std::this_thread::sleep_for(milliseconds(50));
      cancelled = Clock::now();
      __atomic_store_n(&cancel, true, __ATOMIC_RELEASE);
    });
    const Result result = RunAdb(args, &cancel);
    const Clock::time_point end = Clock::now();
    user.join();
    EXPECT_EQ(result.status, 3003) << args;
    EXPECT_FALSE(result.handed_out);
    return std::chrono::duration_cast<milliseconds>(end - cancelled);
  }
  // A busy machine may be late now and then.
  static void ExpectCancellable(const std::string& args) {
    milliseconds best = TimeToCancel(args);
    for (int i = 0; i < 3 && best >= milliseconds(100); ++i) best = std::min(best, TimeToCancel(args));
    EXPECT_LT(best, milliseconds(100)) << args;
  }
  const std::vector<std::string> args_ = {" -s X shell true", " -s X ls \"/a\"", " -s X reverse tcp:1 tcp:2",
                                          " -s X pull \"/a\" \"" + File("pulled") + "\"", " -s X reboot"};
};

TEST_F(DirectWaits, OnASilentServerEndWhenCancelled) {
  const base::UniqueFd listener(socket(AF_INET, SOCK_STREAM, 0));
  sockaddr_in name = {};
  name.sin_family = AF_INET;
  name.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof name;
  ASSERT_EQ(bind(listener.get(), reinterpret_cast<sockaddr*>(&name), length), 0);
  ASSERT_EQ(listen(listener.get(), 8), 0);
  getsockname(listener.get(), reinterpret_cast<sockaddr*>(&name), &length);
  setenv("ANDROID_ADB_SERVER_PORT", std::to_string(ntohs(name.sin_port)).c_str(), 1);
  ExpectCancellable(" devices");
  ExpectCancellable(" -s X shell true");
}

TEST_F(DirectWaits, OnASilentPhoneEndWhenCancelled) {
  const PhoneServer server(kModern, [](const std::string&, int connection) { WaitUntilClosed(connection); });
  for (const std::string& args : args_) ExpectCancellable(args);
  EXPECT_TRUE(test::Eventually([&] { return server.open_connections() == 0; })) << "the connection is closed";
}

TEST_F(DirectWaits, InMidAnswerEndWhenCancelled) {
  const PhoneServer server(kModern, [](const std::string& service, int connection) {
    WriteBytes(connection, service == "sync:" ? "OKAYDNT2" : "OKAY");
    WaitUntilClosed(connection);
  });
  for (const std::string& args : args_) ExpectCancellable(args);
}

TEST_F(DirectWaits, EndAtTheTimeLimit) {
  setenv("DAROKLEIM_CHANNEL_TIMEOUT", "0.1", 1);
  UseAdb(File("no-adb"));
  const PhoneServer server(kModern, [](const std::string&, int connection) { WaitUntilClosed(connection); });
  for (const std::string& args : args_) {
    const Clock::time_point start = Clock::now();
    EXPECT_EQ(RunAdb(args).status, 3003);
    EXPECT_LT(Since(start), milliseconds(2000));
  }
}

class DirectKeptConnections : public DirectTest {};

TEST_F(DirectKeptConnections, AreUsedAgain) {
  const PhoneServer server(kModern, Files(std::vector<std::string>(50, List2())));
  for (int i = 0; i < 20; ++i) EXPECT_EQ(RunAdb(" -s X ls \"/a\"").status, 0);
  EXPECT_THAT(server.services(), ElementsAre("sync:"));
  EXPECT_TRUE(test::Eventually([&] { return server.open_connections() == 1; }));
  EXPECT_EQ(RunAdb(" -s Y ls \"/a\"").status, 0);
  EXPECT_THAT(server.services(), ElementsAre("sync:", "sync:")) << "a phone has its own";
}

TEST_F(DirectKeptConnections, AreClosedInTimeWithoutAnotherCall) {
  const PhoneServer server(kModern, Files(std::vector<std::string>(50, List2())));
  EXPECT_EQ(RunAdb(" -s X ls \"/a\"").status, 0);
  const auto answered = std::chrono::steady_clock::now();
  EXPECT_TRUE(test::Eventually([&] { return server.open_connections() == 0; }));
  EXPECT_GE(std::chrono::steady_clock::now() - answered, milliseconds(1000));
}

TEST_F(DirectKeptConnections, AreFew) {
  const PhoneServer server(kModern, Files(std::vector<std::string>(50, List2())));
  for (int i = 0; i < 30; ++i) EXPECT_EQ(RunAdb(" -s X" + std::to_string(i) + " ls \"/a\"").status, 0);
  EXPECT_TRUE(test::Eventually([&] { return server.open_connections() <= 8; })) << server.open_connections();
}

TEST_F(DirectKeptConnections, AreReplacedWhenTheyHaveEnded) {
  PhoneServer server(kModern, Files(std::vector<std::string>(50, List2())));
  EXPECT_EQ(RunAdb(" -s X ls \"/a\"").status, 0);
  server.Disconnect();
  EXPECT_EQ(RunAdb(" -s X ls \"/a\"").status, 0);
  EXPECT_THAT(server.services(), ElementsAre("sync:", "sync:"));
}

// The phone takes the request and then ends the connection.
TEST_F(DirectKeptConnections, AreReplacedOnceForARequestThatReads) {
  std::atomic<int> services = 0;
  const PhoneServer server(kModern, [&](const std::string& service, int connection) {
    Files(services++ == 0 ? std::vector<std::string>{List2(), ""} : std::vector<std::string>{""})(service,
                                                                                                  connection);
  });
  EXPECT_EQ(RunAdb(" -s X ls \"/a\"").status, 0);
  ExpectBroken(RunAdb(" -s X ls \"/a\""));
  EXPECT_EQ(services, 2) << "a new one, and no third";
}

TEST_F(DirectKeptConnections, AreNotReplacedForWhatChangesSomething) {
  test::WriteFile(File("sent"), "content");
  const std::string stat = Status2("STA2", 2, 0, 0);
  const PhoneServer server(kModern, Files({stat, "OKAY" + Number32(0), stat, ""}));
  const std::string args = " -s X push \"" + File("sent") + "\" \"/a\"";
  EXPECT_EQ(RunAdb(args).status, 0);
  ExpectBroken(RunAdb(args));
  EXPECT_THAT(server.services(), ElementsAre("sync:"));
}

TEST_F(DirectKeptConnections, AreNotKeptAfterARefusal) {
  const PhoneServer server(kModern,
                           Files({Status2("STA2", 0, 0100644, 6), "FAIL" + Number32(4) + "nope", List2()}));
  EXPECT_THAT(RunAdb(" -s X pull \"/a\" \"" + File("pulled") + "\"").output, EndsWith(": remote nope\n"));
  EXPECT_EQ(RunAdb(" -s X ls \"/a\"").status, kBroken) << "the new connection answers with a status";
  EXPECT_THAT(server.services(), ElementsAre("sync:", "sync:"));
}

TEST_F(DirectKeptConnections, AreNotThoseOfAFork) {
  const PhoneServer server(kModern, Files(std::vector<std::string>(50, List2())));
  EXPECT_EQ(RunAdb(" -s X ls \"/a\"").status, 0);
  test::InProcessOfItsOwn([] { EXPECT_EQ(RunAdb(" -s X ls \"/a\"").status, 0); });
  EXPECT_EQ(server.services().size(), 2u);
  EXPECT_EQ(RunAdb(" -s X ls \"/a\"").status, 0);
  EXPECT_EQ(server.services().size(), 2u) << "the parent's is still there";
}

// --- Streams

struct Received {
  static void Receive(void* context, const char* data, int length) {
    auto* const self = static_cast<Received*>(context);
    if (data != nullptr) {
      self->output.append(data, static_cast<size_t>(length));
      self->some = true;
    } else {
      self->status = length;
    }
  }
  int Wait() {
    test::Eventually([this] { return status >= 0; });
    return status;
  }
  std::string output;
  std::atomic<bool> some = false;
  std::atomic<int> status = -1;
};

class DirectStreams : public DirectTest {
 protected:
  static int Start(const std::string& args, Received* received, const bool* cancel = nullptr) {
    return ExecuteAdbCommandAnsynchronization(args.c_str(), cancel, received,
                                              reinterpret_cast<void*>(&Received::Receive));
  }
};

TEST_F(DirectStreams, PassOnTheOutputAndTheStatus) {
  const PhoneServer server(kModern, [](const std::string&, int connection) {
    WriteBytes(connection, "OKAY" + Packet(1, "one\n"));
    WriteBytes(connection, Packet(2, "two\n") + Packet(3, "\3"));
  });
  Received received;
  ASSERT_EQ(Start(" -s X logcat -s 'a b'", &received), 0);
  EXPECT_EQ(received.Wait(), 1003);
  EXPECT_EQ(received.output, "one\ntwo\n");
  ASSERT_EQ(server.services().size(), 1u);
  EXPECT_THAT(server.services()[0], EndsWith("export ANDROID_LOG_TAGS=\"''\"; exec logcat '-s' 'a b'"));
}

TEST_F(DirectStreams, ReportAnAbsentPhone) {
  const PhoneServer server(kModern, nullptr);
  Received received;
  ASSERT_EQ(Start(" -s ABSENT logcat", &received), 0);
  EXPECT_EQ(received.Wait(), 1001);
  EXPECT_EQ(received.output, "error: device 'ABSENT' not found\n");
}

TEST_F(DirectStreams, SayThatTheConnectionBroke) {
  const PhoneServer server(kModern, [](const std::string&, int connection) {
    WriteBytes(connection, "OKAY" + Packet(1, "one\n"));
  });
  Received received;
  ASSERT_EQ(Start(" -s X logcat", &received), 0);
  EXPECT_EQ(received.Wait(), kBroken);
  EXPECT_EQ(received.output, "one\n");
}

TEST_F(DirectStreams, EndWhenCancelled) {
  const PhoneServer server(kModern, [](const std::string&, int connection) {
    WriteBytes(connection, "OKAY" + Packet(1, "one\n"));
    WaitUntilClosed(connection);
  });
  Received received;
  bool cancel = false;
  ASSERT_EQ(Start(" -s X logcat", &received, &cancel), 0);
  EXPECT_TRUE(test::Eventually([&] { return received.some.load(); }));
  __atomic_store_n(&cancel, true, __ATOMIC_RELEASE);
  EXPECT_EQ(received.Wait(), 3003);
  EXPECT_TRUE(test::Eventually([&] { return server.open_connections() == 0; }));
}

TEST_F(DirectStreams, GoThroughAdbWithoutAServer) {
  { const PhoneServer gone(kModern, nullptr); }
  Received failed;
  ASSERT_EQ(Start(" -s X logcat", &failed), 0);
  EXPECT_EQ(failed.Wait(), 3002);
  UseAdb(DAROKLEIM_MISBEHAVING_ADB);
  const Misbehaviour misbehaviour("print:through\\sadb exit:4");
  Received received;
  ASSERT_EQ(Start(" -s X logcat", &received), 0);
  EXPECT_EQ(received.Wait(), 1004);
  EXPECT_EQ(received.output, "through adb");
}

}  // namespace
}  // namespace darokleim::channel
