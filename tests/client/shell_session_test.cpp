// A shell session with a phone that takes input slowly, in part, or never.
#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <darokleim/client.hpp>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "tests/support/eventually.h"
#include "tests/support/scripted_server.h"

namespace darokleim::client_test {
namespace {

using std::chrono::milliseconds;
using test::Number32;
using test::ScriptedPhone;
using test::WriteBytes;

std::string ShellPacket(char kind, const std::string& data) {
  return kind + Number32(static_cast<std::uint32_t>(data.size())) + data;
}

// The next packet of a client, "kind:data"; empty where the client has closed.
std::string ReadShellPacket(int connection) {
  const std::string header = test::ReadBytes(connection, 5);
  if (header.size() < 5) return "";
  std::size_t size = 0;
  for (std::size_t i = 0; i < 4; ++i)
    size |= std::size_t{static_cast<unsigned char>(header[i + 1])} << (8 * i);
  return std::to_string(header[0]) + ":" + test::ReadBytes(connection, size);
}

// What a session reports.
class SessionRecorder {
 public:
  auto on_output() {
    return [this](dk_stream stream, std::string_view data) {
      const std::lock_guard lock(mutex_);
      (stream == DK_STDERR ? err_ : out_).append(data);
    };
  }
  auto on_end() {
    return [this](dk_code code, int exit_status, const dk::Error* error) {
      const std::lock_guard lock(mutex_);
      end_ = std::string(dk_code_name(code)) + " " + std::to_string(exit_status);
      if (error != nullptr) message_ = error->message();
      ended_.notify_all();
    };
  }
  // The code and the exit status.
  std::string AwaitEnd() {
    std::unique_lock lock(mutex_);
    ended_.wait_for(lock, std::chrono::seconds(20), [this] { return !end_.empty(); });
    return end_;
  }
  std::string out() const { return Locked(out_); }
  std::string err() const { return Locked(err_); }

 private:
  std::string Locked(const std::string& text) const {
    const std::lock_guard lock(mutex_);
    return text;
  }

  mutable std::mutex mutex_;
  std::condition_variable ended_;
  std::string out_, err_, end_, message_;
};

class ShellSessions : public testing::Test {
 protected:
  // A phone that does this with each shell, after OKAY.
  void Serve(std::function<void(int connection)> serve, const std::string& features = "shell_v2,cmd") {
    phone_ = std::make_unique<ScriptedPhone>(features,
                                             [serve = std::move(serve)](const std::string&, int connection) {
                                               WriteBytes(connection, "OKAY");
                                               serve(connection);
                                             });
    dk::ClientOptions options;
    options.server = "tcp:" + phone_->port();
    client_ = std::make_unique<dk::Client>(options);
    device_ = std::make_unique<dk::Device>(client_->open("X").value());
  }
  dk::Result<dk::Shell> Start(const dk::ShellOptions& options) {
    return device_->shell(options, recorder_.on_output(), recorder_.on_end());
  }
  ScriptedPhone& phone() { return *phone_; }
  const dk::Device& device() const { return *device_; }
  SessionRecorder& recorder() { return recorder_; }

