// Every call against a server that is slow, silent, cut off, gone or something else.
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <chrono>
#include <filesystem>
#include <map>
#include <string>
#include <thread>

#include "adb/cancel_token.h"
#include "tests/adb/operations.h"
#include "tests/adb/within.h"

namespace darokleim::adb_test {
namespace {

using namespace adb;
using namespace test;
using std::chrono::milliseconds;

std::string Shown(const Status& status) {
  if (status.ok()) return "ok";
  return "code " + std::to_string(static_cast<int>(status.error().code)) + ": " + status.error().message;
}

class MisbehavingServerTest : public testing::TestWithParam<Operation> {};

INSTANTIATE_TEST_SUITE_P(Each, MisbehavingServerTest, testing::ValuesIn(Operations()),
                         [](const auto& parameter) { return parameter.param.name; });

TEST_P(MisbehavingServerTest, AWholeAnswerSucceeds) {
  const ScriptedServer server(GetParam().conversation);
  const Status status = GetParam().call(server.address(), Within(5000));
  EXPECT_TRUE(status.ok()) << Shown(status);
  EXPECT_EQ(server.surprises(), "");
}

TEST_P(MisbehavingServerTest, AnAnswerByteByByteSucceeds) {
  const ScriptedServer server(GetParam().conversation, {.byte_by_byte = true});
  const Status status = GetParam().call(server.address(), Within(5000));
  EXPECT_TRUE(status.ok()) << Shown(status);
}

TEST_P(MisbehavingServerTest, AnAnswerCutAnywhereIsABrokenConnection) {
  for (size_t cut = 0; cut < ReplyBytes(GetParam()); ++cut) {
    const ScriptedServer server(GetParam().conversation, {.cut_after = cut});
    const Status status = GetParam().call(server.address(), Within(5000));
    if (GetParam().is_whole_at(cut)) {
      EXPECT_TRUE(status.ok()) << cut << ": " << Shown(status);
      continue;
    }
    ASSERT_FALSE(status.ok()) << cut;
    EXPECT_EQ(status.error().code, ErrorCode::kConnectionBroken) << cut << ": " << Shown(status);
    EXPECT_EQ(status.error().message.rfind("expected ", 0), 0u) << cut << ": " << Shown(status);
  }
}

// What an answer lacks that has all but its last byte.
const std::map<std::string, std::string> kLacking = {
    {"Version", "the whole text of the answer to host:version"},
    {"Devices", "the whole text of the answer to host:devices"},
    {"DevicesLong", "the length of the answer to host:devices-l"},
    {"Features", "the whole text of the answer to host-serial:X:features"},
    {"State", "the whole text of the answer to host-serial:X:get-state"},
    {"Connect", "the whole text of the answer to host:connect:10.0.0.1:5555"},
    {"Disconnect", "the whole text of the answer to host:disconnect:"},
    {"Pair", "the whole text of the answer to host:pair:123456:10.0.0.1:40000"},
    {"ReconnectFromServer", "the whole text of the answer to host-serial:X:reconnect"},
    {"ReconnectOffline", "the whole text of the answer to host:reconnect-offline"},
    {"Forwards", "the whole text of the answer to host:list-forward"},
    {"WaitForState", "OKAY or FAIL of the answer to host-serial:X:wait-for-any-device"},
    {"WaitForStateOverNetwork", "OKAY or FAIL of the answer to host-serial:X:wait-for-local-offline"},
    {"TrackDevices", "the whole text of the answer to track-devices"},
    {"RemoveForward", "OKAY or FAIL of the answer to killforward"},
    {"RemoveAllForwards", "OKAY or FAIL of the answer to killforward-all"},
    {"Forward", "the whole text of the answer to forward"},
    {"Reverse", "the whole text of the answer to reverse"},
    {"RemoveReverse", "OKAY or FAIL of the answer to killforward"},
    {"RemoveAllReverses", "OKAY or FAIL of the answer to killforward-all"},
    {"Reverses", "the whole text of the answer to list-forward"},
    {"ShellV2", "the shell's exit status"},
    {"Stat1", "the status of a file"},
    {"List1", "an entry or the end of a list"},
    {"Content1", "the data or the end of a file"},
    {"Send1", "OKAY or FAIL to a file"},
    {"Stat2", "the status of a file"},
    {"List2", "an entry or the end of a list"},
    {"Content2", "the data or the end of a file"},
    {"Send2", "OKAY or FAIL to a file"},
    {"StatTarget2", "the status of a file"},
};

TEST_P(MisbehavingServerTest, AnAnswerWithoutItsEndSaysWhatIsMissing) {
  const ScriptedServer server(GetParam().conversation, {.cut_after = ReplyBytes(GetParam()) - 1});
  const Status status = GetParam().call(server.address(), Within(5000));
  ASSERT_FALSE(status.ok());
  EXPECT_EQ(status.error().message, "expected " + kLacking.at(GetParam().name));
}

TEST_P(MisbehavingServerTest, SilenceEndsAtTheDeadline) {
  for (const size_t cut : {size_t{0}, size_t{3}, ReplyBytes(GetParam()) - 1}) {
    const ScriptedServer server(GetParam().conversation, {.cut_after = cut, .hang_when_cut = true});
    const Clock::time_point began = Clock::now();
    const Status status = GetParam().call(server.address(), {began + milliseconds(50), nullptr});
    ASSERT_FALSE(status.ok()) << cut;
    EXPECT_EQ(status.error().code, ErrorCode::kTimedOut) << cut << ": " << Shown(status);
    EXPECT_GE(Clock::now() - began, milliseconds(50));
    EXPECT_LT(Clock::now() - began, milliseconds(20000));
  }
}

TEST_P(MisbehavingServerTest, ATokenWakesAtOnce) {
  const ScriptedServer server(GetParam().conversation, {.cut_after = 3, .hang_when_cut = true});
  const auto token = CancelToken::Create();
  ASSERT_TRUE(token.ok());
  std::thread canceller([&] {
    std::this_thread::sleep_for(milliseconds(20));
    (*token)->Set();
  });
  const Status status = GetParam().call(server.address(), {Clock::now() + milliseconds(20000), token->get()});
  canceller.join();
  ASSERT_FALSE(status.ok());
  EXPECT_EQ(status.error().code, ErrorCode::kCancelled) << Shown(status);
}

TEST_P(MisbehavingServerTest, SomethingElseIsAProtocolFault) {
  // Each answer of the conversation in turn is another program's.
  for (size_t which = 0; which < GetParam().conversation.size(); ++which) {
    std::vector<Exchange> conversation = GetParam().conversation;
    conversation.resize(which + 1);
    conversation.back().reply = "HTTP/1.1 400 Bad Request\r\n\r\n";
    const ScriptedServer server(conversation);
    const Status status = GetParam().call(server.address(), Within(5000));
    ASSERT_FALSE(status.ok()) << which;
    EXPECT_EQ(status.error().code, ErrorCode::kProtocolFault) << which << ": " << Shown(status);
    EXPECT_NE(status.error().message.find("received 48 54 54 50 2f"), std::string::npos) << Shown(status);
  }
}

TEST_P(MisbehavingServerTest, ARefusalHasTheServersWords) {
  std::vector<Exchange> conversation = {GetParam().conversation.front()};
  conversation.front().reply = "FAIL" + Request("device 'X' not found");
  const ScriptedServer server(conversation);
  const Status status = GetParam().call(server.address(), Within(5000));
  ASSERT_FALSE(status.ok());
  EXPECT_EQ(status.error().code, ErrorCode::kRefused);
  EXPECT_EQ(status.error().message, "device 'X' not found");
}

TEST_P(MisbehavingServerTest, NoServerIsNotConnectedTo) {
  // Bound, so that nobody else takes the port, and never listening.
  const base::UniqueFd bound(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  sockaddr_in name = {};
  name.sin_family = AF_INET;
  name.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof(name);
  ASSERT_EQ(bind(bound.get(), reinterpret_cast<sockaddr*>(&name), length), 0);
  ASSERT_EQ(getsockname(bound.get(), reinterpret_cast<sockaddr*>(&name), &length), 0);
  ServerAddress address;
  address.host = "127.0.0.1";
  address.port = ntohs(name.sin_port);
  const Status status = GetParam().call(address, Within(5000));
  ASSERT_FALSE(status.ok());
  EXPECT_EQ(status.error().code, ErrorCode::kCannotConnect);
  EXPECT_EQ(status.error().system_error, ECONNREFUSED);
}

}  // namespace
}  // namespace darokleim::adb_test
