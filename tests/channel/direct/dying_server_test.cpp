// Commands without adb, whose server ends between any two bytes of all that it says, or says it in odd ways.
#include <gmock/gmock.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <filesystem>
#include <mutex>

#include "tests/channel/direct/direct_channel_test.h"
#include "tests/channel/direct/phone_answers.h"
#include "tests/support/file_content.h"
#include "tests/support/forked_server.h"
#include "tests/support/odd_host.h"
#include "tests/support/own_process.h"

namespace darokleim::channel {
namespace {

using test::Request;

// Left to an adb that is not there: nothing was asked that may have changed something.
constexpr int kLeftToAdb = 3002;
constexpr int kBrokenOff = 3007;

// A server with the modern phone X that says so many bytes, counted over all connections, and then ends each.
class DyingServer {
 public:
  explicit DyingServer(std::size_t bytes)
      : left_(bytes), server_([this](int connection) { Serve(connection); }) {
    setenv("ANDROID_ADB_SERVER_PORT", std::to_string(server_.port()).c_str(), 1);
  }
  std::size_t said() const { return said_; }
  // The services of the phone, and of the server for it, that were asked for.
  int services() const { return services_; }

 private:
  bool Say(int connection, std::string_view bytes) {
    std::size_t good = bytes.size();
    {
      const std::lock_guard lock(mutex_);
      good = std::min(good, left_);
      left_ -= good;
      said_ += good;
    }
    return test::WriteBytes(connection, bytes.substr(0, good)) && good == bytes.size();
  }

  void Serve(int connection) {
    for (;;) {
      const std::string request = test::ReadRequest(connection);
      if (request.empty()) return;
      if (request == "host:devices") {
        Say(connection, "OKAY" + Request("X\tdevice\n"));
        return;
      }
      if (request == "host-serial:X:features") {
        Say(connection, "OKAY" + Request(kModern));
        return;
      }
      if (request == "host:tport:serial:X") {
        if (!Say(connection, "OKAY" + Number64(7))) return;
        continue;
      }
      ++services_;
      Answer(request, connection);
      return;
    }
  }

  void Answer(const std::string& service, int connection) {
    const auto begins = [&](std::string_view begin) { return service.compare(0, begin.size(), begin) == 0; };
    if (service == "sync:") {
      if (Say(connection, "OKAY")) ServeFiles(connection);
    } else if (begins("shell")) {
      Say(connection, "OKAY" + ShellAnswer());
    } else if (begins("host-serial:X:reconnect")) {
      Say(connection, "OKAY" + Request("reconnecting X [device]\n"));
    } else if (begins("reboot:")) {
      Say(connection, "OKAY");
    } else if (service.find("killforward:") != std::string::npos) {
      Say(connection, "OKAYOKAY");
    } else {
      Say(connection, "OKAYOKAY" + Request("41000"));
    }
  }

  void ServeFiles(int connection) {
    for (;;) {
      const std::string request = ReadSyncRequest(connection), id = request.substr(0, 4);
      if (id == "DATA") continue;
      std::string answer;
      if (id == "LIS2") answer = List2();
      if (id == "STA2" || id == "LST2") answer = Status2(id, request == "STA2/new" ? 2 : 0, 0100644, 6);
      if (id == "RECV") answer = Content();
      if (id == "DONE") answer = "OKAY" + Number32(0);
      if (id == "SEND") continue;
      if (answer.empty() || !Say(connection, answer)) return;
    }
  }