 private:
  SessionRecorder recorder_;
  std::unique_ptr<ScriptedPhone> phone_;
  std::unique_ptr<dk::Client> client_;
  std::unique_ptr<dk::Device> device_;
};

TEST_F(ShellSessions, CarryInputAndBothStreamsAndTheEnd) {
  Serve([](int connection) {
    std::string seen;
    for (std::string packet; packet != "4:";) {
      packet = ReadShellPacket(connection);
      if (packet.empty()) return;
      seen += packet + ";";
    }
    WriteBytes(connection, ShellPacket(1, seen) + ShellPacket(2, "errors") + ShellPacket(3, "\7"));
  });
  dk::Shell shell = Start({"cat"}).value();
  EXPECT_TRUE(shell.write(std::string_view())) << "nothing, at a null pointer";
  EXPECT_TRUE(shell.write("one"));
  EXPECT_TRUE(test::Eventually([&] { return phone().services().size() == 1; }));
  EXPECT_TRUE(shell.close_input());
  EXPECT_TRUE(shell.close_input()) << "also a second time";
  EXPECT_EQ(shell.write("late").code(), DK_STOPPED);
  EXPECT_EQ(recorder().AwaitEnd(), "DK_OK 7");
  EXPECT_EQ(recorder().out(), "0:one;4:;");
  EXPECT_EQ(recorder().err(), "errors");
  EXPECT_EQ(shell.write("late").code(), DK_STOPPED);
  EXPECT_THAT(phone().services(), testing::ElementsAre("shell,v2,raw:cat"));
}

TEST_F(ShellSessions, TellATerminalItsSizeAndItsEnd) {
  Serve([](int connection) {
    std::string seen = ReadShellPacket(connection) + ";";
    WriteBytes(connection, ShellPacket(1, "ready"));
    seen += ReadShellPacket(connection) + ";";
    WriteBytes(connection, ShellPacket(1, "!"));
    seen += ReadShellPacket(connection);
    WriteBytes(connection, ShellPacket(1, seen) + ShellPacket(3, std::string(1, '\0')));
  });
  dk::ShellOptions options;
  options.terminal = true;
  options.terminal_type = "xterm";
  options.rows = 24;
  options.columns = 80;
  dk::Shell shell = Start(options).value();
  EXPECT_TRUE(test::Eventually([&] { return recorder().out() == "ready"; }));
  EXPECT_TRUE(shell.resize(50, 132));
  EXPECT_TRUE(test::Eventually([&] { return recorder().out() == "ready!"; }));
  EXPECT_TRUE(shell.close_input());
  EXPECT_EQ(recorder().AwaitEnd(), "DK_OK 0");
  EXPECT_EQ(recorder().out(), "ready!5:24x80,0x0;5:50x132,0x0;0:\4");
  EXPECT_THAT(phone().services(), testing::ElementsAre("shell,v2,TERM=xterm,pty:"));
}

// A command that reads none of it, such as `sleep`: little is held in memory.
TEST_F(ShellSessions, RefuseATypeOfTerminalThatWouldBeAnotherOption) {
  Serve([](int) {});
  dk::ShellOptions options;
  options.terminal = true;
  for (const char* type : {"xterm,raw", "xterm:reboot"}) {
    options.terminal_type = type;
    EXPECT_EQ(Start(options).code(), DK_INVALID_ARGUMENT) << type;
  }
}

TEST_F(ShellSessions, HoldLittleOfTheInputThatNobodyTakes) {
  Serve([](int connection) {
    WriteBytes(connection, ShellPacket(1, "here"));
    std::this_thread::sleep_for(milliseconds(400));
    WriteBytes(connection, ShellPacket(3, "\1"));
  });
  const std::string input(64 * 1024 * 1024, 'x');  // made first: the other side does not wait for it
  dk::Shell shell = Start({"sleep 1"}).value();
  EXPECT_EQ(shell.write(input, {{}, milliseconds(50)}).code(), DK_TIMED_OUT);
  const dk::Cancel cancel;
  cancel.set();
  EXPECT_EQ(shell.write(input, {cancel, {}}).code(), DK_CANCELLED);
  EXPECT_EQ(shell.write(input).code(), DK_STOPPED) << "the end wakes it";
  EXPECT_EQ(recorder().AwaitEnd(), "DK_OK 1");
  EXPECT_EQ(recorder().out(), "here");
}

TEST_F(ShellSessions, GiveBackWhatTheySendInAnyAmount) {
  Serve([](int connection) {  // cat
    for (;;) {
      const std::string packet = ReadShellPacket(connection);
      if (packet.empty() || packet == "4:") break;
      if (!WriteBytes(connection, ShellPacket(1, packet.substr(2)))) return;
    }
    WriteBytes(connection, ShellPacket(3, std::string(1, '\0')));
  });
  dk::Shell shell = Start({"cat"}).value();
  std::string input;
  for (int i = 0; input.size() < 4 * 1024 * 1024; ++i) input += std::to_string(i) + " ";
  EXPECT_TRUE(shell.write(input));
  EXPECT_TRUE(shell.close_input());
  EXPECT_EQ(recorder().AwaitEnd(), "DK_OK 0");
  EXPECT_TRUE(recorder().out() == input);
}

TEST_F(ShellSessions, SayThatTheConnectionBroke) {
  Serve([](int connection) { WriteBytes(connection, ShellPacket(1, "some").substr(0, 7)); });
  const dk::Shell shell = Start({"cat"}).value();
  EXPECT_EQ(recorder().AwaitEnd(), "DK_CONNECTION_LOST -1");
  EXPECT_EQ(recorder().out(), "so");
}

TEST_F(ShellSessions, NeedATerminalOnOldPhones) {
  Serve(
      [](int connection) {
        WriteBytes(connection, "$ ");
        WriteBytes(connection, test::ReadBytes(connection, 6));
      },
      "");
  EXPECT_EQ(Start({"cat"}).code(), DK_UNSUPPORTED);
  dk::ShellOptions options;
  options.terminal = true;
  options.rows = 24;
  options.columns = 80;
  dk::Shell shell = Start(options).value();
  EXPECT_TRUE(shell.write("exit\n"));
  EXPECT_TRUE(shell.close_input());
  EXPECT_EQ(recorder().AwaitEnd(), "DK_OK -1");
  EXPECT_EQ(recorder().out(), "$ exit\n\4");
  EXPECT_THAT(phone().services(), testing::ElementsAre("shell:"));
}

TEST_F(ShellSessions, WriteFromTheirCallbackWithoutWaiting) {
  Serve([](int connection) {
    WriteBytes(connection, ShellPacket(1, "?"));
    std::size_t taken = 0;
    while (taken < 200'000) taken += ReadShellPacket(connection).size() - 2;
    WriteBytes(connection, ShellPacket(3, std::string(1, '\0')));
  });
  dk::Shell shell;
  std::atomic<bool> is_there{false};
  shell = device()
              .shell(
                  dk::ShellOptions{"ask"},
                  [&](dk_stream, std::string_view) {
                    while (!is_there) std::this_thread::yield();
                    EXPECT_TRUE(shell.write(std::string(200'000, 'x')));
                  },
                  recorder().on_end())
              .value();
  is_there = true;
  EXPECT_EQ(recorder().AwaitEnd(), "DK_OK 0");
}

}  // namespace
}  // namespace darokleim::client_test
