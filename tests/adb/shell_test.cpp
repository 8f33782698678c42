#include "adb/shell.h"

#include <gtest/gtest.h>

#include <thread>

#include "base/little_endian.h"
#include "tests/adb/connected_pair.h"
#include "tests/adb/within.h"
#include "tests/support/scripted_server.h"

namespace darokleim::adb_test {
namespace {

using namespace adb;
using namespace test;

std::string Packet(int id, std::string_view data) {
  std::string packet(1, static_cast<char>(id));
  base::PutLe32(&packet, static_cast<std::uint32_t>(data.size()));
  return packet.append(data);
}

// A session whose phone has said `bytes` and then ended.
struct Session {
  explicit Session(const std::string& bytes, ShellForm form = ShellForm::kV2) {
    WriteBytes(pair.far.get(), "OKAY" + bytes);
    shutdown(pair.far.get(), SHUT_WR);
    ShellCommand command;
    command.form = form;
    auto started = ShellSession::Start(pair.Take(), command, Within(5000));
    if (!started.ok()) throw std::runtime_error("no session");
    shell = std::make_unique<ShellSession>(*std::move(started));
  }

  // Everything, and how it ended, by either way of reading.
  std::string ReadAll() {
    std::string seen;
    const auto end = shell->ReadAll(
        [&](ShellStream stream, std::string_view data) {
          Note(stream, data, &seen);
          return true;
        },
        Within(5000));
    return seen + Shown(end.ok() ? nullptr : &end.error(), end.ok() ? end->exit_status : std::nullopt);
  }
  std::string ReadPieces(size_t size) {
    std::string seen;
    std::string buffer(size, '\0');
    for (;;) {
      const auto piece = shell->Read(buffer, Within(5000));
      if (!piece.ok()) return seen + Shown(&piece.error(), {});
      if (piece->size == 0) return seen + Shown(nullptr, piece->exit_status);
      Note(piece->stream, std::string_view(buffer).substr(0, piece->size), &seen);
    }
  }

  static void Note(ShellStream stream, std::string_view data, std::string* seen) {
    for (const char c : data)
      *seen += stream == ShellStream::kErrors ? std::string("!") + c : std::string(1, c);
  }
  static std::string Shown(const Error* error, std::optional<int> exit_status) {
    if (error == nullptr) return exit_status ? "=" + std::to_string(*exit_status) : "=?";
    if (error->code == ErrorCode::kConnectionBroken) return "=broken";
    return error->code == ErrorCode::kProtocolFault ? "=fault" : "=other";
  }

