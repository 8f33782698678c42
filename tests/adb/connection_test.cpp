#include "adb/connection.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/un.h>

#include <chrono>
#include <thread>

#include "adb/cancel_token.h"
#include "adb/message.h"
#include "tests/adb/connected_pair.h"
#include "tests/adb/operations.h"
#include "tests/adb/within.h"
#include "tests/support/open_descriptors.h"
#include "tests/support/scripted_server.h"
#include "tests/support/temporary_directory.h"

namespace darokleim::adb_test {
namespace {

using namespace adb;
using namespace test;

ErrorCode CodeOf(const Status& status) {
  EXPECT_FALSE(status.ok());
  return status.ok() ? ErrorCode::kMisuse : status.error().code;
}

TEST(ConnectionTest, BuffersAndConsumes) {
  ConnectedPair pair;
  Connection connection = pair.Take();
  ASSERT_TRUE(WriteBytes(pair.far.get(), "0123456789"));
  ASSERT_TRUE(connection.Buffer(4, "four bytes", Within(5000)).ok());
  EXPECT_EQ(connection.buffered(), "0123456789");
  connection.Consume(4);
  std::array<char, 3> three;
  ASSERT_EQ(*connection.Read(three, Within(5000)), 3u);
  EXPECT_EQ(std::string_view(three.data(), 3), "456");
  EXPECT_EQ(connection.buffered(), "789");
  EXPECT_TRUE(connection.HasNews());
}

TEST(ConnectionTest, WhatDoesNotFitIntoTheTargetIsBuffered) {
  ConnectedPair pair;
  Connection connection = pair.Take();
  ASSERT_TRUE(WriteBytes(pair.far.get(), "0123456789"));
  std::array<char, 6> six;
  ASSERT_EQ(*connection.Read(six, Within(5000)), 6u);
  EXPECT_EQ(connection.buffered(), "6789");
}

// However the pieces lie in the buffer.
TEST(ConnectionTest, ALongStreamInPiecesOfEverySize) {
  ConnectedPair pair;
  Connection connection = pair.Take();
  std::string sent;
  for (int i = 0; sent.size() < 3'000'000; ++i) sent += std::to_string(i) + ",";
  std::thread writer([&] {
    EXPECT_TRUE(WriteBytes(pair.far.get(), sent));
    pair.far.Reset();
  });
  std::string received;
  size_t next = 1;
  while (connection.Buffer(next, "more", Within(20000)).ok()) {
    received += connection.buffered().substr(0, next);
    connection.Consume(next);
    next = next * 7 % Connection::kUsualBuffer + 1;
  }
  received += connection.buffered();
  writer.join();
  EXPECT_TRUE(received == sent);
}

TEST(ConnectionTest, GrowingKeepsWhatIsThere) {
  ConnectedPair pair;
  Connection connection = pair.Take();
  ASSERT_TRUE(WriteBytes(pair.far.get(), "0123456789"));
  ASSERT_TRUE(connection.Buffer(10, "bytes", Within(5000)).ok());
  connection.Consume(3);
  connection.GrowBuffer(2 * Connection::kUsualBuffer);
  EXPECT_EQ(connection.buffered(), "3456789");
  std::string more(2 * Connection::kUsualBuffer - 7, 'x');
  ASSERT_TRUE(WriteBytes(pair.far.get(), more));
  ASSERT_TRUE(connection.Buffer(2 * Connection::kUsualBuffer, "all", Within(5000)).ok());
  EXPECT_TRUE(connection.buffered() == "3456789" + more);
}

TEST(ConnectionTest, TheEndOfTheStream) {
  ConnectedPair pair;
  Connection connection = pair.Take();
  ASSERT_TRUE(WriteBytes(pair.far.get(), "abc"));
  EXPECT_FALSE(connection.is_open() && pair.near.valid());
  pair.far.Reset();
  const Status status = connection.Buffer(4, "four bytes", Within(5000));
  EXPECT_EQ(CodeOf(status), ErrorCode::kConnectionBroken);
  EXPECT_EQ(status.error().message, "expected four bytes");
  EXPECT_EQ(connection.buffered(), "abc");  // and what came before is still there
  EXPECT_TRUE(connection.HasNews());
}

TEST(ConnectionTest, NewsOfAnIdleConnection) {
  ConnectedPair pair;
  Connection connection = pair.Take();
  EXPECT_FALSE(connection.HasNews());
  EXPECT_FALSE(connection.HasNews());
  pair.far.Reset();
  EXPECT_TRUE(connection.HasNews());
}

TEST(ConnectionTest, AWriteThatNobodyTakesEndsAtItsDeadline) {
  ConnectedPair pair;
  Connection connection = pair.Take();
  const std::string much(4'000'000, 'x');
  EXPECT_EQ(CodeOf(connection.Send(much, Within(50))), ErrorCode::kTimedOut);
}

// As a server may when the phone is unplugged: the rest would wait for ever.
TEST(ConnectionTest, AWriteToWhoHasEndedTheStreamAndTakesNothingFails) {
  ConnectedPair pair;
  shutdown(pair.far.get(), SHUT_WR);
  auto connection = pair.Take();
  const Status sent = connection.Send(std::string(64 << 20, 'x'), Within(20'000));
  ASSERT_FALSE(sent.ok());
  EXPECT_EQ(sent.error().code, ErrorCode::kConnectionBroken);
}

TEST(ConnectionTest, WritingToAClosedConnectionIsAnErrorAndNoSignal) {
  ConnectedPair pair;
  Connection connection = pair.Take();
  ASSERT_TRUE(WriteBytes(pair.far.get(), "why"));
  pair.far.Reset();
  const std::string much(4'000'000, 'x');
  const Status status = connection.Send(much, Within(5000));
  EXPECT_EQ(CodeOf(status), ErrorCode::kConnectionBroken);
  EXPECT_EQ(status.error().system_error, EPIPE);
  ASSERT_TRUE(connection.Buffer(3, "the reason", Within(5000)).ok());
  EXPECT_EQ(connection.buffered(), "why");
}

// The other end writes before it reads: both are blocked unless each serves both directions.
TEST(ConnectionTest, InputIsTakenWhileOutputWaits) {
  ConnectedPair pair;
  Connection connection = pair.Take();
  connection.GrowBuffer(1'000'000);
  const std::string much(900'000, 'x');
  std::thread other([&] {
    EXPECT_TRUE(WriteBytes(pair.far.get(), much));
    EXPECT_EQ(ReadBytes(pair.far.get(), much.size()).size(), much.size());
  });
  EXPECT_TRUE(connection.Send(much, Within(20000)).ok());
  EXPECT_TRUE(connection.Buffer(much.size(), "all", Within(20000)).ok());
  other.join();
}

TEST(ConnectionTest, OutputIsWrittenWhileInputIsAwaited) {
  ConnectedPair pair;
  Connection connection = pair.Take();
  connection.Queue(std::string(900'000, 'x'));
  std::thread other([&] {
    EXPECT_EQ(ReadBytes(pair.far.get(), 900'000).size(), 900'000u);
    EXPECT_TRUE(WriteBytes(pair.far.get(), "done"));
  });
  EXPECT_TRUE(connection.Buffer(4, "an answer", Within(20000)).ok());
  EXPECT_EQ(connection.queued(), 0u);
  other.join();
}

TEST(ConnectionTest, QueueAndBytesGoInOnePiece) {
  ScriptedServer server([](int peer) {
    std::array<char, 100> bytes;
    const ssize_t count = recv(peer, bytes.data(), bytes.size(), 0);
    WriteBytes(peer, std::to_string(count));
    WaitUntilClosed(peer);
  });
  auto connection = Connection::Open(server.address(), Within(5000));
  ASSERT_TRUE(connection.ok());
  ASSERT_TRUE(SendRequest(&*connection, "host:version", Within(5000)).ok());
  ASSERT_TRUE(connection->Buffer(2, "a count", Within(5000)).ok());
  EXPECT_EQ(connection->buffered(), "16");
  EXPECT_EQ(fcntl(connection->descriptor(), F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
}

// The system looks names up; what is one of its own is enough here.
TEST(ConnectionTest, AServerOfAnotherName) {
  ScriptedServer server([](int peer) { WaitUntilClosed(peer); });
  ServerAddress address = server.address();
  address.host = "localhost";
  EXPECT_TRUE(Connection::Open(address, Within(5000)).ok());
  address.host = "127.0.0.1";
  EXPECT_TRUE(Connection::Open(address, Within(5000)).ok());
  for (const char* host :
       {"::1", "name.invalid"}) {  // the server listens on the other loopback address alone
    address.host = host;
    EXPECT_EQ(Connection::Open(address, Within(20'000)).error().code, ErrorCode::kCannotConnect) << host;
  }
}

TEST(ConnectionTest, ALocalServer) {
  const test::TemporaryDirectory directory;
  ServerAddress address;
  address.kind = ServerAddress::Kind::kLocalFile;
  address.name = directory.File("socket");
  EXPECT_EQ(Connection::Open(address, Within(1000)).error().system_error, ENOENT);

  base::UniqueFd listener(socket(AF_UNIX, SOCK_STREAM, 0));
  sockaddr_un name = {};
  name.sun_family = AF_UNIX;
  address.name.copy(name.sun_path, sizeof(name.sun_path) - 1);
  ASSERT_EQ(bind(listener.get(), reinterpret_cast<sockaddr*>(&name), sizeof(name)), 0);
  ASSERT_EQ(listen(listener.get(), 0), 0);
  auto first = Connection::Open(address, Within(1000));
  ASSERT_TRUE(first.ok());
  base::UniqueFd accepted(accept(listener.get(), nullptr, nullptr));
  ASSERT_TRUE(WriteBytes(accepted.get(), "hello"));
  EXPECT_TRUE(first->Buffer(5, "a greeting", Within(1000)).ok());

  // One waits to be accepted, and the next cannot even do that.
  auto waiting = Connection::Open(address, Within(1000));
  ASSERT_TRUE(waiting.ok());
  auto refused = Connection::Open(address, Within(30));
  ASSERT_FALSE(refused.ok());
  EXPECT_EQ(refused.error().code, ErrorCode::kTimedOut);

  const auto token = CancelToken::Create();
  ASSERT_TRUE(token.ok());
  std::thread canceller([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    (*token)->Set();
  });
  auto cancelled = Connection::Open(address, {Clock::now() + std::chrono::seconds(20), token->get()});
  canceller.join();
  ASSERT_FALSE(cancelled.ok());
  EXPECT_EQ(cancelled.error().code, ErrorCode::kCancelled);
}

#ifdef __linux__
TEST(ConnectionTest, AnAbstractServer) {
  ServerAddress address;
  address.kind = ServerAddress::Kind::kLocalAbstract;
  address.name = "darokleim-test-" + std::to_string(getpid());
  EXPECT_EQ(Connection::Open(address, Within(1000)).error().code, ErrorCode::kCannotConnect);
  base::UniqueFd listener(socket(AF_UNIX, SOCK_STREAM, 0));
  sockaddr_un name = {};
  name.sun_family = AF_UNIX;
  address.name.copy(name.sun_path + 1, sizeof(name.sun_path) - 1);
  const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + address.name.size());
  ASSERT_EQ(bind(listener.get(), reinterpret_cast<sockaddr*>(&name), length), 0);
  ASSERT_EQ(listen(listener.get(), 1), 0);
  EXPECT_TRUE(Connection::Open(address, Within(1000)).ok());
}
#endif

bool IsConnectedToItself(int socket) {
  sockaddr_in own = {};
  sockaddr_in peer = {};
  socklen_t length = sizeof(own);
  getsockname(socket, reinterpret_cast<sockaddr*>(&own), &length);
  getpeername(socket, reinterpret_cast<sockaddr*>(&peer), &length);
  return own.sin_port == peer.sin_port;
}

// The system may choose for this end the very port that is connected to, when nobody listens there. Linux does so within
// some 60,000 attempts, with even ports.
TEST(ConnectionTest, ASocketIsNeverConnectedToItself) {
  ServerAddress address;
  {
    const ScriptedServer gone(std::vector<Exchange>{});
    address = gone.address();
    address.host = "127.0.0.1";
    address.port &= 0xfffe;
  }
  for (int i = 0; i < 70'000; ++i) {
    const auto connection = Connection::Open(address, Within(5000));
    if (connection.ok()) {
      ASSERT_FALSE(IsConnectedToItself(connection->descriptor())) << i;
    } else {
      ASSERT_EQ(connection.error().code, ErrorCode::kCannotConnect) << i;
    }
  }
}

TEST(ConnectionTest, ANameThatDoesNotExist) {
  ServerAddress address;
  address.host = "no such host";
  const auto connection = Connection::Open(address, Within(5000));
  ASSERT_FALSE(connection.ok());
  EXPECT_EQ(connection.error().code, ErrorCode::kCannotConnect);
  EXPECT_NE(connection.error().message, "");
}

TEST(ConnectionTest, NoDescriptorIsLost) {
  const auto run = [] {
    for (const Operation& operation : Operations()) {
      for (const size_t cut : {size_t{0}, size_t{5}, ReplyBytes(operation)}) {
        const ScriptedServer server(operation.conversation, {.cut_after = cut});
        (void)operation.call(server.address(), Within(5000)).ok();
      }
      (void)operation.call(ServerAddress{}, Within(-1)).ok();
    }
  };
  run();
  const size_t before = test::OpenDescriptors();
  for (int i = 0; i < 3; ++i) run();
  EXPECT_EQ(test::OpenDescriptors(), before);
}

TEST(MessageTest, ARequestOfAllLengths) {
  for (const size_t length : {size_t{0}, size_t{1}, size_t{255}, size_t{65535}}) {
    ConnectedPair pair;
    Connection connection = pair.Take();
    ASSERT_TRUE(SendRequest(&connection, std::string(length, 'x'), Within(5000)).ok());
    EXPECT_EQ(ReadBytes(pair.far.get(), length + 4), Request(std::string(length, 'x')));
  }
  ConnectedPair pair;
  Connection connection = pair.Take();
  EXPECT_EQ(CodeOf(SendRequest(&connection, std::string(65536, 'x'), Within(5000))), ErrorCode::kTooLong);
  connection.Close();
  EXPECT_EQ(ReadBytes(pair.far.get(), 1), "");
}

TEST(MessageTest, TextsWithLengthsInEitherCase) {
  ConnectedPair pair;
  Connection connection = pair.Take();
  ASSERT_TRUE(
      WriteBytes(pair.far.get(), "001A" + std::string(26, 'a') + "001b" + std::string(27, 'b') + "0000"));
  EXPECT_EQ(*ReadText(&connection, "x", Within(5000)), std::string(26, 'a'));
  EXPECT_EQ(*TakeText(&connection, "x", Within(5000)), std::string(27, 'b'));
  EXPECT_EQ(*ReadText(&connection, "x", Within(5000)), "");
}

TEST(MessageTest, TheLongestText) {
  for (const auto read : {ReadText, TakeText, ReadTextOrNothing}) {
    ConnectedPair pair;
    Connection connection = pair.Take();
    std::thread writer([&] { EXPECT_TRUE(WriteBytes(pair.far.get(), "ffff" + std::string(65535, 'x'))); });
    EXPECT_EQ(read(&connection, "x", Within(5000))->size(), 65535u);
    writer.join();
  }
}

TEST(MessageTest, LengthsThatAreNone) {
  for (const std::string digits : {"00 1", "-001", "+001", "0x01", "gggg", "\n\n\n\n"}) {
    ConnectedPair pair;
    Connection connection = pair.Take();
    ASSERT_TRUE(WriteBytes(pair.far.get(), digits + "x"));
    const auto text = ReadText(&connection, "x", Within(5000));
    ASSERT_FALSE(text.ok()) << digits;
    EXPECT_EQ(text.error().code, ErrorCode::kProtocolFault);
    EXPECT_EQ(text.error().message.rfind("expected four hexadecimal digits of the answer to x, received ", 0),
              0u);
  }
}

// What was received of a text is kept for the next time.
TEST(MessageTest, ATextIsTakenWhole) {
  ConnectedPair pair;
  Connection connection = pair.Take();
  ASSERT_TRUE(WriteBytes(pair.far.get(), "0003a"));
  EXPECT_EQ(TakeText(&connection, "x", Within(10)).error().code, ErrorCode::kTimedOut);
  ASSERT_TRUE(WriteBytes(pair.far.get(), "bc"));
  EXPECT_EQ(*TakeText(&connection, "x", Within(5000)), "abc");
}

TEST(MessageTest, AnEndlessTextIsCutOff) {
  ConnectedPair pair;
  Connection connection = pair.Take();
  ASSERT_TRUE(WriteBytes(pair.far.get(), std::string(2000, 'x')));
  EXPECT_EQ(ReadToEnd(&connection, 1000, Within(5000)).error().code, ErrorCode::kProtocolFault);
}

}  // namespace
}  // namespace darokleim::adb_test