  std::mutex mutex_;
  std::size_t left_;
  std::atomic<std::size_t> said_ = 0;
  std::atomic<int> services_ = 0;
  const test::ScriptedServer server_;
};

struct CutCommand {
  std::string name;
  std::string args;
  // Of what the server says, the bytes at the end that the command does not need.
  std::size_t spare = 0;
};

class DyingServerTest : public DirectChannelTest {
 protected:
  std::vector<CutCommand> Commands() const {
    return {
        {"devices", " devices"},
        {"shell", " -s X shell getprop"},
        {"logcat", " -s X logcat -c"},
        {"ls", " -s X ls \"/a\""},
        {"pull", " -s X pull \"/a\" \"" + File("pulled") + "\""},
        {"push", " -s X push \"" + File("sent") + "\" \"/new\""},
        {"forward", " -s X forward tcp:0 tcp:7", Request("41000").size()},
        {"forward --remove", " -s X forward --remove tcp:7"},
        {"reverse", " -s X reverse tcp:0 tcp:7", Request("41000").size()},
        {"reverse --remove", " -s X reverse --remove tcp:7"},
        {"reconnect", " -s X reconnect"},
        {"reboot", " -s X reboot"},
    };
  }
};

TEST_F(DyingServerTest, IsNeverTakenForAWholeAnswerAndAsksForNothingTwice) {
  test::WriteFile(File("sent"), "content");
  for (const CutCommand& command : Commands()) {
    SCOPED_TRACE(command.name);
    std::size_t all = 0;
    {
      const DyingServer server(SIZE_MAX);
      EXPECT_EQ(RunAdb(command.args).status, 0);
      all = server.said();
    }
    ASSERT_GT(all, command.spare);
    std::filesystem::remove(File("pulled"));
    bool was_left_to_adb = false, was_broken = false;
    for (std::size_t bytes = 0; bytes < all; ++bytes) {
      const DyingServer server(bytes);
      const Result result = RunAdb(command.args);
      const bool is_enough = bytes == all - command.spare && command.spare > 0;
      if (is_enough) {
        EXPECT_EQ(result.status, 0) << bytes;
        EXPECT_EQ(result.output, "") << bytes;
        continue;
      }
      EXPECT_TRUE(result.status == kLeftToAdb || result.status == kBrokenOff)
          << result.status << " after " << bytes << " of " << all;
      EXPECT_FALSE(result.handed_out) << bytes;
      EXPECT_LE(server.services(), 1) << bytes;
      EXPECT_EQ(result.status == kLeftToAdb, server.services() == 0) << result.status << ' ' << bytes;
      EXPECT_FALSE(std::filesystem::exists(File("pulled"))) << bytes;
      was_left_to_adb = was_left_to_adb || result.status == kLeftToAdb;
      was_broken = was_broken || result.status == kBrokenOff;
      if (HasFailure()) break;
    }
    // The first request of one is for what may change something; the other may be asked for again.
    EXPECT_EQ(was_left_to_adb, command.name != "reconnect");
    EXPECT_EQ(was_broken, command.name != "devices");
  }
}

TEST_F(DyingServerTest, ThatMixesOkayAndFailIsRefusingWhereItSaysFail) {
  struct Row {
    std::string answer;  // to the request for a service
    int status;
    std::string output;
  };
  const std::vector<Row> rows = {
      {"FAIL0006closed", 1001, "error: closed\n"},
      {"FAIL000AOKAYOKAYOK", 1001, "error: OKAYOKAYOK\n"},
      {"FAIL000aOKAYOKAYOK", 1001, "error: OKAYOKAYOK\n"},
      {"FAIL0000", 1001, "error: \n"},
      {"FAIL0006clos", kBrokenOff, ""},
      {"FAIL+006closed", kBrokenOff, ""},
      {"FAILOKAY", kBrokenOff, ""},
      {"fail0006closed", kBrokenOff, ""},
      {"OKAYFAIL0006closed", kBrokenOff, ""},  // which is no packet of the shell
      {"OKAYOKAY", kBrokenOff, ""},
  };
  for (const Row& row : rows) {
    const PhoneServer server(
        kModern, [&](const std::string&, int connection) { test::WriteBytes(connection, row.answer); });
    const Result result = RunAdb(" -s X shell rm /a");
    EXPECT_EQ(result.status, row.status) << row.answer;
    EXPECT_EQ(result.output, row.output) << row.answer;
  }
}

TEST_F(DyingServerTest, HasAPhoneWithFilesOfImpossibleSizes) {
  const std::uint64_t most = UINT64_MAX;
  const std::string entry = Status2("DNT2", 0, 0100644, most) + Number32(1) + "a";
  {
    const PhoneServer server(kModern, Files({entry + "DONE" + std::string(72, '\0')}));
    EXPECT_EQ(RunAdb(" -s X ls \"/a\"").output, "000081a4 ffffffffffffffff 5e0d5da5 a\n");
  }
  const PhoneServer server(kModern, Files({Status2("STA2", 0, 0100644, most), Content()}));
  EXPECT_EQ(RunAdb(" -s X pull \"/a\" \"" + File("pulled") + "\"").status, 0);
  EXPECT_EQ(test::ReadFile(File("pulled")), "abcdef");
}

TEST_F(DyingServerTest, HasAPhoneWithAnOddSerial) {
  for (const std::string& serial : {std::string("it's"), std::string("a;b"), std::string("[::1]:5555"),
                                    std::string("\xff\xfe"), std::string(4000, 'x')}) {
    const PhoneServer server(kModern, Files({List2()}));
    EXPECT_EQ(RunAdb(" -s \"" + serial + "\" ls \"/a\"").status, 0) << serial;
  }
  const PhoneServer server(kModern, Files({List2()}));
  EXPECT_EQ(RunAdb(" -s " + std::string(70'000, 'x') + " ls \"/a\"").status, kLeftToAdb);
}

#if defined(__linux__)  // where a system call can be made without the C library
// What it prints does not get into a socket or a file, and what it reads is not taken from one.
TEST_F(DirectChannelTest, ServesAHostThatHasClosedItsStandardStreams) {
  const test::ForkedServer server([](const test::ForkedServer::Report& report) {
    const PhoneServer phone(kModern, [](const std::string& service, int connection) {
      if (service != "sync:") {
        WriteBytes(connection, "OKAY" + ShellAnswer());
        return;
      }
      FilesByRequest({{"STA2", Status2("STA2", 0, 0100644, 6)},
                      {"LIS2", List2()},
                      {"RECV", Content()},
                      {"SEND", "OKAY" + Number32(0)}})(service, connection);
    });
    report(std::stoi(phone.port()));
  });
  setenv("ANDROID_ADB_SERVER_PORT", std::to_string(server.port()).c_str(), 1);
  test::WriteFile(File("sent"), std::string(200'000, 'x'));
  test::InProcessOfItsOwn([&] {
    std::vector<int> statuses;
    bool are_still_closed = false;
    {
      const test::WithoutStandardStreams streams;
      for (int round = 0; round < 10; ++round) {
        for (const std::string& args :
             {std::string("shell rm /a"), std::string("ls /a"), "pull /a \"" + File("pulled") + "\"",
              "push \"" + File("sent") + "\" /a"})
          statuses.push_back(RunAdb(" -s X " + args).status);
      }
      are_still_closed = streams.AreStillClosed();
    }
    EXPECT_THAT(statuses, testing::Each(0));
    EXPECT_EQ(test::ReadFile(File("pulled")), "abcdef");
    EXPECT_TRUE(are_still_closed);
  });
}
#endif

}  // namespace
}  // namespace darokleim::channel