  ConnectedPair pair;
  std::unique_ptr<ShellSession> shell;
};

void ExpectReads(const std::string& bytes, const std::string& expected, ShellForm form = ShellForm::kV2) {
  EXPECT_EQ(Session(bytes, form).ReadAll(), expected);
  for (const size_t size : {size_t{1}, size_t{2}, size_t{1000}}) {
    EXPECT_EQ(Session(bytes, form).ReadPieces(size), expected) << size;
  }
}

TEST(ShellCommandTest, Services) {
  EXPECT_EQ((ShellCommand{.command = "ls", .terminal = "xterm"}.Service()), "shell,v2,TERM=xterm,raw:ls");
  EXPECT_EQ((ShellCommand{.command = "ls"}.Service()), "shell,v2,raw:ls");
  EXPECT_EQ((ShellCommand{.pseudo_terminal = true}.Service()), "shell,v2,pty:");
  EXPECT_EQ((ShellCommand{.form = ShellForm::kOld, .command = "ls", .terminal = "xterm"}.Service()),
            "shell:ls");
  EXPECT_EQ((ShellCommand{.form = ShellForm::kRaw, .command = "ls"}.Service()), "exec:ls");
}

TEST(ShellSessionTest, StreamsAndExitStatus) {
  ExpectReads(Packet(1, "ab") + Packet(2, "cd") + Packet(1, "") + Packet(1, "e") + Packet(3, "\xff"),
              "ab!c!de=255");
  ExpectReads(Packet(3, std::string(1, '\0')), "=0");
}

TEST(ShellSessionTest, WithoutAnExitStatusTheConnectionBroke) {
  ExpectReads("", "=broken");
  ExpectReads(Packet(1, "ab"), "ab=broken");
  ExpectReads(Packet(1, "ab").substr(0, 6), "a=broken");
  ExpectReads(Packet(3, "x").substr(0, 5), "=broken");
}

TEST(ShellSessionTest, TheOldFormsEndWithTheStream) {
  ExpectReads("abc", "abc=?", ShellForm::kOld);
  ExpectReads("", "=?", ShellForm::kRaw);
}

TEST(ShellSessionTest, WhatIsNoPacket) {
  ExpectReads(Packet(0, "x"), "=fault");
  ExpectReads(Packet(4, ""), "=fault");
  ExpectReads(Packet(1, "a") + "hello world", "a=fault");
  ExpectReads(Packet(3, ""), "=fault");
  ExpectReads(Packet(3, "ab"), "=fault");
  ExpectReads(std::string("\x01\x01\0\x10\0", 5), "=fault");  // more than a megabyte
  ExpectReads("\x01\xff\xff\xff\xff", "=fault");
}

TEST(ShellSessionTest, ThePacketLengthsThatDaemonsSend) {
  const std::string large(200'000, 'x');
  ConnectedPair pair;
  std::thread phone([&] { WriteBytes(pair.far.get(), "OKAY" + Packet(1, large) + Packet(3, "a")); });
  auto shell = ShellSession::Start(pair.Take(), {}, Within(5000));
  ASSERT_TRUE(shell.ok());
  size_t size = 0;
  const auto end = shell->ReadAll(
      [&](ShellStream, std::string_view data) { return (size += data.size()) > 0; }, Within(5000));
  phone.join();
  ASSERT_TRUE(end.ok());
  EXPECT_EQ(end->exit_status, 'a');
  EXPECT_EQ(size, large.size());
}

TEST(ShellSessionTest, TheEndStaysTheEnd) {
  Session session(Packet(1, "a") + Packet(3, "b"));
  EXPECT_EQ(session.ReadPieces(10), "a=98");
  EXPECT_EQ(session.ReadPieces(10), "=98");
  EXPECT_EQ(session.ReadAll(), "=98");
}

TEST(ShellSessionTest, TheCallerEndsIt) {
  Session session(Packet(1, "a") + Packet(1, "b") + Packet(3, "c"));
  int calls = 0;
  const auto end =
      session.shell->ReadAll([&](ShellStream, std::string_view) { return ++calls < 1; }, Within(5000));
  ASSERT_FALSE(end.ok());
  EXPECT_EQ(end.error().code, ErrorCode::kStopped);
  EXPECT_EQ(calls, 1);
}

TEST(ShellSessionTest, InputIsPackedAndClosed) {
  ConnectedPair pair;
  WriteBytes(pair.far.get(), "OKAY");
  auto shell = ShellSession::Start(pair.Take(), {.command = "cat", .with_input = true}, Within(5000));
  ASSERT_TRUE(shell.ok());
  ASSERT_TRUE(shell->WriteInput("abc", Within(5000)).ok());
  ASSERT_TRUE(shell->CloseInput(Within(5000)).ok());
  const std::string expected = Request("shell,v2,raw:cat") + Packet(0, "abc") + Packet(4, "");
  EXPECT_EQ(ReadBytes(pair.far.get(), expected.size()), expected);
}

TEST(ShellSessionTest, OldFormsTakeInputAsItIsAndHaveNoEndOfIt) {
  ConnectedPair pair;
  WriteBytes(pair.far.get(), "OKAY");
  auto shell = ShellSession::Start(pair.Take(), {.form = ShellForm::kRaw, .command = "cat"}, Within(5000));
  ASSERT_TRUE(shell.ok());
  ASSERT_TRUE(shell->WriteInput("abc", Within(5000)).ok());
  EXPECT_EQ(shell->CloseInput(Within(5000)).error().code, ErrorCode::kUnsupported);
  EXPECT_EQ(ReadBytes(pair.far.get(), Request("exec:cat").size() + 3), Request("exec:cat") + "abc");
}

// A command that ends before it has taken its input still has an exit status.
TEST(ShellSessionTest, AnEndBeforeTheInput) {
  ConnectedPair pair;
  WriteBytes(pair.far.get(), "OKAY" + Packet(3, "a"));
  auto shell = ShellSession::Start(pair.Take(), {.command = "cat", .with_input = true}, Within(5000));
  ASSERT_TRUE(shell.ok());
  pair.far.Reset();
  const std::string input(1'000'000, 'x');
  const auto end = shell->Exchange([&] { return std::string_view(input); },
                                   [](ShellStream, std::string_view) { return true; }, Within(5000));
  ASSERT_TRUE(end.ok());
  EXPECT_EQ(end->exit_status, 'a');
}

// A phone that answers a command without having taken it, with room for nothing else on the way to it.
ConnectedPair FullPair() {
  ConnectedPair pair;
  const int smallest = 1;
  setsockopt(pair.near.get(), SOL_SOCKET, SO_SNDBUF, &smallest, sizeof smallest);
  WriteBytes(pair.far.get(), "OKAY");
  return pair;
}
const std::string kThatFills(4000, 'x');

TEST(ShellSessionTest, AnEndOfInputThatNobodyTakesEndsAtItsDeadline) {
  ConnectedPair pair = FullPair();
  const auto shell = ShellSession::Start(pair.Take(), {.command = kThatFills}, Within(50));
  ASSERT_FALSE(shell.ok());
  EXPECT_EQ(shell.error().code, ErrorCode::kTimedOut);
}

TEST(ShellSessionTest, AnExchangeWithoutInputThatNobodyTakesEndsAtItsDeadline) {
  ConnectedPair pair = FullPair();
  auto shell = ShellSession::Start(pair.Take(), {.command = kThatFills, .with_input = true}, Within(5000));
  ASSERT_TRUE(shell.ok());
  const auto end = shell->Exchange([] { return std::string_view(); },
                                   [](ShellStream, std::string_view) { return true; }, Within(50));
  ASSERT_FALSE(end.ok());
  EXPECT_EQ(end.error().code, ErrorCode::kTimedOut);
}

TEST(ShellSessionTest, ATimeOutLosesNothing) {
  ConnectedPair pair;
  WriteBytes(pair.far.get(), "OKAY" + Packet(1, "ab").substr(0, 6));
  auto shell = ShellSession::Start(pair.Take(), {}, Within(5000));
  ASSERT_TRUE(shell.ok());
  std::array<char, 10> buffer;
  EXPECT_EQ(shell->Read(buffer, Within(5000))->size, 1u);
  EXPECT_EQ(shell->Read(buffer, Within(10)).error().code, ErrorCode::kTimedOut);
  WriteBytes(pair.far.get(), "b" + Packet(3, "c"));
  EXPECT_EQ(shell->Read(buffer, Within(5000))->size, 1u);
  EXPECT_EQ(buffer[0], 'b');
  EXPECT_EQ(shell->Read(buffer, Within(5000))->exit_status, 'c');
}

}  // namespace
}  // namespace darokleim::adb_test
